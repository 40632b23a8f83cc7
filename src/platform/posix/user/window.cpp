// Windows and window classes (see platform/api/window.h). Nothing is drawn
// and no message is sent: this is what a window is before there is a
// message system, enough for a main window to hold a menu.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "platform/posix/user/user_objects.h"

namespace zq::platform::internal {

namespace {

struct WindowClass {
    WNDCLASSA info{};
    std::string name;
    ATOM atom = 0;
    int windows = 0;
};

struct ClassTable {
    std::map<std::string, WindowClass> by_name;  // key: upper-case name
    ATOM next_atom = 0xC000;                     // where Windows' string atoms start
};

ClassTable& Classes() {  // under UserLock()
    static ClassTable* table = new ClassTable;
    return *table;
}

std::string ClassKey(LPCSTR name) {
    std::string key = name;
    for (char& c : key) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return key;
}

WindowClass* FindClassLocked(LPCSTR name_or_atom) {
    if (name_or_atom == nullptr) {
        return nullptr;
    }
    ClassTable& t = Classes();
    if (IS_INTRESOURCE(name_or_atom)) {
        ATOM atom = LOWORD(reinterpret_cast<ULONG_PTR>(name_or_atom));
        for (auto& entry : t.by_name) {
            if (entry.second.atom == atom) {
                return &entry.second;
            }
        }
        return nullptr;
    }
    auto it = t.by_name.find(ClassKey(name_or_atom));
    return it == t.by_name.end() ? nullptr : &it->second;
}

Window* FindWindowLocked(HWND handle) {
    Window* window = FindUserObjectAsLocked<Window>(handle);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    }
    return window;
}

// Destroys the window, its children (first) and its menu.
void DestroyWindowLocked(HWND handle) {
    std::unique_ptr<UserObject> object = RemoveUserObjectLocked(handle);
    auto* window = dynamic_cast<Window*>(object.get());
    if (window == nullptr) {
        return;
    }
    for (HWND child : window->children) {
        DestroyWindowLocked(child);  // parents exist before children: no loop
    }
    if (Window* parent = FindUserObjectAsLocked<Window>(window->parent)) {
        auto& siblings = parent->children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), handle), siblings.end());
    }
    if (!(window->style & WS_CHILD) && window->menu != nullptr) {
        DestroyMenuLocked(window->menu);
    }
    for (auto& entry : Classes().by_name) {
        if (entry.second.atom == window->atom) {
            --entry.second.windows;
        }
    }
}

std::pair<int, int> ScreenSize() {
    static const std::pair<int, int> size = [] {
        int width = 1024;
        int height = 768;
        if (const char* text = std::getenv("ZQ_SCREEN_SIZE")) {
            int w = 0;
            int h = 0;
            if (std::sscanf(text, "%dx%d", &w, &h) == 2 && w > 0 && h > 0 && w <= 65535 &&
                h <= 65535) {
                width = w;
                height = h;
            }
        }
        return std::make_pair(width, height);
    }();
    return size;
}

}  // namespace

}  // namespace zq::platform::internal

using namespace zq::platform::internal;

extern "C" {

ATOM WINAPI RegisterClassA(const WNDCLASSA* lpWndClass) {
    if (lpWndClass == nullptr || lpWndClass->lpfnWndProc == nullptr ||
        lpWndClass->lpszClassName == nullptr || IS_INTRESOURCE(lpWndClass->lpszClassName) ||
        lpWndClass->lpszClassName[0] == '\0') {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::lock_guard<std::mutex> lock(UserLock());
    ClassTable& t = Classes();
    std::string key = ClassKey(lpWndClass->lpszClassName);
    if (t.by_name.count(key) != 0) {
        SetLastError(ERROR_CLASS_ALREADY_EXISTS);
        return 0;
    }
    if (t.next_atom == 0xFFFF) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    WindowClass& cls = t.by_name[key];
    cls.info = *lpWndClass;
    cls.name = lpWndClass->lpszClassName;
    cls.info.lpszClassName = cls.name.c_str();
    cls.info.lpszMenuName = nullptr;  // menus from resources are not loaded yet
    cls.atom = t.next_atom++;
    return cls.atom;
}

BOOL WINAPI UnregisterClassA(LPCSTR lpClassName, HINSTANCE /*hInstance*/) {
    std::lock_guard<std::mutex> lock(UserLock());
    WindowClass* cls = FindClassLocked(lpClassName);
    if (cls == nullptr) {
        SetLastError(ERROR_CLASS_DOES_NOT_EXIST);
        return FALSE;
    }
    if (cls->windows > 0) {
        SetLastError(ERROR_CLASS_HAS_WINDOWS);
        return FALSE;
    }
    Classes().by_name.erase(ClassKey(cls->name.c_str()));
    return TRUE;
}

HWND WINAPI CreateWindowExA(DWORD dwExStyle, LPCSTR lpClassName, LPCSTR lpWindowName, DWORD dwStyle,
                            int X, int Y, int nWidth, int nHeight, HWND hWndParent, HMENU hMenu,
                            HINSTANCE hInstance, LPVOID lpParam) {
    std::lock_guard<std::mutex> lock(UserLock());
    WindowClass* cls = FindClassLocked(lpClassName);
    if (cls == nullptr) {
        SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
        return nullptr;
    }
    Window* parent = nullptr;
    if (hWndParent != nullptr && (parent = FindWindowLocked(hWndParent)) == nullptr) {
        return nullptr;
    }
    bool child = (dwStyle & WS_CHILD) != 0;
    if (child && parent == nullptr) {
        SetLastError(ERROR_TLW_WITH_WSCHILD);
        return nullptr;
    }
    if (!child && hMenu != nullptr && FindUserObjectAsLocked<Menu>(hMenu) == nullptr) {
        SetLastError(ERROR_INVALID_MENU_HANDLE);
        return nullptr;
    }
    auto [screen_width, screen_height] = ScreenSize();
    auto window = std::make_unique<Window>();
    window->atom = cls->atom;
    window->title = lpWindowName != nullptr ? lpWindowName : "";
    window->style = dwStyle;
    window->ex_style = dwExStyle;
    if (X == CW_USEDEFAULT) {
        X = 0;
        Y = 0;
    }
    if (nWidth == CW_USEDEFAULT) {
        nWidth = screen_width / 2;
        nHeight = screen_height / 2;
    }
    window->rect = {X, Y, X + nWidth, Y + nHeight};
    window->parent = child ? hWndParent : nullptr;
    window->instance = hInstance;
    window->create_param = lpParam;
    if (child) {
        window->id = reinterpret_cast<UINT_PTR>(hMenu);
    } else {
        window->menu = hMenu;
    }
    uintptr_t handle = AddUserObjectLocked(std::move(window));
    if (handle == 0) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    HWND hwnd = reinterpret_cast<HWND>(handle);
    if (child) {
        parent->children.push_back(hwnd);
    }
    ++cls->windows;
    return hwnd;
}

BOOL WINAPI DestroyWindow(HWND hWnd) {
    std::lock_guard<std::mutex> lock(UserLock());
    if (FindWindowLocked(hWnd) == nullptr) {
        return FALSE;
    }
    DestroyWindowLocked(hWnd);
    return TRUE;
}

BOOL WINAPI IsWindow(HWND hWnd) {
    std::lock_guard<std::mutex> lock(UserLock());
    return FindUserObjectAsLocked<Window>(hWnd) != nullptr;
}

HWND WINAPI GetParent(HWND hWnd) {
    std::lock_guard<std::mutex> lock(UserLock());
    Window* window = FindWindowLocked(hWnd);
    return window != nullptr ? window->parent : nullptr;
}

HMENU WINAPI GetMenu(HWND hWnd) {
    std::lock_guard<std::mutex> lock(UserLock());
    Window* window = FindWindowLocked(hWnd);
    return window != nullptr && !(window->style & WS_CHILD) ? window->menu : nullptr;
}

BOOL WINAPI SetMenu(HWND hWnd, HMENU hMenu) {
    std::lock_guard<std::mutex> lock(UserLock());
    Window* window = FindWindowLocked(hWnd);
    if (window == nullptr) {
        return FALSE;
    }
    if (window->style & WS_CHILD) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);  // child windows hold no menu
        return FALSE;
    }
    if (hMenu != nullptr && FindUserObjectAsLocked<Menu>(hMenu) == nullptr) {
        SetLastError(ERROR_INVALID_MENU_HANDLE);
        return FALSE;
    }
    window->menu = hMenu;
    return TRUE;
}

BOOL WINAPI DrawMenuBar(HWND hWnd) {
    std::lock_guard<std::mutex> lock(UserLock());
    return FindWindowLocked(hWnd) != nullptr;
}

int WINAPI GetWindowTextA(HWND hWnd, LPSTR lpString, int nMaxCount) {
    std::lock_guard<std::mutex> lock(UserLock());
    Window* window = FindWindowLocked(hWnd);
    if (window == nullptr || lpString == nullptr || nMaxCount <= 0) {
        return 0;
    }
    size_t n = std::min(window->title.size(), static_cast<size_t>(nMaxCount) - 1);
    std::memcpy(lpString, window->title.data(), n);
    lpString[n] = '\0';
    return static_cast<int>(n);
}

BOOL WINAPI SetWindowTextA(HWND hWnd, LPCSTR lpString) {
    std::lock_guard<std::mutex> lock(UserLock());
    Window* window = FindWindowLocked(hWnd);
    if (window == nullptr) {
        return FALSE;
    }
    window->title = lpString != nullptr ? lpString : "";
    return TRUE;
}

int WINAPI GetSystemMetrics(int nIndex) {
    auto [width, height] = ScreenSize();
    switch (nIndex) {
        case SM_CXSCREEN:
            return width;
        case SM_CYSCREEN:
            return height;
        default:
            return 0;
    }
}

}  // extern "C"
