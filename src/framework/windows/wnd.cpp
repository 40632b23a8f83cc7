#include "framework/windows/wnd.h"

#include <atomic>
#include <mutex>

#include "framework/modules/extension_module.h"
#include "framework/windows/handle_map.h"
#include "framework/windows/menu.h"

IMPLEMENT_DYNCREATE(CWnd, CCmdTarget)

namespace {

using WindowMap = zq::framework::HandleMap<HWND, CWnd, &CWnd::m_hWnd>;

WindowMap& Windows() {
    thread_local WindowMap map;
    return map;
}

std::atomic<CWnd*> g_main_window{nullptr};

constexpr char kFrameworkClass[] = "ZqFrameworkWnd";

// Messages are not dispatched yet; the procedure is what the class needs.
LRESULT CALLBACK FrameworkWindowProc(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

void RegisterFrameworkClass() {
    static std::once_flag once;
    std::call_once(once, [] {
        WNDCLASSA wc{};
        wc.lpfnWndProc = FrameworkWindowProc;
        wc.hInstance = AfxGetInstanceHandle();
        wc.lpszClassName = kFrameworkClass;
        RegisterClassA(&wc);
    });
}

}  // namespace

CWnd::CWnd() : m_hWnd(nullptr) {}

CWnd::~CWnd() {
    if (g_main_window.load() == this) {
        g_main_window.store(nullptr);
    }
    if (m_hWnd != nullptr) {
        CWnd::DestroyWindow();
    }
}

CWnd* PASCAL CWnd::FromHandle(HWND hWnd) {
    return Windows().FromHandle(hWnd);
}

CWnd* PASCAL CWnd::FromHandlePermanent(HWND hWnd) {
    return Windows().LookupPermanent(hWnd);
}

void PASCAL CWnd::DeleteTempMap() {
    Windows().DeleteTemporary();
}

BOOL CWnd::Attach(HWND hWndNew) {
    if (hWndNew == nullptr || m_hWnd != nullptr) {
        return FALSE;
    }
    m_hWnd = hWndNew;
    Windows().SetPermanent(hWndNew, this);
    return TRUE;
}

HWND CWnd::Detach() {
    HWND window = m_hWnd;
    if (window != nullptr && Windows().LookupPermanent(window) == this) {
        Windows().RemovePermanent(window);
    }
    m_hWnd = nullptr;
    return window;
}

BOOL CWnd::CreateEx(DWORD dwExStyle, LPCTSTR lpszClassName, LPCTSTR lpszWindowName, DWORD dwStyle,
                    int x, int y, int nWidth, int nHeight, HWND hWndParent, HMENU nIDorHMenu,
                    LPVOID lpParam) {
    if (m_hWnd != nullptr) {
        return FALSE;
    }
    if (lpszClassName == nullptr) {
        RegisterFrameworkClass();
        lpszClassName = kFrameworkClass;
    }
    HWND window =
        ::CreateWindowExA(dwExStyle, lpszClassName, lpszWindowName, dwStyle, x, y, nWidth, nHeight,
                          hWndParent, nIDorHMenu, AfxGetInstanceHandle(), lpParam);
    return window != nullptr && Attach(window);
}

BOOL CWnd::DestroyWindow() {
    if (m_hWnd == nullptr) {
        return FALSE;
    }
    return ::DestroyWindow(Detach());
}

CMenu* CWnd::GetMenu() const {
    return CMenu::FromHandle(::GetMenu(m_hWnd));
}

BOOL CWnd::SetMenu(CMenu* pMenu) {
    return ::SetMenu(m_hWnd, pMenu != nullptr ? pMenu->m_hMenu : nullptr);
}

void CWnd::DrawMenuBar() {
    ::DrawMenuBar(m_hWnd);
}

void CWnd::SetWindowText(LPCTSTR lpszString) {
    ::SetWindowTextA(m_hWnd, lpszString);
}

int CWnd::GetWindowText(LPTSTR lpszStringBuf, int nMaxCount) const {
    return ::GetWindowTextA(m_hWnd, lpszStringBuf, nMaxCount);
}

void CWnd::GetWindowText(CString& rString) const {
    char buffer[1024];
    int n = ::GetWindowTextA(m_hWnd, buffer, sizeof buffer);
    rString = CString(buffer, n);
}

CWnd* CWnd::GetParent() const {
    return FromHandle(::GetParent(m_hWnd));
}

CWnd* AfxGetMainWnd() {
    return g_main_window.load();
}

void AfxSetMainWnd(CWnd* pWnd) {
    g_main_window.store(pWnd);
}
