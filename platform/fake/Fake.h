#pragma once

// The fake backend: a programmable stand-in for the operating system, linked
// into the library's white-box tests in place of the win32 or posix backend.
//
// Every platform call is recorded, in order, as text of the form
// "Name(arg=value, ...)": numbers in decimal, flag words and addresses in
// hexadecimal, null pointers as "null", texts in quotes, out arguments as
// "out" or "null". A test scripts what
// an operation does by setting its std::function; an operation left unset
// returns its failure value (0, FALSE, null) and touches nothing.
//
//     fake::Reset();
//     fake::System().GetComputerNameA = [](char* buffer, DWORD* size) {
//         return fake::ReturnText("HOST", buffer, size, false);
//     };
//     EXPECT_EQ(GetComputerNameLocal(), "HOST");
//     EXPECT_EQ(fake::TakeCalls(), (Calls{"GetComputerNameA(size=16)"}));

#include <functional>
#include <string>
#include <vector>

#include "../Files.h"
#include "../Icons.h"
#include "../Input.h"
#include "../Memory.h"
#include "../Packages.h"
#include "../Processes.h"
#include "../Security.h"
#include "../Shell.h"
#include "../PlatformTypes.h"
#include "DesktopScript.h"  // Desktop(): the window operations

namespace zk64::platform::fake {

using Calls = std::vector<std::string>;

// The calls recorded since the last Reset or TakeCalls, which clears them.
Calls TakeCalls();

struct SystemScript {
    std::function<DWORD(DWORD flags, void const* source, DWORD messageId, DWORD languageId, char* buffer, DWORD size,
                        void* arguments)>
        FormatMessageA;
    std::function<void(NativeSystemInfo* info)> GetNativeSystemInfo;
    std::function<BOOL(MemoryStatusEx* status)> GlobalMemoryStatusEx;
    std::function<BOOL(char* buffer, DWORD* size)> GetComputerNameA;
    std::function<BOOL(char* buffer, DWORD* size)> GetUserNameA;
    std::function<BOOL()> IsDebuggerPresent;
    std::function<BOOL(long long* value)> QueryPerformanceCounter;
    std::function<BOOL(long long* value)> QueryPerformanceFrequency;
    std::function<void(unsigned int leaf, unsigned int registers[4])> CpuId;
};

struct FilesScript {
    std::function<BOOL(char const* rootPath, char* volumeName, DWORD volumeNameSize, DWORD* serialNumber,
                       DWORD* maximumComponentLength, DWORD* fileSystemFlags, char* fileSystemName,
                       DWORD fileSystemNameSize)>
        GetVolumeInformationA;
    std::function<HANDLE(char const* pattern, FindDataA* data)> FindFirstFileA;
    std::function<BOOL(HANDLE find, FindDataA* data)> FindNextFileA;
    std::function<BOOL(HANDLE find)> FindClose;
    std::function<BOOL(void** oldValue)> Wow64DisableWow64FsRedirection;
    std::function<BOOL(void* oldValue)> Wow64RevertWow64FsRedirection;
};

struct ProcessesScript {
    std::function<BOOL(WtsProcessInfoA** processes, DWORD* count)> WTSEnumerateProcessesA;
    std::function<HANDLE(DWORD access, BOOL inheritHandle, DWORD processId)> OpenProcess;
    std::function<DWORD(HANDLE process)> GetProcessId;
    std::function<DWORD(HWND window, DWORD* processId)> GetWindowThreadProcessId;
    std::function<HANDLE()> GetCurrentProcess;
    std::function<DWORD()> GetCurrentProcessId;
    std::function<HMODULE(char const* moduleName)> GetModuleHandleA;
    std::function<char*()> GetEnvironmentStrings;
    std::function<BOOL(HANDLE process, BOOL* wow64)> IsWow64Process;
    std::function<BOOL(HANDLE process, HMODULE* modules, DWORD bytes, DWORD* needed, DWORD filter)>
        K32EnumProcessModulesEx;
    std::function<DWORD(HANDLE process, HMODULE module, char* buffer, DWORD size)> K32GetModuleFileNameExA;
    std::function<HINSTANCE__*(char const* verb, char const* file, char const* parameters)> ShellExecuteA;
    std::function<BOOL(HANDLE process, ProcessMemoryCounters* counters)> K32GetProcessMemoryInfo;
    std::function<BOOL(HANDLE process, DWORD* count)> GetProcessHandleCount;
    std::function<DWORD(HANDLE process)> GetGuiResources;
    std::function<DWORD(HANDLE process)> GetPriorityClass;
    std::function<BOOL(HANDLE process, DWORD priorityClass)> SetPriorityClass;
    std::function<BOOL(HANDLE process, ULONGLONG* processMask, ULONGLONG* systemMask)> GetProcessAffinityMask;
    std::function<BOOL(HANDLE process, ULONGLONG mask)> SetProcessAffinityMask;
    std::function<BOOL(HANDLE process, ULONGLONG* minimum, ULONGLONG* maximum)> GetProcessWorkingSetSizeEx;
};

struct SecurityScript {
    std::function<BOOL(HANDLE process, DWORD access, HANDLE* token)> OpenProcessToken;
    std::function<BOOL(char const* name, LuidRecord* luid)> LookupPrivilegeValueA;
    std::function<BOOL(HANDLE token, TokenPrivileges* state, DWORD bufferLength)> AdjustTokenPrivileges;
    std::function<BOOL(void** sid)> AllocateAndInitializeSid;
    std::function<BOOL(HANDLE token, void* sid, BOOL* isMember)> CheckTokenMembership;
};

struct MemoryScript {
    std::function<std::size_t(void const* address, MemoryBasicInformation* information)> VirtualQueryEx;
    std::function<BOOL(void const* address, void* buffer, std::size_t size)> ReadProcessMemory;
    std::function<BOOL(void* address, void const* buffer, std::size_t size)> WriteProcessMemory;
};

// Unset, the package names answer kAppModelErrorNoPackage, the rest fail
// with 50 (ERROR_NOT_SUPPORTED) or E_FAIL.
struct PackagesScript {
    std::function<LONG32(HANDLE process, UINT32* length, WCHAR* name)> GetPackageFullName;
    std::function<LONG32(HANDLE process, UINT32* length, WCHAR* name)> GetPackageFamilyName;
    std::function<LONG32(WCHAR const* fullName, PackageInfoReference* reference)> OpenPackageInfoByFullName;
    std::function<LONG32(UINT32* bufferLength, unsigned char* buffer, UINT32* count)> GetPackageInfo;
    std::function<HRESULT32(WCHAR const* source, WCHAR* output, unsigned int outputSize)> SHLoadIndirectString;
};

// Unset, every operation fails (null, 0, FALSE).
struct IconsScript {
    std::function<HICON(char const* name, unsigned int type, int width, int height, unsigned int flags)> LoadImageA;
    std::function<unsigned int(char const* file, int index, HICON* large, HICON* small, unsigned int count)>
        ExtractIconExA;
    std::function<BOOL(HICON icon)> DestroyIcon;
    std::function<BOOL(HANDLE process, DWORD processId, HANDLE file, DWORD dumpType)> MiniDumpWriteDump;
    std::function<BOOL(char const* path)> DeleteFileA;
};

SystemScript& System();
FilesScript& Files();
ProcessesScript& Processes();
SecurityScript& Security();
MemoryScript& Memory();
PackagesScript& Packages();
IconsScript& Icons();

struct HandlesScript {
    std::function<HANDLE(void* securityAttributes, BOOL manualReset, BOOL initialState, char const* name)> CreateEventA;
    std::function<DWORD(HANDLE handle, DWORD milliseconds)> WaitForSingleObject;
    std::function<BOOL(HANDLE event)> ResetEvent;
    std::function<BOOL(HANDLE handle)> CloseHandle;
    std::function<BOOL(HANDLE file, Overlapped* overlapped, DWORD* bytesTransferred, BOOL wait)> GetOverlappedResult;
};

// Unset, CreateFileA returns kInvalidHandleValue.
struct DirectoryChangesScript {
    std::function<HANDLE(char const* path, DWORD desiredAccess, DWORD shareMode, void* securityAttributes,
                         DWORD creationDisposition, DWORD flagsAndAttributes, HANDLE templateFile)>
        CreateFileA;
    std::function<BOOL(HANDLE directory, void* buffer, DWORD bufferLength, BOOL watchSubtree, DWORD notifyFilter,
                       DWORD* bytesReturned, Overlapped* overlapped, void* completionRoutine)>
        ReadDirectoryChangesW;
};

struct TextScript {
    std::function<int(unsigned int codePage, DWORD flags, WCHAR const* wide, int wideCount, char* bytes, int byteCount,
                      char const* defaultChar, BOOL* usedDefaultChar)>
        WideCharToMultiByte;
};

HandlesScript& Handles();
DirectoryChangesScript& DirectoryChanges();
TextScript& Text();

// Input and component objects. Unset, CoInitialize answers E_FAIL and
// CoCreateInstance REGDB_E_CLASSNOTREG, leaving *object alone.
struct InputScript {
    std::function<UINT(UINT count, Input const* inputs, int size)> SendInput;
    std::function<BOOL(RawInputDevice const* devices, UINT count, UINT size)> RegisterRawInputDevices;
    std::function<UINT(char const* name)> RegisterWindowMessageA;
};
struct ShellScript {
    std::function<HRESULT(void* reserved)> CoInitialize;
    std::function<HRESULT(Guid const& classId, Guid const& interfaceId, void** object)> CoCreateInstance;
    std::function<ULONG(void* object)> ReleaseComObject;
};
InputScript& InputOperations();
ShellScript& Shell();
// A GUID in its registry form, "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
std::string GuidText(Guid const& guid);

// Forgets the recorded calls, every script, the armed fault and the handle
// ledger, and sets the last error to 0.
void Reset();

// Faults. The calls that can fail are counted per thread from Reset on;
// FailCall(n) makes the n-th of them on this thread fail as the system's call
// would: it answers its failure value, touches nothing, and sets the last
// error the real call sets for its usual failure. FailCall(0) disarms.
void FailCall(unsigned long n);
unsigned long FallibleCalls();
// The name of the call that failed on this thread since Reset; empty if none.
std::string FailedCall();
// For the fake operations: whether the call being made is the one to fail
// (it then sets the last error).
bool FaultHere();

// The handle ledger: the operations that hand out a handle, memory block or
// object note it, the ones that give it back strike it. A stray close names
// something not open (closed twice, or never handed out); null and the
// current-process pseudo handle are not counted.
void Opened(void const* handle);
// Notes `handle` as opened and answers it.
template <class Handle>
Handle Noted(Handle handle)
{
    Opened(handle);
    return handle;
}
void Closed(void const* handle);
std::size_t OpenHandles();
std::size_t StrayCloses();
// Sets the calling thread's last error without recording a call.
void SetLastErrorValue(DWORD code);

// Script helpers.
// Answers a GetComputerNameA/GetUserNameA-style call with `text`:
// `countTerminator` says whether a successful *size counts the terminator.
BOOL ReturnText(char const* text, char* buffer, DWORD* size, bool countTerminator);

// Recording, for the fake operations themselves.
std::string Dec(unsigned long long value);
std::string Hex(unsigned long long value);
std::string Pointer(void const* value);
// An out argument: "out" when given, "null" when not.
std::string Out(void const* value);
std::string Quoted(char const* text);
void Record(std::string call);

}  // namespace zk64::platform::fake
