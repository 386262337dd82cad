#pragma once

// The records every process operation passes around, and the library's own
// access words.
//
// ProcessHandle and TokenHandle hold one system handle each; null means
// none. They have no destructor: whoever opened one closes it
// (CloseProcessHandle, CloseTokenHandle). The pseudo handle of
// GetCurrentProcessHandle needs no closing.

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

// Window, module and icon handles, as <windows.h> declares them.
struct HWND__;
struct HINSTANCE__;
struct HICON__;

struct ProcessHandle {
    void* handle = nullptr;
};

struct TokenHandle {
    void* handle = nullptr;
};

// One entry of the process list.
class ZK_API ProcessInfo {
public:
    unsigned int sessionID = 0;
    unsigned int processID = 0;
    ZKString processName;
    // Points into the process list, which is released before GetAllProcesses
    // returns: compare it, never dereference it.
    void* userSid = nullptr;

    ProcessInfo() = default;
    ProcessInfo(ProcessInfo const& other) = default;
    ProcessInfo(ProcessInfo&& other);  // moves the name, copies the rest
    ProcessInfo& operator=(ProcessInfo const& other) = default;
    ProcessInfo& operator=(ProcessInfo&& other);
    ~ProcessInfo() = default;

    // True when processID is not 0; nothing else counts.
    bool IsProcessInfoValid() const;
    // sessionID, processID, the names by length and bytes, userSid.
    bool operator==(ProcessInfo const& other) const;
};

// The process access word: the library's own bits, translated into the
// system's rights by OpenProcessHandle. Bits above 0x1000 are ignored.
constexpr unsigned long long ZKProcessAccessCreateProcess = 0x0001;
constexpr unsigned long long ZKProcessAccessCreateThread = 0x0002;
constexpr unsigned long long ZKProcessAccessDupHandle = 0x0004;
constexpr unsigned long long ZKProcessAccessQuery = 0x0008;
constexpr unsigned long long ZKProcessAccessQueryLimited = 0x0010;
constexpr unsigned long long ZKProcessAccessSetInformation = 0x0020;
constexpr unsigned long long ZKProcessAccessSetQuota = 0x0040;
constexpr unsigned long long ZKProcessAccessSuspendResume = 0x0080;
constexpr unsigned long long ZKProcessAccessTerminate = 0x0100;
constexpr unsigned long long ZKProcessAccessVMOperation = 0x0200;
constexpr unsigned long long ZKProcessAccessVMRead = 0x0400;
constexpr unsigned long long ZKProcessAccessVMWrite = 0x0800;
constexpr unsigned long long ZKProcessAccessSynchronize = 0x1000;

// The token access word, translated by OpenProcessTokenHandle. Bits above
// 0x800 are ignored.
constexpr unsigned long long ZKTokenAccessAdjustDefault = 0x001;
constexpr unsigned long long ZKTokenAccessAdjustGroups = 0x002;
constexpr unsigned long long ZKTokenAccessAdjustPrivileges = 0x004;
constexpr unsigned long long ZKTokenAccessAdjustSessionID = 0x008;
constexpr unsigned long long ZKTokenAccessAssignPrimary = 0x010;
constexpr unsigned long long ZKTokenAccessDuplicate = 0x020;
constexpr unsigned long long ZKTokenAccessExecute = 0x040;
constexpr unsigned long long ZKTokenAccessImpersonate = 0x080;
constexpr unsigned long long ZKTokenAccessQuery = 0x100;
constexpr unsigned long long ZKTokenAccessQuerySource = 0x200;
constexpr unsigned long long ZKTokenAccessRead = 0x400;
constexpr unsigned long long ZKTokenAccessWrite = 0x800;
