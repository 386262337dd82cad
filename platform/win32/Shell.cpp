// Win32 backend of the component-object operations: the functions
// themselves.

#include <windows.h>

#include <objbase.h>

#include "../Shell.h"

namespace zk64::platform {

static_assert(sizeof(Guid) == sizeof(GUID));
static_assert(kSOk == S_OK);
static_assert(kSFalse == S_FALSE);
static_assert(kENotImpl == E_NOTIMPL);
static_assert(kRegdbEClassNotReg == REGDB_E_CLASSNOTREG);
static_assert(kClsctxAll == CLSCTX_ALL);

HRESULT CoInitialize(void* reserved) { return ::CoInitialize(reserved); }

void CoUninitialize() { ::CoUninitialize(); }

HRESULT CoCreateInstance(Guid const& classId, void* outer, DWORD context, Guid const& interfaceId, void** object)
{
    return ::CoCreateInstance(reinterpret_cast<GUID const&>(classId), static_cast<IUnknown*>(outer), context,
                              reinterpret_cast<GUID const&>(interfaceId), object);
}

ULONG ReleaseComObject(void* object) { return static_cast<IUnknown*>(object)->Release(); }

}  // namespace zk64::platform
