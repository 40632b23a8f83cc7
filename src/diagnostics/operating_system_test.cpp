#include "diagnostics/operating_system.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/global_config.h"
#include "support/test_support.h"

namespace {

using zq::test::ScopedEnvironmentVariable;

constexpr char kUserInformation[] = "Software\\Microsoft\\User Information";
constexpr char kRegistrationInfo[] = "Software\\Microsoft\\User Information\\RegistrationInfo";
constexpr char kDeveloperSetup[] = "Software\\Microsoft\\Developer\\Setup";
constexpr char kNetworkLogon[] = "Network\\Logon";

std::string PlatformUserName() {
    char name[UNLEN + 1] = {};
    DWORD size = sizeof name;
    EXPECT_TRUE(GetUserNameA(name, &size));
    return name;
}

// Removes every registry value the user-name and registration queries read,
// below both roots, as the system type of the moment keeps them.
void ClearIdentityValues() {
    CZqGlobalConfig config;
    for (DWORD mode : {DWORD{1}, DWORD{2}}) {
        for (const char* key : {kUserInformation, kDeveloperSetup, kNetworkLogon}) {
            config.DeleteSection(mode, key, nullptr);
        }
    }
}

// Runs each test with a fresh user-name cache and no identity values.
class OperatingSystem : public testing::Test {
protected:
    void TearDown() override {
        ClearIdentityValues();
        zq::diagnostics::ForgetCachedUserNameForTesting();
    }
    void Use(const char* winver) {
        winver_.reset();  // restore before choosing again
        winver_ = std::make_unique<ScopedEnvironmentVariable>("ZQ_WINVER", winver);
        ClearIdentityValues();
        zq::diagnostics::ForgetCachedUserNameForTesting();
    }
    std::unique_ptr<ScopedEnvironmentVariable> winver_;
};

TEST_F(OperatingSystem, TypeAndVersionFollowTheSystem) {
    struct Case {
        const char* winver;
        DWORD type, major, minor, platform_without_cpu;
    };
    for (const Case& c :
         {Case{"nt4", 2, 4, 0, 0}, Case{"win95", 3, 4, 0, 1}, Case{"win32s", 1, 3, 10, 1}}) {
        Use(c.winver);
        ScopedEnvironmentVariable cpu("CPU", nullptr);
        EXPECT_EQ(CZqGlobalOperatingSystem::GetType(), c.type) << c.winver;
        EXPECT_EQ(CZqGlobalOperatingSystem::GetMajorVersion(), c.major) << c.winver;
        EXPECT_EQ(CZqGlobalOperatingSystem::GetMinorVersion(), c.minor) << c.winver;
        EXPECT_EQ(CZqGlobalOperatingSystem::GetPlatform(), c.platform_without_cpu) << c.winver;
    }
}

TEST_F(OperatingSystem, PlatformOnNtComesFromTheCpuVariable) {
    Use("nt4");
    struct Case {
        const char* cpu;
        DWORD platform;
    };
    for (const Case& c :
         {Case{"i386", 1}, Case{"alpha", 2}, Case{"ALPHA", 2}, Case{"Mips", 3}, Case{"x86_64", 0},
          Case{"", 0}, Case{"i386i386i386i386", 0}, Case{"PPC", 0}}) {
        ScopedEnvironmentVariable cpu("CPU", c.cpu);
        EXPECT_EQ(CZqGlobalOperatingSystem::GetPlatform(), c.platform) << '"' << c.cpu << '"';
    }
    // Windows 95 is always Intel.
    Use("win95");
    ScopedEnvironmentVariable cpu("CPU", "ALPHA");
    EXPECT_EQ(CZqGlobalOperatingSystem::GetPlatform(), 1u);
}

// Whether the process token lists the built-in Administrators group, read
// with a buffer large enough for any token.
bool TokenListsAdministrators() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) {
        return false;
    }
    DWORD needed = 0;
    GetTokenInformation(token, TokenGroups, nullptr, 0, &needed);
    std::vector<DWORD_PTR> buffer(needed / sizeof(DWORD_PTR) + 1);
    bool found = false;
    if (GetTokenInformation(token, TokenGroups, buffer.data(), needed, &needed)) {
        const auto* groups = reinterpret_cast<const TOKEN_GROUPS*>(buffer.data());
        for (DWORD i = 0; i < groups->GroupCount; ++i) {
            char name[64], domain[64];
            DWORD name_size = sizeof name, domain_size = sizeof domain;
            SID_NAME_USE use;
            if (LookupAccountSidA(nullptr, groups->Groups[i].Sid, name, &name_size, domain,
                                  &domain_size, &use) &&
                std::string(domain) == "BUILTIN" && std::string(name) == "Administrators") {
                found = true;
            }
        }
    }
    CloseHandle(token);
    return found;
}

TEST_F(OperatingSystem, AdministratorsOnlyOnNt) {
    Use("nt4");
    EXPECT_EQ(CZqGlobalOperatingSystem::HasAdminRights() != FALSE, TokenListsAdministrators());
    for (const char* other : {"win95", "win32s"}) {
        Use(other);
        EXPECT_FALSE(CZqGlobalOperatingSystem::HasAdminRights()) << other;
    }
}

TEST_F(OperatingSystem, NtUserIsTheTokensAccount) {
    Use("nt4");
    EXPECT_EQ(CZqGlobalOperatingSystem::GetUserName(), PlatformUserName().c_str());
    EXPECT_EQ(CZqGlobalOperatingSystem::GetUserReal(), PlatformUserName().c_str());
    // A local account's domain is the computer.
    EXPECT_EQ(CZqGlobalOperatingSystem::GetDomainName(),
              CZqGlobalOperatingSystem::GetComputerName());
    EXPECT_FALSE(CZqGlobalOperatingSystem::GetComputerName().IsEmpty());
}

TEST_F(OperatingSystem, UserNameIsKeptForTheLifeOfTheProcess) {
    Use("win95");
    CZqGlobalConfig config;
    ASSERT_EQ(config.SetValue(2, kUserInformation, "Default First Name", "Ada"), 0u);
    ASSERT_EQ(config.SetValue(2, kUserInformation, "Default Last Name", "Lovelace"), 0u);
    EXPECT_EQ(CZqGlobalOperatingSystem::GetUserName(), "Ada Lovelace");
    ASSERT_EQ(config.SetValue(2, kUserInformation, "Default First Name", "Grace"), 0u);
    EXPECT_EQ(CZqGlobalOperatingSystem::GetUserName(), "Ada Lovelace");
    // Even a change of system does not change it.
    winver_ = std::make_unique<ScopedEnvironmentVariable>("ZQ_WINVER", "nt4");
    EXPECT_EQ(CZqGlobalOperatingSystem::GetUserName(), "Ada Lovelace");
}

// Which Windows 95 sources hold a value, and the name they give.
struct Windows95Case {
    const char* label;
    const char* first;
    const char* last;
    const char* developer_owner;
    const char* owner;
    const char* logon;
    const char* expected;
};

class Windows95UserName : public OperatingSystem,
                          public testing::WithParamInterface<Windows95Case> {};

TEST_P(Windows95UserName, TakesTheFirstSourceThatAnswers) {
    const Windows95Case& c = GetParam();
    Use("win95");
    CZqGlobalConfig config;
    auto put = [&config](DWORD mode, const char* key, const char* name, const char* text) {
        if (text) {
            ASSERT_EQ(config.SetValue(mode, key, name, text), 0u);
        }
    };
    put(2, kUserInformation, "Default First Name", c.first);
    put(2, kUserInformation, "Default Last Name", c.last);
    put(2, kDeveloperSetup, "RegisteredOwner", c.developer_owner);
    put(1, kUserInformation, "Owner", c.owner);
    put(2, kNetworkLogon, "UserName", c.logon);
    EXPECT_EQ(CZqGlobalOperatingSystem::GetUserName(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Sources, Windows95UserName,
    testing::Values(
        Windows95Case{"full_name", "Ada", "Lovelace", "Owner A", "Owner B", "ada", "Ada Lovelace"},
        Windows95Case{"first_name_only", "Ada", nullptr, "Owner A", nullptr, nullptr, "Ada "},
        Windows95Case{"last_name_alone_is_not_enough", "", "Lovelace", "Owner A", nullptr, nullptr,
                      "Owner A"},
        Windows95Case{"registered_owner", nullptr, nullptr, nullptr, "Owner B", "ada", "Owner B"},
        Windows95Case{"network_logon", nullptr, nullptr, nullptr, nullptr, "ada", "ada"},
        Windows95Case{"nothing", nullptr, nullptr, nullptr, nullptr, nullptr, ""}),
    [](const testing::TestParamInfo<Windows95Case>& info) { return info.param.label; });

TEST_F(OperatingSystem, Win32sUserIsTheRegisteredOwner) {
    Use("win32s");
    CZqGlobalConfig config;
    ASSERT_EQ(config.SetValue(2, kUserInformation, "Owner", "Old Timer"), 0u);
    EXPECT_EQ(CZqGlobalOperatingSystem::GetUserName(), "Old Timer");
    EXPECT_EQ(CZqGlobalOperatingSystem::GetUserReal(), PlatformUserName().c_str());
}

TEST_F(OperatingSystem, RegisteredInfoSearchesItsSourcesInOrder) {
    Use("nt4");
    CZqGlobalConfig config;
    EXPECT_EQ(CZqGlobalOperatingSystem::GetRegisteredInfo(0), "");
    ASSERT_EQ(config.SetValue(1, kDeveloperSetup, "RegisteredOwner", "Setup Owner"), 0u);
    EXPECT_EQ(CZqGlobalOperatingSystem::GetRegisteredInfo(0), "Setup Owner");
    ASSERT_EQ(config.SetValue(1, kRegistrationInfo, "Owner", "Registered Owner"), 0u);
    EXPECT_EQ(CZqGlobalOperatingSystem::GetRegisteredInfo(0), "Registered Owner");
    ASSERT_EQ(config.SetValue(1, kUserInformation, "Owner", "Machine Owner"), 0u);
    EXPECT_EQ(CZqGlobalOperatingSystem::GetRegisteredInfo(0), "Machine Owner");
    ASSERT_EQ(config.SetValue(2, kUserInformation, "Owner", "User Owner"), 0u);
    EXPECT_EQ(CZqGlobalOperatingSystem::GetRegisteredInfo(0), "User Owner");

    ASSERT_EQ(config.SetValue(1, kRegistrationInfo, "Organization", "Zq Labs"), 0u);
    ASSERT_EQ(config.SetValue(2, kUserInformation, "Distributor", "Reseller"), 0u);
    EXPECT_EQ(CZqGlobalOperatingSystem::GetRegisteredInfo(1), "Zq Labs");
    EXPECT_EQ(CZqGlobalOperatingSystem::GetRegisteredInfo(2), "Reseller");
    EXPECT_EQ(CZqGlobalOperatingSystem::GetRegisteredInfo(3), "");
}

}  // namespace
