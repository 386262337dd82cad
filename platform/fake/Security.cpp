// Fake backend of tokens, privileges and membership. AdjustTokenPrivileges
// records every entry of the state it is given; FreeSid frees with free(),
// so a script hands out malloc'ed identifiers.

#include <cstdlib>
#include <string>

#include "../Security.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

using fake::Dec;
using fake::Out;
using fake::Pointer;
using fake::Record;
using fake::Run;
using fake::Security;

DWORD const kErrorNotAllAssigned = 1300;

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token)
{
    Record("OpenProcessToken(" + Pointer(process) + ", access=" + fake::Hex(access) + ", token=" + Out(token) + ")");
    BOOL const opened = Run<BOOL>(Security().OpenProcessToken, 0, process, access, token);
    if (opened) fake::Opened(*token);
    return opened;
}

BOOL LookupPrivilegeValueA(char const* systemName, char const* name, LuidRecord* luid)
{
    Record("LookupPrivilegeValueA(system=" + fake::Quoted(systemName) + ", name=" + fake::Quoted(name) +
           ", luid=" + Out(luid) + ")");
    return Run<BOOL>(Security().LookupPrivilegeValueA, 0, name, luid);
}

BOOL AdjustTokenPrivileges(HANDLE token, BOOL disableAll, TokenPrivileges* state, DWORD bufferLength,
                           TokenPrivileges* previousState, DWORD* returnLength)
{
    std::string entries;
    for (DWORD index = 0; index < state->PrivilegeCount && index < 9; ++index) {
        LuidAndAttributes const& entry = state->Privileges[index];
        entries += entries.empty() ? "" : " ";
        entries += Dec(entry.Luid.LowPart) + "." + Dec(static_cast<unsigned>(entry.Luid.HighPart)) + ":" +
                   Dec(entry.Attributes);
    }
    Record("AdjustTokenPrivileges(" + Pointer(token) + ", disableAll=" + Dec(static_cast<unsigned>(disableAll)) +
           ", count=" + Dec(state->PrivilegeCount) + " [" + entries + "], bufferLength=" + Dec(bufferLength) +
           ", previous=" + Out(previousState) + ", returnLength=" + Out(returnLength) + ")");
    return Run<BOOL>(Security().AdjustTokenPrivileges, 0, token, state, bufferLength);
}

BOOL AllocateAndInitializeSid(SidIdentifierAuthority const* authority, unsigned char subAuthorityCount, DWORD sub0,
                              DWORD sub1, DWORD sub2, DWORD sub3, DWORD sub4, DWORD sub5, DWORD sub6, DWORD sub7,
                              void** sid)
{
    std::string text = "AllocateAndInitializeSid(authority=";
    for (int index = 0; index < 6; ++index) {
        if (index != 0) text += '.';
        text += Dec(authority->Value[index]);
    }
    Record(text + ", count=" + Dec(subAuthorityCount) + ", sub=" + Dec(sub0) + "," + Dec(sub1) + "," + Dec(sub2) + "," +
           Dec(sub3) + "," + Dec(sub4) + "," + Dec(sub5) + "," + Dec(sub6) + "," + Dec(sub7) + ")");
    BOOL const made = Run<BOOL>(Security().AllocateAndInitializeSid, 0, sid);
    if (made) fake::Opened(*sid);
    return made;
}

BOOL CheckTokenMembership(HANDLE token, void* sid, BOOL* isMember)
{
    Record("CheckTokenMembership(" + Pointer(token) + ", sid=" + Pointer(sid) + ", member=" + Out(isMember) + ")");
    return Run<BOOL>(Security().CheckTokenMembership, 0, token, sid, isMember);
}

void* FreeSid(void* sid)
{
    Record("FreeSid(" + Pointer(sid) + ")");
    fake::Closed(sid);
    std::free(sid);
    return nullptr;
}

}  // namespace zk64::platform
