// Security descriptors: only their initialisation; the emulated system
// keeps no access-control lists.
#include <cstring>

#include "platform/win32.h"

extern "C" BOOL WINAPI InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR pSecurityDescriptor,
                                                    DWORD dwRevision) {
    if (!pSecurityDescriptor) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (dwRevision != SECURITY_DESCRIPTOR_REVISION) {
        SetLastError(ERROR_UNKNOWN_REVISION);
        return FALSE;
    }
    std::memset(pSecurityDescriptor, 0, sizeof(SECURITY_DESCRIPTOR));
    pSecurityDescriptor->Revision = SECURITY_DESCRIPTOR_REVISION;
    return TRUE;
}
