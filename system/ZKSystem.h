#pragma once

// System queries, the program-argument table and the text of system errors.

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

// The library's own processor numbering; the platform's differs.
enum ProcessorArchitecture {
    ProcessorArchitectureX64 = 0,
    ProcessorArchitectureARM = 1,
    ProcessorArchitectureItanium = 2,
    ProcessorArchitectureX86 = 3,
    ProcessorArchitectureUnknown = 4,  // every other machine, 64-bit ARM included
};

// Program arguments. The application hands over its argument array, which
// must end in a null entry behind the last argument (as main's argv does):
// each entry's value is the entry after it. Every entry holding a "-" makes
// a key: from that dash up to the first blank behind it, or the whole entry
// when there is no blank. The value is the whole next entry (an option
// too), or empty when the next entry is null. A key keeps its first value,
// also across calls. Always returns true; a count below 1 adds nothing.
ZK_API bool LoadProgramArgs(int count, char** const array);
// Keys are case-sensitive and include their dashes; the key counts up to its
// first zero byte.
ZK_API bool HasProgramArg(ZKString const& key);
// The value, or the empty string for a missing key or an empty value.
ZK_API ZKString GetProgramArgData(ZKString const& key);

// The system's text for the calling thread's last error, which it stores in
// *code when code is not null. The text is kept as the system gives it
// (Windows ends it with a line break). A non-empty prefix comes first,
// separated by a blank. Must be the first platform call after the failure
// it reports.
ZK_API ZKString GetLastErrorMsg(unsigned long* code, ZKString const& prefix);

// The application address range and the processor of the machine.
ZK_API unsigned long long GetSystemMaxApplicationAddress();
ZK_API unsigned long long GetSystemMinApplicationAddress();
ZK_API ProcessorArchitecture GetProcessorArchitecture();

// Memory figures; 0 when the system does not answer. KB forms round down.
ZK_API unsigned long long GetSystemPhysicalMemoryTotalBytes();
ZK_API unsigned long long GetSystemPhysicalMemoryTotalKB();
ZK_API unsigned long long GetSystemPhysicalMemoryAvailableBytes();
ZK_API unsigned long long GetSystemPhysicalMemoryAvailableKB();
ZK_API unsigned long long GetSystemPageFileSizeBytes();
ZK_API unsigned long long GetSystemPageFileSizeKB();
ZK_API unsigned long long GetMemoryLoadPercent();

// Empty when the system call fails. The computer name is read into 16
// bytes, the user name into 257.
ZK_API ZKString GetComputerNameLocal();
ZK_API ZKString GetCurrentUserName();
ZK_API bool IsDebuggerAttached();
