// Test module whose DllMain refuses to attach.
#include "platform/win32.h"

namespace {
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    return reason == DLL_PROCESS_ATTACH ? FALSE : TRUE;
}
}  // namespace

ZQ_MODULE_ENTRY_POINT(DllMain);
