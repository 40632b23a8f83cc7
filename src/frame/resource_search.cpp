#include "frame/resource_search.h"

#include "frame/process_data.h"
#include "framework/modules/extension_module.h"

namespace zq::frame {

namespace {

HINSTANCE LanguageModule() {
    ZqGblProcessData* block = ZqGblGetProcessData();
    return block != nullptr ? block->m_hLanguageModule : nullptr;
}

}  // namespace

HINSTANCE FindResourceModule(LPCSTR lpszName, LPCSTR lpszType) {
    // AfxFindResourceHandle falls back to the resource handle when nothing
    // holds the resource, so its answer is checked once more.
    HINSTANCE module = AfxFindResourceHandle(lpszName, lpszType);
    if (module != nullptr && FindResourceA(module, lpszName, lpszType) != nullptr) {
        return module;
    }
    HINSTANCE language = LanguageModule();
    if (language != nullptr && FindResourceA(language, lpszName, lpszType) != nullptr) {
        return language;
    }
    return nullptr;
}

BOOL LoadResourceString(UINT nID, CString& csText) {
    // A string resource holds at most 65,535 characters.
    constexpr int kMaxText = 65535;
    char small[512];
    int length = AfxLoadString(nID, small, sizeof small);
    HINSTANCE module = nullptr;
    if (length <= 0) {
        module = LanguageModule();
        length = module != nullptr ? LoadStringA(module, nID, small, sizeof small) : 0;
    }
    if (length <= 0) {
        csText.Empty();
        return FALSE;
    }
    if (length < static_cast<int>(sizeof small) - 1) {
        csText = CString(small, length);
        return TRUE;
    }
    // The text may have been cut: load it again into room for the longest.
    char* buffer = csText.GetBuffer(kMaxText);
    length = module != nullptr ? LoadStringA(module, nID, buffer, kMaxText + 1)
                               : AfxLoadString(nID, buffer, kMaxText + 1);
    csText.ReleaseBuffer(length > 0 ? length : 0);
    return length > 0;
}

}  // namespace zq::frame
