#pragma once

// Package identity of the platform layer: the package of a process, the
// package's description and the resolution of resource strings. See
// System.h for what the backends promise. Linux has no packaged
// applications: the posix backend answers every process with
// APPMODEL_ERROR_NO_PACKAGE and fails the rest.

#include <cstdint>

#include "PlatformTypes.h"

namespace zk64::platform {

using UINT32 = std::uint32_t;
// The results of the package functions (Win32 LONG) and of the shell's
// resource lookup (HRESULT), both 32-bit.
using LONG32 = std::int32_t;
using HRESULT32 = std::int32_t;

struct PackageInfoReferenceRecord;
using PackageInfoReference = PackageInfoReferenceRecord*;

// PACKAGE_VERSION, PACKAGE_ID and PACKAGE_INFO, field for field.
struct PackageVersion {
    WORD Revision;
    WORD Build;
    WORD Minor;
    WORD Major;
};

struct PackageId {
    UINT32 reserved;
    UINT32 processorArchitecture;
    PackageVersion version;
    WCHAR* name;
    WCHAR* publisher;
    WCHAR* resourceId;
    WCHAR* publisherId;
};

struct PackageInfo {
    UINT32 reserved;
    UINT32 flags;
    WCHAR* path;
    WCHAR* packageFullName;
    WCHAR* packageFamilyName;
    PackageId packageId;
};

constexpr LONG32 kAppModelErrorNoPackage = 15700;
constexpr UINT32 kPackageInformationFull = 0x100;
constexpr HRESULT32 kHresultInsufficientBuffer = static_cast<HRESULT32>(0x8007007AU);

// The package full or family name of `process`: with a buffer too small (or
// none) they give ERROR_INSUFFICIENT_BUFFER and set *length to the
// characters needed, terminator included. APPMODEL_ERROR_NO_PACKAGE for a
// process without a package (on Windows also where the system has no
// package functions at all).
LONG32 GetPackageFullName(HANDLE process, UINT32* length, WCHAR* name);
LONG32 GetPackageFamilyName(HANDLE process, UINT32* length, WCHAR* name);

// The description of an installed package, by full name; 0 on success.
// GetPackageInfo fills `buffer` with *count PACKAGE_INFO records followed by
// their strings, or answers ERROR_INSUFFICIENT_BUFFER with the bytes needed
// in *bufferLength.
LONG32 OpenPackageInfoByFullName(WCHAR const* fullName, UINT32 reserved, PackageInfoReference* reference);
LONG32 GetPackageInfo(PackageInfoReference reference, UINT32 flags, UINT32* bufferLength, unsigned char* buffer,
                      UINT32* count);
LONG32 ClosePackageInfo(PackageInfoReference reference);

// Resolves an indirect string ("@{...}") into `output` of `outputSize`
// characters; 0 on success, kHresultInsufficientBuffer when it does not fit.
// `source` and `output` may be the same buffer.
HRESULT32 SHLoadIndirectString(WCHAR const* source, WCHAR* output, unsigned int outputSize, void** reserved);

}  // namespace zk64::platform
