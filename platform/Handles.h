#pragma once

// Closing kernel handles; see System.h for what the backends promise.

#include "PlatformTypes.h"

namespace zk64::platform {

// Closes a handle from OpenProcess or OpenProcessToken (and the other
// handle-returning operations of the layer). FALSE for null.
// posix: releases the handle object and the descriptors it holds.
BOOL CloseHandle(HANDLE object);

}  // namespace zk64::platform
