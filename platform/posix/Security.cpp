// POSIX backend (Linux) of tokens, privileges and membership.
//
// How each Win32 meaning is met here:
//   OpenProcessToken       a token entry of the handle table naming the
//                          process (query rights on the process needed).
//   LookupPrivilegeValueA  Windows' privilege names (case-insensitive) with
//                          their LUID values; an unknown name fails with
//                          EINVAL.
//   AdjustTokenPrivileges  a privilege is the Linux capability of the same
//                          purpose (table below). A token holds it when the
//                          capability is in the process's permitted set;
//                          enabling or disabling sets or clears it in the
//                          effective set of the calling thread (capset),
//                          which is the only token that can be adjusted:
//                          another process's token fails with EPERM.
//                          Privileges the token lacks leave errno EPERM
//                          (kErrorNotAllAssigned) after a successful call,
//                          0 otherwise.
//   AllocateAndInitializeSid, FreeSid  a malloc'ed identifier record.
//   CheckTokenMembership   the administrators alias (S-1-5-32-544) is an
//                          effective uid of 0; Everyone (S-1-1-0) holds
//                          every process; no other group is known.

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include <linux/capability.h>
#include <strings.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "../Processes.h"
#include "../Security.h"
#include "KernelObjects.h"
#include "ProcFiles.h"

namespace zk64::platform {

DWORD const kErrorNotAllAssigned = EPERM;

namespace {

// Windows' privileges, their LUID values and the capability of the same
// purpose (-1: every process holds it).
struct Privilege {
    char const* name;
    DWORD luid;
    int capability;
};

constexpr Privilege kPrivileges[] = {
    {"SeCreateTokenPrivilege", 2, CAP_SETUID},
    {"SeAssignPrimaryTokenPrivilege", 3, CAP_SETUID},
    {"SeLockMemoryPrivilege", 4, CAP_IPC_LOCK},
    {"SeIncreaseQuotaPrivilege", 5, CAP_SYS_RESOURCE},
    {"SeMachineAccountPrivilege", 6, CAP_SYS_ADMIN},
    {"SeTcbPrivilege", 7, CAP_SYS_ADMIN},
    {"SeSecurityPrivilege", 8, CAP_AUDIT_CONTROL},
    {"SeTakeOwnershipPrivilege", 9, CAP_FOWNER},
    {"SeLoadDriverPrivilege", 10, CAP_SYS_MODULE},
    {"SeSystemProfilePrivilege", 11, CAP_SYS_ADMIN},
    {"SeSystemtimePrivilege", 12, CAP_SYS_TIME},
    {"SeProfileSingleProcessPrivilege", 13, CAP_SYS_PTRACE},
    {"SeIncreaseBasePriorityPrivilege", 14, CAP_SYS_NICE},
    {"SeCreatePagefilePrivilege", 15, CAP_SYS_ADMIN},
    {"SeCreatePermanentPrivilege", 16, CAP_SYS_ADMIN},
    {"SeBackupPrivilege", 17, CAP_DAC_READ_SEARCH},
    {"SeRestorePrivilege", 18, CAP_DAC_OVERRIDE},
    {"SeShutdownPrivilege", 19, CAP_SYS_BOOT},
    {"SeDebugPrivilege", 20, CAP_SYS_PTRACE},
    {"SeAuditPrivilege", 21, CAP_AUDIT_WRITE},
    {"SeSystemEnvironmentPrivilege", 22, CAP_SYS_ADMIN},
    {"SeChangeNotifyPrivilege", 23, -1},
    {"SeRemoteShutdownPrivilege", 24, CAP_SYS_BOOT},
    {"SeUndockPrivilege", 25, CAP_SYS_ADMIN},
    {"SeSyncAgentPrivilege", 26, CAP_SYS_ADMIN},
    {"SeEnableDelegationPrivilege", 27, CAP_SYS_ADMIN},
    {"SeManageVolumePrivilege", 28, CAP_SYS_ADMIN},
    {"SeImpersonatePrivilege", 29, CAP_SETUID},
    {"SeCreateGlobalPrivilege", 30, -1},
    {"SeTrustedCredManAccessPrivilege", 31, CAP_SYS_ADMIN},
    {"SeRelabelPrivilege", 32, CAP_MAC_ADMIN},
    {"SeIncreaseWorkingSetPrivilege", 33, -1},
    {"SeTimeZonePrivilege", 34, CAP_SYS_TIME},
    {"SeCreateSymbolicLinkPrivilege", 35, -1},
    {"SeDelegateSessionUserImpersonatePrivilege", 36, CAP_SETUID},
};

Privilege const* PrivilegeOf(LuidRecord const& luid)
{
    for (Privilege const& privilege : kPrivileges) {
        if (luid.HighPart == 0 && luid.LowPart == privilege.luid) return &privilege;
    }
    return nullptr;
}

struct Sid {
    unsigned char revision;
    unsigned char count;
    SidIdentifierAuthority authority;
    DWORD sub[8];
};

bool IsSid(Sid const* sid, unsigned char authority, unsigned char count, DWORD sub0, DWORD sub1)
{
    static constexpr unsigned char zeros[5] = {};
    return std::memcmp(sid->authority.Value, zeros, 5) == 0 && sid->authority.Value[5] == authority &&
           sid->count == count && sid->sub[0] == sub0 && (count < 2 || sid->sub[1] == sub1);
}

// The effective uid of the process behind a /proc directory, or -1.
long EffectiveUid(int procfd)
{
    std::string status;
    if (!posix::ReadProcFile(procfd, "status", status)) return -1;
    std::size_t const line = status.find("\nUid:");
    if (line == std::string::npos) return -1;
    char* cursor = nullptr;
    std::strtoul(status.c_str() + line + 5, &cursor, 10);  // real
    return static_cast<long>(std::strtoul(cursor, nullptr, 10));
}

}  // namespace

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token)
{
    posix::Target target;
    if (!target.Open(process, kProcessQueryLimitedInformation)) return 0;
    auto object = std::make_shared<posix::KernelObject>();
    object->kind = posix::KernelObject::Kind::Token;
    object->pid = target.pid;
    object->pidfd = static_cast<int>(syscall(SYS_pidfd_open, target.pid, 0));
    object->procfd = dup(target.procfd);
    if (object->pidfd < 0 || object->procfd < 0) return 0;
    object->access = access;
    *token = posix::Insert(std::move(object));
    return 1;
}

BOOL LookupPrivilegeValueA(char const*, char const* name, LuidRecord* luid)
{
    for (Privilege const& privilege : kPrivileges) {
        if (name != nullptr && strcasecmp(name, privilege.name) == 0) {
            luid->LowPart = privilege.luid;
            luid->HighPart = 0;
            return 1;
        }
    }
    errno = EINVAL;
    return 0;
}

BOOL AdjustTokenPrivileges(HANDLE token, BOOL disableAll, TokenPrivileges* state, DWORD, TokenPrivileges*, DWORD*)
{
    posix::Target target;
    if (!target.OpenToken(token, kTokenAdjustPrivileges)) return 0;
    if (target.pid != getpid()) {
        errno = EPERM;
        return 0;
    }
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    if (syscall(SYS_capget, &header, data) != 0) return 0;
    bool allAssigned = true;
    DWORD const count = state->PrivilegeCount < 9 ? state->PrivilegeCount : 9;
    for (DWORD index = 0; index < count && !disableAll; ++index) {
        Privilege const* privilege = PrivilegeOf(state->Privileges[index].Luid);
        if (privilege == nullptr) {
            errno = EINVAL;
            return 0;
        }
        if (privilege->capability < 0) continue;
        unsigned const word = static_cast<unsigned>(privilege->capability) / 32;
        unsigned const bit = 1u << (static_cast<unsigned>(privilege->capability) % 32);
        if ((data[word].permitted & bit) == 0) {
            allAssigned = false;
            continue;
        }
        if ((state->Privileges[index].Attributes & kSePrivilegeEnabled) != 0) data[word].effective |= bit;
        else data[word].effective &= ~bit;
    }
    if (disableAll) data[0].effective = data[1].effective = 0;
    if (syscall(SYS_capset, &header, data) != 0) return 0;
    errno = allAssigned ? 0 : EPERM;
    return 1;
}

BOOL AllocateAndInitializeSid(SidIdentifierAuthority const* authority, unsigned char subAuthorityCount,
                              DWORD sub0, DWORD sub1, DWORD sub2, DWORD sub3, DWORD sub4, DWORD sub5,
                              DWORD sub6, DWORD sub7, void** sid)
{
    if (subAuthorityCount > 8) {
        errno = EINVAL;
        return 0;
    }
    auto* const record = static_cast<Sid*>(std::malloc(sizeof(Sid)));
    if (record == nullptr) return 0;
    *record = Sid{1, subAuthorityCount, *authority, {sub0, sub1, sub2, sub3, sub4, sub5, sub6, sub7}};
    *sid = record;
    return 1;
}

BOOL CheckTokenMembership(HANDLE token, void* sid, BOOL* isMember)
{
    if (sid == nullptr) {
        errno = EINVAL;
        return 0;
    }
    long uid = static_cast<long>(geteuid());
    if (token != nullptr) {
        posix::Target target;
        if (!target.OpenToken(token, kTokenQuery)) return 0;
        uid = EffectiveUid(target.procfd);
        if (uid < 0) return 0;
    }
    auto const* const record = static_cast<Sid const*>(sid);
    *isMember = IsSid(record, 1, 1, 0, 0) || (IsSid(record, 5, 2, kSecurityBuiltinDomainRid, kDomainAliasRidAdmins) && uid == 0);
    return 1;
}

void* FreeSid(void* sid)
{
    std::free(sid);
    return nullptr;
}

}  // namespace zk64::platform
