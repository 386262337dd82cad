// Fake backend of the kernel-object operations: record, then do what the
// test scripted.

#include "../Handles.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {
namespace {

std::string Block(Overlapped const* overlapped)
{
    return overlapped == nullptr ? "null" : "{event=" + fake::Pointer(overlapped->hEvent) + "}";
}

}  // namespace

HANDLE CreateEventA(void* securityAttributes, BOOL manualReset, BOOL initialState, char const* name)
{
    fake::Record("CreateEventA(attributes=" + fake::Pointer(securityAttributes) +
                 ", manualReset=" + fake::Dec(static_cast<unsigned>(manualReset)) + ", initialState=" +
                 fake::Dec(static_cast<unsigned>(initialState)) + ", name=" + fake::Quoted(name) + ")");
    return fake::Noted(
        fake::Run<HANDLE>(fake::Handles().CreateEventA, nullptr, securityAttributes, manualReset, initialState, name));
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds)
{
    fake::Record("WaitForSingleObject(handle=" + fake::Pointer(handle) + ", ms=" + fake::Dec(milliseconds) + ")");
    return fake::Run<DWORD>(fake::Handles().WaitForSingleObject, kWaitFailed, handle, milliseconds);
}

BOOL ResetEvent(HANDLE event)
{
    fake::Record("ResetEvent(handle=" + fake::Pointer(event) + ")");
    return fake::Run<BOOL>(fake::Handles().ResetEvent, 0, event);
}

BOOL CloseHandle(HANDLE handle)
{
    fake::Record("CloseHandle(handle=" + fake::Pointer(handle) + ")");
    fake::Closed(handle);
    return fake::Run<BOOL>(fake::Handles().CloseHandle, 0, handle);
}

BOOL GetOverlappedResult(HANDLE file, Overlapped* overlapped, DWORD* bytesTransferred, BOOL wait)
{
    fake::Record("GetOverlappedResult(handle=" + fake::Pointer(file) + ", overlapped=" + Block(overlapped) +
                 ", bytes=" + fake::Out(bytesTransferred) + ", wait=" + fake::Dec(static_cast<unsigned>(wait)) + ")");
    return fake::Run<BOOL>(fake::Handles().GetOverlappedResult, 0, file, overlapped, bytesTransferred, wait);
}

}  // namespace zk64::platform
