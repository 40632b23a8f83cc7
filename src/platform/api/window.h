/* Windows: classes, window handles and the menu a window holds.
 *
 * This is the small start of the window system: a window is a user object
 * with its class, title, style, rectangle, parent, menu (top-level windows)
 * or control identifier (child windows). Nothing is drawn, and no message
 * is sent yet: CreateWindowExA and DestroyWindow do not call the window
 * procedure; the class keeps it for the message functions to come.
 *
 * Destroying a window destroys its child windows and the menu it holds, as
 * Windows does. Failures set the last error (ERROR_INVALID_WINDOW_HANDLE,
 * ERROR_CANNOT_FIND_WND_CLASS, ERROR_CLASS_ALREADY_EXISTS ...).
 * All functions are thread-safe. */
#ifndef ZQ_PLATFORM_API_WINDOW_H
#define ZQ_PLATFORM_API_WINDOW_H

#include "platform/api/types.h"

/* Window styles. */
#define WS_OVERLAPPED 0x00000000L
#define WS_POPUP 0x80000000L
#define WS_CHILD 0x40000000L
#define WS_MINIMIZE 0x20000000L
#define WS_VISIBLE 0x10000000L
#define WS_DISABLED 0x08000000L
#define WS_CLIPSIBLINGS 0x04000000L
#define WS_CLIPCHILDREN 0x02000000L
#define WS_MAXIMIZE 0x01000000L
#define WS_CAPTION 0x00C00000L
#define WS_BORDER 0x00800000L
#define WS_DLGFRAME 0x00400000L
#define WS_VSCROLL 0x00200000L
#define WS_HSCROLL 0x00100000L
#define WS_SYSMENU 0x00080000L
#define WS_THICKFRAME 0x00040000L
#define WS_GROUP 0x00020000L
#define WS_TABSTOP 0x00010000L
#define WS_MINIMIZEBOX 0x00020000L
#define WS_MAXIMIZEBOX 0x00010000L
#define WS_OVERLAPPEDWINDOW \
    (WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX)
#define CW_USEDEFAULT ((int)0x80000000)

/* Show commands (STARTUPINFO wShowWindow, WinExec, ShowWindow). */
#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_NORMAL 1
#define SW_SHOWMINIMIZED 2
#define SW_SHOWMAXIMIZED 3
#define SW_MAXIMIZE 3
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SW_MINIMIZE 6
#define SW_SHOWMINNOACTIVE 7
#define SW_SHOWNA 8
#define SW_RESTORE 9
#define SW_SHOWDEFAULT 10
#define SW_FORCEMINIMIZE 11

/* System metrics. */
#define SM_CXSCREEN 0
#define SM_CYSCREEN 1

#define ERROR_CLASS_ALREADY_EXISTS 1410L
#define ERROR_CLASS_DOES_NOT_EXIST 1411L
#define ERROR_CLASS_HAS_WINDOWS 1412L
#define ERROR_CANNOT_FIND_WND_CLASS 1407L
#define ERROR_TLW_WITH_WSCHILD 1406L

typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);

typedef struct tagWNDCLASSA {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCSTR lpszMenuName;
    LPCSTR lpszClassName;
} WNDCLASSA, *PWNDCLASSA, *LPWNDCLASSA;

ZQ_EXTERN_C_BEGIN

/* Registers a window class by name (compared without regard to case); the
 * result is its atom, 0 on failure (no procedure or name, or the name is
 * taken: ERROR_CLASS_ALREADY_EXISTS). */
ZQ_API ATOM WINAPI RegisterClassA(const WNDCLASSA* lpWndClass);
/* FALSE with ERROR_CLASS_HAS_WINDOWS while windows of the class exist. */
ZQ_API BOOL WINAPI UnregisterClassA(LPCSTR lpClassName, HINSTANCE hInstance);

/* A new window of a registered class (by name or by atom). For a top-level
 * window hMenu is its menu (owned by the window from now on); for a child
 * window (WS_CHILD, which needs a parent) it is the control identifier.
 * CW_USEDEFAULT positions and sizes become 0 and half the screen. */
ZQ_API HWND WINAPI CreateWindowExA(DWORD dwExStyle, LPCSTR lpClassName, LPCSTR lpWindowName,
                                   DWORD dwStyle, int X, int Y, int nWidth, int nHeight,
                                   HWND hWndParent, HMENU hMenu, HINSTANCE hInstance,
                                   LPVOID lpParam);
ZQ_API BOOL WINAPI DestroyWindow(HWND hWnd);
ZQ_API BOOL WINAPI IsWindow(HWND hWnd);
ZQ_API HWND WINAPI GetParent(HWND hWnd);

/* The menu of a top-level window (NULL when it has none, and for child
 * windows). SetMenu replaces it; the old menu is not destroyed. */
ZQ_API HMENU WINAPI GetMenu(HWND hWnd);
ZQ_API BOOL WINAPI SetMenu(HWND hWnd, HMENU hMenu);
/* Nothing is drawn yet: checks the window and succeeds. */
ZQ_API BOOL WINAPI DrawMenuBar(HWND hWnd);

/* Title text: copies at most nMaxCount - 1 characters plus the terminator;
 * returns the characters copied. */
ZQ_API int WINAPI GetWindowTextA(HWND hWnd, LPSTR lpString, int nMaxCount);
ZQ_API BOOL WINAPI SetWindowTextA(HWND hWnd, LPCSTR lpString);

/* Screen width and height: there is no display, so the emulated screen is
 * 1024 x 768 unless ZQ_SCREEN_SIZE (e.g. "1280x1024") says otherwise.
 * Unknown metrics give 0. */
ZQ_API int WINAPI GetSystemMetrics(int nIndex);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_WINDOW_H */
