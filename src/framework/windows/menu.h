// CMenu: a menu handle wrapped as a framework object.
//
// A CMenu owns the menu it created or attached: its destructor destroys the
// menu unless it was detached. FromHandle gives the permanent object of a
// handle (one that was attached on this thread) or a temporary one, kept
// until DeleteTempMap or the end of the thread; temporary objects never
// destroy their menu. Handle maps are per thread, as in the classic
// framework.
#pragma once

#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"

class CMenu : public CObject {
    DECLARE_DYNCREATE(CMenu)
public:
    CMenu();
    ~CMenu() override;

    HMENU m_hMenu;

    // Takes hMenu (FALSE for NULL or when a menu is already attached).
    BOOL Attach(HMENU hNewMenu);
    // Lets go of the menu without destroying it; returns it.
    HMENU Detach();
    HMENU GetSafeHmenu() const { return m_hMenu; }
    operator HMENU() const { return m_hMenu; }

    static CMenu* PASCAL FromHandle(HMENU hMenu);
    static void PASCAL DeleteTempMap();

    BOOL CreateMenu();
    BOOL CreatePopupMenu();
    BOOL DestroyMenu();

    BOOL AppendMenu(UINT nFlags, UINT_PTR nIDNewItem = 0, LPCTSTR lpszNewItem = nullptr);
    BOOL InsertMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem = 0,
                    LPCTSTR lpszNewItem = nullptr);
    BOOL DeleteMenu(UINT nPosition, UINT nFlags);
    BOOL RemoveMenu(UINT nPosition, UINT nFlags);

    UINT GetMenuItemCount() const;
    UINT GetMenuItemID(int nPos) const;
    UINT GetMenuState(UINT nID, UINT nFlags) const;
    int GetMenuString(UINT nIDItem, LPTSTR lpString, int nMaxCount, UINT nFlags) const;
    int GetMenuString(UINT nIDItem, CString& rString, UINT nFlags) const;
    // The submenu at nPos as a (usually temporary) CMenu, NULL when none.
    CMenu* GetSubMenu(int nPos) const;

    UINT EnableMenuItem(UINT nIDEnableItem, UINT nEnable);
    UINT CheckMenuItem(UINT nIDCheckItem, UINT nCheck);
};
