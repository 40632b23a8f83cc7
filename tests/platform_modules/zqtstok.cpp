// Test module: counts its attaches and exports one function.
#include "platform/win32.h"

namespace {
int g_attaches = 0;

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH)
        ++g_attaches;
    return TRUE;
}
}  // namespace

ZQ_MODULE_ENTRY_POINT(DllMain);

extern "C" __attribute__((visibility("default"))) int ZqTestModuleAttaches() {
    return g_attaches;
}
