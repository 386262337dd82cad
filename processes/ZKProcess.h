#pragma once

// Processes: the process list, handles and tokens, privileges, names,
// bitness, modules, executable paths, shell launch and the elevation test.
//
// Operations on another process come in up to three forms:
//   F(unsigned long pid, ...)      opens the process with F's access word,
//                                  runs the handle form and closes the handle;
//                                  a failed open gives F's failure value;
//   F(ProcessHandle, ...)          works on the caller's handle, never closes it;
//   F(ZKString const& name, ...)   finds the pid with GetProcessID(name) (an
//                                  exact, case-sensitive match of the first
//                                  process listed) and goes on as the pid form;
//                                  an unknown name gives the failure value.
// Operations that fill a container append to it and never clear it.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"
#include "ZKProcessHandles.h"

// Appends one record per running process; false, with `out` unchanged,
// when the system refuses the list.
ZK_API bool GetAllProcesses(ZKContainer<ProcessInfo>& out);

// 0 when nothing is found (an unknown name, a window of no process, a null
// handle).
ZK_API unsigned long GetProcessID(ZKString const& name);
ZK_API unsigned long GetProcessID(HWND__* const window);
ZK_API unsigned long GetProcessID(ProcessHandle const& process);

// Null on failure; never inheritable.
ZK_API ProcessHandle OpenProcessHandle(unsigned long pid, unsigned long long const& accessWord);
ZK_API ProcessHandle OpenProcessHandle(ZKString const& name, unsigned long long const& accessWord);
// The pid form opens the process with word 0x408 for the time of the call.
ZK_API TokenHandle OpenProcessTokenHandle(unsigned long pid, unsigned long long tokenWord);
ZK_API TokenHandle OpenProcessTokenHandle(ProcessHandle process, unsigned long long tokenWord);

// Enables or disables one privilege by name; false when the name is unknown,
// the call fails or the token does not hold the privilege.
ZK_API bool AdjustPrivilege(TokenHandle token, char const* privilegeName, bool enable);
// Enables the debug, base priority, working set, driver, profile, backup,
// restore, shutdown and take-ownership privileges in one call; true when
// the call succeeded, even if the token holds only some of them.
ZK_API bool AdjustAllPrivilege(TokenHandle token);

ZK_API void CloseProcessHandle(ProcessHandle process);
ZK_API void CloseTokenHandle(TokenHandle token);

ZK_API ProcessHandle GetCurrentProcessHandle();
ZK_API unsigned long GetCurrentProcessID();
ZK_API HINSTANCE__* GetCurrentProcessExeHINSTANCE();
// "name=value" entries in block order, as they stand.
ZK_API ZKContainer<ZKString> GetCurrentProcessEnvironmentStrings();

// The executable's file name. The handle form is true even when the path
// cannot be read (the name is then empty); the others are false only when
// the process cannot be opened (word 0x10).
ZK_API bool GetProcessName(unsigned long pid, ZKString& out);
ZK_API bool GetProcessName(ProcessHandle process, ZKString& out);
ZK_API bool GetProcessName(HWND__* const window, ZKString& out);

// Compares `name` exactly with the executable's file name; a process that
// cannot be opened has the empty name.
ZK_API bool DoesProcessMatchProcessName(unsigned long pid, char const* name);
ZK_API bool DoesProcessMatchProcessName(ProcessHandle process, char const* name);

// Bitness (word 0x8; false on failure). Only a native process on a 64-bit
// x86 machine counts as 64-bit.
ZK_API bool IsProcess32Bit(unsigned long pid);
ZK_API bool IsProcess32Bit(ProcessHandle process);
ZK_API bool IsProcess32Bit(ZKString const& name);
ZK_API bool IsProcess64Bit(unsigned long pid);
ZK_API bool IsProcess64Bit(ProcessHandle process);
ZK_API bool IsProcess64Bit(ZKString const& name);
ZK_API bool IsCurrentProcess32Bit();
ZK_API bool IsCurrentProcess64Bit();

// Modules (word 0x408; false on failure). At most the first 1024 modules
// the system lists are seen: those past them are dropped.
ZK_API bool GetProcessModules(unsigned long pid, ZKContainer<HINSTANCE__*>& out);
ZK_API bool GetProcessModules(ProcessHandle process, ZKContainer<HINSTANCE__*>& out);
ZK_API bool GetProcessModules(ZKString const& name, ZKContainer<HINSTANCE__*>& out);
// Full paths; modules whose path cannot be read are skipped.
ZK_API bool GetProcessModuleNames(unsigned long pid, ZKContainer<ZKString>& out);
ZK_API bool GetProcessModuleNames(ProcessHandle process, ZKContainer<ZKString>& out);
ZK_API bool GetProcessModuleNames(ZKString const& name, ZKContainer<ZKString>& out);
// The first module whose full path contains `moduleName` (case-sensitive,
// up to its first zero byte); `out` is untouched when none does.
ZK_API bool GetProcessModule(unsigned long pid, ZKString const& moduleName, HINSTANCE__*& out);
ZK_API bool GetProcessModule(ProcessHandle process, ZKString const& moduleName, HINSTANCE__*& out);
ZK_API bool GetProcessModule(ZKString const& name, ZKString const& moduleName, HINSTANCE__*& out);

// The executable's full path and its directory without a closing separator
// (word 0x408; empty on failure).
ZK_API ZKString GetProcessExePath(unsigned long pid);
ZK_API ZKString GetProcessExePath(ProcessHandle process);
ZK_API ZKString GetProcessExePath(ZKString const& name);
ZK_API ZKString GetProcessExeDirectory(unsigned long pid);
ZK_API ZKString GetProcessExeDirectory(ProcessHandle process);
ZK_API ZKString GetProcessExeDirectory(ZKString const& name);
ZK_API ZKString GetCurrentProcessExePath();
ZK_API ZKString GetCurrentProcessExeDirectory();

// Starts `file` through the shell, elevated ("runas") or not, without
// waiting for it.
ZK_API bool ExecuteShellProcess(ZKString const& file, ZKString const& parameters, bool elevated);

// Whether the caller belongs to the administrators. Throws the system's
// error code, an unsigned long, when the question cannot be answered.
ZK_API bool IsAppRunningAsAdminMode();
