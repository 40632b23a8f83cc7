#include "diagnostics/version_resource.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/global_config.h"
#include "support/test_support.h"

namespace {

using zq::test::ScopedEnvironmentVariable;

constexpr DWORD kMachine = 1;
// The suite's root as the test programs' own version block gives it.
constexpr char kSuiteRoot[] = "Software\\Zq,Inc.\\Zq Communication Suite\\1.0";
constexpr char kInstaller[] = "Installer";

std::string UserName() {
    char name[UNLEN + 1] = {};
    DWORD size = sizeof name;
    EXPECT_TRUE(GetUserNameA(name, &size));
    return name;
}

std::string ModuleFile(const char* module) {
    return zq::test::ExecutableFolder() + "/" + module + ".dll.so";
}

// The registry as an installation leaves it for one product: the first
// user's settings below Users, written through the library's gateway.
void Install(CZqGlobalConfig& config, const std::string& root, const char* internal_name,
             const char* version) {
    const std::string user = root + "\\Users\\" + kInstaller;
    const std::string module = user + "\\Modules\\" + internal_name + "\\" + version;
    ASSERT_EQ(config.SetValue(kMachine, module.c_str(), "Trace", DWORD{1}), 0u);
    ASSERT_EQ(config.SetValue(kMachine, module.c_str(), "Retries", DWORD{1000}), 0u);
    ASSERT_EQ(config.SetValue(kMachine, module.c_str(), "Folder", "C:\\Zq\\Fax"), 0u);
    ASSERT_EQ(
        config.SetValue(kMachine, (user + "\\PhoneLists\\Default").c_str(), "File", "phone.lst"),
        0u);
    ASSERT_EQ(config.CreateKey(kMachine, (user + "\\SpeedDialLists").c_str()), 0u);
    ASSERT_EQ(config.SetValue(kMachine, user.c_str(), "NoviceMode", DWORD{1}), 0u);
}

struct SystemCase {
    const char* winver;
    bool typed_values;  // values of their own type (not Win32s)
};

// One system type per instance, with the suite's keys removed around each
// test.
class VersionResource : public testing::TestWithParam<SystemCase> {
protected:
    VersionResource() : winver_("ZQ_WINVER", GetParam().winver) { Clean(); }
    ~VersionResource() override { Clean(); }
    void Clean() {
        for (const char* company :
             {"Software\\Zq,Inc.", "Software\\Zq GmbH", "Software\\Zq Anonymous"}) {
            config_.DeleteSection(kMachine, company, nullptr);
        }
    }
    std::string Read(const std::string& key, const char* name) {
        char text[64] = {};
        EXPECT_EQ(config_.GetValue(kMachine, key.c_str(), name, text, sizeof text, ""), 0u)
            << key << " " << name;
        return text;
    }
    DWORD Number(const std::string& key, const char* name) {
        DWORD number = 0;
        EXPECT_EQ(config_.GetValue(kMachine, key.c_str(), name, number, 0), 0u)
            << key << " " << name;
        return number;
    }

    ScopedEnvironmentVariable winver_;
    CZqGlobalConfig config_;
};

INSTANTIATE_TEST_SUITE_P(Systems, VersionResource,
                         testing::Values(SystemCase{"nt4", true}, SystemCase{"win95", true},
                                         SystemCase{"win32s", false}),
                         [](const testing::TestParamInfo<SystemCase>& info) {
                             return std::string(info.param.winver);
                         });

TEST_P(VersionResource, KeysOfTheRunningProgramForANewUser) {
    Install(config_, kSuiteRoot, "zq_diagnostics_tests", "1.0");
    CZqVersionResource version;
    ASSERT_TRUE(version.ExtractVersionInfo());
    EXPECT_NE(version.GetModuleHandle(), nullptr);
    EXPECT_EQ(version.GetStandardValue(1), "Zq,Inc.");
    EXPECT_EQ(version.GetStandardValue(7), "Zq Communication Suite");
    EXPECT_EQ(version.GetStandardValue(8), "1.0");
    EXPECT_EQ(version.GetInternalName(), "zq_diagnostics_tests");
    EXPECT_EQ(version.GetLegalCopyright(), "Copyright (C) Zq,Inc.");
    EXPECT_EQ(version.GetStandardName(3), "FileVersion");

    const std::string root = kSuiteRoot;
    const std::string user = root + "\\Users\\" + UserName();
    EXPECT_EQ(version.GetMirkelsRootKey(), root.c_str());
    EXPECT_EQ(version.GetUsersKey(), (root + "\\Users").c_str());
    EXPECT_EQ(version.GetCurrentUserKey(), user.c_str());
    EXPECT_EQ(version.GetInstalledModulesKey(), (user + "\\Modules").c_str());
    EXPECT_EQ(version.GetModuleRootKey(), (user + "\\Modules\\zq_diagnostics_tests\\1.0").c_str());
    EXPECT_EQ(version.GetPhoneListsKey(), (user + "\\PhoneLists").c_str());
    EXPECT_EQ(version.GetSpeedDialListsKey(), (user + "\\SpeedDialLists").c_str());
    EXPECT_EQ(version.GetFaxOnDemandListsKey(), (user + "\\FaxOnDemandLists").c_str());

    // The new user works on a copy of the first user's settings.
    const std::string module = version.GetModuleRootKey().operator LPCTSTR();
    EXPECT_EQ(Read(module, "Folder"), "C:\\Zq\\Fax");
    EXPECT_EQ(Number(module, "Trace"), 1u);
    // Numbers travel through the copy by their low byte only.
    EXPECT_EQ(Number(module, "Retries"), GetParam().typed_values ? 0xFFFFFFE8u : 1000u);
    EXPECT_EQ(Read(user + "\\PhoneLists\\Default", "File"), "phone.lst");
    BOOL exists = FALSE;
    EXPECT_EQ(config_.DoesSubkeyExist(kMachine, user.c_str(), "SpeedDialLists", exists), 0u);
    EXPECT_TRUE(exists);
}

TEST_P(VersionResource, AKnownUserIsNotCopiedAgain) {
    Install(config_, kSuiteRoot, "zq_diagnostics_tests", "1.0");
    {
        CZqVersionResource first;
        ASSERT_TRUE(first.ExtractVersionInfo());
    }
    const std::string installer = std::string(kSuiteRoot) + "\\Users\\" + kInstaller;
    const std::string user = std::string(kSuiteRoot) + "\\Users\\" + UserName();
    ASSERT_EQ(config_.SetValue(kMachine, installer.c_str(), "NoviceMode", DWORD{0}), 0u);
    ASSERT_EQ(config_.SetValue(kMachine, user.c_str(), "Own", "mine"), 0u);
    CZqVersionResource second;
    ASSERT_TRUE(second.ExtractVersionInfo());
    EXPECT_EQ(Number(user, "NoviceMode"), 1u);
    EXPECT_EQ(Read(user, "Own"), "mine");
}

TEST_P(VersionResource, WithoutAnyUserThereAreNoKeys) {
    CZqVersionResource version;
    EXPECT_FALSE(version.ExtractVersionInfo());
    EXPECT_EQ(version.GetCurrentUserKey(), "");
    EXPECT_EQ(version.GetMirkelsRootKey(), "");
    // The strings were read all the same.
    EXPECT_EQ(version.GetStandardValue(1), "Zq,Inc.");
    ASSERT_EQ(config_.CreateKey(kMachine, (std::string(kSuiteRoot) + "\\Users").c_str()), 0u);
    EXPECT_FALSE(version.ExtractVersionInfo());
}

TEST_P(VersionResource, AFailedCopyLeavesTheUserOnTheFirstUsersKey) {
    if (!GetParam().typed_values) {
        GTEST_SKIP() << "every Win32s value is text that copies";
    }
    Install(config_, kSuiteRoot, "zq_diagnostics_tests", "1.0");
    // Data too large for the copy's buffer stops it.
    const std::string installer = std::string(kSuiteRoot) + "\\Users\\" + kInstaller;
    std::vector<unsigned char> big(9000, 0x5A);
    ASSERT_EQ(config_.SetAnyValueType(kMachine, installer.c_str(), "Big", big.data(),
                                      static_cast<DWORD>(big.size()), REG_BINARY),
              0u);
    CZqVersionResource version;
    ASSERT_TRUE(version.ExtractVersionInfo());
    EXPECT_EQ(version.GetCurrentUserKey(), installer.c_str());
    EXPECT_EQ(version.GetModuleRootKey(),
              (installer + "\\Modules\\zq_diagnostics_tests\\1.0").c_str());
}

TEST_P(VersionResource, FlagsAndFileTypesOfAModule) {
    Install(config_, "Software\\Zq,Inc.\\Zq Fax\\2.5", "ZQFAXMOD", "2.5");
    CZqVersionResource version;
    ASSERT_TRUE(version.ExtractVersionInfo(ModuleFile("zqvtflag").c_str()));
    EXPECT_EQ(version.GetModuleHandle(), nullptr);
    EXPECT_EQ(version.IsModuleDebug(), 1);
    EXPECT_EQ(version.IsModulePrerelease(), 2);
    EXPECT_EQ(version.IsModulePatched(), 4);
    // A driver (3) is an executable and a library as well.
    EXPECT_TRUE(version.IsModuleEXE());
    EXPECT_TRUE(version.IsModuleDLL());
    EXPECT_TRUE(version.IsModuleDriver());
    DWORD ms = 0, ls = 0;
    version.GetFileVersionMajorMinor(ms, ls);
    EXPECT_EQ(ms, 0x00020005u);
    EXPECT_EQ(ls, 0x00010007u);
    version.GetProductVersionMajorMinor(ms, ls);
    EXPECT_EQ(ms, 0x00020005u);
    EXPECT_EQ(ls, 0u);
    version.GetDateTimeStampMajorMinor(ms, ls);
    EXPECT_EQ(ms, 0u);
    EXPECT_EQ(ls, 0u);
    EXPECT_EQ(version.GetModuleRootKey(),
              ("Software\\Zq,Inc.\\Zq Fax\\2.5\\Users\\" + UserName() + "\\Modules\\ZQFAXMOD\\2.5")
                  .c_str());

    CZqVersionResource library;
    Install(config_, "Software\\Zq,Inc.\\Zq Library\\3.1", "ZQDLLMOD", "3.1");
    ASSERT_TRUE(library.ExtractVersionInfo(ModuleFile("zqvtdll").c_str()));
    EXPECT_FALSE(library.IsModuleEXE());
    EXPECT_TRUE(library.IsModuleDLL());
    EXPECT_FALSE(library.IsModuleDriver());
    EXPECT_FALSE(library.IsModuleDebug());

    Install(config_, kSuiteRoot, "zq_diagnostics_tests", "1.0");
    CZqVersionResource program;
    ASSERT_TRUE(program.ExtractVersionInfo());
    EXPECT_TRUE(program.IsModuleEXE());
    EXPECT_FALSE(program.IsModuleDLL());
    EXPECT_FALSE(program.IsModuleDriver());
}

TEST_P(VersionResource, ALoadedModuleIsReadThroughItsFile) {
    Install(config_, "Software\\Zq,Inc.\\Zq Fax\\2.5", "ZQFAXMOD", "2.5");
    HMODULE module = LoadLibraryA("ZQVTFLAG.DLL");
    ASSERT_NE(module, nullptr);
    CZqVersionResource version;
    EXPECT_TRUE(version.ExtractVersionInfo(module));
    EXPECT_EQ(version.GetModuleHandle(), module);
    char file[1024];
    ASSERT_GT(GetModuleFileNameA(module, file, sizeof file), 0u);
    EXPECT_EQ(version.GetModuleFile(), file);
    EXPECT_EQ(version.GetInternalName(), "ZQFAXMOD");
    FreeLibrary(module);
}

TEST_P(VersionResource, AMissingStringKeepsWhatTheObjectHeld) {
    Install(config_, kSuiteRoot, "zq_diagnostics_tests", "1.0");
    // The company element of a fresh object stays empty.
    Install(config_, "Software\\\\Zq Anonymous\\1.2", "ZQNOCOMP", "1.2");
    CZqVersionResource fresh;
    ASSERT_TRUE(fresh.ExtractVersionInfo(ModuleFile("zqvtnoco").c_str()));
    EXPECT_EQ(fresh.GetStandardValue(1), "");
    EXPECT_EQ(fresh.GetMirkelsRootKey(), "Software\\\\Zq Anonymous\\1.2");

    // An object that read the program first keeps its company name.
    Install(config_, "Software\\Zq,Inc.\\Zq Anonymous\\1.2", "ZQNOCOMP", "1.2");
    CZqVersionResource used;
    ASSERT_TRUE(used.ExtractVersionInfo());
    ASSERT_TRUE(used.ExtractVersionInfo(ModuleFile("zqvtnoco").c_str()));
    EXPECT_EQ(used.GetStandardValue(1), "Zq,Inc.");
    EXPECT_EQ(used.GetInternalName(), "ZQNOCOMP");
    EXPECT_EQ(used.GetMirkelsRootKey(), "Software\\Zq,Inc.\\Zq Anonymous\\1.2");
}

TEST_P(VersionResource, NoTranslationTableNoStrings) {
    CZqVersionResource version;
    EXPECT_FALSE(version.ExtractVersionInfo(ModuleFile("zqvtnotr").c_str()));
    // The fixed information was readable all the same.
    DWORD ms = 0, ls = 0;
    version.GetFileVersionMajorMinor(ms, ls);
    EXPECT_EQ(ms, 0x00010000u);
    EXPECT_EQ(version.GetInternalName(), "");
    WORD count = 5;
    version.GetTranslationTableArray(nullptr, count);
    EXPECT_EQ(count, 0);

    EXPECT_FALSE(version.ExtractVersionInfo(ModuleFile("zqnothere").c_str()));
    EXPECT_EQ(version.GetModuleFile(), ModuleFile("zqnothere").c_str());
}

TEST_P(VersionResource, TheFirstTranslationDecidesTheLanguage) {
    Install(config_, "Software\\Zq GmbH\\Zq Kommunikation\\4.2", "ZQSPRACH", "4.2");
    CZqVersionResource version;
    ASSERT_TRUE(version.ExtractVersionInfo(ModuleFile("zqvtlang").c_str()));
    EXPECT_EQ(version.GetStandardValue(1), "Zq GmbH");
    EXPECT_EQ(version.GetStandardValue(0), "");  // only the English strings have comments
    EXPECT_EQ(version.GetMirkelsRootKey(), "Software\\Zq GmbH\\Zq Kommunikation\\4.2");

    DWORD table[4] = {0, 0, 0, 0};
    WORD count = 1;
    version.GetTranslationTableArray(table, count);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(table[0], 0x04E40407u);
    EXPECT_EQ(table[1], 0u);  // no room was offered for it
    count = 4;
    version.GetTranslationTableArray(table, count);
    EXPECT_EQ(table[1], 0x04E40409u);

    // Another listed translation: its strings, the keys made again.
    Install(config_, "Software\\Zq,Inc.\\Zq Communication\\4.2", "ZQLANG", "4.2");
    ASSERT_TRUE(version.ExtractLanguageStandardValues(0x04E40409u));
    EXPECT_EQ(version.GetStandardValue(1), "Zq,Inc.");
    EXPECT_EQ(version.GetStandardValue(0), "English only");
    EXPECT_EQ(version.GetMirkelsRootKey(), "Software\\Zq,Inc.\\Zq Communication\\4.2");
    // One that is not in the table.
    EXPECT_FALSE(version.ExtractLanguageStandardValues(0x04E4040Cu));
    EXPECT_EQ(version.GetMirkelsRootKey(), "Software\\Zq,Inc.\\Zq Communication\\4.2");
}

TEST(VersionResourceValues, IndexesBeyondTheNineAreEmpty) {
    CZqVersionResource version;
    EXPECT_EQ(version.GetStandardValue(9), "");
    version.GetStandardValue(9) = "scribble";
    EXPECT_EQ(version.GetStandardValue(9), "");
    EXPECT_EQ(version.GetStandardName(0), "Comments");
    EXPECT_EQ(version.GetStandardName(8), "ProductVersion");
    EXPECT_EQ(version.GetStandardName(9), "");
    EXPECT_FALSE(version.IsModuleEXE());
    DWORD ms = 1, ls = 1;
    version.GetFileVersionMajorMinor(ms, ls);
    EXPECT_EQ(ms, 0u);
    EXPECT_EQ(ls, 0u);
}

}  // namespace
