#pragma once

// The directory-change journal of the platform layer: opening a directory
// and asynchronous reads of its changes. See System.h for what the backends
// promise.
//
// Both real backends carry an overlapped read in a block of their own and
// copy its outcome into the caller's Overlapped and buffer when
// GetOverlappedResult collects it. So the caller's Overlapped and buffer are
// written only during the layer's calls, never later by the system: a read
// left pending forever (a handle that is never closed) cannot write into
// memory its caller has freed or moved. ReadDirectoryChangesW sets the
// caller's Overlapped to kStatusPending and resets its event; the event is
// signalled when changes are there; GetOverlappedResult then fills the
// buffer with FILE_NOTIFY_INFORMATION records (FileNotifyInformationHead)
// and sets Internal and InternalHigh. A completion with 0 bytes and status
// kStatusNotifyEnumDir means changes were lost.

#include "PlatformTypes.h"

namespace zk64::platform {

constexpr DWORD kFileListDirectory = 0x1;
constexpr DWORD kFileShareRead = 0x1;
constexpr DWORD kFileShareWrite = 0x2;
constexpr DWORD kOpenExisting = 3;
constexpr DWORD kFileFlagBackupSemantics = 0x02000000;
constexpr DWORD kFileFlagOverlapped = 0x40000000;

constexpr DWORD kFileNotifyChangeFileName = 0x001;
constexpr DWORD kFileNotifyChangeDirName = 0x002;
constexpr DWORD kFileNotifyChangeAttributes = 0x004;
constexpr DWORD kFileNotifyChangeSize = 0x008;
constexpr DWORD kFileNotifyChangeLastWrite = 0x010;
constexpr DWORD kFileNotifyChangeLastAccess = 0x020;
constexpr DWORD kFileNotifyChangeCreation = 0x040;
constexpr DWORD kFileNotifyChangeSecurity = 0x100;

constexpr DWORD kFileActionAdded = 1;
constexpr DWORD kFileActionRemoved = 2;
constexpr DWORD kFileActionModified = 3;
constexpr DWORD kFileActionRenamedOldName = 4;
constexpr DWORD kFileActionRenamedNewName = 5;

// kInvalidHandleValue on failure. The posix backend opens only existing
// paths with backup semantics (a directory, or as Windows does a file, on
// which reads then fail); it ignores access and share modes.
HANDLE CreateFileA(char const* path, DWORD desiredAccess, DWORD shareMode, void* securityAttributes,
                   DWORD creationDisposition, DWORD flagsAndAttributes, HANDLE templateFile);
// Starts a read of `directory`'s changes into `buffer`. The posix backend
// takes only the overlapped form (an Overlapped, no completion routine).
BOOL ReadDirectoryChangesW(HANDLE directory, void* buffer, DWORD bufferLength, BOOL watchSubtree, DWORD notifyFilter,
                           DWORD* bytesReturned, Overlapped* overlapped, void* completionRoutine);

}  // namespace zk64::platform
