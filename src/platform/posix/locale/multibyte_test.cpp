#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace {

std::u16string Wide(const char16_t* s) {
    return s;
}

// Decodes `bytes` with a sentinel-filled buffer of `size` units.
std::u16string Decode(UINT cp, const std::string& bytes, int* ret, DWORD flags = 0) {
    WCHAR buffer[64];
    for (WCHAR& w : buffer)
        w = 0x7E7E;
    *ret = MultiByteToWideChar(cp, flags, bytes.data(), static_cast<int>(bytes.size()), buffer, 64);
    return std::u16string(reinterpret_cast<char16_t*>(buffer),
                          *ret > 0 ? static_cast<size_t>(*ret) : 0);
}

std::string Encode(UINT cp, const std::u16string& text, BOOL* used = nullptr, DWORD flags = 0,
                   const char* default_char = nullptr) {
    char buffer[64];
    const int n = WideCharToMultiByte(cp, flags, reinterpret_cast<LPCWSTR>(text.data()),
                                      static_cast<int>(text.size()), buffer, sizeof buffer,
                                      default_char, used);
    return n > 0 ? std::string(buffer, static_cast<size_t>(n)) : std::string();
}

TEST(MultiByteToWideChar, Windows1252DecodesEveryByte) {
    int ret = 0;
    EXPECT_EQ(Decode(1252, "a\x80\x81\x8D\x9F\xFF", &ret),
              Wide(u"a\u20AC\u0081\u008D\u0178\u00FF"));
    EXPECT_EQ(ret, 6);
}

TEST(MultiByteToWideChar, SizesAndTerminator) {
    WCHAR buffer[8];
    for (WCHAR& w : buffer)
        w = 0x7E7E;
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 0), 4);  // terminator counted
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, buffer, 8), 4);
    EXPECT_EQ(buffer[3], 0);
    EXPECT_EQ(buffer[4], 0x7E7E);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", 3, buffer, 8), 3);

    for (WCHAR& w : buffer)
        w = 0x7E7E;
    SetLastError(0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abcdef", -1, buffer, 3), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(buffer[2], 'c');  // what fits is written
    EXPECT_EQ(buffer[3], 0x7E7E);
}

TEST(MultiByteToWideChar, BadArguments) {
    WCHAR buffer[4];
    auto fails_with = [](int ret, DWORD error) {
        EXPECT_EQ(ret, 0);
        EXPECT_EQ(GetLastError(), error);
    };
    fails_with(MultiByteToWideChar(CP_ACP, 0, nullptr, 3, buffer, 4), ERROR_INVALID_PARAMETER);
    fails_with(MultiByteToWideChar(CP_ACP, 0, "a", 0, buffer, 4), ERROR_INVALID_PARAMETER);
    fails_with(MultiByteToWideChar(CP_ACP, 0, "a", 1, nullptr, 4), ERROR_INVALID_PARAMETER);
    fails_with(MultiByteToWideChar(12345, 0, "a", 1, buffer, 4), ERROR_INVALID_PARAMETER);
    fails_with(MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED | MB_COMPOSITE, "a", 1, buffer, 4),
               ERROR_INVALID_FLAGS);
    fails_with(MultiByteToWideChar(CP_UTF8, MB_PRECOMPOSED, "a", 1, buffer, 4),
               ERROR_INVALID_FLAGS);
}

TEST(MultiByteToWideChar, Utf8) {
    int ret = 0;
    EXPECT_EQ(Decode(CP_UTF8, "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8D\xB7", &ret), Wide(u"é€\U0001F377"));
    EXPECT_EQ(Decode(CP_UTF8,
                     "a\xFF"
                     "b",
                     &ret),
              Wide(u"a\uFFFDb"));
    SetLastError(0);
    EXPECT_EQ(Decode(CP_UTF8,
                     "a\xFF"
                     "b",
                     &ret, MB_ERR_INVALID_CHARS),
              Wide(u""));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
}

TEST(MultiByteToWideChar, DoubleByteAndCyrillic) {
    int ret = 0;
    EXPECT_EQ(Decode(932, "\x93\xFA\x96{\x8C\xEA", &ret), Wide(u"日本語"));
    EXPECT_EQ(ret, 3);
    EXPECT_EQ(Decode(1251, "\xF0\xF3\xF1", &ret), Wide(u"рус"));
    SetLastError(0);
    Decode(932, "a\x93", &ret, MB_ERR_INVALID_CHARS);  // a lead byte without its trail byte
    EXPECT_EQ(ret, 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
}

TEST(WideCharToMultiByte, DefaultCharacterAndBestFit) {
    BOOL used = TRUE;
    EXPECT_EQ(Encode(1252, u"é€", &used), "\xE9\x80");
    EXPECT_FALSE(used);
    EXPECT_EQ(Encode(1252, u"月", &used), "?");
    EXPECT_TRUE(used);
    EXPECT_EQ(Encode(1252, u"月", &used, 0, "#"), "#");
    EXPECT_EQ(Encode(1252, u"\u0101\u0142", &used), "al");  // ā ł: the unaccented letters
    EXPECT_FALSE(used);
    EXPECT_EQ(Encode(1252, u"\u0101", &used, WC_NO_BEST_FIT_CHARS), "?");
    EXPECT_TRUE(used);
    EXPECT_EQ(Encode(1252, u"\U0001F377"), "?");  // one character, one default character
    EXPECT_EQ(Encode(1251, u"январь"), "\xFF\xED\xE2\xE0\xF0\xFC");
    EXPECT_EQ(Encode(932, u"日本"), "\x93\xFA\x96{");
    EXPECT_EQ(Encode(932, u"é", &used), "e");
}

TEST(WideCharToMultiByte, Utf8RulesAndSizes) {
    const WCHAR text[] = {'a', 0xD800, 'b', 0};  // a lone surrogate
    char buffer[16];
    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr), 6);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, text, -1, buffer, 16, nullptr, nullptr), 6);
    EXPECT_EQ(std::string(buffer, 6), std::string("a\xEF\xBF\xBD"
                                                  "b\0",
                                                  6));
    SetLastError(0);
    EXPECT_EQ(
        WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text, -1, buffer, 16, nullptr, nullptr),
        0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
    BOOL used;
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, text, -1, buffer, 16, nullptr, &used), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));

    std::memset(buffer, '~', sizeof buffer);
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, -1, buffer, 2, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(buffer[1], '?');
    EXPECT_EQ(buffer[2], '~');
}

TEST(CodePages, Queries) {
    EXPECT_TRUE(IsValidCodePage(1252));
    EXPECT_TRUE(IsValidCodePage(932));
    EXPECT_TRUE(IsValidCodePage(CP_UTF8));
    EXPECT_TRUE(IsValidCodePage(850));
    EXPECT_FALSE(IsValidCodePage(CP_ACP));
    EXPECT_FALSE(IsValidCodePage(4242));
    EXPECT_TRUE(IsDBCSLeadByteEx(932, 0x93));
    EXPECT_FALSE(IsDBCSLeadByteEx(932, 'a'));
    EXPECT_FALSE(IsDBCSLeadByteEx(1252, 0x93));
}

}  // namespace
