// MultiByteToWideChar, WideCharToMultiByte and code-page queries.
#include <cstring>
#include <string>

#include "platform/posix/locale/codepage.h"
#include "platform/win32.h"

namespace {

using Page = zq::platform::internal::CodePage;

size_t WideLength(LPCWSTR s) {
    size_t n = 0;
    while (s[n]) {
        ++n;
    }
    return n;
}

// Hands `result` (counting units of T) to the caller's buffer by Windows'
// rules: size query, full copy, or partial copy + ERROR_INSUFFICIENT_BUFFER.
template <typename T>
int Deliver(const T* result, size_t length, T* buffer, int size) {
    if (length > 0x7FFFFFFF) {
        SetLastError(ERROR_ARITHMETIC_OVERFLOW);
        return 0;
    }
    if (size == 0) {
        return static_cast<int>(length);
    }
    const size_t capacity = static_cast<size_t>(size);
    if (length > capacity) {
        std::memcpy(buffer, result, capacity * sizeof(T));
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::memcpy(buffer, result, length * sizeof(T));
    return static_cast<int>(length);
}

}  // namespace

extern "C" {

int WINAPI MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr, int cbMultiByte,
                               LPWSTR lpWideCharStr, int cchWideChar) {
    if (!lpMultiByteStr || cbMultiByte == 0 || cbMultiByte < -1 || cchWideChar < 0 ||
        (cchWideChar > 0 && !lpWideCharStr) ||
        static_cast<const void*>(lpMultiByteStr) == static_cast<const void*>(lpWideCharStr)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto* page = Page::Get(CodePage);
    if (!page) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const DWORD allowed =
        page->IsUtf8() ? MB_ERR_INVALID_CHARS
                       : (MB_PRECOMPOSED | MB_COMPOSITE | MB_USEGLYPHCHARS | MB_ERR_INVALID_CHARS);
    if ((dwFlags & ~allowed) || ((dwFlags & MB_PRECOMPOSED) && (dwFlags & MB_COMPOSITE))) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    const size_t length =
        cbMultiByte == -1 ? std::strlen(lpMultiByteStr) + 1 : static_cast<size_t>(cbMultiByte);
    std::u16string wide;
    if (!page->Decode(std::string_view(lpMultiByteStr, length), wide,
                      (dwFlags & MB_ERR_INVALID_CHARS) != 0)) {
        SetLastError(ERROR_NO_UNICODE_TRANSLATION);
        return 0;
    }
    return Deliver(reinterpret_cast<const WCHAR*>(wide.data()), wide.size(), lpWideCharStr,
                   cchWideChar);
}

int WINAPI WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr, int cchWideChar,
                               LPSTR lpMultiByteStr, int cbMultiByte, LPCSTR lpDefaultChar,
                               LPBOOL lpUsedDefaultChar) {
    if (!lpWideCharStr || cchWideChar == 0 || cchWideChar < -1 || cbMultiByte < 0 ||
        (cbMultiByte > 0 && !lpMultiByteStr) ||
        static_cast<const void*>(lpMultiByteStr) == static_cast<const void*>(lpWideCharStr)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto* page = Page::Get(CodePage);
    if (!page) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (page->IsUtf8()) {
        if (lpDefaultChar || lpUsedDefaultChar) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return 0;
        }
        if (dwFlags & ~static_cast<DWORD>(WC_ERR_INVALID_CHARS)) {
            SetLastError(ERROR_INVALID_FLAGS);
            return 0;
        }
    } else if (dwFlags & ~static_cast<DWORD>(WC_COMPOSITECHECK | WC_DISCARDNS | WC_SEPCHARS |
                                             WC_DEFAULTCHAR | WC_NO_BEST_FIT_CHARS)) {
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    const size_t length =
        cchWideChar == -1 ? WideLength(lpWideCharStr) + 1 : static_cast<size_t>(cchWideChar);
    Page::EncodeOptions options;
    options.best_fit = !(dwFlags & WC_NO_BEST_FIT_CHARS);
    options.default_char = lpDefaultChar;
    options.strict = (dwFlags & WC_ERR_INVALID_CHARS) != 0;
    std::string bytes;
    bool used_default = false;
    if (!page->Encode(std::u16string_view(reinterpret_cast<const char16_t*>(lpWideCharStr), length),
                      bytes, options, &used_default)) {
        SetLastError(ERROR_NO_UNICODE_TRANSLATION);
        return 0;
    }
    if (lpUsedDefaultChar) {
        *lpUsedDefaultChar = used_default ? TRUE : FALSE;
    }
    return Deliver(bytes.data(), bytes.size(), lpMultiByteStr, cbMultiByte);
}

BOOL WINAPI IsValidCodePage(UINT CodePage) {
    if (CodePage == CP_ACP || CodePage == CP_OEMCP || CodePage == CP_MACCP ||
        CodePage == CP_THREAD_ACP) {
        return FALSE;  // the symbolic values are not code pages themselves
    }
    return Page::Get(CodePage) != nullptr;
}

BOOL WINAPI IsDBCSLeadByteEx(UINT CodePage, BYTE TestChar) {
    const auto* page = Page::Get(CodePage);
    if (!page) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return page->IsLeadByte(TestChar) ? TRUE : FALSE;
}

BOOL WINAPI IsDBCSLeadByte(BYTE TestChar) {
    return Page::Ansi().IsLeadByte(TestChar) ? TRUE : FALSE;
}

}  // extern "C"
