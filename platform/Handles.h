#pragma once

// Kernel objects of the platform layer: events, waits, overlapped results
// and closing. See System.h for what the backends promise. On Linux the
// handles are the posix backend's own objects (platform/posix/HandleTable.h):
// events, and the directories of DirectoryChanges.h.

#include "PlatformTypes.h"

namespace zk64::platform {

constexpr DWORD kWaitObject0 = 0;
constexpr DWORD kWaitTimeout = 258;
constexpr DWORD kWaitFailed = 0xFFFFFFFF;
constexpr DWORD kInfinite = 0xFFFFFFFF;

// No name is supported by the posix backend (null only); null on failure.
HANDLE CreateEventA(void* securityAttributes, BOOL manualReset, BOOL initialState, char const* name);
// kWaitObject0 when signalled within `milliseconds`, kWaitTimeout when not,
// kWaitFailed for a handle that is not a live event (posix: events only).
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
BOOL ResetEvent(HANDLE event);
BOOL CloseHandle(HANDLE handle);
// The result of the overlapped operation started on `file` with
// `overlapped`. With `wait` TRUE it blocks until the operation is done.
// For directory reads the records reach the caller's buffer at the latest
// here (see DirectoryChanges.h).
BOOL GetOverlappedResult(HANDLE file, Overlapped* overlapped, DWORD* bytesTransferred, BOOL wait);

}  // namespace zk64::platform
