// Registry functions: results, out-parameters and buffers as Windows leaves
// them. Buffers are filled with '~' before a call so that the bytes a call
// did not write stay visible; the last error is set to 0xDEADBEEF to show
// that registry calls leave it alone.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cctype>
#include <cstring>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/registry/registry_database.h"
#include "platform/win32.h"

namespace {

// A string literal with every byte written in it, NULs included.
template <size_t N>
std::string Lit(const char (&text)[N]) {
    return std::string(text, N - 1);
}

using zq::platform::internal::CloseRegistryConnectionForTesting;
using zq::platform::internal::RegistryDatabasePath;

constexpr char kFill = '~';

LONG DeleteTree(HKEY parent, const char* name) {
    HKEY key = nullptr;
    LONG rc = RegOpenKeyExA(parent, name, 0, KEY_ALL_ACCESS, &key);
    if (rc != ERROR_SUCCESS) {
        return rc;
    }
    char child[300];
    while (RegEnumKeyA(key, 0, child, sizeof child) == ERROR_SUCCESS) {
        if ((rc = DeleteTree(key, child)) != ERROR_SUCCESS) {
            break;
        }
    }
    RegCloseKey(key);
    return RegDeleteKeyA(parent, name);
}

std::string Bytes(const void* data, size_t size) {
    return std::string(static_cast<const char*>(data), size);
}

// Each test works below its own fresh key HKCU\Software\ZqRegistryTest\<test>.
class RegistryTest : public ::testing::Test {
protected:
    void SetUp() override {
        path_ = std::string("Software\\ZqRegistryTest\\") +
                ::testing::UnitTest::GetInstance()->current_test_info()->name();
        for (char& c : path_) {
            if (c == '/')
                c = '_';
        }
        DeleteTree(HKEY_CURRENT_USER, path_.c_str());
        DWORD disposition = 0;
        ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                  nullptr, &root_, &disposition),
                  ERROR_SUCCESS);
        ASSERT_EQ(disposition, static_cast<DWORD>(REG_CREATED_NEW_KEY));
    }
    void TearDown() override {
        RegCloseKey(root_);
        DeleteTree(HKEY_CURRENT_USER, path_.c_str());
    }

    HKEY Create(HKEY parent, const char* name, DWORD* disposition = nullptr, DWORD options = 0) {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExA(parent, name, 0, nullptr, options, KEY_ALL_ACCESS, nullptr, &key,
                                  disposition),
                  ERROR_SUCCESS)
            << name;
        return key;
    }
    void SetString(HKEY key, const char* name, const char* text) {
        ASSERT_EQ(RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text),
                                 std::strlen(text) + 1),
                  ERROR_SUCCESS);
    }
    void SetDword(HKEY key, const char* name, DWORD value) {
        ASSERT_EQ(RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                                 sizeof value),
                  ERROR_SUCCESS);
    }
    // The value's bytes as RegQueryValueExA delivers them (type in *type).
    std::string Query(HKEY key, const char* name, DWORD* type = nullptr) {
        BYTE buffer[512];
        DWORD size = sizeof buffer;
        DWORD stored_type = 0;
        LONG rc = RegQueryValueExA(key, name, nullptr, &stored_type, buffer, &size);
        if (rc != ERROR_SUCCESS) {
            return "<error " + std::to_string(rc) + ">";
        }
        if (type)
            *type = stored_type;
        return Bytes(buffer, size);
    }
    std::vector<std::string> SubkeyNames(HKEY key) {
        std::vector<std::string> names;
        char name[300];
        for (DWORD i = 0; RegEnumKeyA(key, i, name, sizeof name) == ERROR_SUCCESS; ++i) {
            names.emplace_back(name);
        }
        return names;
    }
    std::vector<std::string> ValueNames(HKEY key) {
        std::vector<std::string> names;
        char name[300];
        for (DWORD i = 0;; ++i) {
            DWORD size = sizeof name;
            if (RegEnumValueA(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS)
                break;
            names.emplace_back(name, size);
        }
        return names;
    }

    std::string path_;
    HKEY root_ = nullptr;
};

TEST_F(RegistryTest, OpenOfMissingKeyClearsTheResultButABadHandleLeavesIt) {
    HKEY key = reinterpret_cast<HKEY>(0x1234);
    EXPECT_EQ(RegOpenKeyExA(root_, "missing", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    key = reinterpret_cast<HKEY>(0x1234);
    EXPECT_EQ(RegOpenKeyExA(nullptr, "x", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(key, reinterpret_cast<HKEY>(0x1234));
    EXPECT_EQ(RegOpenKeyExA(root_, "x", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
}

TEST_F(RegistryTest, CreateTellsWhetherTheKeyIsNew) {
    DWORD disposition = 0;
    HKEY key = Create(root_, "Sub\\Deeper", &disposition);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_CREATED_NEW_KEY));
    RegCloseKey(key);
    key = Create(root_, "SUB\\deeper", &disposition);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_OPENED_EXISTING_KEY));
    RegCloseKey(key);
    // The empty path opens the existing key itself (Windows; Wine says "created").
    key = Create(root_, "", &disposition);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_OPENED_EXISTING_KEY));
    EXPECT_NE(key, root_);
    RegCloseKey(key);
    key = Create(root_, nullptr, &disposition);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_OPENED_EXISTING_KEY));
    RegCloseKey(key);
}

struct QueryCase {
    DWORD size;        // buffer size passed in
    LONG rc;           // expected result
    const char* data;  // expected buffer: what was written, then the '~' after it
    size_t data_size;
};

void PrintTo(const QueryCase& c, std::ostream* out) {
    *out << "buffer of " << c.size;
}

class RegistryQueryBuffer : public RegistryTest, public ::testing::WithParamInterface<QueryCase> {};

// "hello" stored with its terminator, 6 bytes.
TEST_P(RegistryQueryBuffer, FitsOrReportsTheSizeAndLeavesTheBufferAlone) {
    SetString(root_, "Str", "hello");
    const QueryCase& c = GetParam();
    BYTE buffer[80];
    std::memset(buffer, kFill, sizeof buffer);
    DWORD type = 0xEEEE;
    DWORD size = c.size;
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(RegQueryValueExA(root_, "Str", nullptr, &type, buffer, &size), c.rc);
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(Bytes(buffer, c.data_size), Bytes(c.data, c.data_size));
}

INSTANTIATE_TEST_SUITE_P(Sizes, RegistryQueryBuffer,
                         ::testing::Values(QueryCase{64, ERROR_SUCCESS, "hello\0~", 7},
                                           QueryCase{6, ERROR_SUCCESS, "hello\0~", 7},
                                           QueryCase{5, ERROR_MORE_DATA, "~~~~~~", 6},
                                           QueryCase{3, ERROR_MORE_DATA, "~~~~", 4},
                                           QueryCase{0, ERROR_MORE_DATA, "~", 1}));

TEST_F(RegistryTest, QueryWithoutBufferOrSize) {
    SetString(root_, "Str", "hello");
    DWORD type = 0xEEEE;
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(root_, "Str", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 6u);
    BYTE buffer[8];
    EXPECT_EQ(RegQueryValueExA(root_, "Str", nullptr, nullptr, buffer, nullptr),
              ERROR_INVALID_PARAMETER);
    type = 0xEEEE;
    EXPECT_EQ(RegQueryValueExA(root_, "Str", nullptr, &type, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    DWORD reserved = 0;
    EXPECT_EQ(RegQueryValueExA(root_, "Str", &reserved, &type, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
    // One variable for both the type and the size, as callers sometimes do.
    DWORD both = sizeof buffer;
    EXPECT_EQ(RegQueryValueExA(root_, "Str", nullptr, &both, buffer, &both), ERROR_SUCCESS);
    EXPECT_EQ(both, 6u);
}

TEST_F(RegistryTest, MissingValueSetsTypeToNoneAndClearsTheSizeOnlyWithoutBuffer) {
    BYTE buffer[64];
    std::memset(buffer, kFill, sizeof buffer);
    DWORD type = 0xEEEE;
    DWORD size = sizeof buffer;
    EXPECT_EQ(RegQueryValueExA(root_, "missing", nullptr, &type, buffer, &size),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(type, static_cast<DWORD>(REG_NONE));
    EXPECT_EQ(size, sizeof buffer);
    EXPECT_EQ(buffer[0], kFill);
    size = 77;
    EXPECT_EQ(RegQueryValueExA(root_, "missing", nullptr, nullptr, nullptr, &size),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(size, 0u);
}

TEST_F(RegistryTest, StringsKeepTheirBytesAndTheUncountedTerminatorQuirk) {
    struct Case {
        const char* name;
        DWORD type;
        const char* data;  // followed by what lies after the counted bytes
        DWORD size;
        std::string stored;
    };
    const Case cases[] = {
        {"NoTerm", REG_SZ, "abc", 3, Lit("abc\0")},        // NUL after the data: stored too
        {"Cut", REG_SZ, "abcd", 3, "abc"},                 // no NUL after: three bytes
        {"Zero", REG_SZ, "", 0, ""},                       // nothing at all
        {"EmbNul", REG_SZ, "ab\0cd", 6, Lit("ab\0cd\0")},  // inner NUL kept
        {"Multi", REG_MULTI_SZ, "a\0bc\0", 6, Lit("a\0bc\0\0")},
        {"MultiCut", REG_MULTI_SZ, "a\0bcd", 4, Lit("a\0bc")},
        {"Expand", REG_EXPAND_SZ, "%TEMP%\\x", 8, Lit("%TEMP%\\x\0")},
        {"Bin", REG_BINARY, "\x01\x02", 2, "\x01\x02"},  // not a string: no quirk
    };
    for (const Case& c : cases) {
        ASSERT_EQ(
            RegSetValueExA(root_, c.name, 0, c.type, reinterpret_cast<const BYTE*>(c.data), c.size),
            ERROR_SUCCESS);
        DWORD type = 0;
        EXPECT_EQ(Query(root_, c.name, &type), c.stored) << c.name;
        EXPECT_EQ(type, c.type) << c.name;
    }
    // A string without terminator gets one when there is room, not counted;
    // an exact buffer gets none.
    BYTE buffer[8];
    std::memset(buffer, kFill, sizeof buffer);
    DWORD size = 4;
    EXPECT_EQ(RegQueryValueExA(root_, "Cut", nullptr, nullptr, buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(Bytes(buffer, 5), Lit("abc\0~"));
    std::memset(buffer, kFill, sizeof buffer);
    size = 3;
    EXPECT_EQ(RegQueryValueExA(root_, "Cut", nullptr, nullptr, buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(Bytes(buffer, 4), "abc~");
    // Only one terminator is added to a multi-string.
    std::memset(buffer, kFill, sizeof buffer);
    size = 6;
    EXPECT_EQ(RegQueryValueExA(root_, "MultiCut", nullptr, nullptr, buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(Bytes(buffer, 6), Lit("a\0bc\0~"));
    // An empty string leaves the buffer alone.
    std::memset(buffer, kFill, sizeof buffer);
    size = sizeof buffer;
    EXPECT_EQ(RegQueryValueExA(root_, "Zero", nullptr, nullptr, buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(buffer[0], kFill);
}

TEST_F(RegistryTest, DwordDataOfAnySizeIsKept) {
    DWORD value = 0x12345678;
    EXPECT_EQ(Query(root_, "Dw"), "<error 2>");
    SetDword(root_, "Dw", value);
    EXPECT_EQ(Query(root_, "Dw"), "xV4\x12");
    BYTE small[4] = {'~', '~', '~', '~'};
    DWORD size = 2;
    EXPECT_EQ(RegQueryValueExA(root_, "Dw", nullptr, nullptr, small, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(Bytes(small, 4), "~~~~");
    ASSERT_EQ(
        RegSetValueExA(root_, "Short", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 2),
        ERROR_SUCCESS);
    EXPECT_EQ(Query(root_, "Short"), "xV");
    ASSERT_EQ(
        RegSetValueExA(root_, "Long", 0, REG_DWORD, reinterpret_cast<const BYTE*>("12345678"), 8),
        ERROR_SUCCESS);
    EXPECT_EQ(Query(root_, "Long"), "12345678");
    unsigned long long qword = 0x1122334455667788ull;
    ASSERT_EQ(RegSetValueExA(root_, "Q", 0, REG_QWORD, reinterpret_cast<const BYTE*>(&qword), 8),
              ERROR_SUCCESS);
    DWORD type = 0;
    EXPECT_EQ(Query(root_, "Q", &type), Bytes(&qword, 8));
    EXPECT_EQ(type, static_cast<DWORD>(REG_QWORD));
    ASSERT_EQ(RegSetValueExA(root_, "Custom", 0, 0x12345, reinterpret_cast<const BYTE*>("z"), 1),
              ERROR_SUCCESS);
    EXPECT_EQ(Query(root_, "Custom", &type), "z");
    EXPECT_EQ(type, 0x12345u);
}

TEST_F(RegistryTest, DefaultValueIsNamedByNullOrEmpty) {
    EXPECT_EQ(Query(root_, nullptr), "<error 2>");
    SetString(root_, "", "dflt");
    EXPECT_EQ(Query(root_, nullptr), Lit("dflt\0"));
    SetString(root_, nullptr, "other");
    EXPECT_EQ(Query(root_, ""), Lit("other\0"));
    EXPECT_EQ(RegDeleteValueA(root_, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(Query(root_, ""), "<error 2>");
}

TEST_F(RegistryTest, NamesIgnoreCaseAndKeepTheFirstSpelling) {
    SetString(root_, "Str", "hello");
    EXPECT_EQ(Query(root_, "STR"), Lit("hello\0"));
    SetString(root_, "sTR", "HELLO");
    EXPECT_EQ(ValueNames(root_), std::vector<std::string>{"Str"});
    EXPECT_EQ(Query(root_, "str"), Lit("HELLO\0"));

    HKEY key = Create(root_, "MixedCase");
    RegCloseKey(key);
    HKEY again = nullptr;
    EXPECT_EQ(RegOpenKeyExA(root_, "MIXEDCASE", 0, KEY_READ, &again), ERROR_SUCCESS);
    RegCloseKey(again);
    EXPECT_EQ(SubkeyNames(root_), std::vector<std::string>{"MixedCase"});
    std::string through_root = path_ + "\\mixedCASE";
    for (char& c : through_root)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, through_root.c_str(), 0, KEY_READ, &again),
              ERROR_SUCCESS);
    RegCloseKey(again);
}

TEST_F(RegistryTest, Windows1252LettersFoldToo) {
    HKEY key = Create(root_, "\xC4rger");  // Ärger
    RegCloseKey(key);
    HKEY again = nullptr;
    EXPECT_EQ(RegOpenKeyExA(root_, "\xE4RGER", 0, KEY_READ, &again), ERROR_SUCCESS);  // äRGER
    RegCloseKey(again);
    SetDword(root_, "\x9A", 1);                               // š
    SetDword(root_, "\xFF", 2);                               // ÿ
    SetDword(root_, "\xDF", 3);                               // ß has no capital of its own
    EXPECT_EQ(Query(root_, "\x8A"), Bytes("\x01\0\0\0", 4));  // Š
    EXPECT_EQ(Query(root_, "\x9F"), Bytes("\x02\0\0\0", 4));  // Ÿ
    EXPECT_EQ(Query(root_, "SS"), "<error 2>");
}

TEST_F(RegistryTest, ValuesEnumerateInCreationOrder) {
    HKEY order = Create(root_, "Order");
    const char* names[] = {"b", "A", "c", "a1", "_x", "B2"};
    for (DWORD i = 0; i < 6; ++i) {
        SetDword(order, names[i], i);
    }
    EXPECT_EQ(ValueNames(order), (std::vector<std::string>{"b", "A", "c", "a1", "_x", "B2"}));
    // Deleted and set again: to the end. Replaced: stays in place.
    EXPECT_EQ(RegDeleteValueA(order, "b"), ERROR_SUCCESS);
    SetDword(order, "b", 99);
    SetDword(order, "a", 99);
    EXPECT_EQ(ValueNames(order), (std::vector<std::string>{"A", "c", "a1", "_x", "B2", "b"}));
    RegCloseKey(order);
}

TEST_F(RegistryTest, SubkeysEnumerateByUpperCasedName) {
    HKEY order = Create(root_, "Order");
    for (const char* name : {"b", "A", "c", "a1", "_x", "B2", "\xE4", "Z"}) {
        RegCloseKey(Create(order, name));
    }
    // '_' (0x5F) sorts after the capital letters; 'ä' after everything ASCII.
    EXPECT_EQ(SubkeyNames(order),
              (std::vector<std::string>{"A", "a1", "b", "B2", "c", "Z", "_x", "\xE4"}));
    RegCloseKey(order);
}

TEST_F(RegistryTest, EnumKeyLeavesNameAndSizeAloneWhenTooSmall) {
    RegCloseKey(Create(root_, "a1"));
    char name[8];
    for (DWORD cch : {0u, 1u, 2u}) {
        std::memset(name, kFill, sizeof name);
        DWORD size = cch;
        EXPECT_EQ(RegEnumKeyExA(root_, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
                  ERROR_MORE_DATA);
        EXPECT_EQ(size, cch);
        EXPECT_EQ(Bytes(name, 4), "~~~~");
    }
    DWORD size = 3;
    FILETIME written = {0, 0};
    EXPECT_EQ(RegEnumKeyExA(root_, 0, name, &size, nullptr, nullptr, nullptr, &written),
              ERROR_SUCCESS);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(Bytes(name, 4), Lit("a1\0~"));
    EXPECT_NE(written.dwHighDateTime, 0u);
    std::memset(name, kFill, sizeof name);
    EXPECT_EQ(RegEnumKeyA(root_, 0, name, 2), ERROR_MORE_DATA);
    EXPECT_EQ(Bytes(name, 3), "~~~");
    size = sizeof name;
    EXPECT_EQ(RegEnumKeyExA(root_, 1, name, &size, nullptr, nullptr, nullptr, nullptr),
              ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(RegEnumKeyExA(root_, 1000, name, &size, nullptr, nullptr, nullptr, nullptr),
              ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(RegEnumKeyExA(root_, 0, nullptr, &size, nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegEnumKeyExA(root_, 0, name, nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
}

TEST_F(RegistryTest, EnumValueCutsTheNameButNotTheData) {
    SetDword(root_, "_x", 4);
    char name[8];
    BYTE data[8];
    // Name too small, no data asked: the name cut to fit, size untouched.
    std::memset(name, kFill, sizeof name);
    DWORD cch = 2;
    EXPECT_EQ(RegEnumValueA(root_, 0, name, &cch, nullptr, nullptr, nullptr, nullptr),
              ERROR_MORE_DATA);
    EXPECT_EQ(cch, 2u);
    EXPECT_EQ(Bytes(name, 3), Lit("_\0~"));
    // Data too small: name and data untouched, size and type told.
    std::memset(name, kFill, sizeof name);
    std::memset(data, kFill, sizeof data);
    cch = sizeof name;
    DWORD cb = 2;
    DWORD type = 0xEEEE;
    EXPECT_EQ(RegEnumValueA(root_, 0, name, &cch, nullptr, &type, data, &cb), ERROR_MORE_DATA);
    EXPECT_EQ(cch, sizeof name);
    EXPECT_EQ(cb, 4u);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(Bytes(name, 2), "~~");
    EXPECT_EQ(Bytes(data, 4), "~~~~");
    // Both fit.
    cb = sizeof data;
    EXPECT_EQ(RegEnumValueA(root_, 0, name, &cch, nullptr, &type, data, &cb), ERROR_SUCCESS);
    EXPECT_EQ(cch, 2u);
    EXPECT_EQ(Bytes(name, 3), Lit("_x\0"));
    EXPECT_EQ(Bytes(data, cb), Bytes("\x04\0\0\0", 4));
    // Past the end, and the required pointers.
    cch = sizeof name;
    EXPECT_EQ(RegEnumValueA(root_, 1, name, &cch, nullptr, nullptr, nullptr, nullptr),
              ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(RegEnumValueA(root_, 0, nullptr, &cch, nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegEnumValueA(root_, 0, name, nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegEnumValueA(root_, 0, name, &cch, nullptr, nullptr, data, nullptr),
              ERROR_INVALID_PARAMETER);
}

TEST_F(RegistryTest, SixteenBitOpenAndCreate) {
    HKEY key = Create(root_, "x\\y");
    RegCloseKey(key);
    HKEY same = nullptr;
    EXPECT_EQ(RegOpenKeyA(root_, "", &same), ERROR_SUCCESS);
    EXPECT_EQ(same, root_);
    EXPECT_EQ(RegOpenKeyA(root_, nullptr, &same), ERROR_SUCCESS);
    EXPECT_EQ(same, root_);
    EXPECT_EQ(RegOpenKeyA(nullptr, nullptr, &same), ERROR_SUCCESS);
    EXPECT_EQ(same, nullptr);
    same = reinterpret_cast<HKEY>(0x1234);
    EXPECT_EQ(RegOpenKeyA(nullptr, "x", &same), ERROR_INVALID_HANDLE);
    EXPECT_EQ(same, reinterpret_cast<HKEY>(0x1234));
    EXPECT_EQ(RegOpenKeyA(root_, "x\\y", &key), ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(RegOpenKeyA(root_, "nokey", &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegOpenKeyA(root_, "x", nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegCreateKeyA(root_, "Created16\\Sub", &key), ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(RegCreateKeyA(root_, "Created16\\Sub", &key), ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(RegCreateKeyA(root_, "", &key), ERROR_SUCCESS);
    EXPECT_NE(key, root_);
    RegCloseKey(key);
    EXPECT_EQ(RegCreateKeyA(root_, "x", nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegCreateKeyExA(root_, "x", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, nullptr, nullptr),
              ERROR_BADKEY);
}

TEST_F(RegistryTest, SixteenBitDefaultValues) {
    char buffer[64];
    LONG size = sizeof buffer;
    std::memset(buffer, kFill, sizeof buffer);
    EXPECT_EQ(RegQueryValueA(root_, nullptr, buffer, &size), ERROR_SUCCESS);  // no default: ""
    EXPECT_EQ(size, 1);
    EXPECT_EQ(Bytes(buffer, 2), Lit("\0~"));
    size = sizeof buffer;
    EXPECT_EQ(RegQueryValueA(root_, "MissingSub", buffer, &size), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(size, static_cast<LONG>(sizeof buffer));

    // The size argument is ignored: the string and its terminator are stored.
    EXPECT_EQ(RegSetValueA(root_, "NewSub", REG_SZ, "data", 2), ERROR_SUCCESS);
    size = sizeof buffer;
    EXPECT_EQ(RegQueryValueA(root_, "NewSub", buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 5);
    EXPECT_STREQ(buffer, "data");
    std::memset(buffer, kFill, sizeof buffer);
    size = 3;
    EXPECT_EQ(RegQueryValueA(root_, "NewSub", buffer, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 5);
    EXPECT_EQ(Bytes(buffer, 4), "~~~~");
    size = 0;
    EXPECT_EQ(RegQueryValueA(root_, "NewSub", nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 5);
    EXPECT_EQ(RegQueryValueA(root_, "NewSub", buffer, nullptr), ERROR_INVALID_PARAMETER);

    EXPECT_EQ(RegSetValueA(root_, "Deep\\Er", REG_SZ, "x", 99), ERROR_SUCCESS);
    size = sizeof buffer;
    EXPECT_EQ(RegQueryValueA(root_, "DEEP\\er", buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 2);
    EXPECT_EQ(RegSetValueA(root_, nullptr, REG_SZ, "rootdflt", 0), ERROR_SUCCESS);
    EXPECT_EQ(Query(root_, nullptr), Lit("rootdflt\0"));
    EXPECT_EQ(RegSetValueA(root_, "DwordSub", REG_DWORD, "1234", 4), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegSetValueA(root_, "NullData", REG_SZ, nullptr, 0), ERROR_INVALID_PARAMETER);

    // A default value of another type comes back as its bytes.
    HKEY key = Create(root_, "DwDefault");
    SetDword(key, nullptr, 0x12345678);
    RegCloseKey(key);
    size = sizeof buffer;
    EXPECT_EQ(RegQueryValueA(root_, "DwDefault", buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(Bytes(buffer, size), "xV4\x12");
}

TEST_F(RegistryTest, PathsSkipEmptyComponentsAndRefuseALeadingBackslash) {
    RegCloseKey(Create(root_, "x\\y\\z"));
    HKEY key = nullptr;
    for (const char* path : {"x\\y", "x\\y\\z\\", "x\\\\y", "x\\y\\\\z\\\\"}) {
        EXPECT_EQ(RegOpenKeyExA(root_, path, 0, KEY_READ, &key), ERROR_SUCCESS) << path;
        RegCloseKey(key);
    }
    EXPECT_EQ(RegOpenKeyExA(root_, "\\x", 0, KEY_READ, &key), ERROR_BAD_PATHNAME);
    EXPECT_EQ(
        RegCreateKeyExA(root_, "\\lead", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
        ERROR_BAD_PATHNAME);
    // Key names hold at most 255 characters (Windows' limit; Wine takes 256).
    std::string name(255, 'k');
    RegCloseKey(Create(root_, name.c_str()));
    name += 'k';
    EXPECT_EQ(
        RegCreateKeyExA(root_, name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
        ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegOpenKeyExA(root_, name.c_str(), 0, KEY_READ, &key), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(SubkeyNames(root_), (std::vector<std::string>{std::string(255, 'k'), "x"}));
}

// Values and subkeys are separate name spaces: a path naming a value finds
// no key, and creating one beside the value leaves the value alone.
TEST_F(RegistryTest, AKeyPathThroughAValueFindsNoKey) {
    SetDword(root_, "Shared", 7);
    HKEY key = reinterpret_cast<HKEY>(1);
    EXPECT_EQ(RegOpenKeyExA(root_, "Shared", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(RegOpenKeyExA(root_, "Shared\\below", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteKeyA(root_, "Shared"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Query(root_, "Shared"), Bytes("\x07\0\0\0", 4));

    HKEY below = Create(root_, "shared\\below");
    SetDword(below, "Shared", 8);
    RegCloseKey(below);
    EXPECT_EQ(SubkeyNames(root_), std::vector<std::string>{"shared"});
    EXPECT_EQ(ValueNames(root_), std::vector<std::string>{"Shared"});
    EXPECT_EQ(Query(root_, "Shared"), Bytes("\x07\0\0\0", 4));
    EXPECT_EQ(RegDeleteValueA(root_, "SHARED"), ERROR_SUCCESS);
    ASSERT_EQ(RegOpenKeyExA(root_, "Shared\\Below", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(Query(key, "Shared"), Bytes("\x08\0\0\0", 4));
    RegCloseKey(key);
}

TEST_F(RegistryTest, DeleteKeyRefusesKeysWithSubkeysAndPredefinedKeys) {
    RegCloseKey(Create(root_, "x\\y\\z"));
    EXPECT_EQ(RegDeleteKeyA(root_, "nokey"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteKeyA(root_, "x"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteKeyA(root_, "x\\y\\z"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(root_, "X\\Y"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(root_, "x"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(root_, nullptr), ERROR_INVALID_PARAMETER);
    RegCloseKey(Create(root_, "child"));
    EXPECT_EQ(RegDeleteKeyA(root_, ""), ERROR_ACCESS_DENIED);
    for (HKEY predefined : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS, HKEY_CLASSES_ROOT,
                            HKEY_CURRENT_CONFIG}) {
        EXPECT_EQ(RegDeleteKeyA(predefined, ""), ERROR_ACCESS_DENIED);
    }
    // A key deleted through its own handle.
    HKEY self = Create(root_, "self");
    EXPECT_EQ(RegDeleteKeyA(self, ""), ERROR_SUCCESS);
    RegCloseKey(self);
    EXPECT_EQ(SubkeyNames(root_), std::vector<std::string>{"child"});
}

TEST_F(RegistryTest, DeleteTreeTakesEverythingBelowAndKeepsAnEmptiedKey) {
    HKEY sub = Create(root_, "subkey\\subkey2\\subkey3");
    SetString(sub, "v", "deep");
    RegCloseKey(sub);
    RegCloseKey(Create(root_, "subkey\\other"));
    HKEY key = Create(root_, "subkey");
    SetString(key, nullptr, "data");
    SetString(key, "value", "data2");
    EXPECT_EQ(RegDeleteTreeA(key, "subkey2"), ERROR_SUCCESS);
    EXPECT_EQ(SubkeyNames(key), std::vector<std::string>{"other"});
    RegCloseKey(Create(key, "again\\and again"));
    // NULL or "": the key stays, without subkeys and values.
    EXPECT_EQ(RegDeleteTreeA(key, nullptr), ERROR_SUCCESS);
    EXPECT_TRUE(SubkeyNames(key).empty());
    EXPECT_TRUE(ValueNames(key).empty());
    EXPECT_EQ(RegDeleteTreeA(key, ""), ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(SubkeyNames(root_), std::vector<std::string>{"subkey"});
    EXPECT_EQ(RegDeleteTreeA(root_, "not-here"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteTreeA(root_, "subkey"), ERROR_SUCCESS);
    EXPECT_TRUE(SubkeyNames(root_).empty());
    // Keys behind predefined handles stop it before anything changes.
    EXPECT_EQ(RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteTreeA(HKEY_USERS, nullptr), ERROR_ACCESS_DENIED);
    HKEY still = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, path_.c_str(), 0, KEY_READ, &still), ERROR_SUCCESS);
    RegCloseKey(still);
}

TEST_F(RegistryTest, HandlesOfADeletedKeyReportKeyDeleted) {
    HKEY victim = Create(root_, "Victim");
    SetString(victim, "v", "x");
    EXPECT_EQ(RegDeleteKeyA(root_, "Victim"), ERROR_SUCCESS);
    DWORD value = 1;
    char name[16];
    DWORD size = sizeof name;
    BYTE data[16];
    DWORD cb = sizeof data;
    HKEY child = nullptr;
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(RegSetValueExA(victim, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4),
              ERROR_KEY_DELETED);
    EXPECT_EQ(RegQueryValueExA(victim, "v", nullptr, nullptr, data, &cb), ERROR_KEY_DELETED);
    EXPECT_EQ(RegDeleteValueA(victim, "v"), ERROR_KEY_DELETED);
    EXPECT_EQ(RegEnumValueA(victim, 0, name, &size, nullptr, nullptr, nullptr, nullptr),
              ERROR_KEY_DELETED);
    EXPECT_EQ(RegEnumKeyA(victim, 0, name, sizeof name), ERROR_KEY_DELETED);
    EXPECT_EQ(RegOpenKeyA(victim, "sub", &child), ERROR_KEY_DELETED);
    EXPECT_EQ(RegCreateKeyA(victim, "sub", &child), ERROR_KEY_DELETED);
    EXPECT_EQ(RegFlushKey(victim), ERROR_KEY_DELETED);
    EXPECT_EQ(RegQueryInfoKeyA(victim, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_KEY_DELETED);
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    // A new key of the same name is another key.
    HKEY reborn = Create(root_, "Victim");
    EXPECT_EQ(RegQueryValueExA(victim, "v", nullptr, nullptr, nullptr, nullptr), ERROR_KEY_DELETED);
    RegCloseKey(reborn);
    EXPECT_EQ(RegCloseKey(victim), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(victim), ERROR_INVALID_HANDLE);
}

TEST_F(RegistryTest, CloseKeyAcceptsOnlyKeys) {
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(reinterpret_cast<HKEY>(0x12345678)), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(HKEY_PERFORMANCE_DATA), ERROR_SUCCESS);
    DWORD size = 4;
    EXPECT_EQ(
        RegQueryValueExA(reinterpret_cast<HKEY>(0x12345678), "x", nullptr, nullptr, nullptr, &size),
        ERROR_INVALID_HANDLE);
}

TEST_F(RegistryTest, PredefinedKeysAndTheirPlaces) {
    SetDword(root_, "Here", 7);
    // Only the low 32 bits of a predefined handle count.
    HKEY wide = reinterpret_cast<HKEY>(reinterpret_cast<uintptr_t>(HKEY_CURRENT_USER) |
                                       (0xDEADBEEFull << 32));
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(wide, path_.c_str(), 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(Query(key, "Here"), Bytes("\x07\0\0\0", 4));
    RegCloseKey(key);
    // HKEY_CURRENT_USER is the user's key below HKEY_USERS.
    char user[300];
    DWORD found = 0;
    for (DWORD i = 0; RegEnumKeyA(HKEY_USERS, i, user, sizeof user) == ERROR_SUCCESS; ++i) {
        std::string path = std::string(user) + "\\" + path_;
        if (RegOpenKeyExA(HKEY_USERS, path.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS) {
            EXPECT_EQ(Query(key, "Here"), Bytes("\x07\0\0\0", 4));
            RegCloseKey(key);
            ++found;
        }
    }
    EXPECT_EQ(found, 1u);
    // HKEY_CLASSES_ROOT is HKLM\SOFTWARE\Classes; HKEY_CURRENT_CONFIG its profile key.
    HKEY klass = Create(HKEY_CLASSES_ROOT, ".zqtest");
    RegCloseKey(klass);
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "software\\classes\\.ZQTEST", 0, KEY_READ, &key),
              ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CLASSES_ROOT, ".zqtest"), ERROR_SUCCESS);
    EXPECT_EQ(
        RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current",
                      0, KEY_READ, &key),
        ERROR_SUCCESS);
    RegCloseKey(key);
    HKEY same = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_CONFIG, "", 0, KEY_READ, &same), ERROR_SUCCESS);
    EXPECT_EQ(same, HKEY_CURRENT_CONFIG);
    EXPECT_EQ(RegOpenKeyExA(HKEY_USERS, ".DEFAULT", 0, KEY_READ, &key), ERROR_SUCCESS);
    RegCloseKey(key);
    // Nothing lives below HKEY_PERFORMANCE_DATA and HKEY_DYN_DATA.
    for (HKEY unbacked : {HKEY_PERFORMANCE_DATA, HKEY_DYN_DATA}) {
        EXPECT_EQ(RegOpenKeyExA(unbacked, "Global", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegOpenKeyA(unbacked, nullptr, &key), ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegCreateKeyA(unbacked, "x", &key), ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegQueryValueExA(unbacked, "Counter", nullptr, nullptr, nullptr, nullptr),
                  ERROR_INVALID_HANDLE);
    }
}

TEST_F(RegistryTest, AccessRightsOfAHandleAreEnforced) {
    SetDword(root_, "v", 1);
    RegCloseKey(Create(root_, "sub"));
    HKEY reader = nullptr;
    ASSERT_EQ(RegOpenKeyExA(root_, "", 0, KEY_READ, &reader), ERROR_SUCCESS);
    DWORD value = 2;
    EXPECT_EQ(RegSetValueExA(reader, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteValueA(reader, "v"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Query(reader, "v"), Bytes("\x01\0\0\0", 4));
    RegCloseKey(reader);
    HKEY writer = nullptr;
    ASSERT_EQ(RegOpenKeyExA(root_, "", 0, KEY_SET_VALUE, &writer), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExA(writer, "v", nullptr, nullptr, nullptr, nullptr),
              ERROR_ACCESS_DENIED);
    char name[8];
    EXPECT_EQ(RegEnumKeyA(writer, 0, name, sizeof name), ERROR_ACCESS_DENIED);
    // Creating below a handle does not need rights on it.
    HKEY child = nullptr;
    EXPECT_EQ(RegCreateKeyExA(writer, "new", 0, nullptr, 0, KEY_READ, nullptr, &child, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(child);
    RegCloseKey(writer);
    HKEY generic = nullptr;
    ASSERT_EQ(RegOpenKeyExA(root_, "", 0, GENERIC_READ | GENERIC_WRITE, &generic), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExA(generic, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4),
              ERROR_SUCCESS);
    EXPECT_EQ(RegEnumKeyA(generic, 0, name, sizeof name), ERROR_SUCCESS);
    RegCloseKey(generic);
}

TEST_F(RegistryTest, QueryInfoCountsAndMeasures) {
    HKEY key = nullptr;
    char key_class[] = "subkey class";
    ASSERT_EQ(
        RegCreateKeyExA(root_, "subkey", 0, key_class, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
        ERROR_SUCCESS);
    char sub_class[] = "subsubkey class";
    HKEY sub = nullptr;
    ASSERT_EQ(
        RegCreateKeyExA(key, "subsubkey", 0, sub_class, 0, KEY_ALL_ACCESS, nullptr, &sub, nullptr),
        ERROR_SUCCESS);
    RegCloseKey(sub);
    SetString(key, nullptr, "data");
    SetString(key, "value one", "first value data");
    SetString(key, "value 2", "second value data");
    SetDword(key, "d", 1);
    DWORD class_length = 0, subkeys = 0, max_subkey = 0, max_class = 0, values = 0, max_name = 0,
          max_data = 0, security = 99;
    FILETIME written = {0, 0};
    EXPECT_EQ(RegQueryInfoKeyA(key, nullptr, &class_length, nullptr, &subkeys, &max_subkey,
                               &max_class, &values, &max_name, &max_data, &security, &written),
              ERROR_SUCCESS);
    EXPECT_EQ(class_length, 12u);
    EXPECT_EQ(subkeys, 1u);
    EXPECT_EQ(max_subkey, 9u);
    EXPECT_EQ(max_class, 15u);
    EXPECT_EQ(values, 4u);
    EXPECT_EQ(max_name, 9u);
    EXPECT_EQ(max_data, 36u);  // strings are measured in UTF-16, as Windows stores them
    EXPECT_EQ(security, 0u);
    EXPECT_NE(written.dwHighDateTime, 0u);

    // The class buffer: too small gets a cut copy; zero gets nothing.
    char buffer[32];
    std::memset(buffer, kFill, sizeof buffer);
    class_length = 0;
    EXPECT_EQ(RegQueryInfoKeyA(key, buffer, &class_length, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(class_length, 0u);
    EXPECT_EQ(buffer[0], kFill);
    class_length = 1;
    EXPECT_EQ(RegQueryInfoKeyA(key, buffer, &class_length, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_MORE_DATA);
    EXPECT_EQ(class_length, 0u);
    EXPECT_EQ(Bytes(buffer, 2), Lit("\0~"));
    class_length = 12;
    EXPECT_EQ(RegQueryInfoKeyA(key, buffer, &class_length, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_MORE_DATA);
    EXPECT_EQ(class_length, 11u);
    EXPECT_EQ(Bytes(buffer, 13), Lit("subkey clas\0~"));
    class_length = 13;
    EXPECT_EQ(RegQueryInfoKeyA(key, buffer, &class_length, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(class_length, 12u);
    EXPECT_STREQ(buffer, "subkey class");
    EXPECT_EQ(RegQueryInfoKeyA(key, buffer, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryInfoKeyA(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_HANDLE);
    // The subkey's class comes with the enumeration.
    char name[32];
    DWORD name_size = sizeof name;
    DWORD class_size = sizeof buffer;
    EXPECT_EQ(RegEnumKeyExA(key, 0, name, &name_size, nullptr, buffer, &class_size, nullptr),
              ERROR_SUCCESS);
    EXPECT_STREQ(buffer, "subsubkey class");
    EXPECT_EQ(class_size, 15u);
    RegCloseKey(key);
}

TEST_F(RegistryTest, VolatileKeysHoldOnlyVolatileKeysAndVanishAtTheNextBoot) {
    HKEY fleeting = Create(root_, "Fleeting", nullptr, REG_OPTION_VOLATILE);
    HKEY child = nullptr;
    EXPECT_EQ(RegCreateKeyExA(fleeting, "Lasting", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &child,
                              nullptr),
              ERROR_CHILD_MUST_BE_VOLATILE);
    RegCloseKey(Create(fleeting, "AlsoFleeting", nullptr, REG_OPTION_VOLATILE));
    SetDword(fleeting, "v", 1);
    RegCloseKey(Create(root_, "Lasting"));
    RegCloseKey(fleeting);
    EXPECT_EQ(RegCreateKeyExA(root_, "x", 0, nullptr, REG_OPTION_CREATE_LINK, KEY_ALL_ACCESS,
                              nullptr, &child, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(
        RegCreateKeyExA(root_, "x", 0, nullptr, 0x100, KEY_ALL_ACCESS, nullptr, &child, nullptr),
        ERROR_INVALID_PARAMETER);

    // A different boot id in the database stands for a reboot.
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(RegistryDatabasePath().c_str(), &db), SQLITE_OK);
    sqlite3_busy_timeout(db, 5000);
    ASSERT_EQ(sqlite3_exec(db, "UPDATE meta SET value = 'earlier boot' WHERE name = 'boot_id'",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(db);
    CloseRegistryConnectionForTesting();
    EXPECT_EQ(SubkeyNames(root_), std::vector<std::string>{"Lasting"});
}

TEST_F(RegistryTest, BadInputIsRefusedAsWindowsRefusesIt) {
    EXPECT_EQ(RegSetValueExA(root_, "n", 0, REG_BINARY, nullptr, 4), ERROR_NOACCESS);
    EXPECT_EQ(RegSetValueExA(root_, "n", 0, REG_BINARY, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(Query(root_, "n"), "");
    std::string name(16383, 'v');
    EXPECT_EQ(
        RegSetValueExA(root_, name.c_str(), 0, REG_BINARY, reinterpret_cast<const BYTE*>("x"), 1),
        ERROR_SUCCESS);
    name += 'v';
    EXPECT_EQ(
        RegSetValueExA(root_, name.c_str(), 0, REG_BINARY, reinterpret_cast<const BYTE*>("x"), 1),
        ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegDeleteValueA(root_, name.c_str()), ERROR_FILE_NOT_FOUND);
    std::vector<BYTE> big((1u << 20) + 1, 0x5A);
    EXPECT_EQ(
        RegSetValueExA(root_, "big", 0, REG_BINARY, big.data(), static_cast<DWORD>(big.size())),
        ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegSetValueExA(root_, "big", 0, REG_BINARY, big.data(), 1u << 20), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(root_, "big", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 1u << 20);
    EXPECT_EQ(RegDeleteValueA(root_, "missing"), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, ChangesShowThroughOtherHandlesAndOtherThreads) {
    HKEY first = Create(root_, "Shared");
    HKEY second = Create(root_, "shared");
    SetDword(first, "n", 1);
    EXPECT_EQ(Query(second, "n"), Bytes("\x01\0\0\0", 4));
    // Another thread has its own connection; its writes show here at once.
    std::string seen;
    std::thread([&] {
        SetDword(second, "n", 2);
        seen = Query(first, "n");
    }).join();
    EXPECT_EQ(seen, Bytes("\x02\0\0\0", 4));
    EXPECT_EQ(Query(first, "n"), Bytes("\x02\0\0\0", 4));
    EXPECT_EQ(RegDeleteValueA(second, "n"), ERROR_SUCCESS);
    EXPECT_EQ(Query(first, "n"), "<error 2>");
    EXPECT_EQ(RegFlushKey(first), ERROR_SUCCESS);
    RegCloseKey(first);
    RegCloseKey(second);
}

TEST(RegistryDatabase, FileIsPrivateAndVersioned) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, "Software\\ZqRegistryTest", &key), ERROR_SUCCESS);
    RegCloseKey(key);
    for (const char* suffix : {"", "-wal", "-shm"}) {
        struct stat st;
        std::string path = RegistryDatabasePath() + suffix;
        ASSERT_EQ(stat(path.c_str(), &st), 0) << path;
        EXPECT_EQ(st.st_mode & 0777, 0600u) << path;
    }
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(RegistryDatabasePath().c_str(), &db), SQLITE_OK);
    sqlite3_stmt* stmt = nullptr;
    ASSERT_EQ(sqlite3_prepare_v2(db, "PRAGMA user_version", -1, &stmt, nullptr), SQLITE_OK);
    ASSERT_EQ(sqlite3_step(stmt), SQLITE_ROW);
    EXPECT_EQ(sqlite3_column_int(stmt, 0), zq::platform::internal::kRegistrySchemaVersion);
    sqlite3_finalize(stmt);
    ASSERT_EQ(sqlite3_prepare_v2(db, "PRAGMA journal_mode", -1, &stmt, nullptr), SQLITE_OK);
    ASSERT_EQ(sqlite3_step(stmt), SQLITE_ROW);
    EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0)), "wal");
    sqlite3_finalize(stmt);
    sqlite3_close(db);
}

}  // namespace
