// CTlmMenu: the Tools menu of an application.
//
// Loads a tools-menu file, keeping only the entries flagged shown, numbered
// downward from 24553; appends them to the application's main menu behind
// an anchor command; routes their commands and supplies their status-bar
// texts. The menu owns its items.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"
#include "toolsmenu/tlm_file.h"
#include "toolsmenu/tlm_item.h"

class CWnd;

class CTlmMenu : public CObject {
    DECLARE_DYNCREATE(CTlmMenu)
public:
    CTlmMenu();
    // Deletes every item (FreeAllMemory).
    ~CTlmMenu() override;

    // Replaces the items by the shown items of the file. 4 for a null or
    // empty path (a null path keeps the current items, an empty one has
    // already dropped them), 11 out of memory, else CTlmFile::LoadFileData's
    // status (items loaded before a failure stay).
    DWORD LoadFile(LPCSTR lpszPath);

    // Rebuilds the entries of the main window's menu: in the last top-level
    // submenu holding the anchor command, every item behind the anchor is
    // deleted, then (when there are items) a separator and one entry per
    // item are appended. 9 no main window or menu, 10 anchor not found,
    // else 0.
    DWORD RefreshMenu(UINT nAnchorID);

    // From the window's command routing: for one of the items' commands,
    // nCode 0 (CN_COMMAND) starts the item with pParent as parent window,
    // nCode -1 (CN_UPDATE_COMMAND_UI) enables pExtra (a CCmdUI). TRUE when
    // handled; other codes and commands are not.
    BOOL DoCommandMessage(UINT nID, int nCode, void* pExtra, CWnd* pParent);

    // The status-bar text of command nID: rMessage is emptied, then set to
    // the item's description; FALSE when no item has the command.
    BOOL GetMessageString(UINT nID, CString& rMessage) const;

    // Deletes every item and empties the array.
    void FreeAllMemory();

    // The items, in menu order.
    const CObArray& GetItems() const { return m_arItems; }

protected:
    CTlmItem* FindItem(UINT nID) const;

    CObArray m_arItems;
};
