// Fake backend of the component-object operations: record, then do what the
// test scripted.

#include <cstdio>
#include <string>

#include "../Shell.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

std::string fake::GuidText(Guid const& guid)
{
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned>(guid.Data1), static_cast<unsigned>(guid.Data2),
                  static_cast<unsigned>(guid.Data3), guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3],
                  guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text;
}

HRESULT CoInitialize(void* reserved)
{
    fake::Record("CoInitialize(" + fake::Pointer(reserved) + ")");
    return fake::Run<HRESULT>(fake::Shell().CoInitialize, static_cast<HRESULT>(0x80004005u), reserved);
}

void CoUninitialize() { fake::Record("CoUninitialize()"); }

HRESULT CoCreateInstance(Guid const& classId, void* outer, DWORD context, Guid const& interfaceId, void** object)
{
    fake::Record("CoCreateInstance(class=" + fake::GuidText(classId) + ", outer=" + fake::Pointer(outer) +
                 ", context=" + fake::Dec(context) + ", interface=" + fake::GuidText(interfaceId) +
                 ", object=" + fake::Out(object) + ")");
    HRESULT const created =
        fake::Run<HRESULT>(fake::Shell().CoCreateInstance, kRegdbEClassNotReg, classId, interfaceId, object);
    if (created == 0) fake::Opened(*object);
    return created;
}

ULONG ReleaseComObject(void* object)
{
    fake::Record("ReleaseComObject(" + fake::Pointer(object) + ")");
    fake::Closed(object);
    return fake::Run<ULONG>(fake::Shell().ReleaseComObject, 0, object);
}

}  // namespace zk64::platform
