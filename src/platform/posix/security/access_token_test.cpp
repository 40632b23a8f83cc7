#include <grp.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/security/accounts.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace {

using zq::platform::internal::SetProcessIdentityForTesting;
using zq::platform::internal::SidBytes;
using zq::platform::internal::UnixIdentity;
using zq::test::ScopedEnvironmentVariable;

class ScopedIdentity {
public:
    explicit ScopedIdentity(const UnixIdentity& identity) {
        SetProcessIdentityForTesting(&identity);
    }
    ~ScopedIdentity() { SetProcessIdentityForTesting(nullptr); }
};

SidBytes Sid(BYTE authority, std::initializer_list<DWORD> subs) {
    return zq::platform::internal::MakeSid(authority, subs);
}

std::string ComputerName() {
    char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = sizeof name;
    EXPECT_TRUE(GetComputerNameA(name, &size));
    return name;
}

// The token's information of one class, read the way callers do: size first.
std::vector<BYTE> TokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS what) {
    DWORD needed = 0;
    EXPECT_FALSE(GetTokenInformation(token, what, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    std::vector<BYTE> buffer(needed);
    EXPECT_TRUE(GetTokenInformation(token, what, buffer.data(), needed, &needed));
    EXPECT_EQ(needed, buffer.size());
    return buffer;
}

std::vector<SidBytes> GroupsOfCurrentToken() {
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_READ, &token));
    std::vector<BYTE> buffer = TokenInformation(token, TokenGroups);
    CloseHandle(token);
    std::vector<SidBytes> groups;
    const auto* info = reinterpret_cast<const TOKEN_GROUPS*>(buffer.data());
    for (DWORD i = 0; i < info->GroupCount; ++i) {
        const BYTE* sid = static_cast<const BYTE*>(info->Groups[i].Sid);
        // Every SID lies inside the caller's buffer.
        EXPECT_GE(sid, buffer.data());
        EXPECT_LE(sid + GetLengthSid(info->Groups[i].Sid), buffer.data() + buffer.size());
        groups.emplace_back(sid, sid + GetLengthSid(info->Groups[i].Sid));
    }
    return groups;
}

bool HasGroup(const std::vector<SidBytes>& groups, const SidBytes& wanted) {
    for (const SidBytes& group : groups) {
        if (group == wanted) {
            return true;
        }
    }
    return false;
}

const SidBytes kAdministrators = Sid(5, {32, 544});

TEST(Sid, BuildsComparesAndCopies) {
    SID_IDENTIFIER_AUTHORITY nt = SECURITY_NT_AUTHORITY;
    PSID admins = nullptr;
    ASSERT_TRUE(AllocateAndInitializeSid(&nt, 2, SECURITY_BUILTIN_DOMAIN_RID,
                                         DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, &admins));
    EXPECT_TRUE(IsValidSid(admins));
    EXPECT_EQ(GetLengthSid(admins), 16u);
    EXPECT_EQ(*GetSidSubAuthorityCount(admins), 2);
    EXPECT_EQ(*GetSidSubAuthority(admins, 1), 544u);
    EXPECT_EQ(GetSidIdentifierAuthority(admins)->Value[5], 5);
    EXPECT_EQ(SidBytes(static_cast<BYTE*>(admins), static_cast<BYTE*>(admins) + 16),
              kAdministrators);

    PSID users = nullptr;
    ASSERT_TRUE(AllocateAndInitializeSid(&nt, 2, SECURITY_BUILTIN_DOMAIN_RID,
                                         DOMAIN_ALIAS_RID_USERS, 0, 0, 0, 0, 0, 0, &users));
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(EqualSid(admins, users));
    EXPECT_EQ(GetLastError(), 0u);

    BYTE copy[SECURITY_MAX_SID_SIZE];
    std::memset(copy, 0xCC, sizeof copy);
    EXPECT_FALSE(CopySid(15, copy, admins));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(copy[0], 0xCC);
    ASSERT_TRUE(CopySid(sizeof copy, copy, admins));
    EXPECT_TRUE(EqualSid(copy, admins));

    copy[0] = 2;  // revision
    EXPECT_FALSE(IsValidSid(copy));
    EXPECT_FALSE(EqualSid(copy, admins));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_SID));
    EXPECT_EQ(FreeSid(admins), nullptr);
    FreeSid(users);

    PSID untouched = reinterpret_cast<PSID>(0x1234);
    EXPECT_FALSE(AllocateAndInitializeSid(&nt, 9, 0, 0, 0, 0, 0, 0, 0, 0, &untouched));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(untouched, reinterpret_cast<PSID>(0x1234));
}

TEST(ProcessToken, ShowsTheUnixUserAndGroups) {
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_READ, &token));
    std::vector<BYTE> user = TokenInformation(token, TokenUser);
    const auto* info = reinterpret_cast<const TOKEN_USER*>(user.data());
    const BYTE* sid = static_cast<const BYTE*>(info->User.Sid);
    EXPECT_EQ(SidBytes(sid, sid + GetLengthSid(info->User.Sid)), Sid(22, {1, geteuid()}));

    std::vector<BYTE> owner = TokenInformation(token, TokenOwner);
    EXPECT_TRUE(
        EqualSid(reinterpret_cast<const TOKEN_OWNER*>(owner.data())->Owner, info->User.Sid));
    std::vector<BYTE> primary = TokenInformation(token, TokenPrimaryGroup);
    const BYTE* group = static_cast<const BYTE*>(
        reinterpret_cast<TOKEN_PRIMARY_GROUP*>(primary.data())->PrimaryGroup);
    EXPECT_EQ(SidBytes(group, group + 16), Sid(22, {2, getegid()}));
    ASSERT_TRUE(CloseHandle(token));

    std::vector<SidBytes> groups = GroupsOfCurrentToken();
    ASSERT_GE(groups.size(), 5u);
    EXPECT_EQ(groups[0], Sid(22, {2, getegid()}));
    EXPECT_EQ(groups[1], Sid(1, {0}));  // Everyone
    EXPECT_TRUE(HasGroup(groups, Sid(5, {32, 545})));
    EXPECT_TRUE(HasGroup(groups, Sid(5, {4})));
    EXPECT_TRUE(HasGroup(groups, Sid(5, {11})));
}

TEST(ProcessToken, RefusesWhatItCannotAnswer) {
    HANDLE token = nullptr;
    DWORD needed = 0;
    EXPECT_FALSE(OpenProcessToken(reinterpret_cast<HANDLE>(0x7FF0), TOKEN_READ, &token));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(token, nullptr);

    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY_SOURCE, &token));
    EXPECT_FALSE(GetTokenInformation(token, TokenUser, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    CloseHandle(token);

    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    BYTE buffer[512];
    EXPECT_FALSE(GetTokenInformation(token, TokenPrivileges, buffer, sizeof buffer, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    // One byte short: nothing written, the size needed reported.
    ASSERT_FALSE(GetTokenInformation(token, TokenGroups, nullptr, 0, &needed));
    std::memset(buffer, 0xCC, sizeof buffer);
    ASSERT_LE(needed, sizeof buffer);
    EXPECT_FALSE(GetTokenInformation(token, TokenGroups, buffer, needed - 1, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(buffer[0], 0xCC);
    CloseHandle(token);

    // A file handle or an event-log handle is not a token.
    EXPECT_FALSE(
        GetTokenInformation(GetCurrentProcess(), TokenUser, buffer, sizeof buffer, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(ProcessToken, ExistsOnNtOnly) {
    for (const char* system : {"win95", "win32s"}) {
        ScopedEnvironmentVariable winver("ZQ_WINVER", system);
        HANDLE token = nullptr;
        EXPECT_FALSE(OpenProcessToken(GetCurrentProcess(), TOKEN_READ, &token));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
        char name[64];
        char domain[64];
        DWORD name_size = sizeof name, domain_size = sizeof domain;
        SID_NAME_USE use;
        SidBytes admins = kAdministrators;
        EXPECT_FALSE(LookupAccountSidA(nullptr, admins.data(), name, &name_size, domain,
                                       &domain_size, &use));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
    }
}

gid_t GroupId(const char* name) {
    group* entry = getgrnam(name);
    return entry ? entry->gr_gid : static_cast<gid_t>(-1);
}

struct AdminCase {
    const char* label;
    uint32_t uid;
    const char* primary_group;        // name, or nullptr for an unnamed group
    const char* supplementary_group;  // name, or nullptr for none
    bool administrator;
};

class Administrators : public testing::TestWithParam<AdminCase> {};

TEST_P(Administrators, FollowRootAndTheAdministrativeGroups) {
    const AdminCase& c = GetParam();
    UnixIdentity identity;
    identity.uid = c.uid;
    identity.gid = 0xFFFF0001u;  // a group without a name
    for (const char* name : {c.primary_group, c.supplementary_group}) {
        if (name && GroupId(name) == static_cast<gid_t>(-1)) {
            GTEST_SKIP() << "no group " << name << " on this machine";
        }
    }
    if (c.primary_group) {
        identity.gid = GroupId(c.primary_group);
    }
    if (c.supplementary_group) {
        identity.groups.push_back(GroupId(c.supplementary_group));
    }
    ScopedIdentity scoped(identity);
    std::vector<SidBytes> groups = GroupsOfCurrentToken();
    EXPECT_EQ(HasGroup(groups, kAdministrators), c.administrator);
    EXPECT_EQ(zq::platform::internal::IsAdministrator(identity), c.administrator);
}

INSTANTIATE_TEST_SUITE_P(Rule, Administrators,
                         testing::Values(AdminCase{"root", 0, nullptr, nullptr, true},
                                         AdminCase{"plain", 54321, nullptr, nullptr, false},
                                         AdminCase{"sudo", 54321, nullptr, "sudo", true},
                                         AdminCase{"adm", 54321, "adm", nullptr, true},
                                         AdminCase{"wheel", 54321, nullptr, "wheel", true},
                                         AdminCase{"other_group", 54321, nullptr, "daemon", false}),
                         [](const testing::TestParamInfo<AdminCase>& info) {
                             return info.param.label;
                         });

TEST(LookupAccountSid, NamesTheUnixUser) {
    char user[UNLEN + 1];
    DWORD user_size = sizeof user;
    ASSERT_TRUE(GetUserNameA(user, &user_size));

    SidBytes sid = Sid(22, {1, geteuid()});
    DWORD name_size = 0, domain_size = 0;
    SID_NAME_USE use = SidTypeInvalid;
    EXPECT_FALSE(
        LookupAccountSidA(nullptr, sid.data(), nullptr, &name_size, nullptr, &domain_size, &use));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(name_size, std::strlen(user) + 1);
    EXPECT_EQ(domain_size, ComputerName().size() + 1);
    EXPECT_EQ(use, SidTypeInvalid);

    std::vector<char> name(name_size), domain(domain_size);
    ASSERT_TRUE(LookupAccountSidA(("\\\\" + ComputerName()).c_str(), sid.data(), name.data(),
                                  &name_size, domain.data(), &domain_size, &use));
    EXPECT_STREQ(name.data(), user);
    EXPECT_EQ(name_size, std::strlen(user));
    EXPECT_EQ(domain.data(), ComputerName());
    EXPECT_EQ(use, SidTypeUser);
}

struct WellKnownCase {
    SidBytes sid;
    const char* name;
    const char* domain;
    SID_NAME_USE use;
};

class WellKnownAccounts : public testing::TestWithParam<WellKnownCase> {};

TEST_P(WellKnownAccounts, KeepTheirWindowsNames) {
    const WellKnownCase& c = GetParam();
    SidBytes sid = c.sid;
    char name[64], domain[64];
    DWORD name_size = sizeof name, domain_size = sizeof domain;
    SID_NAME_USE use;
    ASSERT_TRUE(LookupAccountSidA("", sid.data(), name, &name_size, domain, &domain_size, &use));
    EXPECT_STREQ(name, c.name);
    EXPECT_STREQ(domain, c.domain);
    EXPECT_EQ(use, c.use);

    // And back, by name with its domain.
    std::string full =
        std::string(c.domain).empty() ? c.name : std::string(c.domain) + "\\" + c.name;
    BYTE found[SECURITY_MAX_SID_SIZE];
    DWORD found_size = sizeof found;
    domain_size = sizeof domain;
    ASSERT_TRUE(
        LookupAccountNameA(nullptr, full.c_str(), found, &found_size, domain, &domain_size, &use));
    EXPECT_EQ(SidBytes(found, found + found_size), c.sid);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WellKnownAccounts,
    testing::Values(WellKnownCase{Sid(1, {0}), "Everyone", "", SidTypeWellKnownGroup},
                    WellKnownCase{Sid(5, {18}), "SYSTEM", "NT AUTHORITY", SidTypeWellKnownGroup},
                    WellKnownCase{Sid(5, {11}), "Authenticated Users", "NT AUTHORITY",
                                  SidTypeWellKnownGroup},
                    WellKnownCase{Sid(5, {32, 544}), "Administrators", "BUILTIN", SidTypeAlias},
                    WellKnownCase{Sid(5, {32, 545}), "Users", "BUILTIN", SidTypeAlias}));

TEST(LookupAccountSid, RefusesUnknownAndRemote) {
    char name[64], domain[64];
    DWORD name_size = sizeof name, domain_size = sizeof domain;
    SID_NAME_USE use;
    SidBytes nobody = Sid(22, {1, 0xFFFFFF00u});
    EXPECT_FALSE(
        LookupAccountSidA(nullptr, nobody.data(), name, &name_size, domain, &domain_size, &use));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NONE_MAPPED));
    SidBytes admins = kAdministrators;
    EXPECT_FALSE(LookupAccountSidA("\\\\ELSEWHERE", admins.data(), name, &name_size, domain,
                                   &domain_size, &use));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_NETPATH));
    admins[1] = 16;  // too many sub-authorities
    EXPECT_FALSE(
        LookupAccountSidA(nullptr, admins.data(), name, &name_size, domain, &domain_size, &use));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_SID));
}

TEST(LookupAccountName, FindsUnixAccountsWithoutRegardToCase) {
    BYTE sid[SECURITY_MAX_SID_SIZE];
    char domain[64];
    DWORD sid_size = sizeof sid, domain_size = sizeof domain;
    SID_NAME_USE use;
    ASSERT_TRUE(LookupAccountNameA(nullptr, "ROOT", sid, &sid_size, domain, &domain_size, &use));
    EXPECT_EQ(SidBytes(sid, sid + sid_size), Sid(22, {1, 0}));
    EXPECT_EQ(domain, ComputerName());
    EXPECT_EQ(use, SidTypeUser);

    sid_size = 4;
    domain_size = sizeof domain;
    EXPECT_FALSE(LookupAccountNameA(nullptr, "root", sid, &sid_size, domain, &domain_size, &use));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(sid_size, 16u);

    sid_size = sizeof sid;
    EXPECT_FALSE(
        LookupAccountNameA(nullptr, "NOWHERE\\root", sid, &sid_size, domain, &domain_size, &use));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NONE_MAPPED));
}

}  // namespace
