// Fake backend of the kernel-object operations: record, then do what the
// test scripted.

#include "../Handles.h"
#include "Fake.h"

namespace zk64::platform {
namespace {

std::string Block(Overlapped const* overlapped)
{
    return overlapped == nullptr ? "null" : "{event=" + fake::Pointer(overlapped->hEvent) + "}";
}

}  // namespace

HANDLE CreateEventA(void* securityAttributes, BOOL manualReset, BOOL initialState, char const* name)
{
    fake::Record("CreateEventA(attributes=" + fake::Pointer(securityAttributes) + ", manualReset=" +
                 fake::Dec(static_cast<unsigned>(manualReset)) + ", initialState=" +
                 fake::Dec(static_cast<unsigned>(initialState)) + ", name=" + fake::Quoted(name) + ")");
    auto& script = fake::Handles().CreateEventA;
    return script ? script(securityAttributes, manualReset, initialState, name) : nullptr;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds)
{
    fake::Record("WaitForSingleObject(handle=" + fake::Pointer(handle) + ", ms=" + fake::Dec(milliseconds) + ")");
    auto& script = fake::Handles().WaitForSingleObject;
    return script ? script(handle, milliseconds) : kWaitFailed;
}

BOOL ResetEvent(HANDLE event)
{
    fake::Record("ResetEvent(handle=" + fake::Pointer(event) + ")");
    auto& script = fake::Handles().ResetEvent;
    return script ? script(event) : 0;
}

BOOL CloseHandle(HANDLE handle)
{
    fake::Record("CloseHandle(handle=" + fake::Pointer(handle) + ")");
    auto& script = fake::Handles().CloseHandle;
    return script ? script(handle) : 0;
}

BOOL GetOverlappedResult(HANDLE file, Overlapped* overlapped, DWORD* bytesTransferred, BOOL wait)
{
    fake::Record("GetOverlappedResult(handle=" + fake::Pointer(file) + ", overlapped=" + Block(overlapped) +
                 ", bytes=" + fake::Out(bytesTransferred) + ", wait=" + fake::Dec(static_cast<unsigned>(wait)) + ")");
    auto& script = fake::Handles().GetOverlappedResult;
    return script ? script(file, overlapped, bytesTransferred, wait) : 0;
}

}  // namespace zk64::platform
