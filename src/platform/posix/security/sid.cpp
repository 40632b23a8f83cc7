// Security identifiers: building, comparing and copying SIDs.
#include <cstdlib>
#include <cstring>

#include "platform/posix/security/accounts.h"
#include "platform/win32.h"

using zq::platform::internal::ReadSid;
using zq::platform::internal::SidBytes;

extern "C" {

BOOL WINAPI AllocateAndInitializeSid(PSID_IDENTIFIER_AUTHORITY pIdentifierAuthority,
                                     BYTE nSubAuthorityCount, DWORD nSubAuthority0,
                                     DWORD nSubAuthority1, DWORD nSubAuthority2,
                                     DWORD nSubAuthority3, DWORD nSubAuthority4,
                                     DWORD nSubAuthority5, DWORD nSubAuthority6,
                                     DWORD nSubAuthority7, PSID* pSid) {
    if (!pIdentifierAuthority || !pSid || nSubAuthorityCount == 0 || nSubAuthorityCount > 8) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const DWORD sub[8] = {nSubAuthority0, nSubAuthority1, nSubAuthority2, nSubAuthority3,
                          nSubAuthority4, nSubAuthority5, nSubAuthority6, nSubAuthority7};
    auto* sid = static_cast<SID*>(std::calloc(1, GetSidLengthRequired(nSubAuthorityCount)));
    if (!sid) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    sid->Revision = SID_REVISION;
    sid->SubAuthorityCount = nSubAuthorityCount;
    sid->IdentifierAuthority = *pIdentifierAuthority;
    std::memcpy(reinterpret_cast<BYTE*>(sid) + 8, sub, 4u * nSubAuthorityCount);
    *pSid = sid;
    return TRUE;
}

PVOID WINAPI FreeSid(PSID pSid) {
    std::free(pSid);
    return nullptr;
}

BOOL WINAPI IsValidSid(PSID pSid) {
    return ReadSid(pSid).has_value();
}

BOOL WINAPI EqualSid(PSID pSid1, PSID pSid2) {
    std::optional<SidBytes> first = ReadSid(pSid1);
    std::optional<SidBytes> second = ReadSid(pSid2);
    if (!first || !second) {
        SetLastError(ERROR_INVALID_SID);
        return FALSE;
    }
    SetLastError(ERROR_SUCCESS);
    return *first == *second;
}

DWORD WINAPI GetLengthSid(PSID pSid) {
    std::optional<SidBytes> sid = ReadSid(pSid);
    return sid ? static_cast<DWORD>(sid->size()) : 0;
}

DWORD WINAPI GetSidLengthRequired(UCHAR nSubAuthorityCount) {
    return 8u + 4u * nSubAuthorityCount;
}

BOOL WINAPI CopySid(DWORD nDestinationSidLength, PSID pDestinationSid, PSID pSourceSid) {
    std::optional<SidBytes> sid = ReadSid(pSourceSid);
    if (!sid) {
        SetLastError(ERROR_INVALID_SID);
        return FALSE;
    }
    if (!pDestinationSid || nDestinationSidLength < sid->size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::memcpy(pDestinationSid, sid->data(), sid->size());
    return TRUE;
}

PSID_IDENTIFIER_AUTHORITY WINAPI GetSidIdentifierAuthority(PSID pSid) {
    return &static_cast<SID*>(pSid)->IdentifierAuthority;
}

PUCHAR WINAPI GetSidSubAuthorityCount(PSID pSid) {
    return &static_cast<SID*>(pSid)->SubAuthorityCount;
}

PDWORD WINAPI GetSidSubAuthority(PSID pSid, DWORD nSubAuthority) {
    // The sub-authorities run past the one the structure declares.
    return reinterpret_cast<PDWORD>(static_cast<BYTE*>(pSid) + 8 + 4 * nSubAuthority);
}

}  // extern "C"
