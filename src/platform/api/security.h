/* Win32 security functions.
 *
 * The emulated system keeps no access-control lists: descriptors are
 * initialised and passed along, and file creation accepts them without
 * using them. */
#ifndef ZQ_PLATFORM_API_SECURITY_H
#define ZQ_PLATFORM_API_SECURITY_H

#include "platform/api/types.h"

ZQ_EXTERN_C_BEGIN

/* Clears the descriptor and sets its revision (it must be
 * SECURITY_DESCRIPTOR_REVISION, else ERROR_UNKNOWN_REVISION); owner, group
 * and both lists stay empty. A NULL descriptor gives
 * ERROR_INVALID_PARAMETER. */
ZQ_API BOOL WINAPI InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR pSecurityDescriptor,
                                                DWORD dwRevision);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_SECURITY_H */
