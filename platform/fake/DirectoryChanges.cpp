// Fake backend of the directory-change journal: record, then do what the
// test scripted.

#include "../DirectoryChanges.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

HANDLE CreateFileA(char const* path, DWORD desiredAccess, DWORD shareMode, void* securityAttributes,
                   DWORD creationDisposition, DWORD flagsAndAttributes, HANDLE templateFile)
{
    fake::Record("CreateFileA(path=" + fake::Quoted(path) + ", access=" + fake::Hex(desiredAccess) +
                 ", share=" + fake::Hex(shareMode) + ", attributes=" + fake::Pointer(securityAttributes) +
                 ", disposition=" + fake::Dec(creationDisposition) + ", flags=" + fake::Hex(flagsAndAttributes) +
                 ", template=" + fake::Pointer(templateFile) + ")");
    return fake::Noted(fake::Run<HANDLE>(fake::DirectoryChanges().CreateFileA, kInvalidHandleValue, path, desiredAccess,
                                         shareMode, securityAttributes, creationDisposition, flagsAndAttributes,
                                         templateFile));
}

BOOL ReadDirectoryChangesW(HANDLE directory, void* buffer, DWORD bufferLength, BOOL watchSubtree, DWORD notifyFilter,
                           DWORD* bytesReturned, Overlapped* overlapped, void* completionRoutine)
{
    fake::Record("ReadDirectoryChangesW(handle=" + fake::Pointer(directory) + ", buffer=" + fake::Out(buffer) +
                 ", size=" + fake::Dec(bufferLength) + ", subtree=" + fake::Dec(static_cast<unsigned>(watchSubtree)) +
                 ", filter=" + fake::Hex(notifyFilter) + ", bytes=" + fake::Out(bytesReturned) + ", overlapped=" +
                 (overlapped == nullptr ? std::string("null") : "{event=" + fake::Pointer(overlapped->hEvent) + "}") +
                 ", routine=" + fake::Pointer(completionRoutine) + ")");
    return fake::Run<BOOL>(fake::DirectoryChanges().ReadDirectoryChangesW, 0, directory, buffer, bufferLength,
                           watchSubtree, notifyFilter, bytesReturned, overlapped, completionRoutine);
}

}  // namespace zk64::platform
