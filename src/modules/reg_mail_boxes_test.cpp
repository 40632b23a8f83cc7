#include "modules/reg_mail_boxes.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "diagnostics/version_resource.h"
#include "frame/global_directory_functions.h"
#include "settings/global_config.h"
#include "support/test_support.h"

namespace {

constexpr DWORD kMachine = 1;

using Boxes = std::vector<std::pair<DWORD, std::string>>;

Boxes Contents(const CZqRegMailBoxes& list) {
    Boxes boxes;
    for (int i = 0; i < list.GetSize(); ++i) {
        boxes.emplace_back(list.GetAt(i)->m_dwNumber,
                           static_cast<const char*>(list.GetAt(i)->m_csName));
    }
    return boxes;
}

std::string ExecutableDosFolder() {
    char module[MAX_PATH + 1] = {};
    GetModuleFileNameA(nullptr, module, MAX_PATH);
    std::string path = module;
    return path.substr(0, path.find_last_of('\\'));
}

// The registry as an installation leaves it: a first user below the root
// the program's version strings name; mailboxes below the keys the library
// derives from the version block.
class MailBoxes : public testing::Test {
protected:
    void SetUp() override {
        CZqVersionResource strings;
        strings.ExtractVersionInfo();
        company_ =
            std::string("Software\\") + static_cast<const char*>(strings.GetStandardValue(1));
        const std::string root = company_ + "\\" +
                                 static_cast<const char*>(strings.GetStandardValue(7)) + "\\" +
                                 static_cast<const char*>(strings.GetStandardValue(8));
        ASSERT_EQ(config_.CreateKey(kMachine, (root + "\\Users\\Installer").c_str()), 0u);
        CZqVersionResource version;
        ASSERT_TRUE(version.ExtractVersionInfo());
        key_ = std::string(static_cast<const char*>(version.GetMirkelsRootKey())) + "\\MailBoxes";
    }
    void TearDown() override { config_.DeleteSection(kMachine, company_.c_str(), nullptr); }

    void Store(const char* subkey, const char* name) {
        const std::string key = key_ + "\\" + subkey;
        if (name) {
            ASSERT_EQ(config_.SetValue(kMachine, key.c_str(), "Name", name), 0u);
        } else {
            ASSERT_EQ(config_.CreateKey(kMachine, key.c_str()), 0u);
        }
    }
    bool HasUserDefault() {
        BOOL exists = FALSE;
        config_.DoesEntryExist(kMachine, key_.c_str(), "UserDefault", exists);
        return exists;
    }

    CZqGlobalConfig config_;
    std::string company_;
    std::string key_;
};

TEST_F(MailBoxes, LoadNumbersSubkeysAsAtolDoesAndNamesBadBoxes) {
    Store("00000042", "Sales");
    Store("00000007", "");
    Store("00000010", nullptr);
    Store("abc", "Letters");
    Store("-0000005", "Negative");
    Store("12x", std::string(300, 'n').c_str());
    ASSERT_EQ(config_.SetValue(kMachine, key_.c_str(), "UserDefault", DWORD{42}), 0u);
    CZqRegMailBoxes list;
    list.Add(1, "replaced");
    ASSERT_TRUE(list.Load());
    // Registry order: names by their upper-case form.
    EXPECT_EQ(Contents(list), (Boxes{{0xFFFFFFFB, "Negative"},
                                     {7, "BadBox"},
                                     {10, "BadBox"},
                                     {42, "Sales"},
                                     {12, "BadBox"},  // a name that does not fit reads as none
                                     {0, "Letters"}}));
    EXPECT_EQ(list.GetUserDefault(), 42u);
}

TEST_F(MailBoxes, WriteReplacesTheKeyAndDropsTheDefault) {
    Store("00000042", "Old");
    ASSERT_EQ(config_.SetValue(kMachine, key_.c_str(), "UserDefault", DWORD{42}), 0u);
    CZqRegMailBoxes list;
    list.Add(3, "Three");
    list.Add(0xFFFFFFFB, "Minus five");
    list.Add(123456789, "Nine digits");
    ASSERT_TRUE(list.Write());
    EXPECT_FALSE(HasUserDefault());
    EXPECT_EQ(list.GetUserDefault(), 3u);  // the first mailbox stands in

    std::vector<std::string> subkeys;
    config_.EnumEntries(
        kMachine, key_.c_str(),
        [](void* context, const char* name) -> DWORD {
            static_cast<std::vector<std::string>*>(context)->push_back(name);
            return 0;
        },
        &subkeys);
    EXPECT_EQ(subkeys, (std::vector<std::string>{"-0000005", "00000003", "123456789"}));

    CZqRegMailBoxes again;
    ASSERT_TRUE(again.Load());
    EXPECT_EQ(Contents(again),
              (Boxes{{0xFFFFFFFB, "Minus five"}, {3, "Three"}, {123456789, "Nine digits"}}));

    list.SetUserDefault(77);
    EXPECT_TRUE(HasUserDefault());
    EXPECT_EQ(list.GetUserDefault(), 77u);  // kept although no mailbox 77 exists

    CZqRegMailBoxes empty;
    ASSERT_TRUE(empty.Write());
    BOOL exists = TRUE;
    config_.DoesEntryExist(kMachine, key_.c_str(), "UserDefault", exists);
    EXPECT_FALSE(exists);
    ASSERT_TRUE(again.Load());
    EXPECT_EQ(again.GetSize(), 0);
}

TEST_F(MailBoxes, DefaultsWithoutAStoredOne) {
    CZqRegMailBoxes list;
    EXPECT_EQ(list.GetUserDefault(), 0u);
    EXPECT_EQ(list.GetDefault(), nullptr);
    list.Add(9, "Nine");
    list.Add(4, "Four");
    EXPECT_EQ(list.GetUserDefault(), 9u);
    EXPECT_EQ(list.GetDefault()->m_dwNumber, 9u);
}

TEST_F(MailBoxes, ListEditing) {
    CZqRegMailBoxes list;
    tagREGMAILBOXSTRUCT* first = list.Add(5, "First five");
    ASSERT_NE(first, nullptr);
    tagREGMAILBOXSTRUCT* second = list.Add(5, "Second five");
    list.Add(6, "Six");
    EXPECT_EQ(list.GetByNumber(5), first);
    EXPECT_EQ(list.GetByNumber(8), nullptr);
    EXPECT_TRUE(list.Remove(DWORD{5}));
    EXPECT_EQ(list.GetByNumber(5), second);
    EXPECT_FALSE(list.Remove(DWORD{8}));
    EXPECT_TRUE(list.Remove(second));
    EXPECT_FALSE(list.Remove(second));
    EXPECT_FALSE(list.Remove(static_cast<tagREGMAILBOXSTRUCT*>(nullptr)));
    EXPECT_EQ(Contents(list), (Boxes{{6, "Six"}}));
    list.RemoveAll();
    EXPECT_EQ(list.GetSize(), 0);
}

TEST_F(MailBoxes, UniquenessLoadsAnEmptyList) {
    CZqRegMailBoxes list;
    EXPECT_TRUE(list.IsNameUnique("Sales"));
    EXPECT_FALSE(list.DoesNumberExist(42));
    Store("00000042", "Sales");
    EXPECT_FALSE(list.IsNameUnique("sALES"));
    EXPECT_TRUE(list.IsNameUnique("Sales2"));
    EXPECT_TRUE(list.IsNameUnique(nullptr));
    EXPECT_TRUE(list.DoesNumberExist(42));
    EXPECT_FALSE(list.DoesNumberExist(0));

    // A list that holds something is not reloaded.
    CZqRegMailBoxes own;
    own.Add(1, "Mine");
    EXPECT_TRUE(own.IsNameUnique("Sales"));
    EXPECT_FALSE(own.DoesNumberExist(42));
    EXPECT_FALSE(own.IsNameUnique("MINE"));
}

TEST(MailBoxFolders, Suffixes) {
    struct Case {
        int folder;
        const char* suffix;
    };
    for (const Case& c : {Case{0, "\\INBOX"}, Case{1, "\\OUTBOX"}, Case{2, "\\BOXSETUP"},
                          Case{3, "\\BOXSETUP\\PROMPTS"}, Case{4, ""}, Case{5, "\\ARCHIVE"},
                          Case{6, ""}, Case{100, ""}, Case{-1, ""}}) {
        EXPECT_STREQ(CZqRegMailBoxes::GetFolderSuffix(static_cast<MAILBOXFOLDER>(c.folder)),
                     c.suffix)
            << c.folder;
    }
}

// The only test that makes folders beside the test program (other test
// processes run beside it), under numbers of its own.
TEST_F(MailBoxes, PathsBesideTheExecutable) {
    const std::string mailbox = ExecutableDosFolder() + "\\MAILBOX\\";
    CString path = "untouched";
    EXPECT_FALSE(CZqRegMailBoxes::GetMailBoxPath(42, path, MBF_INBOX));
    EXPECT_STREQ(path, "untouched");

    Store("00004242", "Sales");
    Store("00004207", "Support");
    const std::string box42 = mailbox + "00004242";
    const std::string box07 = mailbox + "00004207";
    DWORD exists = 0;
    ASSERT_EQ(CZqGlobalDirectoryFunctions::CreateDirChain(box42.c_str(), exists), 0u);

    ASSERT_TRUE(CZqRegMailBoxes::GetMailBoxPath(4242, path, MBF_INBOX));
    EXPECT_EQ(std::string(path), box42 + "\\INBOX");
    DWORD is_directory = 0;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Exists(path, is_directory), 0u);
    EXPECT_EQ(is_directory, 1u);

    // Only the last folder is made.
    ASSERT_TRUE(CZqRegMailBoxes::GetMailBoxPath(4242, path, MBF_PROMPTS));
    EXPECT_EQ(std::string(path), box42 + "\\BOXSETUP\\PROMPTS");
    EXPECT_NE(CZqGlobalDirectoryFunctions::Exists(path, is_directory), 0u);

    // An unknown number falls back to the first mailbox (registry order).
    ASSERT_TRUE(CZqRegMailBoxes::GetMailBoxPath(99, path, MBF_MAILBOX));
    EXPECT_EQ(std::string(path), box07);
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Exists(path, is_directory), 0u);
    ASSERT_TRUE(CZqRegMailBoxes::GetMailBoxPath(4207, path, MBF_ARCHIVE));
    EXPECT_EQ(std::string(path), box07 + "\\ARCHIVE");
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Exists(path, is_directory), 0u);

    CZqGlobalDirectoryFunctions::DeleteDirChain(box42.c_str());
    CZqGlobalDirectoryFunctions::DeleteDirChain(box07.c_str());
    CZqGlobalDirectoryFunctions::Delete((ExecutableDosFolder() + "\\MAILBOX").c_str());
}

TEST(MailBoxesUninstalled, NothingIsReadOrWritten) {
    CZqRegMailBoxes list;
    list.Add(3, "Three");
    EXPECT_FALSE(list.Load());
    EXPECT_EQ(list.GetSize(), 0);
    list.Add(3, "Three");
    EXPECT_FALSE(list.Write());
    list.SetUserDefault(3);
    EXPECT_EQ(list.GetUserDefault(), 3u);
    BOOL exists = TRUE;
    CZqGlobalConfig().DoesSubkeyExist(kMachine, "Software", "Zq,Inc.", exists);
    EXPECT_FALSE(exists);
}

}  // namespace
