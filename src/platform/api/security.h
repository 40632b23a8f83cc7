/* Win32 security functions: security identifiers (SIDs), access tokens and
 * account names.
 *
 * Accounts are the Unix ones. A Unix user is the SID S-1-22-1-<uid>, a Unix
 * group S-1-22-2-<gid>; both belong to the domain named after the computer
 * (GetComputerNameA). The well-known identifiers keep their Windows values
 * and names: Everyone (S-1-1-0), INTERACTIVE (S-1-5-4), Authenticated Users
 * (S-1-5-11), SYSTEM (S-1-5-18), and the BUILTIN groups Administrators
 * (S-1-5-32-544), Users (S-1-5-32-545) and Guests (S-1-5-32-546).
 *
 * A token lists the user, then these groups: the Unix primary group,
 * Everyone, the Unix supplementary groups, Administrators when the user is
 * an administrator, Users, INTERACTIVE and Authenticated Users. The user is
 * an administrator when it is root (uid 0) or a member of one of the Unix
 * groups "sudo", "wheel" or "adm" — the groups that hand out
 * administrative rights on the common distributions.
 *
 * The token and account functions exist on Windows NT only: on the emulated
 * Windows 95 and Win32s (ZQ_WINVER) they fail with
 * ERROR_CALL_NOT_IMPLEMENTED, as those systems do. The SID helpers work on
 * every system. All functions are safe on any thread; a token shows the
 * identity of its process at the moment it was opened.
 *
 * The emulated system keeps no access-control lists: descriptors are
 * initialised and passed along, and file creation accepts them without
 * using them. */
#ifndef ZQ_PLATFORM_API_SECURITY_H
#define ZQ_PLATFORM_API_SECURITY_H

#include "platform/api/types.h"

typedef PVOID PSID;

typedef struct _SID_IDENTIFIER_AUTHORITY {
    BYTE Value[6];
} SID_IDENTIFIER_AUTHORITY, *PSID_IDENTIFIER_AUTHORITY;

typedef struct _SID {
    BYTE Revision;
    BYTE SubAuthorityCount;
    SID_IDENTIFIER_AUTHORITY IdentifierAuthority;
    DWORD SubAuthority[1];
} SID, *PISID;

#define SID_REVISION 1
#define SID_MAX_SUB_AUTHORITIES 15
#define SECURITY_MAX_SID_SIZE (8 + SID_MAX_SUB_AUTHORITIES * 4)

/* Identifier authorities, as initialisers of SID_IDENTIFIER_AUTHORITY. */
#define SECURITY_NULL_SID_AUTHORITY \
    {                               \
        { 0, 0, 0, 0, 0, 0 }        \
    }
#define SECURITY_WORLD_SID_AUTHORITY \
    {                                \
        { 0, 0, 0, 0, 0, 1 }         \
    }
#define SECURITY_LOCAL_SID_AUTHORITY \
    {                                \
        { 0, 0, 0, 0, 0, 2 }         \
    }
#define SECURITY_CREATOR_SID_AUTHORITY \
    {                                  \
        { 0, 0, 0, 0, 0, 3 }           \
    }
#define SECURITY_NT_AUTHORITY \
    {                         \
        { 0, 0, 0, 0, 0, 5 }  \
    }

#define SECURITY_NULL_RID 0x00000000L
#define SECURITY_WORLD_RID 0x00000000L
#define SECURITY_INTERACTIVE_RID 0x00000004L
#define SECURITY_AUTHENTICATED_USER_RID 0x0000000BL
#define SECURITY_LOCAL_SYSTEM_RID 0x00000012L
#define SECURITY_BUILTIN_DOMAIN_RID 0x00000020L
#define DOMAIN_ALIAS_RID_ADMINS 0x00000220L
#define DOMAIN_ALIAS_RID_USERS 0x00000221L
#define DOMAIN_ALIAS_RID_GUESTS 0x00000222L

typedef struct _SID_AND_ATTRIBUTES {
    PSID Sid;
    DWORD Attributes;
} SID_AND_ATTRIBUTES, *PSID_AND_ATTRIBUTES;

/* Attributes of a token's groups. */
#define SE_GROUP_MANDATORY 0x00000001L
#define SE_GROUP_ENABLED_BY_DEFAULT 0x00000002L
#define SE_GROUP_ENABLED 0x00000004L
#define SE_GROUP_OWNER 0x00000008L

typedef struct _TOKEN_USER {
    SID_AND_ATTRIBUTES User;
} TOKEN_USER, *PTOKEN_USER;

typedef struct _TOKEN_GROUPS {
    DWORD GroupCount;
    SID_AND_ATTRIBUTES Groups[1];
} TOKEN_GROUPS, *PTOKEN_GROUPS;

typedef struct _TOKEN_OWNER {
    PSID Owner;
} TOKEN_OWNER, *PTOKEN_OWNER;

typedef struct _TOKEN_PRIMARY_GROUP {
    PSID PrimaryGroup;
} TOKEN_PRIMARY_GROUP, *PTOKEN_PRIMARY_GROUP;

typedef enum _TOKEN_INFORMATION_CLASS {
    TokenUser = 1,
    TokenGroups,
    TokenPrivileges,
    TokenOwner,
    TokenPrimaryGroup,
    TokenDefaultDacl,
    TokenSource,
    TokenType,
    TokenImpersonationLevel,
    TokenStatistics
} TOKEN_INFORMATION_CLASS,
    *PTOKEN_INFORMATION_CLASS;

typedef enum _SID_NAME_USE {
    SidTypeUser = 1,
    SidTypeGroup,
    SidTypeDomain,
    SidTypeAlias,
    SidTypeWellKnownGroup,
    SidTypeDeletedAccount,
    SidTypeInvalid,
    SidTypeUnknown,
    SidTypeComputer
} SID_NAME_USE,
    *PSID_NAME_USE;

/* Access rights of a token. */
#define TOKEN_ASSIGN_PRIMARY 0x0001
#define TOKEN_DUPLICATE 0x0002
#define TOKEN_IMPERSONATE 0x0004
#define TOKEN_QUERY 0x0008
#define TOKEN_QUERY_SOURCE 0x0010
#define TOKEN_ADJUST_PRIVILEGES 0x0020
#define TOKEN_ADJUST_GROUPS 0x0040
#define TOKEN_ADJUST_DEFAULT 0x0080
#define TOKEN_READ (0x00020000L | TOKEN_QUERY)
#define TOKEN_ALL_ACCESS                                                                      \
    (0x000F0000L | TOKEN_ASSIGN_PRIMARY | TOKEN_DUPLICATE | TOKEN_IMPERSONATE | TOKEN_QUERY | \
     TOKEN_QUERY_SOURCE | TOKEN_ADJUST_PRIVILEGES | TOKEN_ADJUST_GROUPS | TOKEN_ADJUST_DEFAULT)

ZQ_EXTERN_C_BEGIN

/* Clears the descriptor and sets its revision (it must be
 * SECURITY_DESCRIPTOR_REVISION, else ERROR_UNKNOWN_REVISION); owner, group
 * and both lists stay empty. A NULL descriptor gives
 * ERROR_INVALID_PARAMETER. */
ZQ_API BOOL WINAPI InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR pSecurityDescriptor,
                                                DWORD dwRevision);

/* SID helpers. A SID is valid when its revision is 1 and it has at most 15
 * sub-authorities. */

/* Allocates a SID with nSubAuthorityCount (1..8) of the eight given
 * sub-authorities; free it with FreeSid. A count outside 1..8 or NULL
 * pointers: FALSE with ERROR_INVALID_PARAMETER and *pSid untouched. */
ZQ_API BOOL WINAPI AllocateAndInitializeSid(PSID_IDENTIFIER_AUTHORITY pIdentifierAuthority,
                                            BYTE nSubAuthorityCount, DWORD nSubAuthority0,
                                            DWORD nSubAuthority1, DWORD nSubAuthority2,
                                            DWORD nSubAuthority3, DWORD nSubAuthority4,
                                            DWORD nSubAuthority5, DWORD nSubAuthority6,
                                            DWORD nSubAuthority7, PSID* pSid);
/* Frees a SID of AllocateAndInitializeSid; returns NULL. */
ZQ_API PVOID WINAPI FreeSid(PSID pSid);
ZQ_API BOOL WINAPI IsValidSid(PSID pSid);
/* TRUE when both SIDs are valid and equal (revision, authority and every
 * sub-authority); FALSE otherwise, with ERROR_INVALID_SID when one is not
 * valid, else the last error set to 0. */
ZQ_API BOOL WINAPI EqualSid(PSID pSid1, PSID pSid2);
/* Size in bytes of a valid SID: 8 + 4 per sub-authority. */
ZQ_API DWORD WINAPI GetLengthSid(PSID pSid);
ZQ_API DWORD WINAPI GetSidLengthRequired(UCHAR nSubAuthorityCount);
/* Copies a valid SID into nDestinationSidLength bytes; too small:
 * FALSE with ERROR_INSUFFICIENT_BUFFER and nothing written. */
ZQ_API BOOL WINAPI CopySid(DWORD nDestinationSidLength, PSID pDestinationSid, PSID pSourceSid);
/* Pointers into the SID itself; no check is made, as on Windows. */
ZQ_API PSID_IDENTIFIER_AUTHORITY WINAPI GetSidIdentifierAuthority(PSID pSid);
ZQ_API PUCHAR WINAPI GetSidSubAuthorityCount(PSID pSid);
ZQ_API PDWORD WINAPI GetSidSubAuthority(PSID pSid, DWORD nSubAuthority);

/* Opens the access token of a process: the current one (GetCurrentProcess()
 * or any handle naming it) or a process the caller started, whose identity
 * is read when the token is opened. The token is a kernel object; close it
 * with CloseHandle. DesiredAccess is kept: GetTokenInformation needs
 * TOKEN_QUERY. Errors: an invalid process handle ERROR_INVALID_HANDLE; a
 * process that has ended ERROR_ACCESS_DENIED; TokenHandle NULL
 * ERROR_INVALID_PARAMETER. *TokenHandle is written only on success. */
ZQ_API BOOL WINAPI OpenProcessToken(HANDLE ProcessHandle, DWORD DesiredAccess, PHANDLE TokenHandle);

/* Writes the requested information into TokenInformation: TokenUser
 * (TOKEN_USER), TokenGroups (TOKEN_GROUPS), TokenOwner (TOKEN_OWNER, the
 * user) or TokenPrimaryGroup (TOKEN_PRIMARY_GROUP). The SIDs follow the
 * structure in the same buffer. *ReturnLength receives the size needed in
 * bytes; when TokenInformationLength is smaller, FALSE with
 * ERROR_INSUFFICIENT_BUFFER and nothing written. Other classes:
 * ERROR_INVALID_PARAMETER; a handle that is not a token:
 * ERROR_INVALID_HANDLE; a token opened without TOKEN_QUERY:
 * ERROR_ACCESS_DENIED; ReturnLength NULL: ERROR_INVALID_PARAMETER. */
ZQ_API BOOL WINAPI GetTokenInformation(HANDLE TokenHandle,
                                       TOKEN_INFORMATION_CLASS TokenInformationClass,
                                       LPVOID TokenInformation, DWORD TokenInformationLength,
                                       PDWORD ReturnLength);

/* Name and domain of an account. lpSystemName must be NULL, empty or this
 * computer's name (with or without a leading "\\"), else ERROR_BAD_NETPATH.
 * When both names fit (terminator included) they are copied,
 * *cchName and *cchReferencedDomainName receive their lengths without the
 * terminator and *peUse the kind of account. When one does not fit: FALSE
 * with ERROR_INSUFFICIENT_BUFFER, both sizes set to what is needed with the
 * terminator, nothing copied. A SID no account answers to:
 * ERROR_NONE_MAPPED; an invalid SID: ERROR_INVALID_SID. Well-known groups
 * have the domain "" (Everyone), "NT AUTHORITY" or "BUILTIN". */
ZQ_API BOOL WINAPI LookupAccountSidA(LPCSTR lpSystemName, PSID Sid, LPSTR Name, LPDWORD cchName,
                                     LPSTR ReferencedDomainName, LPDWORD cchReferencedDomainName,
                                     PSID_NAME_USE peUse);

/* The SID of an account named "name" or "domain\name" (names compared
 * without regard to case; Unix users are looked up before Unix groups).
 * Sizes as in LookupAccountSidA; *cbSid is in bytes. An unknown name:
 * ERROR_NONE_MAPPED. */
ZQ_API BOOL WINAPI LookupAccountNameA(LPCSTR lpSystemName, LPCSTR lpAccountName, PSID Sid,
                                      LPDWORD cbSid, LPSTR ReferencedDomainName,
                                      LPDWORD cchReferencedDomainName, PSID_NAME_USE peUse);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_SECURITY_H */
