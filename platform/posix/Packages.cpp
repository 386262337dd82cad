// POSIX backend (Linux) of package identity. Linux has no application
// packages: every process answers APPMODEL_ERROR_NO_PACKAGE, no package can
// be opened (ENOENT) and no resource string resolves (E_FAIL); the last
// error is set to ENOENT or ENOSYS.

#include <cerrno>

#include "../Packages.h"

namespace zk64::platform {

namespace {

LONG32 NoPackage()
{
    errno = ENOENT;
    return kAppModelErrorNoPackage;
}

}  // namespace

LONG32 GetPackageFullName(HANDLE, UINT32*, WCHAR*) { return NoPackage(); }
LONG32 GetPackageFamilyName(HANDLE, UINT32*, WCHAR*) { return NoPackage(); }

LONG32 OpenPackageInfoByFullName(WCHAR const*, UINT32, PackageInfoReference* reference)
{
    if (reference != nullptr) *reference = nullptr;
    errno = ENOENT;
    return ENOENT;
}

LONG32 GetPackageInfo(PackageInfoReference, UINT32, UINT32*, unsigned char*, UINT32*)
{
    errno = ENOENT;
    return ENOENT;
}

LONG32 ClosePackageInfo(PackageInfoReference) { return 0; }

HRESULT32 SHLoadIndirectString(WCHAR const*, WCHAR*, unsigned int, void**)
{
    errno = ENOSYS;
    return static_cast<HRESULT32>(0x80004005U);  // E_FAIL
}

}  // namespace zk64::platform
