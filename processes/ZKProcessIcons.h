#pragma once

// Icons of processes and executables, the system's stock icons, and dump
// files of running processes.
//
// Icons from GetProcessIcon and GetExeFileIcon are the caller's and are
// given back with DestroyProcessIcon. Stock icons are shared by the system:
// never destroy them. A packaged application's executable carries no useful
// icon; GetUniversalWindowsPlatformIconPath (ZKProcessPackages.h) gives its
// logo instead.

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"
#include "ZKProcessHandles.h"

// The stock icons: one per operation, with the system's resource number.
// Each is loaded at 11 by 12 pixels, shared. Null on failure.
//   X(operation, resource number)
#define ZK_STOCK_ICONS(X)                          \
    X(GetDefaultApplicationIcon, 32512)            \
    X(GetDefaultStopSignIcon, 32513)               \
    X(GetDefaultQuestionMarkIcon, 32514)           \
    X(GetDefaultExclamationPointIcon, 32515)       \
    X(GetDefaultAsteriskIcon, 32516)

#define ZK_DECLARE_STOCK_ICON(Operation, number) ZK_API HICON__* Operation();
ZK_STOCK_ICONS(ZK_DECLARE_STOCK_ICON)
#undef ZK_DECLARE_STOCK_ICON

// The first large icon of the executable (word 0x8 for the identifier and
// name forms); null when the file has no icon or its path cannot be read.
// A path of 260 bytes or more gives null.
ZK_API HICON__* GetProcessIcon(unsigned long pid);
ZK_API HICON__* GetProcessIcon(ProcessHandle process);
ZK_API HICON__* GetProcessIcon(ZKString const& name);
ZK_API HICON__* GetExeFileIcon(ZKString const& path);
// Nothing for null; the caller's variable keeps its stale value.
ZK_API void DestroyProcessIcon(HICON__* const& icon);

// Writes a dump of the process into `outputPath`, replacing what is there;
// the low 32 bits of `dumpKind` are the system's minidump type flags. A
// failed dump deletes the file. A 32-bit caller refuses a 64-bit target.
// The identifier form opens with word 0x408.
ZK_API bool CreateProcessDumpFile(ZKString const& outputPath, unsigned long pid, unsigned long long const& dumpKind);
ZK_API bool CreateProcessDumpFile(ZKString const& outputPath, ProcessHandle process,
                                  unsigned long long const& dumpKind);
// Writes nothing and always gives false: it returns at once when no process
// has the name, and otherwise waits, busy, for as long as one has. To dump
// by name, take GetProcessID(name) and use the identifier form.
ZK_API bool CreateProcessDumpFile(ZKString const& outputPath, ZKString const& name, unsigned long long const& dumpKind);
