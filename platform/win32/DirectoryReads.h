#pragma once

// Win32 backend, internal: the blocks that carry overlapped directory reads
// (see DirectoryChanges.cpp).

#include "../PlatformTypes.h"

namespace zk64::platform::win32 {

// Collects the read carried for `directory`: false when none is carried.
bool CollectDirectoryRead(HANDLE directory, Overlapped* overlapped, DWORD* bytes, BOOL wait, BOOL& result);
// Called before `directory` is closed: its block stops being found by the
// handle, whose value the system may give out again.
void RetireDirectoryRead(HANDLE directory);

}  // namespace zk64::platform::win32
