// Access tokens of processes and the names of accounts.
#include <unistd.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/posix/base/handle_table.h"
#include "platform/posix/file/dos_path.h"
#include "platform/posix/security/accounts.h"
#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

class AccessToken : public KernelObject {
public:
    AccessToken(const UnixIdentity& identity, DWORD access)
        : access_(access), user_(UnixUserSid(identity.uid)), groups_(TokenGroupsOf(identity)) {}

    DWORD access() const { return access_; }
    const SidBytes& user() const { return user_; }
    const std::vector<TokenGroup>& groups() const { return groups_; }
    // The Unix primary group comes first in the list.
    const SidBytes& primary_group() const { return groups_.front().sid; }

private:
    DWORD access_;
    SidBytes user_;
    std::vector<TokenGroup> groups_;
};

// Token and account functions belong to Windows NT.
bool RunningOnNt() {
    if (GetVersion() & 0x80000000u) {
        SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
        return false;
    }
    return true;
}

// NULL, "" or this computer's name, with or without "\\" in front.
bool IsLocalSystem(LPCSTR system_name) {
    if (!system_name || !*system_name) {
        return true;
    }
    std::string_view name(system_name);
    if (name.rfind("\\\\", 0) == 0) {
        name.remove_prefix(2);
    }
    return EqualsNoCase(name, ComputerDomain());
}

// An image of a token structure, built in an aligned local buffer and copied
// to the caller's at the end, with its pointers already aimed at the
// caller's buffer.
class TokenImage {
public:
    explicit TokenImage(BYTE* destination) : destination_(destination) {}

    size_t Reserve(size_t size, size_t alignment) {
        size_t offset = (bytes_.size() + alignment - 1) / alignment * alignment;
        bytes_.resize(offset + size, 0);
        return offset;
    }
    template <typename T>
    void Put(size_t offset, const T& value) {
        std::memcpy(bytes_.data() + offset, &value, sizeof value);
    }
    // Appends a SID and returns where it will be in the caller's buffer.
    PSID AddSid(const SidBytes& sid) {
        size_t offset = Reserve(sid.size(), 4);
        std::memcpy(bytes_.data() + offset, sid.data(), sid.size());
        return destination_ ? destination_ + offset : nullptr;
    }
    size_t size() const { return bytes_.size(); }
    void CopyOut() const { std::memcpy(destination_, bytes_.data(), bytes_.size()); }

private:
    BYTE* destination_;
    std::vector<BYTE> bytes_;
};

bool CopyName(const std::string& text, LPSTR buffer, DWORD capacity) {
    if (!buffer || text.size() + 1 > capacity) {
        return false;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

}  // namespace
}  // namespace zq::platform::internal

using namespace zq::platform::internal;

extern "C" {

BOOL WINAPI OpenProcessToken(HANDLE ProcessHandle, DWORD DesiredAccess, PHANDLE TokenHandle) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    if (!TokenHandle) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const DWORD pid = GetProcessId(ProcessHandle);
    if (pid == 0) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    std::optional<UnixIdentity> identity = ProcessIdentity(static_cast<pid_t>(pid));
    if (!identity) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    HANDLE token = AddHandle(std::make_shared<AccessToken>(*identity, DesiredAccess));
    if (!token) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    *TokenHandle = token;
    return TRUE;
}

BOOL WINAPI GetTokenInformation(HANDLE TokenHandle, TOKEN_INFORMATION_CLASS TokenInformationClass,
                                LPVOID TokenInformation, DWORD TokenInformationLength,
                                PDWORD ReturnLength) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    std::shared_ptr<AccessToken> token = LookupHandleAs<AccessToken>(TokenHandle);
    if (!token) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if ((token->access() & TOKEN_QUERY) == 0) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    if (!ReturnLength) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    TokenImage image(static_cast<BYTE*>(TokenInformation));
    switch (TokenInformationClass) {
        case TokenUser: {
            size_t at = image.Reserve(sizeof(TOKEN_USER), alignof(TOKEN_USER));
            TOKEN_USER user{};
            user.User.Sid = image.AddSid(token->user());
            image.Put(at, user);
            break;
        }
        case TokenOwner: {
            size_t at = image.Reserve(sizeof(TOKEN_OWNER), alignof(TOKEN_OWNER));
            TOKEN_OWNER owner{};
            owner.Owner = image.AddSid(token->user());
            image.Put(at, owner);
            break;
        }
        case TokenPrimaryGroup: {
            size_t at = image.Reserve(sizeof(TOKEN_PRIMARY_GROUP), alignof(TOKEN_PRIMARY_GROUP));
            TOKEN_PRIMARY_GROUP primary{};
            primary.PrimaryGroup = image.AddSid(token->primary_group());
            image.Put(at, primary);
            break;
        }
        case TokenGroups: {
            const std::vector<TokenGroup>& groups = token->groups();
            const size_t header = offsetof(TOKEN_GROUPS, Groups);
            size_t at = image.Reserve(header + groups.size() * sizeof(SID_AND_ATTRIBUTES),
                                      alignof(TOKEN_GROUPS));
            image.Put(at, static_cast<DWORD>(groups.size()));
            for (size_t i = 0; i < groups.size(); ++i) {
                SID_AND_ATTRIBUTES entry{};
                entry.Sid = image.AddSid(groups[i].sid);
                entry.Attributes = groups[i].attributes;
                image.Put(at + header + i * sizeof(SID_AND_ATTRIBUTES), entry);
            }
            break;
        }
        default:
            SetLastError(ERROR_INVALID_PARAMETER);
            return FALSE;
    }
    *ReturnLength = static_cast<DWORD>(image.size());
    if (!TokenInformation || TokenInformationLength < image.size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    image.CopyOut();
    return TRUE;
}

BOOL WINAPI LookupAccountSidA(LPCSTR lpSystemName, PSID Sid, LPSTR Name, LPDWORD cchName,
                              LPSTR ReferencedDomainName, LPDWORD cchReferencedDomainName,
                              PSID_NAME_USE peUse) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    if (!cchName || !cchReferencedDomainName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!IsLocalSystem(lpSystemName)) {
        SetLastError(ERROR_BAD_NETPATH);
        return FALSE;
    }
    std::optional<SidBytes> sid = ReadSid(Sid);
    if (!sid) {
        SetLastError(ERROR_INVALID_SID);
        return FALSE;
    }
    std::optional<AccountName> account = AccountOfSid(*sid);
    if (!account) {
        SetLastError(ERROR_NONE_MAPPED);
        return FALSE;
    }
    if (account->name.size() + 1 > *cchName || !Name ||
        account->domain.size() + 1 > *cchReferencedDomainName || !ReferencedDomainName) {
        *cchName = static_cast<DWORD>(account->name.size() + 1);
        *cchReferencedDomainName = static_cast<DWORD>(account->domain.size() + 1);
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    CopyName(account->name, Name, *cchName);
    CopyName(account->domain, ReferencedDomainName, *cchReferencedDomainName);
    *cchName = static_cast<DWORD>(account->name.size());
    *cchReferencedDomainName = static_cast<DWORD>(account->domain.size());
    if (peUse) {
        *peUse = account->use;
    }
    return TRUE;
}

BOOL WINAPI LookupAccountNameA(LPCSTR lpSystemName, LPCSTR lpAccountName, PSID Sid, LPDWORD cbSid,
                               LPSTR ReferencedDomainName, LPDWORD cchReferencedDomainName,
                               PSID_NAME_USE peUse) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    if (!lpAccountName || !cbSid || !cchReferencedDomainName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!IsLocalSystem(lpSystemName)) {
        SetLastError(ERROR_BAD_NETPATH);
        return FALSE;
    }
    auto found = AccountOfName(lpAccountName);
    if (!found) {
        SetLastError(ERROR_NONE_MAPPED);
        return FALSE;
    }
    const SidBytes& sid = found->first;
    const std::string& domain = found->second.domain;
    if (sid.size() > *cbSid || !Sid || domain.size() + 1 > *cchReferencedDomainName ||
        !ReferencedDomainName) {
        *cbSid = static_cast<DWORD>(sid.size());
        *cchReferencedDomainName = static_cast<DWORD>(domain.size() + 1);
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::memcpy(Sid, sid.data(), sid.size());
    CopyName(domain, ReferencedDomainName, *cchReferencedDomainName);
    *cbSid = static_cast<DWORD>(sid.size());
    *cchReferencedDomainName = static_cast<DWORD>(domain.size());
    if (peUse) {
        *peUse = found->second.use;
    }
    return TRUE;
}

}  // extern "C"
