#pragma once

// File-system operations of the platform layer; see System.h for what the
// backends promise.

#include "PlatformTypes.h"

namespace zk64::platform {

// Any of the out arguments may be null (with a size of 0 for the buffers).
BOOL GetVolumeInformationA(char const* rootPath, char* volumeName, DWORD volumeNameSize, DWORD* serialNumber,
                           DWORD* maximumComponentLength, DWORD* fileSystemFlags, char* fileSystemName,
                           DWORD fileSystemNameSize);

}  // namespace zk64::platform
