#include "telephony/dialing/location_item.h"

#include <gtest/gtest.h>

#include <string>

#include "settings/global_config.h"
#include "support/test_support.h"
#include "telephony/dialing/location_registry.h"
#include "telephony/testing/installation_for_tests.h"
#include "telephony/testing/locations_for_tests.h"

namespace {

using zq::telephony::testing::DescribeLocation;
using zq::telephony::testing::FillLondonHome;
using zq::telephony::testing::FillMunichOffice;
using zq::telephony::testing::FillNewYorkOffice;
using zq::telephony::testing::FillZurichHome;
using zq::telephony::testing::ScopedInstallation;

constexpr DWORD kMachine = 1;

class LocationItemTest : public ::testing::Test {
protected:
    ScopedInstallation installation_;
    CZqGlobalConfig config_;
};

TEST_F(LocationItemTest, EveryRealisticLocationReadsBackFieldForField) {
    for (auto fill : {FillMunichOffice, FillLondonHome, FillNewYorkOffice, FillZurichHome}) {
        CZqLocationItem saved(7);
        fill(saved);
        ASSERT_EQ(saved.SaveByIndex(), 0u);

        CZqLocationItem loaded(99);
        ASSERT_EQ(loaded.LoadByIndex(7), 0u);
        // A location saved without telephone entries comes back with eight
        // empty ones.
        if (saved.m_csaPhoneAreas.GetSize() == 0) {
            for (int slot = 0; slot < CZqLocationItem::kPhoneSlots; ++slot) {
                saved.m_csaPhoneAreas.Add("");
                saved.m_csaPhoneNumbers.Add("");
            }
        }
        EXPECT_EQ(DescribeLocation(loaded), DescribeLocation(saved));
    }
}

TEST_F(LocationItemTest, ANewItemHasNoTelephoneEntriesAndSavesEmptyOnes) {
    CZqLocationItem item(2);
    EXPECT_EQ(item.GetDataIndex(), 2u);
    EXPECT_EQ(item.m_csaPhoneAreas.GetSize(), 0);
    item.m_csCountryCode = "49";
    ASSERT_EQ(item.SaveByIndex(), 0u);
    char text[16] = "x";
    EXPECT_EQ(config_.GetValue(kMachine, installation_.SlotKey("00000002").c_str(), "PhonePager",
                               text, sizeof text, "x"),
              0u);
    EXPECT_STREQ(text, "");
}

TEST_F(LocationItemTest, AnyNonZeroTelephonyFlagLoadsAsOne) {
    CZqLocationItem item(3);
    FillZurichHome(item);
    ASSERT_EQ(item.SaveByIndex(), 0u);
    ASSERT_EQ(config_.SetValue(kMachine, installation_.SlotKey("00000003").c_str(),
                               "TAPIDialingEnabled", DWORD{5}),
              0u);
    CZqLocationItem loaded;
    ASSERT_EQ(loaded.LoadByIndex(3), 0u);
    EXPECT_EQ(loaded.m_bTAPIDialing, 1);
}

TEST_F(LocationItemTest, OverlongTextsAreStoredCut) {
    CZqLocationItem item(4);
    FillLondonHome(item);
    item.m_csAddress2 = CString('a', 300);
    item.m_csaPhoneNumbers.Add(CString('5', 256));
    ASSERT_EQ(item.SaveByIndex(), 0u);
    CZqLocationItem loaded;
    ASSERT_EQ(loaded.LoadByIndex(4), 0u);
    EXPECT_EQ(loaded.m_csAddress2, CString('a', 255));
    EXPECT_EQ(loaded.m_csaPhoneNumbers.GetAt(0), CString('5', 255));
}

TEST_F(LocationItemTest, TheCurrentLocationIsTheSlotTheRegistryNames) {
    CZqLocationItem item(5);
    FillNewYorkOffice(item);
    ASSERT_EQ(item.SaveByIndex(), 0u);

    CZqLocationItem current;
    // Nothing chosen yet: slot 0xFFFFFFFF does not exist.
    EXPECT_EQ(current.LoadCurrentLocation(), 2u);
    EXPECT_EQ(current.GetDataIndex(), 0u);

    CZqLocationRegistry registry;
    ASSERT_EQ(registry.SetCurrentIndex(5), 0u);
    ASSERT_EQ(current.LoadCurrentLocation(), 0u);
    EXPECT_EQ(current.GetDataIndex(), 5u);
    EXPECT_EQ(current.m_csLocationName, "Office");
}

// Each value of a slot is needed: without it the location does not load.
class MissingValue : public LocationItemTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(MissingValue, TheWholeLocationFailsAndTheItemIsCleared) {
    CZqLocationItem saved(6);
    FillMunichOffice(saved);
    ASSERT_EQ(saved.SaveByIndex(), 0u);
    ASSERT_EQ(config_.DeleteEntry(kMachine, installation_.SlotKey("00000006").c_str(), GetParam()),
              0u);

    CZqLocationItem loaded(1);
    FillZurichHome(loaded);
    EXPECT_EQ(loaded.LoadByIndex(6), 2u);
    CZqLocationItem cleared;
    EXPECT_EQ(DescribeLocation(loaded), DescribeLocation(cleared));
    EXPECT_EQ(loaded.GetDataIndex(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Values, MissingValue,
                         ::testing::Values("CountryIndex", "LocationName", "TAPIDialingEnabled",
                                           "CountryCode", "AreaCityCode", "InternationalAccess",
                                           "LongDistancePrefix", "LongDistanceAccess",
                                           "LocalPrefix", "DialSuffix", "CallerID", "CallWaiting",
                                           "AddressCountryIndex", "UserName", "Company", "Dept",
                                           "Address1", "Address2", "City", "State", "ZipCode",
                                           "EMail", "CompuServe", "AreaHome1", "PhoneHome1",
                                           "AreaWork2", "AreaPager", "PhonePager"));

// On the 16-bit-compatible registry every value is a sub-key of the slot.
class LocationItemOnWin32s : public ::testing::Test {
protected:
    // The system type first: the installation and the gateway take it.
    zq::test::ScopedEnvironmentVariable winver_{"ZQ_WINVER", "win32s"};
    ScopedInstallation installation_;
    CZqGlobalConfig config_;
};

TEST_F(LocationItemOnWin32s, ALocationReadsBackFieldForField) {
    CZqLocationItem saved(11);
    FillNewYorkOffice(saved);
    saved.m_bTAPIDialing = 1;
    ASSERT_EQ(saved.SaveByIndex(), 0u);
    CZqLocationItem loaded;
    ASSERT_EQ(loaded.LoadByIndex(11), 0u);
    for (int slot = 0; slot < CZqLocationItem::kPhoneSlots; ++slot) {
        saved.m_csaPhoneAreas.Add("");
        saved.m_csaPhoneNumbers.Add("");
    }
    EXPECT_EQ(DescribeLocation(loaded), DescribeLocation(saved));
    BOOL exists = FALSE;
    config_.DoesSubkeyExist(kMachine, installation_.SlotKey("00000011").c_str(), "CountryCode",
                            exists);
    EXPECT_TRUE(exists);
}

TEST_F(LocationItemOnWin32s, AFailedSaveRemovesTheWholeSlot) {
    // A slot key that cannot hold lasting sub-keys: the first value fails.
    HKEY slot = nullptr;
    ASSERT_EQ(
        RegCreateKeyExA(HKEY_CLASSES_ROOT, installation_.SlotKey("00000012").c_str(), 0, nullptr,
                        REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &slot, nullptr),
        0);
    ASSERT_EQ(RegSetValueExA(slot, "Leftover", 0, REG_SZ, reinterpret_cast<const BYTE*>("x"), 2),
              0);
    RegCloseKey(slot);

    CZqLocationItem item(12);
    FillLondonHome(item);
    EXPECT_EQ(item.SaveByIndex(), static_cast<DWORD>(ERROR_CHILD_MUST_BE_VOLATILE));
    BOOL exists = TRUE;
    config_.DoesSubkeyExist(kMachine, installation_.LocationsKey().c_str(), "00000012", exists);
    EXPECT_FALSE(exists);
}

TEST(LocationItemWithoutInstallation, NothingLoadsAndASaveLeavesNothingBehind) {
    CZqGlobalConfig config;
    config.DeleteSection(kMachine, "Software\\Zq,Inc.", nullptr);
    CZqLocationItem item(1);
    FillLondonHome(item);
    EXPECT_EQ(item.SaveByIndex(), 0x24014407u);
    EXPECT_EQ(item.LoadByIndex(1), 0x24014407u);
    EXPECT_EQ(item.m_csLocationName, "");
    BOOL exists = TRUE;
    config.DoesSubkeyExist(kMachine, "Software", "Zq,Inc.", exists);
    EXPECT_FALSE(exists);
}

}  // namespace
