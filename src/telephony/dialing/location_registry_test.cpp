#include "telephony/dialing/location_registry.h"

#include <gtest/gtest.h>

#include <string>

#include "settings/global_config.h"
#include "telephony/testing/installation_for_tests.h"

namespace {

using zq::telephony::testing::ScopedInstallation;

bool KeyExists(HKEY root, const std::string& key) {
    HKEY opened = nullptr;
    if (RegOpenKeyExA(root, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) {
        return false;
    }
    RegCloseKey(opened);
    return true;
}

// The text of a value read without the library; "<none>" when missing.
std::string RawText(const std::string& key, const char* name) {
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) {
        return "<none>";
    }
    char text[1024] = {};
    DWORD size = sizeof text - 1;
    DWORD type = 0;
    LONG rc = RegQueryValueExA(opened, name, nullptr, &type, reinterpret_cast<BYTE*>(text), &size);
    RegCloseKey(opened);
    return rc == ERROR_SUCCESS && type == REG_SZ ? text : "<none>";
}

class LocationRegistryTest : public ::testing::Test {
protected:
    ScopedInstallation installation_;
    const std::string key_ = installation_.LocationsKey();
};

TEST_F(LocationRegistryTest, SlotsAreNamedWithEightDigitsBelowTheLocalMachine) {
    CZqLocationRegistry registry;
    ASSERT_TRUE(registry.IsClassDataValid());
    EXPECT_EQ(registry.GetAccessMode(), 1u);
    // Nothing is written on construction.
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, key_));

    registry.SetDataIndex(12);
    EXPECT_EQ(registry.GetDataIndex(), 12u);
    EXPECT_EQ(std::string(registry.GetSection()), key_ + "\\00000012");
    ASSERT_EQ(registry.SetCountryCode("49"), 0u);
    EXPECT_EQ(RawText(key_ + "\\00000012", "CountryCode"), "49");

    registry.SetDataIndex(100000000);
    ASSERT_EQ(registry.SetLocationName("Nine digits"), 0u);
    EXPECT_EQ(RawText(key_ + "\\100000000", "LocationName"), "Nine digits");

    // Nothing of it went to the current user's root.
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, key_));
}

TEST_F(LocationRegistryTest, CurrentIndexIsBesideTheSlotsAndTheSlotStaysAddressed) {
    CZqLocationRegistry registry;
    DWORD index = 7;
    EXPECT_EQ(registry.GetCurrentIndex(index), 2u);
    EXPECT_EQ(index, 0xFFFFFFFFu);

    registry.SetDataIndex(3);
    ASSERT_EQ(registry.SetCurrentIndex(3), 0u);
    ASSERT_EQ(registry.GetCurrentIndex(index), 0u);
    EXPECT_EQ(index, 3u);
    // Back in slot 3: the next value goes there, not beside CurrentIndex.
    ASSERT_EQ(registry.SetCity("Bern"), 0u);
    EXPECT_EQ(RawText(key_ + "\\00000003", "City"), "Bern");
    EXPECT_EQ(RawText(key_, "City"), "<none>");

    HKEY opened = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, key_.c_str(), 0, KEY_READ, &opened), 0);
    DWORD type = 0, data = 0, size = sizeof data;
    EXPECT_EQ(RegQueryValueExA(opened, "CurrentIndex", nullptr, &type,
                               reinterpret_cast<BYTE*>(&data), &size),
              0);
    RegCloseKey(opened);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(data, 3u);
}

TEST_F(LocationRegistryTest, OnlyASlotWithACountryCodeExists) {
    CZqLocationRegistry registry;
    registry.SetDataIndex(1);
    ASSERT_EQ(registry.SetLocationName("No code yet"), 0u);
    registry.SetDataIndex(2);
    ASSERT_EQ(registry.SetCountryCode("44"), 0u);

    registry.SetDataIndex(5);
    EXPECT_FALSE(registry.DoesIndexExist(1));
    EXPECT_TRUE(registry.DoesIndexExist(2));
    EXPECT_FALSE(registry.DoesIndexExist(3));
    // The question leaves slot 5 addressed.
    EXPECT_EQ(std::string(registry.GetSection()), key_ + "\\00000005");

    EXPECT_EQ(registry.DeleteIndex(2), 0u);
    EXPECT_FALSE(registry.DoesIndexExist(2));
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, key_ + "\\00000002"));
    EXPECT_EQ(registry.DeleteIndex(2), 2u);  // no such slot any more
    EXPECT_EQ(std::string(registry.GetSection()), key_ + "\\00000005");
}

TEST_F(LocationRegistryTest, TelephoneSlotsAboveSevenFallBackToTheSecond) {
    EXPECT_EQ(CZqLocationRegistry::GetAreaStringId(0), 157u);
    EXPECT_EQ(CZqLocationRegistry::GetAreaStringId(7), 164u);
    EXPECT_EQ(CZqLocationRegistry::GetNumberStringId(7), 156u);
    EXPECT_EQ(CZqLocationRegistry::GetAreaStringId(8), 158u);
    EXPECT_EQ(CZqLocationRegistry::GetNumberStringId(0xFFFFFFFF), 150u);

    CZqLocationRegistry registry;
    registry.SetDataIndex(0);
    ASSERT_EQ(registry.SetPhoneArea(1, "030"), 0u);
    ASSERT_EQ(registry.SetPhoneNumber(7, "0171 2345678"), 0u);
    CString text;
    EXPECT_EQ(registry.GetPhoneArea(9, text), 0u);
    EXPECT_EQ(text, "030");
    EXPECT_EQ(RawText(key_ + "\\00000000", "PhonePager"), "0171 2345678");
    EXPECT_EQ(RawText(key_ + "\\00000000", "AreaHome2"), "030");
}

TEST_F(LocationRegistryTest, ReadsGiveTheirDefaultsWhenTheValueIsMissing) {
    CZqLocationRegistry registry;
    registry.SetDataIndex(4);
    CString text("old");
    EXPECT_EQ(registry.GetZipCode(text), 2u);
    EXPECT_TRUE(text.IsEmpty());
    UINT country = 99;
    EXPECT_EQ(registry.GetCountryIndex(country), 2u);
    EXPECT_EQ(country, 0u);
    DWORD tapi = 99;
    EXPECT_EQ(registry.GetTAPIDialing(tapi), 2u);
    EXPECT_EQ(tapi, 0u);

    ASSERT_EQ(registry.SetAddressCountryIndex(41), 0u);
    ASSERT_EQ(registry.GetAddressCountryIndex(country), 0u);
    EXPECT_EQ(country, 41u);
}

TEST_F(LocationRegistryTest, OverlongTextsAreStoredCutAndReadBack) {
    CZqLocationRegistry registry;
    registry.SetDataIndex(6);
    const std::string longText(300, 'x');
    ASSERT_EQ(registry.SetAddress1(longText.c_str()), 0u);
    EXPECT_EQ(RawText(key_ + "\\00000006", "Address1"), std::string(255, 'x'));
    CString text;
    ASSERT_EQ(registry.GetAddress1(text), 0u);
    EXPECT_EQ(text.GetLength(), 255);

    ASSERT_EQ(registry.SetAddress2(""), 0u);
    ASSERT_EQ(registry.SetState(nullptr), 0u);
    text = "old";
    ASSERT_EQ(registry.GetAddress2(text), 0u);
    EXPECT_TRUE(text.IsEmpty());
    ASSERT_EQ(registry.GetState(text), 0u);
    EXPECT_TRUE(text.IsEmpty());
}

TEST_F(LocationRegistryTest, AValueStoredLongerThanTheReadBufferFailsAndStaysEmpty) {
    CZqLocationRegistry registry;
    registry.SetDataIndex(8);
    // Written past the class, as another program might.
    const std::string longText(400, 'y');
    ASSERT_EQ(
        CZqGlobalConfig().SetValue(1, (key_ + "\\00000008").c_str(), "EMail", longText.c_str()),
        0u);
    CString text("old");
    EXPECT_NE(registry.GetEMail(text), 0u);
    EXPECT_TRUE(text.IsEmpty());
}

}  // namespace

namespace {

TEST(LocationRegistryWithoutInstallation, EveryOperationIsRefusedAndNothingIsWritten) {
    CZqGlobalConfig config;
    config.DeleteSection(1, "Software\\Zq,Inc.", nullptr);
    CZqLocationRegistry registry;
    EXPECT_FALSE(registry.IsClassDataValid());
    registry.SetDataIndex(1);
    EXPECT_EQ(registry.SetCountryCode("41"), 0x24014407u);
    CString text("old");
    EXPECT_EQ(registry.GetCountryCode(text), 0x24014407u);
    EXPECT_TRUE(text.IsEmpty());
    DWORD index = 0;
    EXPECT_EQ(registry.GetCurrentIndex(index), 0x24014407u);
    EXPECT_EQ(index, 0xFFFFFFFFu);
    EXPECT_EQ(registry.SetCurrentIndex(1), 0x24014407u);
    EXPECT_FALSE(registry.DoesIndexExist(1));
    EXPECT_EQ(registry.DeleteIndex(1), 0x24014407u);
    BOOL exists = TRUE;
    config.DoesSubkeyExist(1, "Software", "Zq,Inc.", exists);
    EXPECT_FALSE(exists);
}

}  // namespace
