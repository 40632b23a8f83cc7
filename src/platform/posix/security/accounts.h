// Unix users and groups seen as Windows accounts and security identifiers.
//
// A Unix user is the SID S-1-22-1-<uid>, a Unix group S-1-22-2-<gid>; the
// well-known Windows identifiers keep their values (api/security.h lists
// them). This is the one place that decides who counts as an administrator
// and which groups a token lists. Thread-safe.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32.h"

namespace zq::platform::internal {

// Who a process runs as: effective user and group, supplementary groups.
struct UnixIdentity {
    uint32_t uid = 0;
    uint32_t gid = 0;
    std::vector<uint32_t> groups;
};

// The identity of this process (or the one a test installed).
UnixIdentity CurrentProcessIdentity();

// The identity of another process, read from /proc/<pid>/status; nullopt
// when the process is gone or its status cannot be read.
std::optional<UnixIdentity> ProcessIdentity(pid_t pid);

// Replaces what CurrentProcessIdentity reports (nullptr restores the real
// one). For tests; not for use while other threads open tokens.
void SetProcessIdentityForTesting(const UnixIdentity* identity);

// Root, or a member (primary or supplementary) of "sudo", "wheel" or "adm".
bool IsAdministrator(const UnixIdentity& identity);

// A SID as bytes (the layout of struct _SID).
using SidBytes = std::vector<BYTE>;

SidBytes MakeSid(BYTE authority, std::initializer_list<DWORD> sub_authorities);
SidBytes UnixUserSid(uint32_t uid);
SidBytes UnixGroupSid(uint32_t gid);
SidBytes AdministratorsSid();

// A valid SID in `sid` (revision 1, at most 15 sub-authorities), as bytes.
std::optional<SidBytes> ReadSid(const void* sid);

// A token's groups in order, with their attributes.
struct TokenGroup {
    SidBytes sid;
    DWORD attributes = 0;
};
std::vector<TokenGroup> TokenGroupsOf(const UnixIdentity& identity);

// What an account is called.
struct AccountName {
    std::string name;
    std::string domain;
    SID_NAME_USE use = SidTypeUnknown;
};

// The account a SID stands for; nullopt when none answers to it.
std::optional<AccountName> AccountOfSid(const SidBytes& sid);

// The SID and full name of "name" or "domain\name"; nullopt when unknown.
std::optional<std::pair<SidBytes, AccountName>> AccountOfName(std::string_view account);

// This computer's name, the domain of its Unix accounts.
std::string ComputerDomain();

}  // namespace zq::platform::internal
