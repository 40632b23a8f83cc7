#include "frame/number_text.h"

#include <cctype>
#include <cstdint>
#include <string>

DWORD StringToDWord(LPCTSTR lpszText) {
    if (!lpszText) {
        return 0;
    }
    const char* p = lpszText;
    while (std::isspace(static_cast<unsigned char>(*p))) {
        ++p;
    }
    bool negative = false;
    if (*p == '+' || *p == '-') {
        negative = *p == '-';
        ++p;
    }
    uint64_t value = 0;
    bool overflow = false;
    for (; *p >= '0' && *p <= '9'; ++p) {
        value = value * 10 + static_cast<uint64_t>(*p - '0');
        if (value > 0xFFFFFFFFu) {
            overflow = true;
            value = 0xFFFFFFFFu;  // keeps reading the digits without growing
        }
    }
    if (overflow) {
        return 0xFFFFFFFFu;
    }
    auto result = static_cast<DWORD>(value);
    return negative ? static_cast<DWORD>(0u - result) : result;
}

CString DWordToString(DWORD dwValue) {
    return DWordToBaseString(dwValue, 10);
}

CString DWordToBaseString(DWORD dwValue, int nBase) {
    if (nBase < 2 || nBase > 36) {
        return CString();
    }
    const char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    std::string text;
    do {
        text.insert(text.begin(), digits[dwValue % static_cast<DWORD>(nBase)]);
        dwValue /= static_cast<DWORD>(nBase);
    } while (dwValue != 0);
    return CString(text.c_str());
}
