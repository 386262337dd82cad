// Win32 backend of tokens, privileges and membership.

#include <windows.h>

#include <cstddef>

#include "../Security.h"

namespace zk64::platform {

DWORD const kErrorNotAllAssigned = ERROR_NOT_ALL_ASSIGNED;

static_assert(sizeof(LuidRecord) == sizeof(LUID));
static_assert(sizeof(LuidAndAttributes) == sizeof(LUID_AND_ATTRIBUTES));
static_assert(sizeof(TOKEN_PRIVILEGES) == 16);
static_assert(offsetof(TokenPrivileges, Privileges) == offsetof(TOKEN_PRIVILEGES, Privileges));
static_assert(sizeof(SidIdentifierAuthority) == sizeof(SID_IDENTIFIER_AUTHORITY));
static_assert(kTokenAssignPrimary == TOKEN_ASSIGN_PRIMARY);
static_assert(kTokenDuplicate == TOKEN_DUPLICATE);
static_assert(kTokenImpersonate == TOKEN_IMPERSONATE);
static_assert(kTokenQuery == TOKEN_QUERY);
static_assert(kTokenQuerySource == TOKEN_QUERY_SOURCE);
static_assert(kTokenAdjustPrivileges == TOKEN_ADJUST_PRIVILEGES);
static_assert(kTokenAdjustGroups == TOKEN_ADJUST_GROUPS);
static_assert(kTokenAdjustDefault == TOKEN_ADJUST_DEFAULT);
static_assert(kTokenAdjustSessionId == TOKEN_ADJUST_SESSIONID);
static_assert(kTokenRead == TOKEN_READ);
static_assert(kTokenWrite == TOKEN_WRITE);
static_assert(kTokenExecute == TOKEN_EXECUTE);
static_assert(kSePrivilegeEnabled == SE_PRIVILEGE_ENABLED);
static_assert(kSecurityBuiltinDomainRid == SECURITY_BUILTIN_DOMAIN_RID);
static_assert(kDomainAliasRidAdmins == DOMAIN_ALIAS_RID_ADMINS);

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token) { return ::OpenProcessToken(process, access, token); }

BOOL LookupPrivilegeValueA(char const* systemName, char const* name, LuidRecord* luid)
{
    return ::LookupPrivilegeValueA(systemName, name, reinterpret_cast<LUID*>(luid));
}

BOOL AdjustTokenPrivileges(HANDLE token, BOOL disableAll, TokenPrivileges* state, DWORD bufferLength,
                           TokenPrivileges* previousState, DWORD* returnLength)
{
    return ::AdjustTokenPrivileges(token, disableAll, reinterpret_cast<TOKEN_PRIVILEGES*>(state), bufferLength,
                                   reinterpret_cast<TOKEN_PRIVILEGES*>(previousState), returnLength);
}

BOOL AllocateAndInitializeSid(SidIdentifierAuthority const* authority, unsigned char subAuthorityCount,
                              DWORD sub0, DWORD sub1, DWORD sub2, DWORD sub3, DWORD sub4, DWORD sub5,
                              DWORD sub6, DWORD sub7, void** sid)
{
    SID_IDENTIFIER_AUTHORITY native;
    for (int index = 0; index < 6; ++index) native.Value[index] = authority->Value[index];
    return ::AllocateAndInitializeSid(&native, subAuthorityCount, sub0, sub1, sub2, sub3, sub4, sub5, sub6, sub7,
                                      reinterpret_cast<PSID*>(sid));
}

BOOL CheckTokenMembership(HANDLE token, void* sid, BOOL* isMember) { return ::CheckTokenMembership(token, sid, isMember); }
void* FreeSid(void* sid) { return ::FreeSid(sid); }

}  // namespace zk64::platform
