// CWnd: a window handle wrapped as a framework object, and the
// application's main window.
//
// This is the small start of the window classes: creation, destruction,
// the title, the parent and the menu of a window. A CWnd owns the window
// it created or attached: its destructor destroys a window still attached.
// FromHandle works as CMenu::FromHandle does (permanent or temporary
// objects, per thread).
#pragma once

#include "framework/core/cstring.h"
#include "framework/windows/cmd_target.h"
#include "platform/win32.h"

class CMenu;

class CWnd : public CCmdTarget {
    DECLARE_DYNCREATE(CWnd)
public:
    CWnd();
    ~CWnd() override;

    HWND m_hWnd;

    HWND GetSafeHwnd() const { return m_hWnd; }
    operator HWND() const { return m_hWnd; }

    static CWnd* PASCAL FromHandle(HWND hWnd);
    static CWnd* PASCAL FromHandlePermanent(HWND hWnd);
    static void PASCAL DeleteTempMap();
    BOOL Attach(HWND hWndNew);
    HWND Detach();

    // Creates the window; a NULL class name takes the framework's own
    // window class. For a top-level window nIDorHMenu is its menu (the
    // window owns it from then on), for a child its identifier.
    virtual BOOL CreateEx(DWORD dwExStyle, LPCTSTR lpszClassName, LPCTSTR lpszWindowName,
                          DWORD dwStyle, int x, int y, int nWidth, int nHeight, HWND hWndParent,
                          HMENU nIDorHMenu, LPVOID lpParam = nullptr);
    // Destroys the window (and its children and menu); FALSE without one.
    virtual BOOL DestroyWindow();

    // The window's menu as a (usually temporary) CMenu, NULL when none.
    CMenu* GetMenu() const;
    // Replaces the window's menu (pMenu NULL removes it); the old menu is
    // not destroyed.
    BOOL SetMenu(CMenu* pMenu);
    void DrawMenuBar();

    void SetWindowText(LPCTSTR lpszString);
    int GetWindowText(LPTSTR lpszStringBuf, int nMaxCount) const;
    void GetWindowText(CString& rString) const;
    CWnd* GetParent() const;
};

// The application's main window, NULL when there is none. Process-wide.
CWnd* AfxGetMainWnd();
// Makes pWnd the main window (NULL: none). Stands in for the application
// object's main-window member until the application classes exist.
void AfxSetMainWnd(CWnd* pWnd);
