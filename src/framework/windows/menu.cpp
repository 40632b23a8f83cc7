#include "framework/windows/menu.h"

#include "framework/windows/handle_map.h"

IMPLEMENT_DYNCREATE(CMenu, CObject)

namespace {

using MenuMap = zq::framework::HandleMap<HMENU, CMenu, &CMenu::m_hMenu>;

MenuMap& Menus() {
    thread_local MenuMap map;
    return map;
}

}  // namespace

CMenu::CMenu() : m_hMenu(nullptr) {}

CMenu::~CMenu() {
    DestroyMenu();
}

BOOL CMenu::Attach(HMENU hNewMenu) {
    if (hNewMenu == nullptr || m_hMenu != nullptr) {
        return FALSE;
    }
    m_hMenu = hNewMenu;
    Menus().SetPermanent(hNewMenu, this);
    return TRUE;
}

HMENU CMenu::Detach() {
    HMENU menu = m_hMenu;
    if (menu != nullptr && Menus().LookupPermanent(menu) == this) {
        Menus().RemovePermanent(menu);
    }
    m_hMenu = nullptr;
    return menu;
}

CMenu* PASCAL CMenu::FromHandle(HMENU hMenu) {
    return Menus().FromHandle(hMenu);
}

void PASCAL CMenu::DeleteTempMap() {
    Menus().DeleteTemporary();
}

BOOL CMenu::CreateMenu() {
    return Attach(::CreateMenu());
}

BOOL CMenu::CreatePopupMenu() {
    return Attach(::CreatePopupMenu());
}

BOOL CMenu::DestroyMenu() {
    if (m_hMenu == nullptr) {
        return FALSE;
    }
    return ::DestroyMenu(Detach());
}

BOOL CMenu::AppendMenu(UINT nFlags, UINT_PTR nIDNewItem, LPCTSTR lpszNewItem) {
    return ::AppendMenuA(m_hMenu, nFlags, nIDNewItem, lpszNewItem);
}

BOOL CMenu::InsertMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem, LPCTSTR lpszNewItem) {
    return ::InsertMenuA(m_hMenu, nPosition, nFlags, nIDNewItem, lpszNewItem);
}

BOOL CMenu::DeleteMenu(UINT nPosition, UINT nFlags) {
    return ::DeleteMenu(m_hMenu, nPosition, nFlags);
}

BOOL CMenu::RemoveMenu(UINT nPosition, UINT nFlags) {
    return ::RemoveMenu(m_hMenu, nPosition, nFlags);
}

UINT CMenu::GetMenuItemCount() const {
    return static_cast<UINT>(::GetMenuItemCount(m_hMenu));
}

UINT CMenu::GetMenuItemID(int nPos) const {
    return ::GetMenuItemID(m_hMenu, nPos);
}

UINT CMenu::GetMenuState(UINT nID, UINT nFlags) const {
    return ::GetMenuState(m_hMenu, nID, nFlags);
}

int CMenu::GetMenuString(UINT nIDItem, LPTSTR lpString, int nMaxCount, UINT nFlags) const {
    return ::GetMenuStringA(m_hMenu, nIDItem, lpString, nMaxCount, nFlags);
}

int CMenu::GetMenuString(UINT nIDItem, CString& rString, UINT nFlags) const {
    int length = ::GetMenuStringA(m_hMenu, nIDItem, nullptr, 0, nFlags);
    if (length <= 0) {
        rString.Empty();
        return 0;
    }
    int copied = ::GetMenuStringA(m_hMenu, nIDItem, rString.GetBuffer(length), length + 1, nFlags);
    rString.ReleaseBuffer(copied);
    return copied;
}

CMenu* CMenu::GetSubMenu(int nPos) const {
    return FromHandle(::GetSubMenu(m_hMenu, nPos));
}

UINT CMenu::EnableMenuItem(UINT nIDEnableItem, UINT nEnable) {
    return static_cast<UINT>(::EnableMenuItem(m_hMenu, nIDEnableItem, nEnable));
}

UINT CMenu::CheckMenuItem(UINT nIDCheckItem, UINT nCheck) {
    return static_cast<UINT>(::CheckMenuItem(m_hMenu, nIDCheckItem, nCheck));
}
