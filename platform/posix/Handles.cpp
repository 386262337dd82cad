// POSIX backend (Linux) of CloseHandle: releases an entry of the handle
// table (platform/posix/KernelObjects.h) and the descriptors it holds. The
// pseudo handle of GetCurrentProcess closes without effect, as on Windows;
// anything else fails with EBADF.

#include <cerrno>

#include "../Handles.h"
#include "KernelObjects.h"

namespace zk64::platform {

BOOL CloseHandle(HANDLE object)
{
    if (object == posix::PseudoProcessHandle()) return 1;
    if (posix::Remove(object)) return 1;
    errno = EBADF;
    return 0;
}

}  // namespace zk64::platform
