#include "settings/reg_base.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "settings/global_config.h"
#include "support/test_support.h"

namespace {

using zq::test::ScopedEnvironmentVariable;

constexpr UINT kCurrentIndex = 131;  // "CurrentIndex"
constexpr UINT kLocationName = 137;  // "LocationName"
constexpr UINT kTapiDialing = 170;   // "TAPIDialingEnabled"
constexpr UINT kNoSuchString = 171;

// Opens the value operations to the tests.
class Settings : public CZqGblRegBase {
public:
    using CZqGblRegBase::CZqGblRegBase;
    using CZqGblRegBase::DeleteSection;
    using CZqGblRegBase::DeleteValue;
    using CZqGblRegBase::DoesValueExist;
    using CZqGblRegBase::GetInteger;
    using CZqGblRegBase::GetString;
    using CZqGblRegBase::GetValue;
    using CZqGblRegBase::SetInteger;
    using CZqGblRegBase::SetString;
    using CZqGblRegBase::SetValue;
};

// A settings object whose key string is empty.
class WithoutSection : public Settings {
public:
    WithoutSection() { LoadSection(); }

protected:
    BOOL LoadSection() override {
        m_szSection[0] = '\0';
        return IsClassDataValid();
    }
};

// The text of value `name` of `key` below `root`, read without the library.
std::string RawText(HKEY root, const char* key, const char* name) {
    HKEY opened = nullptr;
    if (RegOpenKeyExA(root, key, 0, KEY_READ, &opened) != ERROR_SUCCESS) {
        return "<no key>";
    }
    char text[64] = {};
    DWORD size = sizeof text - 1;
    DWORD type = 0;
    LONG rc = RegQueryValueExA(opened, name, nullptr, &type, reinterpret_cast<BYTE*>(text), &size);
    RegCloseKey(opened);
    return rc == ERROR_SUCCESS ? text : "<no value>";
}

void ForgetCompanyKey() {
    for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        RegDeleteTreeA(root, "SOFTWARE\\Zq,Inc.");
    }
    RegDeleteTreeA(HKEY_CLASSES_ROOT, "SOFTWARE\\Zq,Inc.");
}

class RegBase : public testing::TestWithParam<const char*> {
protected:
    RegBase() : winver_("ZQ_WINVER", GetParam()) { ForgetCompanyKey(); }
    ~RegBase() override { ForgetCompanyKey(); }
    bool Win32s() const { return std::string(GetParam()) == "win32s"; }
    ScopedEnvironmentVariable winver_;
};

INSTANTIATE_TEST_SUITE_P(Systems, RegBase, testing::Values("nt4", "win95", "win32s"));

TEST_P(RegBase, TheSectionIsTheLibrarysCompanyKey) {
    Settings settings;
    EXPECT_STREQ(settings.GetSection(), "SOFTWARE\\Zq,Inc.");
    EXPECT_TRUE(settings.IsClassDataValid());
    EXPECT_EQ(settings.GetAccessMode(), 2u);
    EXPECT_TRUE(settings.IsKindOf(RUNTIME_CLASS(CZqGblRegBase)));
    EXPECT_TRUE(settings.IsKindOf(RUNTIME_CLASS(CObject)));
}

TEST_P(RegBase, ValuesGoBelowTheChosenRoot) {
    Settings settings;
    ASSERT_EQ(settings.SetString(kLocationName, "Home"), 0u);
    settings.SetAccessMode(1);
    ASSERT_EQ(settings.SetString(kLocationName, "Office"), 0u);
    if (Win32s()) {
        // One root only there, the value a subkey with its text.
        char text[16] = {};
        LONG size = sizeof text;
        ASSERT_EQ(RegQueryValueA(HKEY_CLASSES_ROOT, "SOFTWARE\\Zq,Inc.\\LocationName", text, &size),
                  0);
        EXPECT_STREQ(text, "Office");
        return;
    }
    EXPECT_EQ(RawText(HKEY_CURRENT_USER, "SOFTWARE\\Zq,Inc.", "LocationName"), "Home");
    EXPECT_EQ(RawText(HKEY_LOCAL_MACHINE, "SOFTWARE\\Zq,Inc.", "LocationName"), "Office");
    char buffer[16];
    EXPECT_EQ(settings.GetString(kLocationName, buffer, sizeof buffer, "x"), 0u);
    EXPECT_STREQ(buffer, "Office");
    settings.SetAccessMode(2);
    EXPECT_EQ(settings.GetString(kLocationName, buffer, sizeof buffer, "x"), 0u);
    EXPECT_STREQ(buffer, "Home");
}

TEST_P(RegBase, NumbersAndIntegersRoundTrip) {
    Settings settings;
    ASSERT_EQ(settings.SetValue(kCurrentIndex, 42), 0u);
    DWORD number = 0;
    EXPECT_EQ(settings.GetValue(kCurrentIndex, number, 7), 0u);
    EXPECT_EQ(number, 42u);
    ASSERT_EQ(settings.SetInteger(kTapiDialing, -5), 0u);
    int integer = 0;
    EXPECT_EQ(settings.GetInteger(kTapiDialing, integer, 3), 0u);
    EXPECT_EQ(integer, -5);
    EXPECT_EQ(settings.GetValue(kTapiDialing, number, 7), 0u);
    EXPECT_EQ(number, 0xFFFFFFFBu);  // a 32-bit REG_DWORD (on Win32s its decimal text)

    ASSERT_EQ(settings.DeleteValue(kTapiDialing), 0u);
    EXPECT_EQ(settings.GetInteger(kTapiDialing, integer, 3), 2u);
    EXPECT_EQ(integer, 3);
}

TEST_P(RegBase, ATextWhereANumberBelongsLeavesTheDefault) {
    if (Win32s()) {
        GTEST_SKIP() << "Win32s keeps every value as text";
    }
    Settings settings;
    ASSERT_EQ(settings.SetString(kCurrentIndex, "12"), 0u);
    int integer = 0;
    EXPECT_EQ(settings.GetInteger(kCurrentIndex, integer, 9), CZqGlobalConfig::kWrongType);
    EXPECT_EQ(integer, 9);
}

TEST_P(RegBase, ExistenceAndRemoval) {
    Settings settings;
    BOOL exists = TRUE;
    EXPECT_EQ(settings.DoesValueExist(kLocationName, exists), 2u);  // no key yet
    EXPECT_FALSE(exists);
    ASSERT_EQ(settings.SetString(kLocationName, "Home"), 0u);
    EXPECT_EQ(settings.DoesValueExist(kLocationName, exists), 0u);
    EXPECT_TRUE(exists);
    EXPECT_EQ(settings.DoesValueExist(kCurrentIndex, exists), 0u);
    EXPECT_FALSE(exists);

    // Subkeys are removed by their literal name.
    CZqGlobalConfig config;
    ASSERT_EQ(config.SetValue(2, "SOFTWARE\\Zq,Inc.\\Location\\0", "Name", "x"), 0u);
    EXPECT_EQ(settings.DeleteSection("Location"), 0u);
    EXPECT_EQ(settings.DeleteSection("Location"), 2u);
    EXPECT_EQ(settings.DoesValueExist(kLocationName, exists), 0u);
    EXPECT_TRUE(exists);
}

TEST_P(RegBase, AnIdWithoutStringNamesNothing) {
    Settings settings;
    DWORD number = 1;
    EXPECT_EQ(settings.SetValue(kNoSuchString, 5), CZqGblRegBase::kNameMissing);
    EXPECT_EQ(settings.GetValue(kNoSuchString, number, 77), CZqGblRegBase::kNameMissing);
    EXPECT_EQ(number, 77u);
    char buffer[8];
    EXPECT_EQ(settings.GetString(kNoSuchString, buffer, sizeof buffer, "dflt"),
              CZqGblRegBase::kNameMissing);
    EXPECT_STREQ(buffer, "dflt");
    BOOL exists = TRUE;
    EXPECT_EQ(settings.DoesValueExist(kNoSuchString, exists), CZqGblRegBase::kNameMissing);
    EXPECT_FALSE(exists);
    EXPECT_EQ(settings.DeleteValue(kNoSuchString), CZqGblRegBase::kNameMissing);
}

TEST_P(RegBase, AnObjectWithoutSectionTouchesNothing) {
    WithoutSection settings;
    EXPECT_FALSE(settings.IsClassDataValid());
    EXPECT_STREQ(settings.GetSection(), "");
    EXPECT_EQ(settings.SetValue(kCurrentIndex, 1), CZqGblRegBase::kNotValid);
    EXPECT_EQ(settings.SetInteger(kCurrentIndex, 1), CZqGblRegBase::kNotValid);
    EXPECT_EQ(settings.SetString(kLocationName, "x"), CZqGblRegBase::kNotValid);
    EXPECT_EQ(settings.DeleteValue(kLocationName), CZqGblRegBase::kNotValid);
    EXPECT_EQ(settings.DeleteSection("Location"), CZqGblRegBase::kNotValid);
    DWORD number = 0;
    EXPECT_EQ(settings.GetValue(kCurrentIndex, number, 11), CZqGblRegBase::kNotValid);
    EXPECT_EQ(number, 11u);
    int integer = 0;
    EXPECT_EQ(settings.GetInteger(kCurrentIndex, integer, -11), CZqGblRegBase::kNotValid);
    EXPECT_EQ(integer, -11);
    char buffer[8];
    std::memset(buffer, 0xCC, sizeof buffer);
    EXPECT_EQ(settings.GetString(kLocationName, buffer, sizeof buffer, nullptr),
              CZqGblRegBase::kNotValid);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string(sizeof buffer, '\0'));
    char one[1] = {'z'};
    EXPECT_EQ(settings.GetString(kLocationName, one, 1, ""), CZqGblRegBase::kNotValid);
    EXPECT_EQ(one[0], '\0');
    // Nothing reached the registry.
    HKEY key = nullptr;
    EXPECT_EQ(
        RegOpenKeyA(Win32s() ? HKEY_CLASSES_ROOT : HKEY_CURRENT_USER, "SOFTWARE\\Zq,Inc.", &key),
        ERROR_FILE_NOT_FOUND);
}

TEST(RegBaseBuffers, NullBufferAndTinyBuffers) {
    Settings settings;
    EXPECT_EQ(settings.GetString(kLocationName, nullptr, 10, "x"), CZqGblRegBase::kNotValid);
    char one[1] = {'z'};
    settings.GetString(kLocationName, one, 1, "");
    EXPECT_EQ(one[0], '\0');
}

}  // namespace
