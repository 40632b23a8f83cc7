#include "modules/installed_modules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "diagnostics/version_resource.h"
#include "settings/global_config.h"
#include "support/test_support.h"

namespace {

constexpr DWORD kMachine = 1;

std::vector<std::string> Strings(const CStringArray& array) {
    std::vector<std::string> strings;
    for (int i = 0; i < array.GetSize(); ++i) {
        strings.emplace_back(static_cast<const char*>(array[i]));
    }
    return strings;
}

// The registry as an installation leaves it: the suite's first user below
// the root the program's version strings name, and the modules below the
// keys the library derives from the version block.
class InstalledModules : public testing::Test {
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
        installed_ = static_cast<const char*>(version.GetInstalledModulesKey());
        DWORD ms = 0, ls = 0;
        version.GetProductVersionMajorMinor(ms, ls);
        product_version_ = std::to_string(HIWORD(ms)) + "." + std::to_string(LOWORD(ms));
    }
    void TearDown() override { config_.DeleteSection(kMachine, company_.c_str(), nullptr); }

    std::string ModuleKey(const std::string& module) const {
        return installed_ + "\\" + module + "\\" + product_version_;
    }
    void Install(const std::string& module, DWORD access, const char* template_name) {
        ASSERT_EQ(config_.SetValue(kMachine, ModuleKey(module).c_str(), "Access", access), 0u);
        if (template_name) {
            ASSERT_EQ(
                config_.SetValue(kMachine, ModuleKey(module).c_str(), "Template", template_name),
                0u);
        }
    }
    DWORD StoredAccess(const std::string& module) {
        DWORD access = 0xDEAD;
        EXPECT_EQ(config_.GetValue(kMachine, ModuleKey(module).c_str(), "Access", access, 0xDEAD),
                  0u);
        return access;
    }
    // The usual machine: a fax and a telephony module that forgot its
    // template, a viewer switched off, a broken data module and a video
    // module with an empty template name.
    void InstallSuite() {
        Install("FAX32Mirkel", 0xF, "zqfaxtpl.dll");
        Install("TELEMirkel", 0xF, nullptr);
        Install("VIEWMirkel", 0x0, "zqviewtpl.dll");
        ASSERT_EQ(config_.SetValue(kMachine, ModuleKey("DATAMirkel").c_str(), "Template", "d.dll"),
                  0u);
        Install("VIDEOMirkel", 0x1, "");
        // Another product version of a module is not this program's.
        ASSERT_EQ(
            config_.SetValue(kMachine, (installed_ + "\\Other\\9.9").c_str(), "Access", DWORD{1}),
            0u);
    }

    CZqGlobalConfig config_;
    std::string company_;
    std::string installed_;
    std::string product_version_;
};

TEST_F(InstalledModules, LoadsUsableModulesAndDowngradesThoseWithoutTemplate) {
    InstallSuite();
    CZqInstalledModules modules(TRUE);
    struct Expected {
        const char* name;
        DWORD access;
        const char* template_name;
    };
    // Registry order: names by their upper-case form.
    const Expected expected[] = {{"FAX32Mirkel", 0xF, "zqfaxtpl.dll"},
                                 {"TELEMirkel", 0xE, ""},
                                 {"VIDEOMirkel", 0x0, ""},
                                 {"VIEWMirkel", 0x0, ""}};
    ASSERT_EQ(modules.GetSize(), 4);
    for (int i = 0; i < 4; ++i) {
        const tagINSTALLEDMODULESTRUCT* record = modules.GetAt(i);
        EXPECT_STREQ(record->m_csModuleName, expected[i].name);
        EXPECT_EQ(record->m_dwAccess, expected[i].access) << expected[i].name;
        EXPECT_STREQ(record->m_csTemplateFileName, expected[i].template_name);
    }
    EXPECT_EQ(modules.GetAt(4), nullptr);
    EXPECT_EQ(modules.GetAt(-1), nullptr);
    // The registry keeps what the installation wrote.
    EXPECT_EQ(StoredAccess("TELEMirkel"), 0xFu);
}

TEST_F(InstalledModules, TemplateNamesByMask) {
    InstallSuite();
    CZqInstalledModules modules(TRUE);
    CStringArray names;
    names.Add("stale");
    modules.GetTemplateFileNames(names, 0);
    EXPECT_EQ(Strings(names), (std::vector<std::string>{"zqfaxtpl.dll", "", "", ""}));
    modules.GetTemplateFileNames(names, 1);
    EXPECT_EQ(Strings(names), (std::vector<std::string>{"zqfaxtpl.dll"}));
    modules.GetTemplateFileNames(names, 0x6);
    EXPECT_EQ(Strings(names), (std::vector<std::string>{"zqfaxtpl.dll", ""}));
    modules.GetTemplateFileNames(names, 0x10);
    EXPECT_TRUE(Strings(names).empty());
}

TEST_F(InstalledModules, TemplateInstalledByType) {
    InstallSuite();
    Install("daTAmirKEL", 0x7, "zqdatatpl.dll");  // the key of any case
    CZqInstalledModules modules(TRUE);
    EXPECT_TRUE(modules.IsTemplateInstalled(CZqInstalledModules::kFaxModule));
    EXPECT_TRUE(modules.IsTemplateInstalled(CZqInstalledModules::kDataModule));
    EXPECT_FALSE(modules.IsTemplateInstalled(CZqInstalledModules::kTelephonyModule));
    EXPECT_FALSE(modules.IsTemplateInstalled(CZqInstalledModules::kViewerModule));
    EXPECT_FALSE(modules.IsTemplateInstalled(CZqInstalledModules::kVideoModule));
    for (int unknown : {0, 99, 301, -300}) {
        EXPECT_FALSE(modules.IsTemplateInstalled(unknown)) << unknown;
        EXPECT_STREQ(CZqInstalledModules::GetTypeName(unknown), "");
    }
}

TEST_F(InstalledModules, SwitchingOffCannotBeUndoneAfterALoad) {
    Install("FAX32Mirkel", 0x5, "zqfaxtpl.dll");
    Install("DATAMirkel", 0x1, "zqdatatpl.dll");
    CZqInstalledModules modules(TRUE);
    modules.SetTemplateInstalled(CZqInstalledModules::kFaxModule, TRUE);
    EXPECT_EQ(StoredAccess("FAX32Mirkel"), 0xFu);  // the type's default flags
    modules.SetTemplateInstalled(CZqInstalledModules::kDataModule, FALSE);
    EXPECT_EQ(StoredAccess("DATAMirkel"), 0u);
    // Memory is unchanged until the next load.
    EXPECT_TRUE(modules.IsTemplateInstalled(CZqInstalledModules::kDataModule));
    EXPECT_EQ(modules.GetAt(1)->m_dwAccess, 0x5u);
    modules.SetTemplateInstalled(CZqInstalledModules::kDataModule, TRUE);
    EXPECT_EQ(StoredAccess("DATAMirkel"), 0x7u);  // still listed as usable

    modules.SetTemplateInstalled(CZqInstalledModules::kDataModule, FALSE);
    ASSERT_TRUE(modules.Load());
    EXPECT_FALSE(modules.IsTemplateInstalled(CZqInstalledModules::kDataModule));
    modules.SetTemplateInstalled(CZqInstalledModules::kDataModule, TRUE);
    EXPECT_EQ(StoredAccess("DATAMirkel"), 0u);  // a module switched off stays off

    // Types without a listed module and unknown types write nothing.
    modules.SetTemplateInstalled(CZqInstalledModules::kViewerModule, TRUE);
    modules.SetTemplateInstalled(12345, TRUE);
    BOOL exists = TRUE;
    ASSERT_EQ(config_.DoesSubkeyExist(kMachine, installed_.c_str(), "VIEWMirkel", exists), 0u);
    EXPECT_FALSE(exists);
}

TEST_F(InstalledModules, TemplateNamesUpTo259Characters) {
    Install("FAX32Mirkel", 0xF, std::string(259, 'f').c_str());
    Install("TELEMirkel", 0xF, std::string(260, 't').c_str());
    CZqInstalledModules modules(TRUE);
    ASSERT_EQ(modules.GetSize(), 2);
    EXPECT_EQ(modules.GetAt(0)->m_csTemplateFileName.GetLength(), 259);
    EXPECT_EQ(modules.GetAt(1)->m_dwAccess, 0xEu);
    EXPECT_STREQ(modules.GetAt(1)->m_csTemplateFileName, "");
}

TEST_F(InstalledModules, AccessOfAnotherTypeIsNoAccess) {
    ASSERT_EQ(config_.SetValue(kMachine, ModuleKey("FAX32Mirkel").c_str(), "Access", "15"), 0u);
    Install("TELEMirkel", 0xF, "zqteltpl.dll");
    CZqInstalledModules modules(TRUE);
    ASSERT_EQ(modules.GetSize(), 1);
    EXPECT_STREQ(modules.GetAt(0)->m_csModuleName, "TELEMirkel");
}

TEST_F(InstalledModules, WithoutAnInstallationTheListIsEmpty) {
    InstallSuite();
    CZqInstalledModules modules(TRUE);
    ASSERT_EQ(modules.GetSize(), 4);
    config_.DeleteSection(kMachine, company_.c_str(), nullptr);
    EXPECT_FALSE(modules.Load());
    EXPECT_EQ(modules.GetSize(), 0);
    CZqInstalledModules unloaded(FALSE);
    EXPECT_EQ(unloaded.GetSize(), 0);
    unloaded.SetTemplateInstalled(CZqInstalledModules::kFaxModule, TRUE);
}

TEST(InstalledModuleTypes, NamesAndVersionText) {
    EXPECT_STREQ(CZqInstalledModules::GetTypeName(100), "VIDEOMirkel");
    EXPECT_STREQ(CZqInstalledModules::GetTypeName(200), "TELEMirkel");
    EXPECT_STREQ(CZqInstalledModules::GetTypeName(300), "FAX32Mirkel");
    EXPECT_STREQ(CZqInstalledModules::GetTypeName(400), "VIEWMirkel");
    EXPECT_STREQ(CZqInstalledModules::GetTypeName(500), "DATAMirkel");
    EXPECT_STREQ(CZqInstalledModules::FormatProductVersion(0x0003000A), "3.10");
}

}  // namespace
