// Win32 backend of the kernel-object operations: the functions themselves,
// except that overlapped directory reads are collected from the blocks of
// DirectoryChanges.cpp.

#include <windows.h>

#include "../Handles.h"
#include "DirectoryReads.h"

namespace zk64::platform {

static_assert(kWaitObject0 == WAIT_OBJECT_0);
static_assert(kWaitTimeout == WAIT_TIMEOUT);
static_assert(kWaitFailed == WAIT_FAILED);
static_assert(kInfinite == INFINITE);

HANDLE CreateEventA(void* securityAttributes, BOOL manualReset, BOOL initialState, char const* name)
{
    return ::CreateEventA(static_cast<SECURITY_ATTRIBUTES*>(securityAttributes), manualReset, initialState, name);
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) { return ::WaitForSingleObject(handle, milliseconds); }

BOOL ResetEvent(HANDLE event) { return ::ResetEvent(event); }

BOOL CloseHandle(HANDLE handle)
{
    win32::RetireDirectoryRead(handle);
    return ::CloseHandle(handle);
}

BOOL GetOverlappedResult(HANDLE file, Overlapped* overlapped, DWORD* bytesTransferred, BOOL wait)
{
    BOOL result = FALSE;
    if (win32::CollectDirectoryRead(file, overlapped, bytesTransferred, wait, result)) return result;
    return ::GetOverlappedResult(file, reinterpret_cast<OVERLAPPED*>(overlapped), bytesTransferred, wait);
}

}  // namespace zk64::platform
