// User objects of the emulated window system: menus and windows.
//
// Both live in one table guarded by one lock, as they refer to each other
// (a window holds a menu, destroying it destroys the menu). Handles are
// never reused while the process runs short of 2^30 creations, so a stale
// HMENU or HWND simply names nothing. Objects are reached only under
// UserLock(); pointers from the lookups stay valid until the lock is
// released or the object is removed.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace zq::platform::internal {

struct UserObject {
    virtual ~UserObject() = default;
};

struct MenuItem {
    UINT flags = 0;           // MF_* state and type bits
    UINT_PTR id = 0;          // command identifier (not for submenus)
    HMENU submenu = nullptr;  // with MF_POPUP
    std::string text;
};

struct Menu : UserObject {
    bool popup = false;
    std::vector<MenuItem> items;
};

struct Window : UserObject {
    ATOM atom = 0;  // its class
    std::string title;
    DWORD style = 0;
    DWORD ex_style = 0;
    RECT rect{};
    HWND parent = nullptr;
    std::vector<HWND> children;
    HMENU menu = nullptr;  // top-level windows
    UINT_PTR id = 0;       // child windows: the control identifier
    HINSTANCE instance = nullptr;
    LPVOID create_param = nullptr;
};

// The lock that guards every user object.
std::mutex& UserLock();

// With UserLock() held: registers the object and returns its handle value
// (0 when out of handles); looks one up by handle and type; removes one.
uintptr_t AddUserObjectLocked(std::unique_ptr<UserObject> object);
UserObject* FindUserObjectLocked(const void* handle);
template <typename T>
T* FindUserObjectAsLocked(const void* handle) {
    return dynamic_cast<T*>(FindUserObjectLocked(handle));
}
std::unique_ptr<UserObject> RemoveUserObjectLocked(const void* handle);

// Destroys a menu and the submenus it holds. With UserLock() held.
bool DestroyMenuLocked(HMENU menu);

}  // namespace zq::platform::internal
