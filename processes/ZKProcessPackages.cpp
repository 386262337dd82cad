#include "ZKProcessPackages.h"

#include <algorithm>
#include <vector>

#include "../platform/Packages.h"
#include "ZKProcess.h"
#include "detail/PackageManifest.h"
#include "detail/ProcessAccess.h"

namespace platform = zk64::platform;
using zk64::detail::kWordQuery;

namespace {

using NameQuery = platform::LONG32 (*)(platform::HANDLE, platform::UINT32*, platform::WCHAR*);

// The package name `query` reports, into `out`: a length query, then the
// read with the length it reported, whatever else it answered. The buffer
// keeps one zeroed unit more than the system was told of, so that its text
// always ends.
bool PackageName(ProcessHandle process, NameQuery query, ZKString& out)
{
    if (process.handle == nullptr) return false;
    platform::UINT32 length = 0;
    if (query(process.handle, &length, nullptr) == platform::kAppModelErrorNoPackage) return false;
    std::vector<platform::WCHAR> buffer(std::size_t{length} + 1, 0);
    query(process.handle, &length, buffer.data());
    buffer.back() = 0;
    out = ZKString();
    out.SetString(buffer.data());
    return true;
}

}  // namespace

bool GetProcessPackageFullName(ProcessHandle process, ZKString& out)
{
    return PackageName(process, platform::GetPackageFullName, out);
}

bool GetProcessPackageFamilyName(ProcessHandle process, ZKString& out)
{
    return PackageName(process, platform::GetPackageFamilyName, out);
}

bool IsProcessUniversalWindowsPlatform(ProcessHandle process)
{
    ZKString familyName;
    return GetProcessPackageFamilyName(process, familyName);
}

ZK_PROCESS_ID_AND_NAME_FORMS(bool, IsProcessUniversalWindowsPlatform, kWordQuery, false, (), ())
ZK_PROCESS_ID_AND_NAME_FORMS(bool, GetProcessPackageFullName, kWordQuery, false, (, ZKString & out), (, out))
ZK_PROCESS_ID_AND_NAME_FORMS(bool, GetProcessPackageFamilyName, kWordQuery, false, (, ZKString & out), (, out))

// ------------------------------------------------------ package records

namespace {

constexpr platform::UINT32 kFirstInfoBytes = 80;

// The first record of a GetPackageInfo buffer into `out`.
void ReadPackageInfo(platform::PackageInfo const& info, ProcessPackageInfo& out)
{
    ProcessPackageInfo filled;
    filled.flags = info.flags;
    filled.path.SetString(info.path);
    filled.fullName.SetString(info.packageFullName);
    filled.familyName.SetString(info.packageFamilyName);
    filled.processorArchitecture = info.packageId.processorArchitecture;
    filled.version = {info.packageId.version.Revision, info.packageId.version.Build, info.packageId.version.Minor,
                      info.packageId.version.Major};
    filled.name.SetString(info.packageId.name);
    filled.publisher.SetString(info.packageId.publisher);
    filled.resourceId.SetString(info.packageId.resourceId);
    filled.publisherId.SetString(info.packageId.publisherId);
    out = filled;
}

// GetPackageInfo twice: a first try with room for one bare record, and a
// second, with the length the first one asked for when it was too small,
// that decides. The buffer never holds less than one record, whatever
// length the system asks for.
bool ReadPackage(platform::PackageInfoReference reference, ProcessPackageInfo& out)
{
    platform::UINT32 length = kFirstInfoBytes;
    platform::UINT32 count = 1;
    std::vector<unsigned char> buffer(kFirstInfoBytes);
    if (platform::GetPackageInfo(reference, platform::kPackageInformationFull, &length, buffer.data(), &count) ==
        static_cast<platform::LONG32>(platform::kErrorInsufficientBuffer)) {
        buffer.assign(std::max<std::size_t>(length, sizeof(platform::PackageInfo)), 0);
    }
    if (platform::GetPackageInfo(reference, platform::kPackageInformationFull, &length, buffer.data(), &count) != 0)
        return false;
    platform::PackageInfo info;
    std::copy_n(buffer.data(), sizeof info, reinterpret_cast<unsigned char*>(&info));
    ReadPackageInfo(info, out);
    return true;
}

}  // namespace

bool GetProcessPackageInfo(ProcessHandle process, ProcessPackageInfo& out)
{
    ZKString fullName;
    GetProcessPackageFullName(process, fullName);
    if (fullName.IsEmpty()) return false;
    platform::WCHAR* wide = ZKString::GetWideString(fullName, nullptr, nullptr);
    platform::PackageInfoReference reference = nullptr;
    platform::LONG32 const opened = platform::OpenPackageInfoByFullName(wide, 0, &reference);
    ZKString::CleanupWideString(&wide);
    if (opened != 0) return false;
    bool const read = ReadPackage(reference, out);
    platform::ClosePackageInfo(reference);
    return read;
}

ZK_PROCESS_ID_AND_NAME_FORMS(bool, GetProcessPackageInfo, kWordQuery, false, (, ProcessPackageInfo & out), (, out))

// ------------------------------------------------------------ logo path

namespace {

// Resolves the resource string in place in a buffer just as long as the
// string, once more in a buffer twice that long when it did not fit.
ZKString ResolveResource(ZKString const& resource)
{
    unsigned int size = 0;
    platform::WCHAR* buffer = ZKString::GetWideString(resource, &size, nullptr);
    platform::HRESULT32 result = platform::SHLoadIndirectString(buffer, buffer, size, nullptr);
    if (result == platform::kHresultInsufficientBuffer) {
        ZKString::CleanupWideString(&buffer);
        size *= 2;
        buffer = ZKString::GetWideString(resource, &size, nullptr);
        result = platform::SHLoadIndirectString(buffer, buffer, size, nullptr);
    }
    buffer[size - 1] = 0;
    ZKString resolved;
    if (result == 0) resolved.SetString(buffer);
    ZKString::CleanupWideString(&buffer);
    return resolved;
}

}  // namespace

ZKString GetUniversalWindowsPlatformIconPath(ProcessHandle process)
{
    if (!IsProcessUniversalWindowsPlatform(process)) return ZKString();
    ZKString fullName;
    GetProcessPackageFullName(process, fullName);
    ZKString manifest = GetProcessExeDirectory(process);
    manifest += "\\AppxManifest.xml";
    ProcessPackageInfo package;
    GetProcessPackageInfo(process, package);
    ZKString const logo = zk64::detail::ManifestLogo(manifest.GetString());
    return ResolveResource(zk64::detail::LogoResourceString(fullName, package.name, logo));
}

ZK_PROCESS_ID_AND_NAME_FORMS(ZKString, GetUniversalWindowsPlatformIconPath, kWordQuery, ZKString(), (), ())
