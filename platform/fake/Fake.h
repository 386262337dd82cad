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
#include "../PlatformTypes.h"

namespace zk64::platform::fake {

using Calls = std::vector<std::string>;

// The calls recorded since the last Reset or TakeCalls, which clears them.
Calls TakeCalls();

struct SystemScript {
    std::function<DWORD(DWORD flags, void const* source, DWORD messageId, DWORD languageId, char* buffer,
                        DWORD size, void* arguments)>
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

SystemScript& System();
FilesScript& Files();

struct HandlesScript {
    std::function<HANDLE(void* securityAttributes, BOOL manualReset, BOOL initialState, char const* name)>
        CreateEventA;
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
    std::function<int(unsigned int codePage, DWORD flags, WCHAR const* wide, int wideCount, char* bytes,
                      int byteCount, char const* defaultChar, BOOL* usedDefaultChar)>
        WideCharToMultiByte;
};

HandlesScript& Handles();
DirectoryChangesScript& DirectoryChanges();
TextScript& Text();

// Forgets the recorded calls and every script, and sets the last error to 0.
void Reset();
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
