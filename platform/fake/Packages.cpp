// Fake backend of package identity. Wide texts are recorded in UTF-8.

#include <string>

#include "../../foundation/detail/Utf.h"
#include "../Packages.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

using fake::Dec;
using fake::Hex;
using fake::Out;
using fake::Packages;
using fake::Pointer;
using fake::Record;
using fake::Run;

namespace {

constexpr LONG32 kNotSupported = 50;
constexpr HRESULT32 kFail = static_cast<HRESULT32>(0x80004005U);

std::string QuotedWide(WCHAR const* text)
{
    if (text == nullptr) return "null";
    std::size_t length = 0;
    while (text[length] != 0) ++length;
    std::string quoted = "\"";
    zk64::detail::AppendUtf16AsUtf8(text, length, quoted);
    quoted.push_back('"');
    return quoted;
}

std::string NameCall(char const* name, HANDLE process, UINT32 const* length, WCHAR const* buffer)
{
    std::string call = name;
    call += "(" + Pointer(process) + ", length=" + (length == nullptr ? std::string("null") : Dec(*length));
    call += ", buffer=" + Out(buffer) + ")";
    return call;
}

}  // namespace

LONG32 GetPackageFullName(HANDLE process, UINT32* length, WCHAR* name)
{
    Record(NameCall("GetPackageFullName", process, length, name));
    return Run<LONG32>(Packages().GetPackageFullName, kAppModelErrorNoPackage, process, length, name);
}

LONG32 GetPackageFamilyName(HANDLE process, UINT32* length, WCHAR* name)
{
    Record(NameCall("GetPackageFamilyName", process, length, name));
    return Run<LONG32>(Packages().GetPackageFamilyName, kAppModelErrorNoPackage, process, length, name);
}

LONG32 OpenPackageInfoByFullName(WCHAR const* fullName, UINT32 reserved, PackageInfoReference* reference)
{
    Record("OpenPackageInfoByFullName(" + QuotedWide(fullName) + ", reserved=" + Dec(reserved) +
           ", reference=" + Out(reference) + ")");
    LONG32 const opened = Run<LONG32>(Packages().OpenPackageInfoByFullName, kNotSupported, fullName, reference);
    if (opened == 0) fake::Opened(*reference);
    return opened;
}

LONG32 GetPackageInfo(PackageInfoReference reference, UINT32 flags, UINT32* bufferLength, unsigned char* buffer,
                      UINT32* count)
{
    Record("GetPackageInfo(" + Pointer(reference) + ", flags=" + Hex(flags) + ", length=" + Dec(*bufferLength) +
           ", buffer=" + Out(buffer) + ", count=" + Dec(*count) + ")");
    return Run<LONG32>(Packages().GetPackageInfo, kNotSupported, bufferLength, buffer, count);
}

LONG32 ClosePackageInfo(PackageInfoReference reference)
{
    Record("ClosePackageInfo(" + Pointer(reference) + ")");
    fake::Closed(reference);
    return 0;
}

HRESULT32 SHLoadIndirectString(WCHAR const* source, WCHAR* output, unsigned int outputSize, void** reserved)
{
    Record("SHLoadIndirectString(" + QuotedWide(source) + ", output=" + (source == output ? "source" : Out(output)) +
           ", size=" + Dec(outputSize) + ", reserved=" + Pointer(reserved) + ")");
    return Run<HRESULT32>(Packages().SHLoadIndirectString, kFail, source, output, outputSize);
}

}  // namespace zk64::platform
