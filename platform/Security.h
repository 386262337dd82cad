#pragma once

// Tokens, privileges and group membership; see System.h for what the
// backends promise and platform/posix/Security.cpp for the Linux meaning.

#include "PlatformTypes.h"

namespace zk64::platform {

// LUID and LUID_AND_ATTRIBUTES, field for field.
struct LuidRecord {
    DWORD LowPart = 0;
    std::int32_t HighPart = 0;
};
struct LuidAndAttributes {
    LuidRecord Luid;
    DWORD Attributes = 0;
};

// TOKEN_PRIVILEGES with room for up to 9 entries: the first 16 bytes are
// TOKEN_PRIVILEGES itself, the rest its array's continuation.
struct TokenPrivileges {
    DWORD PrivilegeCount = 0;
    LuidAndAttributes Privileges[9];
};

// SID_IDENTIFIER_AUTHORITY.
struct SidIdentifierAuthority {
    unsigned char Value[6];
};

// Token access rights (the Win32 values).
constexpr DWORD kTokenAssignPrimary = 0x1;
constexpr DWORD kTokenDuplicate = 0x2;
constexpr DWORD kTokenImpersonate = 0x4;
constexpr DWORD kTokenQuery = 0x8;
constexpr DWORD kTokenQuerySource = 0x10;
constexpr DWORD kTokenAdjustPrivileges = 0x20;
constexpr DWORD kTokenAdjustGroups = 0x40;
constexpr DWORD kTokenAdjustDefault = 0x80;
constexpr DWORD kTokenAdjustSessionId = 0x100;
constexpr DWORD kTokenRead = 0x20008;
constexpr DWORD kTokenWrite = 0x200E0;
constexpr DWORD kTokenExecute = 0x20000;

constexpr DWORD kSePrivilegeEnabled = 2;
constexpr DWORD kSecurityBuiltinDomainRid = 32;
constexpr DWORD kDomainAliasRidAdmins = 544;

// The last error AdjustTokenPrivileges leaves when the token lacks one of
// the privileges: ERROR_NOT_ALL_ASSIGNED on Windows, EPERM on Linux.
extern DWORD const kErrorNotAllAssigned;

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token);
BOOL LookupPrivilegeValueA(char const* systemName, char const* name, LuidRecord* luid);
// On success the last error is 0, or kErrorNotAllAssigned when the token
// lacks one of the privileges (the others are adjusted all the same).
BOOL AdjustTokenPrivileges(HANDLE token, BOOL disableAll, TokenPrivileges* state, DWORD bufferLength,
                           TokenPrivileges* previousState, DWORD* returnLength);

BOOL AllocateAndInitializeSid(SidIdentifierAuthority const* authority, unsigned char subAuthorityCount,
                              DWORD sub0, DWORD sub1, DWORD sub2, DWORD sub3, DWORD sub4, DWORD sub5,
                              DWORD sub6, DWORD sub7, void** sid);
// A null token is the caller's own.
BOOL CheckTokenMembership(HANDLE token, void* sid, BOOL* isMember);
void* FreeSid(void* sid);

}  // namespace zk64::platform
