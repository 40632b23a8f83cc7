// Command targets and command-user-interface updates.
//
// CCmdTarget is the base of objects that receive menu commands: the window
// classes route a command or an update request through OnCmdMsg, which a
// derived class overrides (the library's tools menu is called from such an
// override). The message maps of the classic framework are not re-created:
// OnCmdMsg is the one routing point.
//
// CCmdUI carries one command's interface state (enabled, checked) back to
// the menu item it stands for.
#pragma once

#include "framework/core/object.h"
#include "platform/win32.h"

class CMenu;
class CWnd;

// Notification codes of OnCmdMsg.
#define CN_COMMAND 0
#define CN_UPDATE_COMMAND_UI ((UINT)(-1))

struct AFX_CMDHANDLERINFO;

class CCmdTarget : public CObject {
    DECLARE_DYNAMIC(CCmdTarget)
public:
    CCmdTarget() = default;

    // Handles command nID: nCode is CN_COMMAND, or CN_UPDATE_COMMAND_UI with
    // pExtra the CCmdUI to update. TRUE when handled; the base handles
    // nothing.
    virtual BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo);
};

class CCmdUI {
public:
    CCmdUI();
    virtual ~CCmdUI() = default;

    // Enables or disables the item; with a menu, the item at m_nIndex of
    // m_pMenu is enabled or greyed.
    virtual void Enable(BOOL bOn = TRUE);
    // 0 unchecked, 1 checked (2, indeterminate, shows as checked in a menu).
    virtual void SetCheck(int nCheck = 1);

    UINT m_nID;             // the command
    UINT m_nIndex;          // its position in m_pMenu
    CMenu* m_pMenu;         // the menu holding the item, or NULL
    CWnd* m_pOther;         // another user-interface object, or NULL
    BOOL m_bEnableChanged;  // Enable was called
    BOOL m_bEnabled;        // the last state Enable set
    int m_nCheck;           // the last state SetCheck set
};
