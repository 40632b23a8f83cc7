#include "platform/posix/security/accounts.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <mutex>
#include <sstream>
#include <type_traits>

#include "platform/posix/file/dos_path.h"

namespace zq::platform::internal {

namespace {

// The Unix accounts authority, with one sub-authority for users and one for
// groups.
constexpr BYTE kUnixAuthority = 22;
constexpr DWORD kUnixUsers = 1;
constexpr DWORD kUnixGroups = 2;
constexpr BYTE kWorldAuthority = 1;
constexpr BYTE kNtAuthority = 5;

constexpr const char* kAdministratorGroups[] = {"sudo", "wheel", "adm"};

std::mutex g_override_mutex;
std::optional<UnixIdentity> g_override;

// getpw*/getgr* with a buffer that grows until the entry fits.
template <typename Entry, typename Call>
bool LookUp(Call call, Entry* entry, std::string* name, uint32_t* id) {
    std::vector<char> storage(1024);
    for (int tries = 0; tries < 8; ++tries) {
        Entry* found = nullptr;
        int rc = call(entry, storage.data(), storage.size(), &found);
        if (rc == ERANGE) {
            storage.resize(storage.size() * 4);
            continue;
        }
        if (rc != 0 || !found) {
            return false;
        }
        if constexpr (std::is_same_v<Entry, passwd>) {
            if (name)
                *name = found->pw_name ? found->pw_name : "";
            if (id)
                *id = found->pw_uid;
        } else {
            if (name)
                *name = found->gr_name ? found->gr_name : "";
            if (id)
                *id = found->gr_gid;
        }
        return true;
    }
    return false;
}

std::optional<std::string> UserName(uint32_t uid) {
    passwd entry{};
    std::string name;
    auto call = [uid](passwd* e, char* b, size_t n, passwd** r) {
        return getpwuid_r(uid, e, b, n, r);
    };
    return LookUp(call, &entry, &name, nullptr) ? std::optional(name) : std::nullopt;
}

std::optional<std::string> GroupName(uint32_t gid) {
    group entry{};
    std::string name;
    auto call = [gid](group* e, char* b, size_t n, group** r) {
        return getgrgid_r(gid, e, b, n, r);
    };
    return LookUp(call, &entry, &name, nullptr) ? std::optional(name) : std::nullopt;
}

std::optional<std::pair<uint32_t, std::string>> UserByName(const std::string& wanted) {
    passwd entry{};
    std::string name;
    uint32_t uid = 0;
    auto call = [&wanted](passwd* e, char* b, size_t n, passwd** r) {
        return getpwnam_r(wanted.c_str(), e, b, n, r);
    };
    if (!LookUp(call, &entry, &name, &uid)) {
        return std::nullopt;
    }
    return std::pair(uid, name);
}

std::optional<std::pair<uint32_t, std::string>> GroupByName(const std::string& wanted) {
    group entry{};
    std::string name;
    uint32_t gid = 0;
    auto call = [&wanted](group* e, char* b, size_t n, group** r) {
        return getgrnam_r(wanted.c_str(), e, b, n, r);
    };
    if (!LookUp(call, &entry, &name, &gid)) {
        return std::nullopt;
    }
    return std::pair(gid, name);
}

std::string Lower(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = ToLowerCp1252(c);
    }
    return result;
}

struct WellKnown {
    BYTE authority;
    DWORD sub_authorities[2];
    BYTE count;
    const char* name;
    const char* domain;
    SID_NAME_USE use;
};

const WellKnown kWellKnown[] = {
    {kWorldAuthority, {SECURITY_WORLD_RID, 0}, 1, "Everyone", "", SidTypeWellKnownGroup},
    {kNtAuthority,
     {SECURITY_INTERACTIVE_RID, 0},
     1,
     "INTERACTIVE",
     "NT AUTHORITY",
     SidTypeWellKnownGroup},
    {kNtAuthority,
     {SECURITY_AUTHENTICATED_USER_RID, 0},
     1,
     "Authenticated Users",
     "NT AUTHORITY",
     SidTypeWellKnownGroup},
    {kNtAuthority,
     {SECURITY_LOCAL_SYSTEM_RID, 0},
     1,
     "SYSTEM",
     "NT AUTHORITY",
     SidTypeWellKnownGroup},
    {kNtAuthority, {SECURITY_BUILTIN_DOMAIN_RID, 0}, 1, "BUILTIN", "BUILTIN", SidTypeDomain},
    {kNtAuthority,
     {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS},
     2,
     "Administrators",
     "BUILTIN",
     SidTypeAlias},
    {kNtAuthority,
     {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_USERS},
     2,
     "Users",
     "BUILTIN",
     SidTypeAlias},
    {kNtAuthority,
     {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_GUESTS},
     2,
     "Guests",
     "BUILTIN",
     SidTypeAlias},
};

SidBytes SidOf(const WellKnown& known) {
    return known.count == 1
               ? MakeSid(known.authority, {known.sub_authorities[0]})
               : MakeSid(known.authority, {known.sub_authorities[0], known.sub_authorities[1]});
}

// The one sub-authority after S-1-22-<kind>, when `sid` is a Unix account.
std::optional<uint32_t> UnixId(const SidBytes& sid, DWORD kind) {
    if (sid.size() != 16 || sid[1] != 2 || sid[7] != kUnixAuthority ||
        std::any_of(sid.begin() + 2, sid.begin() + 7, [](BYTE b) { return b != 0; })) {
        return std::nullopt;
    }
    DWORD first = 0;
    DWORD second = 0;
    std::memcpy(&first, sid.data() + 8, 4);
    std::memcpy(&second, sid.data() + 12, 4);
    if (first != kind) {
        return std::nullopt;
    }
    return second;
}

std::vector<uint32_t> ParseIds(const std::string& text) {
    std::istringstream in(text);
    std::vector<uint32_t> ids;
    unsigned long value = 0;
    while (in >> value) {
        ids.push_back(static_cast<uint32_t>(value));
    }
    return ids;
}

}  // namespace

UnixIdentity CurrentProcessIdentity() {
    {
        std::lock_guard<std::mutex> lock(g_override_mutex);
        if (g_override) {
            return *g_override;
        }
    }
    UnixIdentity identity;
    identity.uid = geteuid();
    identity.gid = getegid();
    int count = getgroups(0, nullptr);
    if (count > 0) {
        std::vector<gid_t> groups(static_cast<size_t>(count));
        count = getgroups(count, groups.data());
        for (int i = 0; i < count; ++i) {
            identity.groups.push_back(groups[static_cast<size_t>(i)]);
        }
    }
    return identity;
}

std::optional<UnixIdentity> ProcessIdentity(pid_t pid) {
    if (pid == getpid()) {
        return CurrentProcessIdentity();
    }
    std::ifstream in("/proc/" + std::to_string(pid) + "/status");
    if (!in) {
        return std::nullopt;
    }
    UnixIdentity identity;
    bool have_uid = false;
    bool have_gid = false;
    std::string line;
    while (std::getline(in, line)) {
        // "Uid:\treal\teffective\tsaved\tfs": the effective one counts.
        if (line.rfind("Uid:", 0) == 0) {
            std::vector<uint32_t> ids = ParseIds(line.substr(4));
            have_uid = ids.size() >= 2;
            identity.uid = have_uid ? ids[1] : 0;
        } else if (line.rfind("Gid:", 0) == 0) {
            std::vector<uint32_t> ids = ParseIds(line.substr(4));
            have_gid = ids.size() >= 2;
            identity.gid = have_gid ? ids[1] : 0;
        } else if (line.rfind("Groups:", 0) == 0) {
            identity.groups = ParseIds(line.substr(7));
        }
    }
    if (!have_uid || !have_gid) {
        return std::nullopt;
    }
    return identity;
}

void SetProcessIdentityForTesting(const UnixIdentity* identity) {
    std::lock_guard<std::mutex> lock(g_override_mutex);
    if (identity) {
        g_override = *identity;
    } else {
        g_override.reset();
    }
}

bool IsAdministrator(const UnixIdentity& identity) {
    if (identity.uid == 0) {
        return true;
    }
    auto is_admin_group = [](uint32_t gid) {
        std::optional<std::string> name = GroupName(gid);
        return name && std::any_of(std::begin(kAdministratorGroups), std::end(kAdministratorGroups),
                                   [&name](const char* admin) { return *name == admin; });
    };
    return is_admin_group(identity.gid) ||
           std::any_of(identity.groups.begin(), identity.groups.end(), is_admin_group);
}

SidBytes MakeSid(BYTE authority, std::initializer_list<DWORD> sub_authorities) {
    SidBytes sid(8 + 4 * sub_authorities.size(), 0);
    sid[0] = SID_REVISION;
    sid[1] = static_cast<BYTE>(sub_authorities.size());
    sid[7] = authority;
    size_t offset = 8;
    for (DWORD sub : sub_authorities) {
        std::memcpy(sid.data() + offset, &sub, 4);
        offset += 4;
    }
    return sid;
}

SidBytes UnixUserSid(uint32_t uid) {
    return MakeSid(kUnixAuthority, {kUnixUsers, uid});
}

SidBytes UnixGroupSid(uint32_t gid) {
    return MakeSid(kUnixAuthority, {kUnixGroups, gid});
}

SidBytes AdministratorsSid() {
    return MakeSid(kNtAuthority, {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS});
}

std::optional<SidBytes> ReadSid(const void* sid) {
    if (!sid) {
        return std::nullopt;
    }
    const BYTE* bytes = static_cast<const BYTE*>(sid);
    if (bytes[0] != SID_REVISION || bytes[1] > SID_MAX_SUB_AUTHORITIES) {
        return std::nullopt;
    }
    return SidBytes(bytes, bytes + 8 + 4 * bytes[1]);
}

std::vector<TokenGroup> TokenGroupsOf(const UnixIdentity& identity) {
    constexpr DWORD kEnabled = SE_GROUP_MANDATORY | SE_GROUP_ENABLED_BY_DEFAULT | SE_GROUP_ENABLED;
    std::vector<TokenGroup> groups;
    groups.push_back({UnixGroupSid(identity.gid), kEnabled});
    groups.push_back({MakeSid(kWorldAuthority, {SECURITY_WORLD_RID}), kEnabled});
    std::vector<uint32_t> seen{identity.gid};
    for (uint32_t gid : identity.groups) {
        if (std::find(seen.begin(), seen.end(), gid) == seen.end()) {
            seen.push_back(gid);
            groups.push_back({UnixGroupSid(gid), kEnabled});
        }
    }
    if (IsAdministrator(identity)) {
        groups.push_back({AdministratorsSid(), kEnabled | SE_GROUP_OWNER});
    }
    groups.push_back(
        {MakeSid(kNtAuthority, {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_USERS}), kEnabled});
    groups.push_back({MakeSid(kNtAuthority, {SECURITY_INTERACTIVE_RID}), kEnabled});
    groups.push_back({MakeSid(kNtAuthority, {SECURITY_AUTHENTICATED_USER_RID}), kEnabled});
    return groups;
}

std::optional<AccountName> AccountOfSid(const SidBytes& sid) {
    for (const WellKnown& known : kWellKnown) {
        if (SidOf(known) == sid) {
            return AccountName{known.name, known.domain, known.use};
        }
    }
    if (std::optional<uint32_t> uid = UnixId(sid, kUnixUsers)) {
        if (std::optional<std::string> name = UserName(*uid)) {
            return AccountName{*name, ComputerDomain(), SidTypeUser};
        }
    }
    if (std::optional<uint32_t> gid = UnixId(sid, kUnixGroups)) {
        if (std::optional<std::string> name = GroupName(*gid)) {
            return AccountName{*name, ComputerDomain(), SidTypeGroup};
        }
    }
    return std::nullopt;
}

std::optional<std::pair<SidBytes, AccountName>> AccountOfName(std::string_view account) {
    std::string_view domain;
    std::string_view name = account;
    bool has_domain = false;
    if (size_t slash = account.find('\\'); slash != std::string_view::npos) {
        domain = account.substr(0, slash);
        name = account.substr(slash + 1);
        has_domain = true;
    }
    if (name.empty()) {
        return std::nullopt;
    }
    for (const WellKnown& known : kWellKnown) {
        if (EqualsNoCase(name, known.name) && (!has_domain || EqualsNoCase(domain, known.domain))) {
            return std::pair(SidOf(known), AccountName{known.name, known.domain, known.use});
        }
    }
    const std::string computer = ComputerDomain();
    if (has_domain && !EqualsNoCase(domain, computer)) {
        return std::nullopt;
    }
    // Unix names are case-sensitive: the name as given, then in lower case.
    for (const std::string& candidate : {std::string(name), Lower(name)}) {
        if (auto user = UserByName(candidate)) {
            return std::pair(UnixUserSid(user->first),
                             AccountName{user->second, computer, SidTypeUser});
        }
        if (auto group = GroupByName(candidate)) {
            return std::pair(UnixGroupSid(group->first),
                             AccountName{group->second, computer, SidTypeGroup});
        }
    }
    return std::nullopt;
}

std::string ComputerDomain() {
    char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = sizeof name;
    return GetComputerNameA(name, &size) ? std::string(name, size) : std::string();
}

}  // namespace zq::platform::internal
