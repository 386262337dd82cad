// Win32 backend of package identity. The package functions exist from
// Windows 8 on, and not all of them in every kernel32 (Wine's lacks the
// package-information ones): they are looked up at run time, and a missing
// one answers as a process without a package would, or with
// ERROR_NOT_SUPPORTED. SHLoadIndirectString is linked from shlwapi.

#include <windows.h>

#include <shlwapi.h>

#include <cstddef>

#include "../Packages.h"

namespace zk64::platform {

static_assert(sizeof(PackageInfo) == 80, "the first GetPackageInfo buffer holds exactly one record");
static_assert(offsetof(PackageInfo, packageId) == 32);
static_assert(offsetof(PackageId, name) == 16);
static_assert(kHresultInsufficientBuffer == static_cast<HRESULT32>(HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER)));

namespace {

// The kernel32 function `name` as type Function, or null.
template <class Function>
Function Kernel32(char const* name)
{
    HMODULE const kernel = ::GetModuleHandleA("kernel32.dll");
    if (kernel == nullptr) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(kernel, name)));
}

using NameQuery = LONG(WINAPI*)(HANDLE, UINT32*, PWSTR);
using OpenInfo = LONG(WINAPI*)(PCWSTR, UINT32 const, PackageInfoReference*);
using GetInfo = LONG(WINAPI*)(PackageInfoReference, UINT32 const, UINT32*, BYTE*, UINT32*);
using CloseInfo = LONG(WINAPI*)(PackageInfoReference);

LONG32 NameOf(char const* function, HANDLE process, UINT32* length, WCHAR* name)
{
    static_assert(sizeof(WCHAR) == sizeof(wchar_t));
    NameQuery const query = Kernel32<NameQuery>(function);
    return query == nullptr ? kAppModelErrorNoPackage : query(process, length, name);
}

}  // namespace

LONG32 GetPackageFullName(HANDLE process, UINT32* length, WCHAR* name)
{
    return NameOf("GetPackageFullName", process, length, name);
}

LONG32 GetPackageFamilyName(HANDLE process, UINT32* length, WCHAR* name)
{
    return NameOf("GetPackageFamilyName", process, length, name);
}

LONG32 OpenPackageInfoByFullName(WCHAR const* fullName, UINT32 reserved, PackageInfoReference* reference)
{
    OpenInfo const open = Kernel32<OpenInfo>("OpenPackageInfoByFullName");
    return open == nullptr ? ERROR_NOT_SUPPORTED : open(fullName, reserved, reference);
}

LONG32 GetPackageInfo(PackageInfoReference reference, UINT32 flags, UINT32* bufferLength, unsigned char* buffer,
                      UINT32* count)
{
    GetInfo const get = Kernel32<GetInfo>("GetPackageInfo");
    return get == nullptr ? ERROR_NOT_SUPPORTED : get(reference, flags, bufferLength, buffer, count);
}

LONG32 ClosePackageInfo(PackageInfoReference reference)
{
    CloseInfo const close = Kernel32<CloseInfo>("ClosePackageInfo");
    return close == nullptr ? ERROR_NOT_SUPPORTED : close(reference);
}

HRESULT32 SHLoadIndirectString(WCHAR const* source, WCHAR* output, unsigned int outputSize, void** reserved)
{
    return ::SHLoadIndirectString(source, output, outputSize, reserved);
}

}  // namespace zk64::platform
