// Fake backend of CloseHandle.

#include "../Handles.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

BOOL CloseHandle(HANDLE object)
{
    fake::Record("CloseHandle(" + fake::Pointer(object) + ")");
    return fake::Run<BOOL>(fake::Handles().CloseHandle, 0, object);
}

}  // namespace zk64::platform
