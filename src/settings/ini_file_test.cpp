#include "settings/ini_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace {

using zq::test::ReadFileBytes;
using zq::test::WriteFileBytes;

constexpr DWORD kOk = 0;
constexpr DWORD kDefaulted = 7;

class IniFileTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = zq::test::MakeScratchFolder("ini");
        path_ = folder_ + "/test.ini";
        ASSERT_EQ(ini_.SetFileName(path_.c_str()), kOk);
        ASSERT_EQ(ini_.SetSection("General"), kOk);
    }

    std::string Bytes() const { return ReadFileBytes(path_); }
    void Store(const std::string& bytes) { ASSERT_TRUE(WriteFileBytes(path_, bytes)); }
    // Writes "[General]\r\nkey=value\r\n" as the whole file.
    void StoreEntry(const std::string& key, const std::string& value) {
        Store("[General]\r\n" + key + "=" + value + "\r\n");
    }

    std::string folder_;
    std::string path_;
    CZqIniFile ini_;
};

std::vector<std::string> Names(const CStringArray& array) {
    std::vector<std::string> names;
    for (int i = 0; i < array.GetSize(); ++i) {
        names.emplace_back(static_cast<LPCTSTR>(array[i]));
    }
    return names;
}

// ---- Strings -----------------------------------------------------------

TEST_F(IniFileTest, StringRoundTripWritesTheExactEntry) {
    EXPECT_EQ(ini_.DoString("Name", FALSE, "Hello World", nullptr, 0), kOk);
    EXPECT_EQ(ini_.DoString("Path", FALSE, "C:\\Data\\x.tif", nullptr, 0), kOk);
    EXPECT_EQ(Bytes(), "[General]\r\nName=Hello World\r\nPath=C:\\Data\\x.tif\r\n");

    char result[64];
    EXPECT_EQ(ini_.DoString("name", TRUE, "none", result, sizeof result), kOk);
    EXPECT_STREQ(result, "Hello World");  // the file's names ignore case
    // Default and result may share one buffer.
    std::strcpy(result, "fallback");
    EXPECT_EQ(ini_.DoString("Missing", TRUE, result, result, sizeof result), kDefaulted);
    EXPECT_STREQ(result, "fallback");
    EXPECT_EQ(ini_.DoString("Path", TRUE, result, result, sizeof result), kOk);
    EXPECT_STREQ(result, "C:\\Data\\x.tif");
}

TEST_F(IniFileTest, StringCutKeepsTheOffByOne) {
    StoreEntry("Ten", "0123456789");
    char result[16];
    std::memset(result, 0xCC, sizeof result);
    // A value as long as the buffer loses its last character without a report.
    EXPECT_EQ(ini_.DoString("Ten", TRUE, "", result, 10), kOk);
    EXPECT_STREQ(result, "012345678");
    EXPECT_EQ(static_cast<unsigned char>(result[10]), 0xCC);
    std::memset(result, 0xCC, sizeof result);
    EXPECT_EQ(ini_.DoString("Ten", TRUE, "", result, 9), 12u);
    EXPECT_STREQ(result, "01234567");
    EXPECT_EQ(static_cast<unsigned char>(result[9]), 0xCC);
    // The default passes the same copy: cut by one with status 7, or 12.
    EXPECT_EQ(ini_.DoString("None", TRUE, "abcd", result, 4), kDefaulted);
    EXPECT_STREQ(result, "abc");
    EXPECT_EQ(ini_.DoString("None", TRUE, "abcde", result, 4), 12u);
    EXPECT_STREQ(result, "abc");
    // No room at all: nothing is written.
    std::memset(result, 0xCC, sizeof result);
    EXPECT_EQ(ini_.DoString("Ten", TRUE, "", result, 0), 12u);
    EXPECT_EQ(ini_.DoString("Ten", TRUE, "", result, -5), 12u);
    EXPECT_EQ(static_cast<unsigned char>(result[0]), 0xCC);
}

TEST_F(IniFileTest, LongestValueRoundTripsAndLongerIsRefused) {
    const std::string longest(4096, 'v');
    EXPECT_EQ(ini_.DoString("Long", FALSE, longest.c_str(), nullptr, 0), kOk);
    std::vector<char> result(5000, '\xCC');
    EXPECT_EQ(ini_.DoString("Long", TRUE, "", result.data(), 4097), kOk);
    EXPECT_EQ(std::string(result.data()), longest);

    const std::string before = Bytes();
    const std::string tooLong(4097, 'w');
    EXPECT_EQ(ini_.DoString("Long", FALSE, tooLong.c_str(), nullptr, 0), 9u);
    EXPECT_EQ(ini_.DoString("Long", TRUE, tooLong.c_str(), result.data(), 4097), 9u);
    EXPECT_EQ(ini_.DoTokenString("Long", FALSE, tooLong.c_str(), nullptr, nullptr), 9u);
    EXPECT_EQ(Bytes(), before);
    EXPECT_EQ(std::string(result.data()), longest);  // untouched by the refused read

    // A longer value stored by someone else is cut to the read buffer.
    StoreEntry("Huge", std::string(6000, 'h'));
    EXPECT_EQ(ini_.DoString("Huge", TRUE, "", result.data(), 5000), kOk);
    EXPECT_EQ(std::string(result.data()), std::string(4096, 'h'));
}

// ---- Argument checks ---------------------------------------------------

TEST_F(IniFileTest, ArgumentChecksComeInTheirOrderAndTouchNothing) {
    const std::string key255(255, 'k');
    const std::string key256(256, 'k');
    char result[8];
    int n = 0;
    SYSTEMTIME st{};
    CStringArray array;

    EXPECT_EQ(ini_.DoString(nullptr, TRUE, nullptr, nullptr, 0), 6u);
    EXPECT_EQ(ini_.DoString("", FALSE, "x", nullptr, 0), 6u);
    EXPECT_EQ(ini_.DoString(key256.c_str(), FALSE, nullptr, nullptr, 0), 7u);
    EXPECT_EQ(ini_.DoString(key256.c_str(), FALSE, "x", nullptr, 0), 7u);
    EXPECT_EQ(ini_.DoInteger(key256.c_str(), TRUE, 1, &n), 7u);
    EXPECT_EQ(ini_.DoString("K", FALSE, nullptr, nullptr, 0), 8u);
    EXPECT_EQ(ini_.DoString("K", TRUE, "", nullptr, 8), 8u);
    EXPECT_EQ(ini_.DoInteger("K", TRUE, 1, nullptr), 8u);
    EXPECT_EQ(ini_.DoLongWord("K", TRUE, 1, nullptr), 8u);
    EXPECT_EQ(ini_.DoBoolean("K", TRUE, 1, nullptr), 8u);
    EXPECT_EQ(ini_.DoHexadecimal("K", TRUE, 1, nullptr), 8u);
    EXPECT_EQ(ini_.ZqIniFileTime("K", FALSE, nullptr, nullptr), 8u);
    EXPECT_EQ(ini_.ZqIniFileTime("K", TRUE, &st, nullptr), 8u);
    EXPECT_EQ(ini_.ZqIniFileRectangle("K", FALSE, nullptr, nullptr), 8u);
    EXPECT_EQ(ini_.ZqIniFileColor("K", FALSE, nullptr, nullptr), 8u);
    EXPECT_EQ(ini_.ZqIniFileAccelerator("K", FALSE, nullptr, nullptr), 8u);
    EXPECT_EQ(ini_.ZqIniFileWindowPlacement("K", FALSE, nullptr, nullptr), 8u);
    EXPECT_EQ(ini_.DoTokenString("K", TRUE, "", &array, nullptr), 8u);
    EXPECT_EQ(ini_.DoTokenString("K", TRUE, "", nullptr, ","), 8u);
    EXPECT_EQ(ini_.DoTokenString("K", FALSE, nullptr, &array, ","), 8u);
    EXPECT_EQ(ReadFileBytes(path_), "");  // nothing was written: the file does not exist

    EXPECT_EQ(ini_.DoString(key255.c_str(), FALSE, "x", nullptr, 0), kOk);
    EXPECT_EQ(ini_.DoString(key255.c_str(), TRUE, "", result, sizeof result), kOk);
    EXPECT_STREQ(result, "x");
}

TEST(IniFileNames, EntryOperationsNeedAFileName) {
    CZqIniFile ini;
    char result[8] = "same";
    int n = 3;
    DWORD dw = 3;
    SYSTEMTIME st{};
    RECT rc{};
    COLORREF cr = 0;
    ACCEL accel{};
    WINDOWPLACEMENT wp{};
    CStringArray array;
    ini.SetSection("S");
    EXPECT_EQ(ini.DoString("K", TRUE, "d", result, sizeof result), 3u);
    EXPECT_EQ(ini.DoString("K", FALSE, "d", nullptr, 0), 3u);
    EXPECT_EQ(ini.DoInteger("K", TRUE, 1, &n), 3u);
    EXPECT_EQ(ini.DoLongWord("K", TRUE, 1, &dw), 3u);
    EXPECT_EQ(ini.DoBoolean("K", TRUE, 1, &n), 3u);
    EXPECT_EQ(ini.DoHexadecimal("K", TRUE, 1, &dw), 3u);
    EXPECT_EQ(ini.ZqIniFileTime("K", TRUE, &st, &st), 3u);
    EXPECT_EQ(ini.ZqIniFileRectangle("K", TRUE, &rc, &rc), 3u);
    EXPECT_EQ(ini.ZqIniFileColor("K", TRUE, &cr, &cr), 3u);
    EXPECT_EQ(ini.ZqIniFileAccelerator("K", TRUE, &accel, &accel), 3u);
    EXPECT_EQ(ini.ZqIniFileWindowPlacement("K", TRUE, &wp, &wp), 3u);
    EXPECT_EQ(ini.DoTokenString("K", TRUE, "a,b", &array, ","), 3u);
    EXPECT_STREQ(result, "same");
    EXPECT_EQ(n, 3);
    EXPECT_EQ(dw, 3u);
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(ini.DoesEntryExist("K"), 0);
    EXPECT_EQ(ini.DeleteEntry("K"), 1);
    EXPECT_EQ(ini.DeleteSection("S"), 1);
    EXPECT_EQ(ini.EnumerateSections(&array), 7u);  // the name is not checked first
    EXPECT_EQ(ini.EnumerateKeys(&array), 7u);
    EXPECT_EQ(ini.EnumerateKeys(nullptr), 8u);
    ini.FlushCache();
}

TEST(IniFileNames, SetAndGetCheckTheirLimits) {
    CZqIniFile ini;
    char name[1100];
    EXPECT_EQ(ini.SetFileName(nullptr), 2u);
    EXPECT_EQ(ini.SetSection(nullptr), 4u);
    EXPECT_EQ(ini.SetFileName(std::string(267, 'f').c_str()), kOk);
    EXPECT_EQ(ini.SetFileName(std::string(268, 'g').c_str()), 9u);
    EXPECT_EQ(ini.GetFileName(name, 268), kOk);
    EXPECT_EQ(std::string(name), std::string(267, 'f'));  // unchanged by the refused name
    EXPECT_EQ(ini.SetSection(std::string(1023, 's').c_str()), kOk);
    EXPECT_EQ(ini.SetSection(std::string(1024, 't').c_str()), 9u);
    EXPECT_EQ(ini.GetSection(name, 1024), kOk);
    EXPECT_EQ(std::string(name), std::string(1023, 's'));

    EXPECT_EQ(ini.SetSection("Short"), kOk);
    std::memset(name, 0xCC, sizeof name);
    // The full capacity is demanded whatever the name's length.
    EXPECT_EQ(ini.GetSection(name, 100), 12u);
    EXPECT_EQ(ini.GetSection(name, 1023), 12u);
    EXPECT_EQ(ini.GetFileName(name, 267), 12u);
    EXPECT_EQ(static_cast<unsigned char>(name[0]), 0xCC);
    EXPECT_EQ(ini.GetSection(nullptr, 2000), 11u);
    EXPECT_EQ(ini.GetFileName(nullptr, 2000), 11u);
    EXPECT_EQ(ini.SetSection(""), kOk);
    EXPECT_EQ(ini.GetSection(name, 1024), kOk);
    EXPECT_STREQ(name, "");
}

TEST_F(IniFileTest, CopiesAreCompleteAndIndependent) {
    CZqIniFile copy(ini_);
    char name[1024];
    ASSERT_EQ(copy.GetFileName(name, sizeof name), kOk);
    EXPECT_EQ(std::string(name), path_);
    ASSERT_EQ(copy.SetSection("Other"), kOk);
    EXPECT_EQ(copy.DoInteger("N", FALSE, 5, nullptr), kOk);
    ASSERT_EQ(ini_.GetSection(name, sizeof name), kOk);
    EXPECT_STREQ(name, "General");
    CZqIniFile assigned;
    assigned = copy;
    ASSERT_EQ(assigned.GetSection(name, sizeof name), kOk);
    EXPECT_STREQ(name, "Other");
}

// ---- Numbers -----------------------------------------------------------

TEST_F(IniFileTest, MissingEntriesDeliverTheDefaultThroughTheTextConversion) {
    int n = 0;
    DWORD dw = 0;
    EXPECT_EQ(ini_.DoInteger("Missing", TRUE, -5, &n), kDefaulted);
    EXPECT_EQ(n, -5);
    EXPECT_EQ(ini_.DoLongWord("Missing", TRUE, 4294967295u, &dw), kDefaulted);
    EXPECT_EQ(dw, 4294967295u);
    EXPECT_EQ(ini_.DoHexadecimal("Missing", TRUE, 0xABCDEF01u, &dw), kDefaulted);
    EXPECT_EQ(dw, 0xABCDEF01u);
    EXPECT_EQ(ini_.DoBoolean("Missing", TRUE, 5, &n), kDefaulted);
    EXPECT_EQ(n, 1);  // any nonzero default becomes "1"
    EXPECT_EQ(ini_.DoBoolean("Missing", TRUE, 0, &n), kDefaulted);
    EXPECT_EQ(n, 0);
    StoreEntry("Empty", "");
    EXPECT_EQ(ini_.DoInteger("Empty", TRUE, 12, &n), kDefaulted);  // empty counts as missing
    EXPECT_EQ(n, 12);
    EXPECT_EQ(Bytes(), "[General]\r\nEmpty=\r\n");  // a read never writes the default
}

struct NumberCase {
    const char* kind;  // "int", "dword", "hex", "bool"
    DWORD value;
    const char* stored;
    DWORD readBack;
};

class NumberRoundTrip : public IniFileTest, public testing::WithParamInterface<NumberCase> {};

TEST_P(NumberRoundTrip, WritesTheTextAndReadsItBack) {
    const NumberCase& c = GetParam();
    const std::string kind = c.kind;
    DWORD status = 99;
    DWORD got = 0;
    auto run = [&](BOOL bRead, DWORD value, DWORD* result) {
        if (kind == "int") {
            int n = 0;
            status = ini_.DoInteger("Value", bRead, static_cast<int>(value), &n);
            *result = static_cast<DWORD>(n);
        } else if (kind == "bool") {
            int n = 0;
            status = ini_.DoBoolean("Value", bRead, static_cast<int>(value), &n);
            *result = static_cast<DWORD>(n);
        } else if (kind == "dword") {
            status = ini_.DoLongWord("Value", bRead, value, result);
        } else {
            status = ini_.DoHexadecimal("Value", bRead, value, result);
        }
    };
    run(FALSE, c.value, &got);
    ASSERT_EQ(status, kOk);
    EXPECT_EQ(Bytes(), std::string("[General]\r\nValue=") + c.stored + "\r\n");
    run(TRUE, 12345, &got);
    EXPECT_EQ(status, kOk);
    EXPECT_EQ(got, c.readBack);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, NumberRoundTrip,
    testing::Values(NumberCase{"int", 0, "0", 0}, NumberCase{"int", 42, "42", 42},
                    NumberCase{"int", 0xFFFFFFFBu, "-5", 0xFFFFFFFBu},
                    NumberCase{"int", 0x80000000u, "-2147483648", 0x80000000u},
                    NumberCase{"int", 0x7FFFFFFFu, "2147483647", 0x7FFFFFFFu},
                    NumberCase{"dword", 4294967295u, "4294967295", 4294967295u},
                    NumberCase{"dword", 2147483648u, "2147483648", 2147483648u},
                    NumberCase{"dword", 7, "7", 7}, NumberCase{"hex", 255, "0x000000FF", 255},
                    NumberCase{"hex", 0xABCDEF01u, "0xABCDEF01", 0xABCDEF01u},
                    NumberCase{"hex", 0, "0x00000000", 0}, NumberCase{"bool", 1, "1", 1},
                    NumberCase{"bool", 0, "0", 0}, NumberCase{"bool", 0xFFFFFFFFu, "1", 1},
                    NumberCase{"bool", 2, "1", 1}));

struct StoredTextCase {
    const char* stored;
    int integer;
    DWORD hex;
    int boolean;
};

class StoredTextRead : public IniFileTest, public testing::WithParamInterface<StoredTextCase> {};

TEST_P(StoredTextRead, ParsesTextWrittenByHand) {
    const StoredTextCase& c = GetParam();
    StoreEntry("V", c.stored);
    int n = -99;
    DWORD dw = 99;
    EXPECT_EQ(ini_.DoInteger("V", TRUE, -1, &n), kOk);
    EXPECT_EQ(n, c.integer) << c.stored;
    EXPECT_EQ(ini_.DoHexadecimal("V", TRUE, 1, &dw), kOk);
    EXPECT_EQ(dw, c.hex) << c.stored;
    EXPECT_EQ(ini_.DoBoolean("V", TRUE, 1, &n), kOk);
    EXPECT_EQ(n, c.boolean) << c.stored;
}

INSTANTIATE_TEST_SUITE_P(
    Table, StoredTextRead,
    testing::Values(StoredTextCase{"yes", 0, 0, 1}, StoredTextCase{"On", 0, 0, 1},
                    StoredTextCase{"ok", 0, 0, 1}, StoredTextCase{"TRUE", 0, 0, 1},
                    StoredTextCase{"set", 0, 0, 1}, StoredTextCase{"1", 1, 1, 1},
                    StoredTextCase{"2", 2, 2, 0}, StoredTextCase{"-1", -1, 0, 0},
                    StoredTextCase{"Y", 0, 0, 0}, StoredTextCase{"enabled", 0, 0xE, 0},
                    StoredTextCase{"ff", 0, 255, 0}, StoredTextCase{"0x", 0, 0, 0},
                    StoredTextCase{"1G2", 1, 1, 0},
                    StoredTextCase{"123456789", 123456789, 0x23456789, 0},
                    StoredTextCase{"12x34", 12, 0x34, 0}, StoredTextCase{"42abc", 42, 0x42ABC, 0},
                    StoredTextCase{"\"7\"", 7, 7, 0}));  // the file's quotes are dropped

TEST_F(IniFileTest, ReadBuffersCutLongNumbers) {
    // 45 digits: the read takes 39 of them before parsing.
    StoreEntry("V", "1" + std::string(44, '0'));
    DWORD dw = 0;
    EXPECT_EQ(ini_.DoHexadecimal("V", TRUE, 0, &dw), kOk);
    EXPECT_EQ(dw, 0u);
    StoreEntry("V", std::string(7, ' ') + "TRUE");  // blanks around values are the file's
    int n = 0;
    EXPECT_EQ(ini_.DoBoolean("V", TRUE, 0, &n), kOk);
    EXPECT_EQ(n, 1);
    StoreEntry("V", "YESYESYES");  // eight bytes: "YESYESY" is compared
    EXPECT_EQ(ini_.DoBoolean("V", TRUE, 1, &n), kOk);
    EXPECT_EQ(n, 0);
}

// ---- Records -----------------------------------------------------------

TEST_F(IniFileTest, TimeIsWrittenButAReadDeliversTheDefault) {
    SYSTEMTIME written{2024, 5, 3, 17, 13, 45, 30, 250};
    EXPECT_EQ(ini_.ZqIniFileTime("When", FALSE, &written, nullptr), kOk);
    EXPECT_EQ(Bytes(), "[General]\r\nWhen=2024, 5, 3, 17, 13, 45, 30, 250\r\n");

    SYSTEMTIME fallback{1999, 12, 5, 31, 23, 59, 58, 999};
    SYSTEMTIME result{};
    // The stored time is parsed but the caller receives the default.
    EXPECT_EQ(ini_.ZqIniFileTime("When", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(std::memcmp(&result, &fallback, sizeof result), 0);
    EXPECT_EQ(ini_.ZqIniFileTime("Never", TRUE, &fallback, &result), kDefaulted);
    EXPECT_EQ(std::memcmp(&result, &fallback, sizeof result), 0);
    SYSTEMTIME same = fallback;
    EXPECT_EQ(ini_.ZqIniFileTime("When", TRUE, &same, &same), kOk);
    EXPECT_EQ(std::memcmp(&same, &fallback, sizeof same), 0);
}

TEST_F(IniFileTest, RectangleRoundTripAndPartialFields) {
    RECT rc{-10, 20, 300, 400};
    EXPECT_EQ(ini_.ZqIniFileRectangle("Frame", FALSE, &rc, nullptr), kOk);
    EXPECT_EQ(Bytes(), "[General]\r\nFrame=-10, 20, 300, 400\r\n");
    RECT fallback{1, 2, 3, 4};
    RECT result{};
    EXPECT_EQ(ini_.ZqIniFileRectangle("Frame", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result.left, -10);
    EXPECT_EQ(result.top, 20);
    EXPECT_EQ(result.right, 300);
    EXPECT_EQ(result.bottom, 400);

    StoreEntry("Frame", "5;6");  // missing fields keep the default's
    EXPECT_EQ(ini_.ZqIniFileRectangle("Frame", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result.left, 5);
    EXPECT_EQ(result.top, 6);
    EXPECT_EQ(result.right, 3);
    EXPECT_EQ(result.bottom, 4);
    EXPECT_EQ(ini_.ZqIniFileRectangle("None", TRUE, &fallback, &result), kDefaulted);
    EXPECT_EQ(std::memcmp(&result, &fallback, sizeof result), 0);

    // The 40-byte read loses the fourth of four ten-digit fields.
    RECT wide{-2000000000, -2000000000, -2000000000, -2000000000};
    EXPECT_EQ(ini_.ZqIniFileRectangle("Wide", FALSE, &wide, nullptr), kOk);
    EXPECT_EQ(ini_.ZqIniFileRectangle("Wide", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result.right, -2000000000);
    EXPECT_EQ(result.bottom, 4);
}

TEST_F(IniFileTest, ColorIsStoredAsThreeChannels) {
    COLORREF color = 0x00336699;
    EXPECT_EQ(ini_.ZqIniFileColor("Back", FALSE, &color, nullptr), kOk);
    EXPECT_EQ(Bytes(), "[General]\r\nBack=153 102 51\r\n");
    COLORREF fallback = 0xFF010203;
    COLORREF result = 0;
    EXPECT_EQ(ini_.ZqIniFileColor("Back", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result, 0x00336699u);
    // A missing entry keeps the default's top byte; a read one drops it.
    EXPECT_EQ(ini_.ZqIniFileColor("None", TRUE, &fallback, &result), kDefaulted);
    EXPECT_EQ(result, 0xFF010203u);
    StoreEntry("Back", "10");
    EXPECT_EQ(ini_.ZqIniFileColor("Back", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result, 0x0001020Au);
    StoreEntry("Back", "300,1:-1");  // channels keep their low byte
    EXPECT_EQ(ini_.ZqIniFileColor("Back", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result, RGB(44, 1, 255));
}

TEST_F(IniFileTest, AcceleratorRoundTrip) {
    ACCEL accel{0x0B, 'S', 57603};
    EXPECT_EQ(ini_.ZqIniFileAccelerator("Save", FALSE, &accel, nullptr), kOk);
    EXPECT_EQ(Bytes(), "[General]\r\nSave=11, 83, 57603\r\n");
    ACCEL fallback{1, 2, 3};
    ACCEL result{};
    EXPECT_EQ(ini_.ZqIniFileAccelerator("Save", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result.fVirt, 0x0B);
    EXPECT_EQ(result.key, 'S');
    EXPECT_EQ(result.cmd, 57603);
    StoreEntry("Save", "259");  // the flag keeps its low byte, the rest the default
    EXPECT_EQ(ini_.ZqIniFileAccelerator("Save", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result.fVirt, 3);
    EXPECT_EQ(result.key, 2);
    EXPECT_EQ(result.cmd, 3);
}

TEST_F(IniFileTest, WindowPlacementSwapsLeftAndTopOnEveryRoundTrip) {
    WINDOWPLACEMENT wp{};
    wp.length = sizeof wp;
    wp.flags = 2;
    wp.showCmd = 3;
    wp.ptMinPosition = {-1, -2};
    wp.ptMaxPosition = {-4, -8};
    wp.rcNormalPosition = {10, 20, 300, 400};
    EXPECT_EQ(ini_.ZqIniFileWindowPlacement("Main", FALSE, &wp, nullptr), kOk);
    EXPECT_EQ(Bytes(), "[General]\r\nMain=2, 3, -1, -2, -4, -8, 20, 10, 300, 400\r\n");

    WINDOWPLACEMENT fallback{};
    fallback.length = 77;
    WINDOWPLACEMENT result{};
    EXPECT_EQ(ini_.ZqIniFileWindowPlacement("Main", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result.length, 77u);  // never stored: the default's
    EXPECT_EQ(result.flags, 2u);
    EXPECT_EQ(result.showCmd, 3u);
    EXPECT_EQ(result.ptMinPosition.x, -1);
    EXPECT_EQ(result.ptMinPosition.y, -2);
    EXPECT_EQ(result.ptMaxPosition.x, -4);
    EXPECT_EQ(result.ptMaxPosition.y, -8);
    EXPECT_EQ(result.rcNormalPosition.left, 20);
    EXPECT_EQ(result.rcNormalPosition.top, 10);
    EXPECT_EQ(result.rcNormalPosition.right, 300);
    EXPECT_EQ(result.rcNormalPosition.bottom, 400);

    // A second save and load swaps them back.
    EXPECT_EQ(ini_.ZqIniFileWindowPlacement("Main", FALSE, &result, nullptr), kOk);
    EXPECT_EQ(ini_.ZqIniFileWindowPlacement("Main", TRUE, &fallback, &result), kOk);
    EXPECT_EQ(result.rcNormalPosition.left, 10);
    EXPECT_EQ(result.rcNormalPosition.top, 20);

    EXPECT_EQ(ini_.ZqIniFileWindowPlacement("None", TRUE, &fallback, &result), kDefaulted);
    EXPECT_EQ(std::memcmp(&result, &fallback, sizeof result), 0);
}

// ---- Token strings -----------------------------------------------------

TEST_F(IniFileTest, TokenStringSplitsAtTheCallersDelimiters) {
    CStringArray array;
    array.Add("old");
    EXPECT_EQ(ini_.DoTokenString("List", FALSE, "fax;; voice ,data", &array, ";,"), kOk);
    EXPECT_EQ(Bytes(), "[General]\r\nList=fax;; voice ,data\r\n");
    EXPECT_EQ(Names(array), std::vector<std::string>{"old"});  // a write leaves the array

    EXPECT_EQ(ini_.DoTokenString("List", TRUE, "", &array, ";,"), kOk);
    EXPECT_EQ(Names(array), (std::vector<std::string>{"fax", " voice ", "data"}));
    EXPECT_EQ(ini_.DoTokenString("None", TRUE, "a b  c", &array, " "), kDefaulted);
    EXPECT_EQ(Names(array), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(ini_.DoTokenString("None", TRUE, ",,", &array, ","), kDefaulted);
    EXPECT_EQ(array.GetSize(), 0);
}

// ---- Lists, existence, deletion ---------------------------------------

TEST_F(IniFileTest, EnumerationsFollowFileOrder) {
    Store("; comment\r\n[Zeta]\r\nb=1\r\na=2\r\n\r\n[alpha]\r\nx=\r\ny=3\r\n[Mid]\r\n");
    CStringArray array;
    array.Add("stale");
    EXPECT_EQ(ini_.EnumerateSections(&array), kOk);
    EXPECT_EQ(Names(array), (std::vector<std::string>{"Zeta", "alpha", "Mid"}));
    char section[1024];
    ASSERT_EQ(ini_.GetSection(section, sizeof section), kOk);
    EXPECT_STREQ(section, "");  // cleared by the section list

    ASSERT_EQ(ini_.SetSection("Zeta"), kOk);
    EXPECT_EQ(ini_.EnumerateKeys(&array), kOk);
    EXPECT_EQ(Names(array), (std::vector<std::string>{"b", "a"}));
    ASSERT_EQ(ini_.SetSection("ALPHA"), kOk);
    EXPECT_EQ(ini_.EnumerateKeys(&array), kOk);
    EXPECT_EQ(Names(array), (std::vector<std::string>{"x", "y"}));  // empty values listed too
    ASSERT_EQ(ini_.SetSection("Mid"), kOk);
    EXPECT_EQ(ini_.EnumerateKeys(&array), kDefaulted);
    EXPECT_EQ(Names(array), (std::vector<std::string>{"x", "y"}));  // unchanged
    EXPECT_EQ(ini_.EnumerateSections(nullptr), 8u);
}

TEST_F(IniFileTest, EntryOperationsAfterTheSectionListUseTheEmptySection) {
    Store("[A]\r\nk=1\r\n");
    CStringArray array;
    ASSERT_EQ(ini_.EnumerateSections(&array), kOk);
    EXPECT_EQ(ini_.DoString("k", FALSE, "2", nullptr, 0), kOk);
    EXPECT_EQ(Bytes(), "[A]\r\nk=1\r\n[]\r\nk=2\r\n");
}

TEST_F(IniFileTest, AFirstNameOf4094CharactersReportsAFullList) {
    const std::string name(4094, 'N');
    Store("[" + name + "]\r\nk=1\r\n[Second]\r\n");
    CStringArray array;
    EXPECT_EQ(ini_.EnumerateSections(&array), 12u);
    ASSERT_EQ(array.GetSize(), 1);
    EXPECT_EQ(array[0].GetLength(), 4094);

    // Longer names are cut by the list without the report (kept as it stands).
    Store("[" + std::string(5000, 'L') + "]\r\n");
    EXPECT_EQ(ini_.EnumerateSections(&array), kOk);
    ASSERT_EQ(array.GetSize(), 1);
    EXPECT_EQ(array[0].GetLength(), 4095);
}

TEST_F(IniFileTest, EntryExistsOnlyWithAValue) {
    Store("[General]\r\nkey=\r\nfull=x\r\nlong=abcdefgh\r\n");
    EXPECT_EQ(ini_.DoesEntryExist("key"), 0);
    EXPECT_EQ(ini_.DoesEntryExist("full"), 1);
    EXPECT_EQ(ini_.DoesEntryExist("LONG"), 1);
    EXPECT_EQ(ini_.DoesEntryExist("none"), 0);
    EXPECT_EQ(ini_.DoesEntryExist(nullptr), 0);
    EXPECT_EQ(ini_.DoesEntryExist(std::string(256, 'k').c_str()), 0);
}

TEST_F(IniFileTest, DeletionsRemoveKeysAndSections) {
    const std::string original = "[General]\r\na=1\r\nb=2\r\n[Other]\r\nc=3\r\n[]\r\nd=4\r\n";
    Store(original);
    EXPECT_EQ(ini_.DeleteEntry(nullptr), 1);
    EXPECT_EQ(ini_.DeleteEntry(""), 1);
    EXPECT_EQ(ini_.DeleteSection(nullptr), 1);
    EXPECT_EQ(ini_.DeleteSection(""), 1);  // the section "" is not removed this way
    EXPECT_EQ(Bytes(), original);

    EXPECT_EQ(ini_.DeleteEntry("A"), 1);
    EXPECT_EQ(Bytes(), "[General]\r\nb=2\r\n[Other]\r\nc=3\r\n[]\r\nd=4\r\n");
    EXPECT_EQ(ini_.DeleteSection("other"), 1);
    EXPECT_EQ(Bytes(), "[General]\r\nb=2\r\n[]\r\nd=4\r\n");
    EXPECT_EQ(ini_.DeleteEntry("missing"), 1);
    ASSERT_EQ(ini_.SetSection(""), kOk);
    EXPECT_EQ(ini_.DeleteEntry("d"), 1);  // no current section: nothing happens
    EXPECT_EQ(Bytes(), "[General]\r\nb=2\r\n[]\r\nd=4\r\n");
}

// ---- Files that refuse -------------------------------------------------

TEST_F(IniFileTest, RefusedWritesGive13AndChangeNothing) {
    Store("[General]\r\nk=1\r\n");
    ASSERT_TRUE(SetFileAttributesA(path_.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(ini_.DoInteger("k", FALSE, 2, nullptr), 13u);
    int n = 0;
    EXPECT_EQ(ini_.DoInteger("k", TRUE, 0, &n), kOk);
    EXPECT_EQ(n, 1);
    EXPECT_EQ(ini_.DeleteEntry("k"), 1);  // refused too, reported as done
    ASSERT_TRUE(SetFileAttributesA(path_.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(Bytes(), "[General]\r\nk=1\r\n");

    CZqIniFile nowhere;
    const std::string missingFolder = folder_ + "/no/such/folder.ini";
    ASSERT_EQ(nowhere.SetFileName(missingFolder.c_str()), kOk);
    ASSERT_EQ(nowhere.SetSection("S"), kOk);
    EXPECT_EQ(nowhere.DoString("k", FALSE, "v", nullptr, 0), 13u);
}

TEST_F(IniFileTest, AFolderInPlaceOfTheFileReadsDefaultsAndRefusesWrites) {
    const std::string folderPath = zq::test::MakeScratchFolder("notafile");
    ASSERT_EQ(ini_.SetFileName(folderPath.c_str()), kOk);
    int n = 0;
    EXPECT_EQ(ini_.DoInteger("k", TRUE, 9, &n), kDefaulted);
    EXPECT_EQ(n, 9);
    EXPECT_EQ(ini_.DoInteger("k", FALSE, 1, nullptr), 13u);
    CStringArray array;
    EXPECT_EQ(ini_.EnumerateSections(&array), kDefaulted);
}

TEST_F(IniFileTest, AnUnreadableFileReadsDefaultsAndRefusesWrites) {
    if (zq::test::RunningAsRoot()) {
        GTEST_SKIP() << "permission bits do not stop the superuser";
    }
    Store("[General]\r\nk=1\r\n");
    ASSERT_TRUE(zq::test::SetFileMode(path_, 0200));
    int n = 0;
    EXPECT_EQ(ini_.DoInteger("k", TRUE, 9, &n), kDefaulted);
    EXPECT_EQ(n, 9);
    EXPECT_EQ(ini_.DoInteger("k", FALSE, 2, nullptr), 13u);
    ASSERT_TRUE(zq::test::SetFileMode(path_, 0600));
    EXPECT_EQ(Bytes(), "[General]\r\nk=1\r\n");
}

TEST_F(IniFileTest, BinaryGarbageIsReadSafelyAndKeptOnWrites) {
    std::mt19937 random(20240517);
    std::string garbage(64 * 1024, '\0');
    for (char& byte : garbage) {
        byte = static_cast<char>(random());
    }
    Store(garbage);
    CStringArray sections;
    CStringArray keys;
    const DWORD status = ini_.EnumerateSections(&sections);
    EXPECT_TRUE(status == kOk || status == kDefaulted || status == 12u) << status;
    char value[CZqIniFile::kValueBufferSize];
    int n = 0;
    for (int i = 0; i < sections.GetSize() && i < 50; ++i) {
        ASSERT_EQ(ini_.SetSection(sections[i].Left(1023)), kOk);
        ini_.EnumerateKeys(&keys);
        for (int k = 0; k < keys.GetSize() && k < 20; ++k) {
            const CString key = keys[k].Left(255);
            if (key.IsEmpty()) {
                continue;
            }
            ini_.DoString(key, TRUE, "", value, sizeof value);
            ini_.DoInteger(key, TRUE, 0, &n);
            ini_.DoesEntryExist(key);
        }
    }
    ASSERT_EQ(ini_.SetSection("ZqAdded"), kOk);
    EXPECT_EQ(ini_.DoString("Key", FALSE, "value", nullptr, 0), kOk);
    const std::string after = Bytes();
    EXPECT_EQ(after.substr(0, garbage.size()), garbage);  // every old byte kept
    EXPECT_EQ(ini_.DoString("Key", TRUE, "", value, sizeof value), kOk);
    EXPECT_STREQ(value, "value");
}

}  // namespace
