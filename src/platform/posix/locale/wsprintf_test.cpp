#include <gtest/gtest.h>

#include <cstdarg>
#include <cstring>
#include <string>

#include "platform/win32.h"

namespace {

// Runs wvsprintfA into a sentinel-filled buffer; returns the text of
// `ret` characters and checks the terminator and the untouched tail.
std::string Format(int* ret, const char* format, ...) {
    char buffer[1100];
    std::memset(buffer, '~', sizeof buffer);
    va_list args;
    va_start(args, format);
    *ret = wvsprintfA(buffer, format, args);
    va_end(args);
    EXPECT_GE(*ret, 0);
    EXPECT_EQ(buffer[*ret], '\0');
    EXPECT_EQ(buffer[*ret + 1], '~');
    return std::string(buffer, static_cast<size_t>(*ret));
}

#define EXPECT_FORMAT(expected, ...)                    \
    do {                                                \
        int ret_ = -1;                                  \
        std::string out_ = Format(&ret_, __VA_ARGS__);  \
        EXPECT_EQ(out_, std::string(expected));         \
        EXPECT_EQ(ret_, static_cast<int>(out_.size())); \
    } while (0)

TEST(Wsprintf, Integers) {
    EXPECT_FORMAT("-12345", "%d", -12345);
    EXPECT_FORMAT("4294967295", "%u", -1);
    EXPECT_FORMAT("-2147483648", "%ld", static_cast<LONG>(-2147483647 - 1));
    EXPECT_FORMAT("0000BEEF", "%08lX", 0xBEEFu);
    EXPECT_FORMAT("fffffffe", "%lx", static_cast<DWORD>(-2));
    EXPECT_FORMAT("0xff 0XFF", "%#x %#X", 255, 255);
    EXPECT_FORMAT("  -42|42   |-0042|42   |", "%5d|%-5d|%05d|%-05d|", -42, 42, -42, 42);
    EXPECT_FORMAT("005", "%.3d", 5);
    EXPECT_FORMAT("-000000001", "%010ld", -1);
    EXPECT_FORMAT("  0x00ff", "%#8.4x", 255);
    EXPECT_FORMAT("70000", "%hd", 70000);  // not truncated to 16 bits
}

TEST(Wsprintf, SizedIntegers) {
    const unsigned long long v = (0x12345ull << 32) | 0x67890a;
    EXPECT_FORMAT("123450067890A", "%I64X", v);
    EXPECT_FORMAT("67890A", "%I32X", 0x67890a);
    EXPECT_FORMAT("543210000000", "%I64d", 543210000000LL);
    EXPECT_FORMAT("18446744073709551493", "%I64u", -123LL);
    EXPECT_FORMAT("fffffffffffedcbb", "%Ix", static_cast<uintptr_t>(-0x12345));
    EXPECT_FORMAT("FFFFFFFFFFFEDCBB", "%p",
                  reinterpret_cast<void*>(static_cast<intptr_t>(-0x12345)));
    EXPECT_FORMAT("0000000000001234", "%p", reinterpret_cast<void*>(0x1234));
}

TEST(Wsprintf, CharactersAndStrings) {
    int ret = 0;
    EXPECT_EQ(Format(&ret, "[%c]", 0), std::string("[\0]", 3));  // a NUL is stored and counted
    EXPECT_FORMAT("  B", "%3c", 'B');
    EXPECT_FORMAT("   ab|ab   |abc|   ab|", "%5s|%-5s|%.3s|%5.2s|", "ab", "ab", "abcdef", "abcdef");
    EXPECT_FORMAT("(null)", "%s", static_cast<const char*>(nullptr));
    EXPECT_FORMAT("narrow", "%hs", "narrow");
    const WCHAR wide[] = {'w', 'i', 'd', 'e', 0};
    EXPECT_FORMAT("wide wide wide", "%ls %S %ws", wide, wide, wide);
    EXPECT_FORMAT("(null)", "%S", static_cast<const WCHAR*>(nullptr));
    const WCHAR accented[] = {0x00E9, 0x20AC, 0x2606, 0};  // é € and a star 1252 lacks
    EXPECT_FORMAT("\xE9\x80?", "%S", accented);
    EXPECT_FORMAT("\xE9", "%.1S", accented);
    EXPECT_FORMAT("\x80", "%C", 0x20AC);
    EXPECT_FORMAT("n", "%hC", 'n');
}

TEST(Wsprintf, WhatIsNotSupportedPrintsItself) {
    EXPECT_FORMAT("+d", "%+d", 5);
    EXPECT_FORMAT(" d", "% d", 5);
    EXPECT_FORMAT("f", "%f", 3.25);
    EXPECT_FORMAT("o", "%o", 8);
    EXPECT_FORMAT("*d", "%*d", 6, 42);
    EXPECT_FORMAT("ld", "%lld", 1LL);
    EXPECT_FORMAT("aby5", "ab%y%d", 5);  // no argument taken by the unknown one
    EXPECT_FORMAT("100%", "100%%");
    EXPECT_FORMAT("50", "50%");
    EXPECT_FORMAT("Z", "%Z", 1);
}

TEST(Wsprintf, SeveralArguments) {
    EXPECT_FORMAT("key=-3 (00AB) [x  ] Z%", "%s=%d (%04X) [%-3s] %c%%", "key", -3, 0xAB, "x", 'Z');
}

TEST(Wsprintf, StopsAt1023Characters) {
    std::string longer(1999, 'x');
    char buffer[2048];
    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(wsprintfA(buffer, "%s", longer.c_str()), 1023);
    EXPECT_EQ(std::strlen(buffer), 1023u);
    EXPECT_EQ(buffer[1024], '~');
    EXPECT_EQ(wsprintfA(buffer, "ab%s", longer.c_str() + 1000), 1001);
    EXPECT_EQ(wsprintfA(buffer, "%s", longer.c_str() + 976), 1023);
    EXPECT_EQ(wsprintfA(buffer, "%1500d", 1), 1023);  // padding is cut too
    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(wsprintfA(buffer, "%1023s%s", "a", "tail"), 1023);
    EXPECT_EQ(buffer[1022], 'a');
    EXPECT_EQ(buffer[1023], '\0');
}

TEST(Wsprintf, NullArguments) {
    char buffer[8] = "xxxxxxx";
    EXPECT_EQ(wsprintfA(nullptr, "%d", 1), 0);
    EXPECT_EQ(wsprintfA(buffer, nullptr), 0);
    EXPECT_EQ(buffer[0], '\0');
}

}  // namespace
