// lstr* functions, case mapping and character classes in the ANSI code page.
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/posix/locale/char_class.h"
#include "platform/posix/locale/collation.h"
#include "platform/win32.h"

namespace {

using zq::platform::internal::CharClass;
using zq::platform::internal::CollateAnsi;

// A "string" whose pointer value fits in 16 bits is a single character.
bool IsCharInPointer(LPCSTR p) {
    return (reinterpret_cast<uintptr_t>(p) >> 16) == 0;
}

template <typename Map>
void MapInPlace(LPSTR s, size_t length, Map map) {
    const CharClass& table = CharClass::Ansi();
    for (size_t i = 0; i < length; ++i) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (table.IsLeadByte(c) && i + 1 < length) {
            ++i;  // double-byte characters keep their case
            continue;
        }
        s[i] = static_cast<char>(map(table, c));
    }
}

unsigned char ToUpper(const CharClass& t, unsigned char c) {
    return t.Upper(c);
}
unsigned char ToLower(const CharClass& t, unsigned char c) {
    return t.Lower(c);
}

int Compare(LPCSTR a, LPCSTR b, bool ignore_case) {
    if (!a || !b) {
        return (a ? 1 : 0) - (b ? 1 : 0);
    }
    return CollateAnsi(a, b, ignore_case);
}

}  // namespace

extern "C" {

int WINAPI lstrlenA(LPCSTR lpString) {
    return lpString ? static_cast<int>(std::strlen(lpString)) : 0;
}

LPSTR WINAPI lstrcpyA(LPSTR lpString1, LPCSTR lpString2) {
    if (!lpString1 || !lpString2) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::memmove(lpString1, lpString2, std::strlen(lpString2) + 1);
    return lpString1;
}

LPSTR WINAPI lstrcpynA(LPSTR lpString1, LPCSTR lpString2, int iMaxLength) {
    if (!lpString1 || !lpString2) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (iMaxLength <= 0) {
        return lpString1;
    }
    size_t n = 0;
    const size_t limit = static_cast<size_t>(iMaxLength) - 1;
    while (n < limit && lpString2[n]) {
        lpString1[n] = lpString2[n];
        ++n;
    }
    lpString1[n] = '\0';
    return lpString1;
}

LPSTR WINAPI lstrcatA(LPSTR lpString1, LPCSTR lpString2) {
    if (!lpString1 || !lpString2) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::memmove(lpString1 + std::strlen(lpString1), lpString2, std::strlen(lpString2) + 1);
    return lpString1;
}

int WINAPI lstrcmpA(LPCSTR lpString1, LPCSTR lpString2) {
    return Compare(lpString1, lpString2, false);
}

int WINAPI lstrcmpiA(LPCSTR lpString1, LPCSTR lpString2) {
    return Compare(lpString1, lpString2, true);
}

LPSTR WINAPI CharUpperA(LPSTR lpsz) {
    if (IsCharInPointer(lpsz)) {
        const auto c = static_cast<unsigned char>(reinterpret_cast<uintptr_t>(lpsz));
        return reinterpret_cast<LPSTR>(static_cast<uintptr_t>(CharClass::Ansi().Upper(c)));
    }
    MapInPlace(lpsz, std::strlen(lpsz), ToUpper);
    return lpsz;
}

LPSTR WINAPI CharLowerA(LPSTR lpsz) {
    if (IsCharInPointer(lpsz)) {
        const auto c = static_cast<unsigned char>(reinterpret_cast<uintptr_t>(lpsz));
        return reinterpret_cast<LPSTR>(static_cast<uintptr_t>(CharClass::Ansi().Lower(c)));
    }
    MapInPlace(lpsz, std::strlen(lpsz), ToLower);
    return lpsz;
}

DWORD WINAPI CharUpperBuffA(LPSTR lpsz, DWORD cchLength) {
    if (!lpsz) {
        return 0;
    }
    MapInPlace(lpsz, cchLength, ToUpper);
    return cchLength;
}

DWORD WINAPI CharLowerBuffA(LPSTR lpsz, DWORD cchLength) {
    if (!lpsz) {
        return 0;
    }
    MapInPlace(lpsz, cchLength, ToLower);
    return cchLength;
}

LPSTR WINAPI CharNextA(LPCSTR lpsz) {
    if (!lpsz || !*lpsz) {
        return const_cast<LPSTR>(lpsz);
    }
    if (CharClass::Ansi().IsLeadByte(static_cast<unsigned char>(*lpsz)) && lpsz[1]) {
        return const_cast<LPSTR>(lpsz + 2);
    }
    return const_cast<LPSTR>(lpsz + 1);
}

LPSTR WINAPI CharPrevA(LPCSTR lpszStart, LPCSTR lpszCurrent) {
    if (!lpszStart || !lpszCurrent || lpszCurrent <= lpszStart) {
        return const_cast<LPSTR>(lpszStart);
    }
    const CharClass& table = CharClass::Ansi();
    LPCSTR p = lpszStart;
    for (;;) {
        LPCSTR next =
            p + ((table.IsLeadByte(static_cast<unsigned char>(*p)) && p + 1 < lpszCurrent) ? 2 : 1);
        if (next >= lpszCurrent) {
            return const_cast<LPSTR>(p);
        }
        p = next;
    }
}

BOOL WINAPI IsCharAlphaA(CHAR ch) {
    return CharClass::Ansi().IsAlpha(static_cast<unsigned char>(ch)) ? TRUE : FALSE;
}

BOOL WINAPI IsCharAlphaNumericA(CHAR ch) {
    const CharClass& table = CharClass::Ansi();
    const auto c = static_cast<unsigned char>(ch);
    return table.IsAlpha(c) || table.IsDigit(c) ? TRUE : FALSE;
}

BOOL WINAPI IsCharUpperA(CHAR ch) {
    return CharClass::Ansi().IsUpper(static_cast<unsigned char>(ch)) ? TRUE : FALSE;
}

BOOL WINAPI IsCharLowerA(CHAR ch) {
    return CharClass::Ansi().IsLower(static_cast<unsigned char>(ch)) ? TRUE : FALSE;
}

}  // extern "C"
