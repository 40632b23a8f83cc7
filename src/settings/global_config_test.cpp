#include "settings/global_config.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"

namespace {

using zq::test::ScopedEnvironmentVariable;

constexpr DWORD kWrongType = 0x24015800;

// Exposes the root table.
class TestConfig : public CZqGlobalConfig {
public:
    using CZqGlobalConfig::MapModeToKey;
    DWORD type() const { return m_dwOSType; }
};

// A key path of its own for every test.
std::string TestKey() {
    const testing::TestInfo* info = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(info->test_suite_name()) + "_" + info->name();
    for (char& c : name) {
        if (c == '/') {
            c = '_';
        }
    }
    return "Software\\ZqConfigTests\\" + name;
}

// Raw access to what the class stored, below the root of `mode` on NT.
HKEY OpenRaw(HKEY root, const std::string& path) {
    HKEY key = nullptr;
    return RegOpenKeyExA(root, path.c_str(), 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS ? key
                                                                                       : nullptr;
}

struct SystemCase {
    const char* winver;
    DWORD type;
};

class Config : public testing::TestWithParam<SystemCase> {
protected:
    Config() : winver_("ZQ_WINVER", GetParam().winver) {}
    bool Win32s() const { return GetParam().type == 1; }

    ScopedEnvironmentVariable winver_;
    TestConfig config_;
    std::string key_ = TestKey();
};

INSTANTIATE_TEST_SUITE_P(Systems, Config,
                         testing::Values(SystemCase{"nt4", 2}, SystemCase{"win95", 3},
                                         SystemCase{"win32s", 1}),
                         [](const testing::TestParamInfo<SystemCase>& info) {
                             return std::string(info.param.winver);
                         });

TEST_P(Config, TakesTheSystemTypeOnceAtConstruction) {
    EXPECT_EQ(config_.type(), GetParam().type);
    ScopedEnvironmentVariable other("ZQ_WINVER", Win32s() ? "nt4" : "win32s");
    TestConfig copy(config_);
    EXPECT_EQ(copy.type(), GetParam().type);
    TestConfig fresh;
    fresh = config_;
    EXPECT_EQ(fresh.type(), GetParam().type);
}

TEST_P(Config, NumbersRoundTrip) {
    for (DWORD value : {DWORD{0}, DWORD{300}, DWORD{0xFFFFFFFF}}) {
        ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Count", value), 0u);
        DWORD read = 7;
        EXPECT_EQ(config_.GetValue(1, key_.c_str(), "Count", read, 99), 0u);
        EXPECT_EQ(read, value);
    }
    DWORD read = 7;
    EXPECT_EQ(config_.GetValue(1, key_.c_str(), "Missing", read, 99), 2u);
    EXPECT_EQ(read, 99u);
    EXPECT_EQ(config_.GetValue(1, (key_ + "\\Nowhere").c_str(), "Count", read, 98), 2u);
    EXPECT_EQ(read, 98u);
}

TEST_P(Config, StringsRoundTripAndMissingOnesGiveTheDefault) {
    ASSERT_EQ(config_.SetValue(2, key_.c_str(), "Name", "Mirkel"), 0u);
    char buffer[16];
    std::memset(buffer, 0xCC, sizeof buffer);
    EXPECT_EQ(config_.GetValue(2, key_.c_str(), "Name", buffer, sizeof buffer, "x"), 0u);
    EXPECT_STREQ(buffer, "Mirkel");

    std::memset(buffer, 0xCC, sizeof buffer);
    EXPECT_EQ(config_.GetValue(2, key_.c_str(), "Missing", buffer, sizeof buffer, "fallback"), 2u);
    EXPECT_STREQ(buffer, "fallback");
    EXPECT_EQ(static_cast<BYTE>(buffer[15]), 0xCC);  // only the default and its terminator

    std::memset(buffer, 0xCC, sizeof buffer);
    EXPECT_EQ(config_.GetValue(2, key_.c_str(), "Missing", buffer, sizeof buffer, nullptr), 2u);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string(sizeof buffer, '\0'));

    // A default longer than the buffer is cut to size - 1 characters.
    char small[4];
    EXPECT_EQ(config_.GetValue(2, key_.c_str(), "Missing", small, sizeof small, "abcdef"), 2u);
    EXPECT_STREQ(small, "abc");
    // A size of 1 leaves just the terminator.
    char one[1] = {'z'};
    config_.GetValue(2, key_.c_str(), "Missing", one, 1, "");
    EXPECT_EQ(one[0], '\0');
    // A text that does not fit: 234, the default in place.
    EXPECT_EQ(config_.GetValue(2, key_.c_str(), "Name", small, sizeof small, "d"), 234u);
    EXPECT_STREQ(small, "d");
}

TEST_P(Config, KeepsValuesWhereTheSystemKeepsThem) {
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Number", DWORD{1234}), 0u);
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Text", "abc"), 0u);
    if (Win32s()) {
        // Values are subkeys of the classes root with their text, numbers in decimal.
        char text[32] = {};
        LONG size = sizeof text;
        ASSERT_EQ(RegQueryValueA(HKEY_CLASSES_ROOT, (key_ + "\\Number").c_str(), text, &size), 0);
        EXPECT_STREQ(text, "1234");
        size = sizeof text;
        ASSERT_EQ(RegQueryValueA(HKEY_CLASSES_ROOT, (key_ + "\\Text").c_str(), text, &size), 0);
        EXPECT_STREQ(text, "abc");
        EXPECT_EQ(size, 4);
        return;
    }
    HKEY key = OpenRaw(HKEY_LOCAL_MACHINE, key_);
    ASSERT_NE(key, nullptr);
    DWORD type = 0, data = 0, size = sizeof data;
    ASSERT_EQ(
        RegQueryValueExA(key, "Number", nullptr, &type, reinterpret_cast<BYTE*>(&data), &size), 0);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(data, 1234u);
    char text[8];
    size = sizeof text;
    ASSERT_EQ(RegQueryValueExA(key, "Text", nullptr, &type, reinterpret_cast<BYTE*>(text), &size),
              0);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(size, 4u);  // with the terminator
    RegCloseKey(key);
}

TEST_P(Config, AnyValueTypeReportsTheLengthOnlyOnWin32s) {
    unsigned char data[] = {'h', 'e', 'y', 0};
    ASSERT_EQ(config_.SetAnyValueType(1, key_.c_str(), "Raw", data, 4, REG_SZ), 0u);
    unsigned char buffer[16];
    std::memset(buffer, 0xCC, sizeof buffer);
    DWORD type = 9, length = 9;
    EXPECT_EQ(config_.GetAnyValueType(1, key_.c_str(), "Raw", buffer, sizeof buffer, type, length),
              0u);
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "hey");
    EXPECT_EQ(buffer[15], 0);  // zeroed first
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(length, Win32s() ? 4u : 0u);

    type = length = 9;
    EXPECT_EQ(config_.GetAnyValueType(1, key_.c_str(), "None", buffer, sizeof buffer, type, length),
              2u);
    EXPECT_EQ(type, 0u);
    EXPECT_EQ(length, 0u);
}

TEST_P(Config, ZeroLengthWritesCreateNothing) {
    unsigned char data[] = {1};
    EXPECT_EQ(config_.SetAnyValueType(1, key_.c_str(), "Raw", data, 0, REG_BINARY), 0u);
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyA(Win32s() ? HKEY_CLASSES_ROOT : HKEY_LOCAL_MACHINE, key_.c_str(), &key),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(config_.CreateKey(1, ""), 0u);
    EXPECT_EQ(config_.CreateKey(1, nullptr), 0u);
}

TEST_P(Config, DeleteSectionRemovesWholeTrees) {
    const std::string deep = key_ + "\\Tree\\A\\B\\C";
    ASSERT_EQ(config_.SetValue(1, deep.c_str(), "Leaf", "x"), 0u);
    ASSERT_EQ(config_.SetValue(1, (key_ + "\\Tree\\A2").c_str(), "Leaf", DWORD{5}), 0u);
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Keep", "y"), 0u);
    EXPECT_EQ(config_.DeleteSection(1, key_.c_str(), "Tree"), 0u);
    BOOL exists = TRUE;
    EXPECT_EQ(config_.DoesSubkeyExist(1, key_.c_str(), "Tree", exists), 0u);
    EXPECT_FALSE(exists);
    EXPECT_EQ(config_.DoesEntryExist(1, key_.c_str(), "Keep", exists), 0u);
    EXPECT_TRUE(exists);

    EXPECT_EQ(config_.DeleteSection(1, key_.c_str(), "Tree"), 2u);
    EXPECT_EQ(config_.DeleteSection(1, (key_ + "\\Gone").c_str(), "Tree"), 2u);

    // Without a subkey name the key itself goes.
    EXPECT_EQ(config_.DeleteSection(1, key_.c_str(), nullptr), 0u);
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyA(Win32s() ? HKEY_CLASSES_ROOT : HKEY_LOCAL_MACHINE, key_.c_str(), &key),
              ERROR_FILE_NOT_FOUND);
}

TEST_P(Config, DeleteEntryRemovesOneValue) {
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "One", "1"), 0u);
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Two", "2"), 0u);
    EXPECT_EQ(config_.DeleteEntry(1, key_.c_str(), "one"), 0u);
    BOOL exists = TRUE;
    config_.DoesEntryExist(1, key_.c_str(), "One", exists);
    EXPECT_FALSE(exists);
    config_.DoesEntryExist(1, key_.c_str(), "Two", exists);
    EXPECT_TRUE(exists);
    EXPECT_EQ(config_.DeleteEntry(1, key_.c_str(), "One"), 2u);
}

TEST_P(Config, EntriesAreFoundWithoutRegardToCase) {
    ASSERT_EQ(config_.SetValue(2, key_.c_str(), "MyValue", "v"), 0u);
    ASSERT_EQ(config_.CreateKey(2, (key_ + "\\MySub").c_str()), 0u);
    BOOL exists = FALSE;
    EXPECT_EQ(config_.DoesEntryExist(2, key_.c_str(), "MYVALUE", exists), 0u);
    EXPECT_TRUE(exists);
    EXPECT_EQ(config_.DoesEntryExist(2, key_.c_str(), "Other", exists), 0u);
    EXPECT_FALSE(exists);
    EXPECT_EQ(config_.DoesSubkeyExist(2, key_.c_str(), "mysub", exists), 0u);
    EXPECT_TRUE(exists);
    // Only Win32s has no difference between the two.
    EXPECT_EQ(config_.DoesSubkeyExist(2, key_.c_str(), "myvalue", exists), 0u);
    EXPECT_EQ(exists, Win32s());
    EXPECT_EQ(config_.DoesEntryExist(2, (key_ + "\\Nowhere").c_str(), "x", exists), 2u);
    EXPECT_FALSE(exists);
}

TEST_P(Config, FindFirstSubKey) {
    CString name("untouched");
    BOOL found = TRUE;
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Plain", DWORD{1}), 0u);
    if (!Win32s()) {
        EXPECT_EQ(config_.FindFirstSubKey(1, key_.c_str(), name, found), 0u);
        EXPECT_FALSE(found);
        EXPECT_EQ(name, "untouched");
    }
    ASSERT_EQ(config_.CreateKey(1, (key_ + "\\Zeta").c_str()), 0u);
    ASSERT_EQ(config_.CreateKey(1, (key_ + "\\Alpha").c_str()), 0u);
    EXPECT_EQ(config_.FindFirstSubKey(1, key_.c_str(), name, found), 0u);
    EXPECT_TRUE(found);
    EXPECT_EQ(name, "Alpha");
}

// Collects what an enumeration hands over and stops at a chosen call.
struct Recorder {
    std::vector<std::pair<std::string, DWORD>> calls;  // name, type
    std::vector<DWORD> numbers;                        // REG_DWORD arguments
    std::vector<std::string> texts;                    // REG_SZ arguments
    size_t stop_at = 0;                                // 1-based call that stops; 0 never
    DWORD stop_code = 0;
};

DWORD WINAPI RecordEntry(void* context, const char* name) {
    auto* recorder = static_cast<Recorder*>(context);
    recorder->calls.emplace_back(name, 0);
    return recorder->calls.size() == recorder->stop_at ? recorder->stop_code : 0;
}

DWORD WINAPI RecordValue(void* context, const char* name, void* data, DWORD type) {
    auto* recorder = static_cast<Recorder*>(context);
    recorder->calls.emplace_back(name, type);
    if (type == REG_DWORD) {
        recorder->numbers.push_back(static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(data)));
    } else if (type == REG_SZ) {
        recorder->texts.emplace_back(static_cast<const char*>(data));
    }
    return recorder->calls.size() == recorder->stop_at ? recorder->stop_code : 0;
}

TEST_P(Config, EnumEntriesStopsWithTheCallbacksCode) {
    for (const char* sub : {"A", "B", "C"}) {
        ASSERT_EQ(config_.CreateKey(1, (key_ + "\\" + sub).c_str()), 0u);
    }
    Recorder all;
    EXPECT_EQ(config_.EnumEntries(1, key_.c_str(), RecordEntry, &all), 0u);
    EXPECT_EQ(all.calls.size(), 3u);
    Recorder stopped;
    stopped.stop_at = 2;
    stopped.stop_code = 0x1234;
    EXPECT_EQ(config_.EnumEntries(1, key_.c_str(), RecordEntry, &stopped), 0x1234u);
    EXPECT_EQ(stopped.calls.size(), 2u);
    Recorder none;
    EXPECT_EQ(config_.EnumEntries(1, (key_ + "\\Nowhere").c_str(), RecordEntry, &none), 2u);
    EXPECT_EQ(config_.EnumEntries(1, key_.c_str(), nullptr, &none),
              static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_P(Config, EnumValuesHandsOverTextsAndLowBytesOfNumbers) {
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Text", "hello"), 0u);
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Big", DWORD{300}), 0u);
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Negative", DWORD{200}), 0u);
    Recorder recorder;
    EXPECT_EQ(config_.EnumValues(1, key_.c_str(), RecordValue, &recorder), 0u);
    if (Win32s()) {
        // Everything is text there, numbers included.
        ASSERT_EQ(recorder.calls.size(), 3u);
        EXPECT_EQ(recorder.texts, (std::vector<std::string>{"300", "200", "hello"}));
        return;
    }
    ASSERT_EQ(recorder.calls.size(), 3u);
    EXPECT_EQ(recorder.texts, (std::vector<std::string>{"hello"}));
    // Only the low byte, sign-extended: 300 arrives as 44, 200 as 0xFFFFFFC8.
    EXPECT_EQ(recorder.numbers, (std::vector<DWORD>{44u, 0xFFFFFFC8u}));
}

TEST_P(Config, EnumValuesSkipsTypesItDoesNotHandle) {
    if (Win32s()) {
        GTEST_SKIP() << "Win32s values are all text";
    }
    unsigned char bytes[] = {1, 2, 3, 4};
    unsigned char multi[] = {'a', 0, 'b', 0, 0};
    ASSERT_EQ(config_.SetAnyValueType(1, key_.c_str(), "Binary", bytes, 4, REG_BINARY), 0u);
    ASSERT_EQ(config_.SetAnyValueType(1, key_.c_str(), "BigEndian", bytes, 4, REG_DWORD_BIG_ENDIAN),
              0u);
    ASSERT_EQ(config_.SetAnyValueType(1, key_.c_str(), "None", bytes, 4, REG_NONE), 0u);
    ASSERT_EQ(config_.SetAnyValueType(1, key_.c_str(), "Multi", multi, 5, REG_MULTI_SZ), 0u);
    ASSERT_EQ(config_.SetAnyValueType(1, key_.c_str(), "Link", bytes, 4, REG_LINK), 0u);
    Recorder recorder;
    EXPECT_EQ(config_.EnumValues(1, key_.c_str(), RecordValue, &recorder), 0u);
    EXPECT_EQ(recorder.calls, (std::vector<std::pair<std::string, DWORD>>{
                                  {"Binary", REG_BINARY}, {"Multi", REG_MULTI_SZ}}));
    Recorder stopped;
    stopped.stop_at = 1;
    stopped.stop_code = 5;
    EXPECT_EQ(config_.EnumValues(1, key_.c_str(), RecordValue, &stopped), 5u);
}

TEST_P(Config, GetValueSizeExistsOnlyWithTypedValues) {
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Text", "hello"), 0u);
    DWORD size = 99;
    EXPECT_EQ(config_.GetValueSize(1, key_.c_str(), "Text", size), 0u);
    EXPECT_EQ(size, Win32s() ? 0u : 6u);
    if (!Win32s()) {
        EXPECT_EQ(config_.GetValueSize(1, key_.c_str(), "Missing", size), 2u);
        EXPECT_EQ(size, 0u);
    }
}

TEST_P(Config, CopyRegTreeKeepsOnlyTheLowByteOfNumbers) {
    const std::string source = key_ + "\\Source";
    const std::string dest = key_ + "\\Dest";
    ASSERT_EQ(config_.SetValue(1, source.c_str(), "Thousand", DWORD{1000}), 0u);
    ASSERT_EQ(config_.SetValue(1, source.c_str(), "Small", DWORD{5}), 0u);
    ASSERT_EQ(config_.SetValue(1, source.c_str(), "Name", "top"), 0u);
    ASSERT_EQ(config_.SetValue(1, (source + "\\Sub\\Deeper").c_str(), "Name", "deep"), 0u);
    ASSERT_EQ(config_.CreateKey(1, (source + "\\Empty").c_str()), 0u);

    EXPECT_EQ(config_.CopyRegTree(2, dest.c_str(), 1, source.c_str(), 1), 0u);
    DWORD number = 0;
    EXPECT_EQ(config_.GetValue(2, dest.c_str(), "Thousand", number, 0), 0u);
    EXPECT_EQ(number, Win32s() ? 1000u : 0xFFFFFFE8u);
    EXPECT_EQ(config_.GetValue(2, dest.c_str(), "Small", number, 0), 0u);
    EXPECT_EQ(number, 5u);
    char text[16];
    EXPECT_EQ(config_.GetValue(2, (dest + "\\Sub\\Deeper").c_str(), "Name", text, sizeof text, ""),
              0u);
    EXPECT_STREQ(text, "deep");
    BOOL exists = FALSE;
    EXPECT_EQ(config_.DoesSubkeyExist(2, dest.c_str(), "Empty", exists), 0u);
    EXPECT_TRUE(exists);
    // The source is still there.
    EXPECT_EQ(config_.GetValue(1, source.c_str(), "Name", text, sizeof text, ""), 0u);
    EXPECT_STREQ(text, "top");
}

TEST_P(Config, CopyRegTreeLeavesOutBinaryData) {
    if (Win32s()) {
        GTEST_SKIP() << "Win32s values are all text";
    }
    const std::string source = key_ + "\\Source";
    unsigned char bytes[] = {9, 8, 7};
    ASSERT_EQ(config_.SetAnyValueType(1, source.c_str(), "Blob", bytes, 3, REG_BINARY), 0u);
    ASSERT_EQ(config_.SetValue(1, source.c_str(), "Text", "t"), 0u);
    ASSERT_EQ(config_.CopyRegTree(1, (key_ + "\\Dest").c_str(), 1, source.c_str(), 0), 0u);
    BOOL exists = TRUE;
    config_.DoesEntryExist(1, (key_ + "\\Dest").c_str(), "Blob", exists);
    EXPECT_FALSE(exists);
    config_.DoesEntryExist(1, (key_ + "\\Dest").c_str(), "Text", exists);
    EXPECT_TRUE(exists);
}

TEST_P(Config, MoveRegTreeRemovesTheSourceOnlyAfterACopy) {
    const std::string source = key_ + "\\Source";
    ASSERT_EQ(config_.SetValue(1, (source + "\\Sub").c_str(), "Name", "x"), 0u);
    EXPECT_EQ(config_.MoveRegTree(1, (key_ + "\\Moved").c_str(), 1, source.c_str(), 0), 0u);
    BOOL exists = TRUE;
    EXPECT_EQ(config_.DoesSubkeyExist(1, key_.c_str(), "Source", exists), 0u);
    EXPECT_FALSE(exists);
    EXPECT_EQ(config_.DoesSubkeyExist(1, key_.c_str(), "Moved", exists), 0u);
    EXPECT_TRUE(exists);
    EXPECT_EQ(config_.MoveRegTree(1, (key_ + "\\Again").c_str(), 1, source.c_str(), 0), 2u);
}

// Numbers and texts of other types, on the systems with typed values.
class TypedConfig : public testing::TestWithParam<const char*> {
protected:
    TypedConfig() : winver_("ZQ_WINVER", GetParam()) {}
    ScopedEnvironmentVariable winver_;
    CZqGlobalConfig config_;
    std::string key_ = TestKey();
};

INSTANTIATE_TEST_SUITE_P(Systems, TypedConfig, testing::Values("nt4", "win95"));

TEST_P(TypedConfig, ANumberStoredAsTextIsOfTheWrongType) {
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Short", "12"), 0u);
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Long", "12345"), 0u);
    DWORD number = 0;
    EXPECT_EQ(config_.GetValue(1, key_.c_str(), "Short", number, 77), kWrongType);
    EXPECT_EQ(number, 77u);
    // Longer than four bytes: the query itself fails first.
    EXPECT_EQ(config_.GetValue(1, key_.c_str(), "Long", number, 77), 234u);
    EXPECT_EQ(number, 77u);
}

TEST_P(TypedConfig, ATextStoredAsNumberIsOfTheWrongType) {
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "Number", DWORD{0x00636261}), 0u);
    char buffer[8];
    EXPECT_EQ(config_.GetValue(1, key_.c_str(), "Number", buffer, sizeof buffer, "def"),
              kWrongType);
    EXPECT_STREQ(buffer, "def");
    unsigned char expand[] = "%TEMP%";
    ASSERT_EQ(config_.SetAnyValueType(1, key_.c_str(), "Expand", expand, 7, REG_EXPAND_SZ), 0u);
    EXPECT_EQ(config_.GetValue(1, key_.c_str(), "Expand", buffer, sizeof buffer, "def"), 0u);
    EXPECT_STREQ(buffer, "%TEMP%");
}

TEST_P(TypedConfig, DoesEntryExistStopsAtAValueTooLargeToRead) {
    std::vector<unsigned char> big(9000, 'x');
    ASSERT_EQ(config_.SetAnyValueType(1, key_.c_str(), "Big", big.data(),
                                      static_cast<DWORD>(big.size()), REG_BINARY),
              0u);
    ASSERT_EQ(config_.SetValue(1, key_.c_str(), "After", "x"), 0u);
    BOOL exists = TRUE;
    EXPECT_EQ(config_.DoesEntryExist(1, key_.c_str(), "After", exists), 234u);
    EXPECT_FALSE(exists);
}

TEST(ConfigModes, MapToTheirRoots) {
    struct Case {
        const char* winver;
        DWORD mode;
        HKEY root;
    };
    const Case cases[] = {
        {"nt4", 1, HKEY_LOCAL_MACHINE},
        {"nt4", 2, HKEY_CURRENT_USER},
        {"nt4", 3, HKEY_USERS},
        {"nt4", 4, HKEY_PERFORMANCE_DATA},
        {"nt4", 5, HKEY_CLASSES_ROOT},
        {"nt4", 6, HKEY_CLASSES_ROOT},
        {"nt4", 0, HKEY_CLASSES_ROOT},
        {"nt4", 7, HKEY_CLASSES_ROOT},
        {"win95", 1, HKEY_LOCAL_MACHINE},
        {"win95", 2, HKEY_CURRENT_USER},
        {"win95", 5, HKEY_CURRENT_CONFIG},
        {"win95", 6, HKEY_DYN_DATA},
        {"win95", 0, HKEY_CLASSES_ROOT},
        {"win95", 0xFFFFFFFF, HKEY_CLASSES_ROOT},
        {"win32s", 1, HKEY_CLASSES_ROOT},
        {"win32s", 2, HKEY_CLASSES_ROOT},
        {"win32s", 5, HKEY_CLASSES_ROOT},
        {"win32s", 6, HKEY_CLASSES_ROOT},
    };
    for (const Case& c : cases) {
        ScopedEnvironmentVariable winver("ZQ_WINVER", c.winver);
        TestConfig config;
        EXPECT_EQ(config.MapModeToKey(c.mode), c.root) << c.winver << " mode " << c.mode;
    }
}

TEST(ConfigModes, AnUnknownModeWorksOnTheClassesRoot) {
    ScopedEnvironmentVariable winver("ZQ_WINVER", "nt4");
    CZqGlobalConfig config;
    const std::string key = TestKey();
    ASSERT_EQ(config.SetValue(99, key.c_str(), "Where", "classes"), 0u);
    char text[16] = {};
    LONG size = sizeof text;
    HKEY classes = nullptr;
    ASSERT_EQ(RegOpenKeyA(HKEY_CLASSES_ROOT, key.c_str(), &classes), 0);
    DWORD type = 0;
    DWORD text_size = sizeof text;
    EXPECT_EQ(RegQueryValueExA(classes, "Where", nullptr, &type, reinterpret_cast<BYTE*>(text),
                               &text_size),
              0);
    EXPECT_STREQ(text, "classes");
    RegCloseKey(classes);
    (void)size;
    // The performance root holds nothing here: its errors pass through.
    DWORD number = 3;
    EXPECT_EQ(config.GetValue(4, key.c_str(), "x", number, 3),
              static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(number, 3u);
}

TEST(ConfigText, NumbersAsDecimalText) {
    struct Case {
        const char* text;
        DWORD value;
    };
    const Case cases[] = {{"1234", 1234},
                          {"  42", 42},
                          {"+7", 7},
                          {"-1", 0xFFFFFFFF},
                          {"-5xyz", 0xFFFFFFFB},
                          {"12abc", 12},
                          {"abc", 0},
                          {"", 0},
                          {"4294967295", 0xFFFFFFFF},
                          {"4294967296", 0xFFFFFFFF},
                          {"99999999999", 0xFFFFFFFF},
                          {"0x10", 0}};
    for (const Case& c : cases) {
        EXPECT_EQ(CZqGlobalConfig::StringToDWord(c.text), c.value) << '"' << c.text << '"';
    }
    EXPECT_EQ(CZqGlobalConfig::DWordToString(0xFFFFFFFF), "4294967295");
    EXPECT_EQ(CZqGlobalConfig::DWordToString(0), "0");
}

TEST(ConfigText, Win32sReadsTextWithStrtoulRules) {
    ScopedEnvironmentVariable winver("ZQ_WINVER", "win32s");
    CZqGlobalConfig config;
    const std::string key = TestKey();
    ASSERT_EQ(config.SetValue(1, key.c_str(), "Odd", " -5 apples"), 0u);
    DWORD number = 0;
    EXPECT_EQ(config.GetValue(1, key.c_str(), "Odd", number, 1), 0u);
    EXPECT_EQ(number, 0xFFFFFFFBu);
}

}  // namespace
