// Menus: user objects holding lists of items (see platform/api/menu.h).
#include <algorithm>
#include <cstring>

#include "platform/posix/user/user_objects.h"

namespace zq::platform::internal {

namespace {

constexpr int kMaxMenuDepth = 64;

struct ItemRef {
    HMENU handle = nullptr;
    Menu* menu = nullptr;
    size_t index = 0;
    MenuItem& item() const { return menu->items[index]; }
};

Menu* FindMenuLocked(HMENU handle) {
    Menu* menu = FindUserObjectAsLocked<Menu>(handle);
    if (menu == nullptr) {
        SetLastError(ERROR_INVALID_MENU_HANDLE);
    }
    return menu;
}

// By position in `menu`, or by command in it and then depth first in its
// submenus.
bool FindItemLocked(HMENU handle, Menu* menu, UINT position, UINT flags, ItemRef* found,
                    int depth = 0) {
    if (flags & MF_BYPOSITION) {
        if (position >= menu->items.size()) {
            return false;
        }
        *found = {handle, menu, position};
        return true;
    }
    for (size_t i = 0; i < menu->items.size(); ++i) {
        const MenuItem& item = menu->items[i];
        if (item.flags & MF_POPUP) {
            Menu* sub = FindUserObjectAsLocked<Menu>(item.submenu);
            if (sub != nullptr && depth < kMaxMenuDepth &&
                FindItemLocked(item.submenu, sub, position, flags, found, depth + 1)) {
                return true;
            }
        } else if (static_cast<UINT>(item.id) == position) {
            *found = {handle, menu, i};
            return true;
        }
    }
    return false;
}

bool FindItemOrFailLocked(HMENU handle, UINT position, UINT flags, ItemRef* found) {
    Menu* menu = FindMenuLocked(handle);
    if (menu == nullptr) {
        return false;
    }
    if (!FindItemLocked(handle, menu, position, flags, found)) {
        SetLastError(ERROR_MENU_ITEM_NOT_FOUND);
        return false;
    }
    return true;
}

// Whether `target` is `from` or one of the menus below it.
bool ReachesLocked(HMENU from, HMENU target, int depth = 0) {
    if (from == target) {
        return true;
    }
    Menu* menu = FindUserObjectAsLocked<Menu>(from);
    if (menu == nullptr || depth >= kMaxMenuDepth) {
        return false;
    }
    for (const MenuItem& item : menu->items) {
        if ((item.flags & MF_POPUP) && ReachesLocked(item.submenu, target, depth + 1)) {
            return true;
        }
    }
    return false;
}

// A new item from the arguments of AppendMenuA / InsertMenuA, or false with
// the last error set.
bool MakeItemLocked(HMENU owner, UINT flags, UINT_PTR id, LPCSTR text, MenuItem* item) {
    if (flags & (MF_BITMAP | MF_OWNERDRAW)) {
        SetLastError(ERROR_NOT_SUPPORTED);  // nothing draws menus yet
        return false;
    }
    item->flags = flags & ~(MF_BYPOSITION | MF_APPEND | MF_DELETE | MF_CHANGE);
    if (flags & MF_POPUP) {
        HMENU sub = reinterpret_cast<HMENU>(id);
        if (FindUserObjectAsLocked<Menu>(sub) == nullptr) {
            SetLastError(ERROR_INVALID_MENU_HANDLE);
            return false;
        }
        if (ReachesLocked(sub, owner)) {
            SetLastError(ERROR_INVALID_PARAMETER);  // a menu cannot hold itself
            return false;
        }
        item->submenu = sub;
        item->id = 0;
    } else {
        item->id = id;
    }
    if (!(flags & MF_SEPARATOR) && text != nullptr) {
        item->text = text;
    }
    return true;
}

BOOL RemoveItem(HMENU handle, UINT position, UINT flags, bool destroy_submenu) {
    std::lock_guard<std::mutex> lock(UserLock());
    ItemRef ref;
    if (!FindItemOrFailLocked(handle, position, flags, &ref)) {
        return FALSE;
    }
    HMENU sub = (ref.item().flags & MF_POPUP) ? ref.item().submenu : nullptr;
    ref.menu->items.erase(ref.menu->items.begin() + static_cast<ptrdiff_t>(ref.index));
    if (destroy_submenu && sub != nullptr) {
        DestroyMenuLocked(sub);
    }
    return TRUE;
}

HMENU NewMenu(bool popup) {
    auto menu = std::make_unique<Menu>();
    menu->popup = popup;
    std::lock_guard<std::mutex> lock(UserLock());
    uintptr_t handle = AddUserObjectLocked(std::move(menu));
    if (handle == 0) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return reinterpret_cast<HMENU>(handle);
}

}  // namespace

bool DestroyMenuLocked(HMENU handle) {
    std::unique_ptr<UserObject> object = RemoveUserObjectLocked(handle);
    auto* menu = dynamic_cast<Menu*>(object.get());
    if (menu == nullptr) {
        return false;
    }
    for (const MenuItem& item : menu->items) {
        if (item.flags & MF_POPUP) {
            DestroyMenuLocked(item.submenu);  // cycles were refused on insertion
        }
    }
    return true;
}

}  // namespace zq::platform::internal

using namespace zq::platform::internal;

extern "C" {

HMENU WINAPI CreateMenu(void) {
    return NewMenu(false);
}

HMENU WINAPI CreatePopupMenu(void) {
    return NewMenu(true);
}

BOOL WINAPI DestroyMenu(HMENU hMenu) {
    std::lock_guard<std::mutex> lock(UserLock());
    if (FindMenuLocked(hMenu) == nullptr) {
        return FALSE;
    }
    DestroyMenuLocked(hMenu);
    return TRUE;
}

BOOL WINAPI IsMenu(HMENU hMenu) {
    std::lock_guard<std::mutex> lock(UserLock());
    return FindUserObjectAsLocked<Menu>(hMenu) != nullptr;
}

BOOL WINAPI AppendMenuA(HMENU hMenu, UINT uFlags, UINT_PTR uIDNewItem, LPCSTR lpNewItem) {
    std::lock_guard<std::mutex> lock(UserLock());
    Menu* menu = FindMenuLocked(hMenu);
    MenuItem item;
    if (menu == nullptr || !MakeItemLocked(hMenu, uFlags, uIDNewItem, lpNewItem, &item)) {
        return FALSE;
    }
    menu->items.push_back(std::move(item));
    return TRUE;
}

BOOL WINAPI InsertMenuA(HMENU hMenu, UINT uPosition, UINT uFlags, UINT_PTR uIDNewItem,
                        LPCSTR lpNewItem) {
    std::lock_guard<std::mutex> lock(UserLock());
    Menu* menu = FindMenuLocked(hMenu);
    if (menu == nullptr) {
        return FALSE;
    }
    ItemRef where{hMenu, menu, menu->items.size()};
    if (uFlags & MF_BYPOSITION) {
        where.index = std::min<size_t>(uPosition, menu->items.size());
    } else if (!FindItemLocked(hMenu, menu, uPosition, uFlags, &where)) {
        SetLastError(ERROR_MENU_ITEM_NOT_FOUND);
        return FALSE;
    }
    MenuItem item;
    if (!MakeItemLocked(where.handle, uFlags, uIDNewItem, lpNewItem, &item)) {
        return FALSE;
    }
    where.menu->items.insert(where.menu->items.begin() + static_cast<ptrdiff_t>(where.index),
                             std::move(item));
    return TRUE;
}

BOOL WINAPI DeleteMenu(HMENU hMenu, UINT uPosition, UINT uFlags) {
    return RemoveItem(hMenu, uPosition, uFlags, true);
}

BOOL WINAPI RemoveMenu(HMENU hMenu, UINT uPosition, UINT uFlags) {
    return RemoveItem(hMenu, uPosition, uFlags, false);
}

int WINAPI GetMenuItemCount(HMENU hMenu) {
    std::lock_guard<std::mutex> lock(UserLock());
    Menu* menu = FindMenuLocked(hMenu);
    return menu == nullptr ? -1 : static_cast<int>(menu->items.size());
}

UINT WINAPI GetMenuItemID(HMENU hMenu, int nPos) {
    std::lock_guard<std::mutex> lock(UserLock());
    Menu* menu = FindMenuLocked(hMenu);
    if (menu == nullptr || nPos < 0 || static_cast<size_t>(nPos) >= menu->items.size()) {
        return static_cast<UINT>(-1);
    }
    const MenuItem& item = menu->items[static_cast<size_t>(nPos)];
    return (item.flags & MF_POPUP) ? static_cast<UINT>(-1) : static_cast<UINT>(item.id);
}

HMENU WINAPI GetSubMenu(HMENU hMenu, int nPos) {
    std::lock_guard<std::mutex> lock(UserLock());
    Menu* menu = FindMenuLocked(hMenu);
    if (menu == nullptr || nPos < 0 || static_cast<size_t>(nPos) >= menu->items.size()) {
        return nullptr;
    }
    const MenuItem& item = menu->items[static_cast<size_t>(nPos)];
    return (item.flags & MF_POPUP) ? item.submenu : nullptr;
}

int WINAPI GetMenuStringA(HMENU hMenu, UINT uIDItem, LPSTR lpString, int cchMax, UINT flags) {
    std::lock_guard<std::mutex> lock(UserLock());
    ItemRef ref;
    if (!FindItemOrFailLocked(hMenu, uIDItem, flags, &ref)) {
        return 0;
    }
    const std::string& text = ref.item().text;
    if (lpString == nullptr || cchMax <= 0) {
        return static_cast<int>(text.size());
    }
    size_t n = std::min(text.size(), static_cast<size_t>(cchMax) - 1);
    std::memcpy(lpString, text.data(), n);
    lpString[n] = '\0';
    return static_cast<int>(n);
}

UINT WINAPI GetMenuState(HMENU hMenu, UINT uId, UINT uFlags) {
    std::lock_guard<std::mutex> lock(UserLock());
    ItemRef ref;
    if (!FindItemOrFailLocked(hMenu, uId, uFlags, &ref)) {
        return static_cast<UINT>(-1);
    }
    const MenuItem& item = ref.item();
    if (item.flags & MF_POPUP) {
        Menu* sub = FindUserObjectAsLocked<Menu>(item.submenu);
        UINT count = sub != nullptr ? static_cast<UINT>(sub->items.size()) : 0;
        return (count << 8) | (item.flags & 0xFF);
    }
    return item.flags;
}

BOOL WINAPI EnableMenuItem(HMENU hMenu, UINT uIDEnableItem, UINT uEnable) {
    std::lock_guard<std::mutex> lock(UserLock());
    ItemRef ref;
    if (!FindItemOrFailLocked(hMenu, uIDEnableItem, uEnable, &ref)) {
        return -1;
    }
    constexpr UINT kBits = MF_GRAYED | MF_DISABLED;
    UINT previous = ref.item().flags & kBits;
    ref.item().flags = (ref.item().flags & ~kBits) | (uEnable & kBits);
    return static_cast<BOOL>(previous);
}

DWORD WINAPI CheckMenuItem(HMENU hMenu, UINT uIDCheckItem, UINT uCheck) {
    std::lock_guard<std::mutex> lock(UserLock());
    ItemRef ref;
    if (!FindItemOrFailLocked(hMenu, uIDCheckItem, uCheck, &ref)) {
        return static_cast<DWORD>(-1);
    }
    DWORD previous = ref.item().flags & MF_CHECKED;
    ref.item().flags = (ref.item().flags & ~MF_CHECKED) | (uCheck & MF_CHECKED);
    return previous;
}

}  // extern "C"
