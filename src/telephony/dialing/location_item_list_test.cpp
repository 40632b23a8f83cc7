#include "telephony/dialing/location_item_list.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "settings/global_config.h"
#include "support/process_probe.h"
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
constexpr char kChildVariable[] = "ZQ_LOCATION_LIST_CHILD";

// What a list holds, item by item, with the current index first.
std::string DescribeList(CZqLocationItemList& list) {
    std::string text = "current=" + std::to_string(list.GetCurrentIndex()) + "\n";
    for (int i = 0; i < list.GetSize(); ++i) {
        text += "--\n" + DescribeLocation(*list.GetAt(i));
    }
    return text;
}

// Started with kChildVariable naming a file, this test program loads the
// locations in a process of its own, writes what it loaded to that file and
// exits before any test runs.
[[maybe_unused]] const bool kListChild = [] {
    const char* out = std::getenv(kChildVariable);
    if (out == nullptr) {
        return false;
    }
    CZqLocationItemList list;
    const DWORD rc = list.LoadAllItems();
    CZqLocationItem current;
    const DWORD currentRc = current.LoadCurrentLocation();
    std::ofstream file(out, std::ios::binary);
    file << "rc=" << rc << "\n"
         << DescribeList(list) << "==\ncurrentRc=" << currentRc << "\n"
         << DescribeLocation(current);
    file.close();
    std::_Exit(file ? 0 : 3);
}();

// Runs the child in a process of its own: what it wrote, or "" on failure.
std::string LoadInAnotherProcess() {
    const std::string out = zq::test::MakeScratchFolder("child") + "/list.txt";
    zq::test::ScopedEnvironmentVariable child(kChildVariable, out.c_str());
    std::string command = "\"" + zq::test::ProbeExecutable() + "\"";
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process)) {
        ADD_FAILURE() << "cannot start " << command << ": " << GetLastError();
        return "";
    }
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 60000), WAIT_OBJECT_0);
    DWORD exitCode = 99;
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    EXPECT_EQ(exitCode, 0u);
    return zq::test::ReadFileBytes(out);
}

class LocationItemListTest : public ::testing::Test {
protected:
    // Saves a location made by `fill` in slot `index`.
    void Save(void (*fill)(CZqLocationItem&), DWORD index) {
        CZqLocationItem item(index);
        fill(item);
        ASSERT_EQ(item.SaveByIndex(), 0u);
    }

    ScopedInstallation installation_;
    CZqGlobalConfig config_;
};

TEST_F(LocationItemListTest, ASavedListReadsBackFieldForFieldInAnotherProcess) {
    CZqLocationItemList saved;
    for (auto fill : {FillMunichOffice, FillLondonHome, FillNewYorkOffice, FillZurichHome}) {
        CZqLocationItem* item = saved.GetNewLocation();
        ASSERT_NE(item, nullptr);
        fill(*item);
        // Loaded items carry eight telephone entries.
        while (item->m_csaPhoneAreas.GetSize() < CZqLocationItem::kPhoneSlots) {
            item->m_csaPhoneAreas.Add("");
            item->m_csaPhoneNumbers.Add("");
        }
    }
    // Nothing is written before the list is saved.
    BOOL exists = TRUE;
    config_.DoesSubkeyExist(kMachine, installation_.LocationsKey().c_str(), "00000000", exists);
    EXPECT_FALSE(exists);
    saved.SaveAllItems();
    saved.SetCurrentIndex(2);

    const std::string expected = "rc=0\n" + DescribeList(saved) + "==\ncurrentRc=0\n" +
                                 DescribeLocation(*saved.FindByIndex(2));
    EXPECT_EQ(LoadInAnotherProcess(), expected);

    // And in this process, through a fresh list.
    CZqLocationItemList loaded;
    ASSERT_EQ(loaded.LoadAllItems(), 0u);
    EXPECT_EQ(DescribeList(loaded), DescribeList(saved));
}

TEST_F(LocationItemListTest, OnlyDigitNamesAreSlots) {
    Save(FillZurichHome, 3);
    const std::string& key = installation_.LocationsKey();
    ASSERT_EQ(config_.CreateKey(kMachine, (key + "\\3").c_str()), 0u);
    ASSERT_EQ(config_.SetValue(kMachine, (key + "\\Old").c_str(), "CountryCode", "49"), 0u);
    ASSERT_EQ(config_.CreateKey(kMachine, (key + "\\3a").c_str()), 0u);

    CZqLocationItemList list;
    ASSERT_EQ(list.LoadAllItems(), 0u);
    // "00000003" and "3" both load slot 3.
    ASSERT_EQ(list.GetSize(), 2);
    EXPECT_EQ(list.GetAt(0)->GetDataIndex(), 3u);
    EXPECT_EQ(list.GetAt(1)->GetDataIndex(), 3u);
    EXPECT_EQ(list.GetAt(1)->m_csCity, "Z\xFCrich");
}

TEST_F(LocationItemListTest, ASlotThatFailsEndsTheLoadingAndKeepsWhatCameBefore) {
    Save(FillMunichOffice, 1);
    Save(FillLondonHome, 2);
    Save(FillNewYorkOffice, 4);
    ASSERT_EQ(config_.DeleteEntry(kMachine, installation_.SlotKey("00000002").c_str(), "Company"),
              0u);
    CZqLocationItemList list;
    EXPECT_EQ(list.LoadAllItems(), 2u);
    ASSERT_EQ(list.GetSize(), 1);
    EXPECT_EQ(list.GetAt(0)->GetDataIndex(), 1u);
}

TEST_F(LocationItemListTest, NoLocationsYetIsAnEmptyList) {
    CZqLocationItemList list;
    EXPECT_EQ(list.LoadAllItems(), 0u);
    EXPECT_EQ(list.GetSize(), 0);
    EXPECT_EQ(list.GetFirstItem(), nullptr);
    EXPECT_EQ(list.GetCurrentIndex(), 0xFFFFFFFFu);
    list.SetCurrentIndex(7);
    EXPECT_EQ(list.GetCurrentIndex(), 7u);
}

TEST(LocationItemListWithoutInstallation, LoadingIsRefused) {
    CZqGlobalConfig().DeleteSection(kMachine, "Software\\Zq,Inc.", nullptr);
    CZqLocationItemList list;
    EXPECT_EQ(list.LoadAllItems(), 0x24004000u);
    EXPECT_EQ(list.GetCurrentIndex(), 0xFFFFFFFFu);
}

struct UniqueIndexCase {
    std::vector<DWORD> indexes;
    DWORD expected;
};

class UniqueIndex : public ::testing::TestWithParam<UniqueIndexCase> {};

TEST_P(UniqueIndex, IsTheSmallestIndexNoItemHas) {
    CZqLocationItemList list;
    for (DWORD index : GetParam().indexes) {
        list.Add(new CZqLocationItem(index));
    }
    list.Add(nullptr);  // null entries are skipped
    EXPECT_EQ(list.GetUniqueIndex(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Lists, UniqueIndex,
                         ::testing::Values(UniqueIndexCase{{}, 0}, UniqueIndexCase{{0, 1, 3}, 2},
                                           UniqueIndexCase{{3, 0, 1}, 2},
                                           UniqueIndexCase{{2, 1, 0}, 3},
                                           UniqueIndexCase{{1, 2}, 0},
                                           UniqueIndexCase{{0, 0, 1}, 2}));

struct NameCase {
    const char* query;
    int prefix;
    const char* found;  // name of the item found, NULL for none
};

class FindByName : public ::testing::TestWithParam<NameCase> {
protected:
    FindByName() {
        for (const char* name : {"Office", "M\xFCnchen B\xFCro", "Off", "Home"}) {
            CZqLocationItem* item = new CZqLocationItem(static_cast<DWORD>(list_.GetSize()));
            item->m_csLocationName = name;
            list_.Add(item);
        }
        list_.InsertAt(1, static_cast<CZqLocationItem*>(nullptr));
    }
    CZqLocationItemList list_;
};

TEST_P(FindByName, ComparesWithoutCaseAndByPrefixOnlyWhenAsked) {
    const NameCase& c = GetParam();
    CZqLocationItem* item = list_.FindByName(c.query, c.prefix);
    if (c.found == nullptr) {
        EXPECT_EQ(item, nullptr);
    } else {
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->m_csLocationName, c.found);
    }
}

INSTANTIATE_TEST_SUITE_P(Names, FindByName,
                         ::testing::Values(NameCase{"Off", 1, "Office"},
                                           NameCase{"Offi", 0, nullptr}, NameCase{"off", 0, "Off"},
                                           NameCase{"OFFICE", 0, "Office"},
                                           NameCase{"m\xFCnchen b\xFCro", 0, "M\xFCnchen B\xFCro"},
                                           NameCase{"M\xDCNCHEN", 1, "M\xFCnchen B\xFCro"},
                                           NameCase{"Homeoffice", 1, nullptr},
                                           NameCase{"", 1, nullptr}, NameCase{nullptr, 1, nullptr},
                                           NameCase{"Garage", 1, nullptr}));

TEST_F(LocationItemListTest, DeleteByNameAlwaysMatchesByPrefixAndRemovesTheSlot) {
    Save(FillNewYorkOffice, 0);
    Save(FillLondonHome, 1);
    CZqLocationItemList list;
    ASSERT_EQ(list.LoadAllItems(), 0u);
    ASSERT_EQ(list.GetSize(), 2);

    EXPECT_FALSE(list.DeleteByName(""));
    EXPECT_FALSE(list.DeleteByName(nullptr));
    EXPECT_FALSE(list.DeleteByName("Garage"));
    EXPECT_EQ(list.FindByName("off", 0), nullptr);
    EXPECT_TRUE(list.DeleteByName("off"));
    ASSERT_EQ(list.GetSize(), 1);
    EXPECT_EQ(list.GetAt(0)->m_csLocationName, "London home");
    BOOL exists = TRUE;
    config_.DoesSubkeyExist(kMachine, installation_.LocationsKey().c_str(), "00000000", exists);
    EXPECT_FALSE(exists);

    // An item whose slot does not count as existing leaves the registry alone.
    ASSERT_EQ(config_.SetValue(kMachine, installation_.SlotKey("00000005").c_str(), "City", "Bern"),
              0u);
    CZqLocationItem* unsaved = list.GetNewLocation();
    EXPECT_EQ(unsaved->GetDataIndex(), 0u);
    unsaved->m_dwDataIndex = 5;
    unsaved->m_csLocationName = "Bern";
    EXPECT_TRUE(list.DeleteByName("BERN"));
    config_.DoesSubkeyExist(kMachine, installation_.LocationsKey().c_str(), "00000005", exists);
    EXPECT_TRUE(exists);
}

TEST(LocationItemListLookups, ByIndexAndByCountrySkipEmptyEntries) {
    CZqLocationItemList list;
    list.Add(nullptr);
    EXPECT_EQ(list.GetFirstItem(), nullptr);
    auto* munich = new CZqLocationItem(4);
    FillMunichOffice(*munich);
    auto* zurich = new CZqLocationItem(9);
    FillZurichHome(*zurich);
    list.Add(munich);
    list.Add(zurich);
    EXPECT_EQ(list.FindByIndex(9), zurich);
    EXPECT_EQ(list.FindByIndex(5), nullptr);
    EXPECT_EQ(list.FindByCountryIndex(49), munich);
    EXPECT_EQ(list.FindByCountryIndex(44), nullptr);
    list.AddItemsToListBox(nullptr);  // no list box yet: nothing happens
}

}  // namespace
