// POSIX backend (Linux) of the component-object operations. Linux has no
// component system: initialising it is not implemented, no class is
// registered, and there is never an object to release.
//   CoInitialize      E_NOTIMPL
//   CoUninitialize    nothing
//   CoCreateInstance  REGDB_E_CLASSNOTREG, *object null
//   ReleaseComObject  0, nothing released

#include "../Shell.h"

namespace zk64::platform {

HRESULT CoInitialize(void*) { return kENotImpl; }

void CoUninitialize() {}

HRESULT CoCreateInstance(Guid const&, void*, DWORD, Guid const&, void** object)
{
    if (object != nullptr) *object = nullptr;
    return kRegdbEClassNotReg;
}

ULONG ReleaseComObject(void*) { return 0; }

}  // namespace zk64::platform
