#include "frame/global_functions.h"

#include <cstring>

#include "frame/global_error.h"

namespace {
constexpr int kSelectFailed = 2;
constexpr DWORD kErrorDialogObject = 0x21124003;
}  // namespace

void ZqGblGetLocalTime(SYSTEMTIME* lpSystemTime) {
    if (lpSystemTime != nullptr) {
        GetLocalTime(lpSystemTime);
    }
}

int ZqSelectDirectory(char* lpszResult, DWORD dwSize, HWND /*hWndParent*/,
                      const char* /*lpszInitialDir*/, int /*nFlags*/, ...) {
    if (lpszResult != nullptr && dwSize > 0) {
        std::memset(lpszResult, 0, dwSize);
    }
    // The directory-selection dialog belongs to the user-interface classes;
    // without it no dialog object can be made.
    CZqGlobalError::Minor(kErrorDialogObject);
    return kSelectFailed;
}

int VelnorSetup(CWnd* /*pParent*/, int /*nMode*/) {
    return 0;
}

DWORD ZqLogFileError(FILEERRORDATA* /*pData*/, DWORD /*dwParam1*/, DWORD /*dwParam2*/,
                     DWORD /*dwParam3*/) {
    return 0;
}

DWORD ZqLogFileErrorData(FILEERRORDATA* /*pData*/, DWORD /*dwParam1*/, DWORD /*dwParam2*/,
                         DWORD /*dwParam3*/, void* /*pExtra*/, DWORD /*dwExtraSize*/) {
    return 0;
}
