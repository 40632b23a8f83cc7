#include "frame/library_entry.h"

#include "frame/global_functions.h"
#include "frame/process_data.h"
#include "framework/modules/extension_module.h"

namespace {

// Constant-initialised, so valid whenever the platform calls DllMain.
AFX_EXTENSION_MODULE g_extensionModule = {FALSE, nullptr, nullptr, nullptr, nullptr};
int g_frameworkInitCount = 0;
HINSTANCE g_hInstance = nullptr;

constexpr const char* kSampleControlLibrary = "zqmuscrl.dll";

}  // namespace

HINSTANCE ZqGblGetInstanceHandle() {
    return g_hInstance;
}

namespace zq::frame {

BOOL AttachLibrary(HINSTANCE hInstance) {
    ZqGblProcessData* block = AttachProcessData();
    if (block == nullptr) {
        return FALSE;
    }
    if (!AfxInitExtensionModule(g_extensionModule, hInstance)) {
        DetachProcessData();
        return FALSE;
    }
    new CDynLinkLibrary(g_extensionModule);  // owned by the framework's chain
    ++g_frameworkInitCount;
    g_hInstance = hInstance;
    block->m_hInstance = hInstance;
    // A missing screen-sample control library leaves the field empty and
    // does not fail the attach.
    block->m_hSampleControl = LoadLibraryA(kSampleControlLibrary);
    return TRUE;
}

void DetachLibrary() {
    if (ZqGblProcessData* block = ZqGblGetProcessData()) {
        if (block->m_hSampleControl != nullptr) {
            FreeLibrary(block->m_hSampleControl);
            block->m_hSampleControl = nullptr;
        }
    }
    DetachProcessData();
    if (g_frameworkInitCount > 0) {
        --g_frameworkInitCount;
        AfxTermExtensionModule(g_extensionModule);
    }
}

int FrameworkInitCount() {
    return g_frameworkInitCount;
}

}  // namespace zq::frame

// Static on POSIX so that no other module's DllMain can stand in for it;
// on Windows the loader looks for the exported name.
#ifdef _WIN32
#define ZQ_DLLMAIN_LINKAGE extern "C"
#else
#define ZQ_DLLMAIN_LINKAGE static
#endif

ZQ_DLLMAIN_LINKAGE BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD dwReason, LPVOID /*lpReserved*/) {
    switch (dwReason) {
        case DLL_PROCESS_ATTACH:
            return zq::frame::AttachLibrary(hInstance);
        case DLL_PROCESS_DETACH:
            zq::frame::DetachLibrary();
            return TRUE;
        default:  // thread attach and detach do nothing
            return TRUE;
    }
}

#ifdef ZQ_MODULE_ENTRY_POINT
ZQ_MODULE_ENTRY_POINT(DllMain);
#endif
