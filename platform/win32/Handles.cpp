// Win32 backend of CloseHandle.

#include <windows.h>

#include "../Handles.h"

namespace zk64::platform {

BOOL CloseHandle(HANDLE object) { return ::CloseHandle(object); }

}  // namespace zk64::platform
