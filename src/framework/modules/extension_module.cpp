#include "framework/modules/extension_module.h"

#include <atomic>
#include <climits>
#include <mutex>
#include <vector>

namespace {

// Process-wide state. Reached through a function so that it exists before
// any module's static construction registers an extension module, and
// never destroyed, so detach during exit still finds it.
struct ModuleState {
    std::mutex mutex;
    CDynLinkLibrary* head = nullptr;  // newest first
    std::atomic<HINSTANCE> resourceHandle{nullptr};
    std::atomic<bool> resourceHandleSet{false};
};

ModuleState& State() {
    static ModuleState* state = new ModuleState;
    return *state;
}

// The modules to search for a resource, in order: the resource handle,
// then the extension modules.
std::vector<HINSTANCE> SearchOrder() {
    ModuleState& s = State();
    std::vector<HINSTANCE> order{AfxGetResourceHandle()};
    std::lock_guard<std::mutex> lock(s.mutex);
    for (CDynLinkLibrary* dll = s.head; dll != nullptr; dll = dll->m_pNextDLL) {
        if (!dll->m_bSystem) {
            order.push_back(dll->m_hResource);
        }
    }
    return order;
}

}  // namespace

IMPLEMENT_DYNAMIC(CDynLinkLibrary, CObject)

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem)
    : m_hModule(state.hModule),
      m_hResource(state.hResource),
      m_bSystem(bSystem),
      m_pNextDLL(nullptr) {
    ModuleState& s = State();
    std::lock_guard<std::mutex> lock(s.mutex);
    m_pNextDLL = s.head;
    s.head = this;
}

CDynLinkLibrary::~CDynLinkLibrary() {
    ModuleState& s = State();
    std::lock_guard<std::mutex> lock(s.mutex);
    for (CDynLinkLibrary** link = &s.head; *link != nullptr; link = &(*link)->m_pNextDLL) {
        if (*link == this) {
            *link = m_pNextDLL;
            break;
        }
    }
}

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule) {
    if (state.bInitialized) {
        return TRUE;
    }
    state.hModule = hModule;
    state.hResource = hModule;
    state.pFirstSharedClass = nullptr;
    state.pFirstSharedFactory = nullptr;
    state.bInitialized = TRUE;
    return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL /*bAll*/) {
    ModuleState& s = State();
    std::vector<CDynLinkLibrary*> doomed;
    {
        std::lock_guard<std::mutex> lock(s.mutex);
        for (CDynLinkLibrary* dll = s.head; dll != nullptr; dll = dll->m_pNextDLL) {
            if (dll->m_hModule == state.hModule) {
                doomed.push_back(dll);
            }
        }
    }
    for (CDynLinkLibrary* dll : doomed) {
        delete dll;  // unlinks itself
    }
    state.bInitialized = FALSE;
}

HINSTANCE AfxGetInstanceHandle() {
    return GetModuleHandleA(nullptr);
}

HINSTANCE AfxGetResourceHandle() {
    ModuleState& s = State();
    if (s.resourceHandleSet.load()) {
        return s.resourceHandle.load();
    }
    return AfxGetInstanceHandle();
}

void AfxSetResourceHandle(HINSTANCE hInstResource) {
    ModuleState& s = State();
    s.resourceHandle.store(hInstResource);
    s.resourceHandleSet.store(true);
}

HINSTANCE AfxFindResourceHandle(LPCTSTR lpszName, LPCTSTR lpszType) {
    for (HINSTANCE module : SearchOrder()) {
        if (FindResourceA(module, lpszName, lpszType) != nullptr) {
            return module;
        }
    }
    return AfxGetResourceHandle();
}

int AfxLoadString(UINT nID, LPTSTR lpszBuf, UINT nMaxBuf) {
    if (lpszBuf == nullptr || nMaxBuf == 0) {
        return 0;
    }
    int size = nMaxBuf > static_cast<UINT>(INT_MAX) ? INT_MAX : static_cast<int>(nMaxBuf);
    for (HINSTANCE module : SearchOrder()) {
        int n = LoadStringA(module, nID, lpszBuf, size);
        if (n > 0) {
            return n;
        }
    }
    lpszBuf[0] = '\0';
    return 0;
}

namespace zq::framework {

std::vector<HMODULE> ExtensionModuleChain() {
    ModuleState& s = State();
    std::lock_guard<std::mutex> lock(s.mutex);
    std::vector<HMODULE> chain;
    for (CDynLinkLibrary* dll = s.head; dll != nullptr; dll = dll->m_pNextDLL) {
        chain.push_back(dll->m_hModule);
    }
    return chain;
}

}  // namespace zq::framework
