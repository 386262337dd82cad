// Fake backend of the directory-change journal: record, then do what the
// test scripted.

#include "../DirectoryChanges.h"
#include "Fake.h"

namespace zk64::platform {

HANDLE CreateFileA(char const* path, DWORD desiredAccess, DWORD shareMode, void* securityAttributes,
                   DWORD creationDisposition, DWORD flagsAndAttributes, HANDLE templateFile)
{
    fake::Record("CreateFileA(path=" + fake::Quoted(path) + ", access=" + fake::Hex(desiredAccess) +
                 ", share=" + fake::Hex(shareMode) + ", attributes=" + fake::Pointer(securityAttributes) +
                 ", disposition=" + fake::Dec(creationDisposition) + ", flags=" + fake::Hex(flagsAndAttributes) +
                 ", template=" + fake::Pointer(templateFile) + ")");
    auto& script = fake::DirectoryChanges().CreateFileA;
    return script ? script(path, desiredAccess, shareMode, securityAttributes, creationDisposition, flagsAndAttributes,
                           templateFile)
                  : kInvalidHandleValue;
}

BOOL ReadDirectoryChangesW(HANDLE directory, void* buffer, DWORD bufferLength, BOOL watchSubtree, DWORD notifyFilter,
                           DWORD* bytesReturned, Overlapped* overlapped, void* completionRoutine)
{
    fake::Record("ReadDirectoryChangesW(handle=" + fake::Pointer(directory) + ", buffer=" + fake::Out(buffer) +
                 ", size=" + fake::Dec(bufferLength) + ", subtree=" + fake::Dec(static_cast<unsigned>(watchSubtree)) +
                 ", filter=" + fake::Hex(notifyFilter) + ", bytes=" + fake::Out(bytesReturned) + ", overlapped=" +
                 (overlapped == nullptr ? std::string("null") : "{event=" + fake::Pointer(overlapped->hEvent) + "}") +
                 ", routine=" + fake::Pointer(completionRoutine) + ")");
    auto& script = fake::DirectoryChanges().ReadDirectoryChangesW;
    return script ? script(directory, buffer, bufferLength, watchSubtree, notifyFilter, bytesReturned, overlapped,
                           completionRoutine)
                  : 0;
}

}  // namespace zk64::platform
