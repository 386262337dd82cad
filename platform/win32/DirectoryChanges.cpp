// Win32 backend of the directory-change journal.
//
// An overlapped ReadDirectoryChangesW is carried by a block of this file's
// own, one per directory handle: an OVERLAPPED with the caller's event and a
// buffer of the caller's size. The system writes into the block, never into
// the caller's memory, which may be gone by the time a read completes (a
// read started on a local Overlapped, a buffer freed while a read of a
// never-closed handle still waits). GetOverlappedResult collects the block:
// it copies the records into the caller's buffer and the status and byte
// count into the caller's Overlapped. A block whose handle is closed, or
// that a new read replaces while still pending, is retired and freed once
// the system has completed it (closing the handle completes it).

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "../DirectoryChanges.h"
#include "DirectoryReads.h"

namespace zk64::platform {

static_assert(sizeof(Overlapped) == sizeof(OVERLAPPED));
static_assert(offsetof(Overlapped, Internal) == offsetof(OVERLAPPED, Internal));
static_assert(offsetof(Overlapped, InternalHigh) == offsetof(OVERLAPPED, InternalHigh));
static_assert(offsetof(Overlapped, Offsets) == offsetof(OVERLAPPED, Offset));
static_assert(offsetof(Overlapped, Pointer) == offsetof(OVERLAPPED, Pointer));
static_assert(offsetof(Overlapped, hEvent) == offsetof(OVERLAPPED, hEvent));
static_assert(sizeof(FileNotifyInformationHead) == offsetof(FILE_NOTIFY_INFORMATION, FileName));
static_assert(kStatusPending == STATUS_PENDING);
static_assert(kFileListDirectory == FILE_LIST_DIRECTORY);
static_assert((kFileShareRead | kFileShareWrite) == (FILE_SHARE_READ | FILE_SHARE_WRITE));
static_assert(kOpenExisting == OPEN_EXISTING);
static_assert((kFileFlagBackupSemantics | kFileFlagOverlapped) == (FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED));
static_assert(kFileNotifyChangeFileName == FILE_NOTIFY_CHANGE_FILE_NAME);
static_assert(kFileNotifyChangeSecurity == FILE_NOTIFY_CHANGE_SECURITY);
static_assert(kFileActionRenamedNewName == FILE_ACTION_RENAMED_NEW_NAME);

namespace {

struct ReadBlock {
    OVERLAPPED overlapped{};
    std::vector<unsigned char> records;
    void* callerBuffer = nullptr;
    DWORD callerSize = 0;
    bool inFlight = false;
};

struct Reads {
    std::mutex lock;
    std::unordered_map<HANDLE, std::unique_ptr<ReadBlock>> byHandle;
    std::vector<std::unique_ptr<ReadBlock>> retired;

    void Retire(std::unique_ptr<ReadBlock> block)
    {
        if (block && block->inFlight) retired.push_back(std::move(block));
    }
    void FreeCompleted()
    {
        std::erase_if(retired, [](auto const& block) { return HasOverlappedIoCompleted(&block->overlapped); });
    }
};

// Never destroyed: a worker may still collect reads while the process ends.
Reads& Shared()
{
    static Reads* reads = new Reads;
    return *reads;
}

}  // namespace

HANDLE CreateFileA(char const* path, DWORD desiredAccess, DWORD shareMode, void* securityAttributes,
                   DWORD creationDisposition, DWORD flagsAndAttributes, HANDLE templateFile)
{
    return ::CreateFileA(path, desiredAccess, shareMode, static_cast<SECURITY_ATTRIBUTES*>(securityAttributes),
                         creationDisposition, flagsAndAttributes, templateFile);
}

BOOL ReadDirectoryChangesW(HANDLE directory, void* buffer, DWORD bufferLength, BOOL watchSubtree, DWORD notifyFilter,
                           DWORD* bytesReturned, Overlapped* overlapped, void* completionRoutine)
{
    if (overlapped == nullptr || completionRoutine != nullptr) {
        return ::ReadDirectoryChangesW(directory, buffer, bufferLength, watchSubtree, notifyFilter, bytesReturned,
                                       reinterpret_cast<OVERLAPPED*>(overlapped),
                                       reinterpret_cast<LPOVERLAPPED_COMPLETION_ROUTINE>(completionRoutine));
    }
    if (buffer == nullptr && bufferLength > 0) {
        ::SetLastError(ERROR_NOACCESS);
        return FALSE;
    }
    Reads& reads = Shared();
    std::lock_guard<std::mutex> guard(reads.lock);
    reads.FreeCompleted();
    auto& block = reads.byHandle[directory];
    if (block && block->inFlight) reads.Retire(std::move(block));
    if (!block) block = std::make_unique<ReadBlock>();
    block->overlapped = OVERLAPPED{};
    block->overlapped.hEvent = overlapped->hEvent;
    block->records.resize(bufferLength);
    block->callerBuffer = buffer;
    block->callerSize = bufferLength;
    if (!::ReadDirectoryChangesW(directory, block->records.data(), bufferLength, watchSubtree, notifyFilter, nullptr,
                                 &block->overlapped, nullptr)) {
        return FALSE;
    }
    block->inFlight = true;
    overlapped->Internal = kStatusPending;
    overlapped->InternalHigh = 0;
    return TRUE;
}

namespace win32 {

bool CollectDirectoryRead(HANDLE directory, Overlapped* overlapped, DWORD* bytes, BOOL wait, BOOL& result)
{
    Reads& reads = Shared();
    std::unique_lock<std::mutex> guard(reads.lock);
    auto const found = reads.byHandle.find(directory);
    if (found == reads.byHandle.end() || !found->second->inFlight || overlapped == nullptr) return false;
    ReadBlock* block = found->second.get();
    guard.unlock();  // a waiting collection must not hold up other directories
    DWORD transferred = 0;
    result = ::GetOverlappedResult(directory, &block->overlapped, &transferred, wait);
    if (!result && ::GetLastError() == ERROR_IO_INCOMPLETE) return true;
    DWORD const error = ::GetLastError();
    guard.lock();
    DWORD const copied = transferred < block->callerSize ? transferred : block->callerSize;
    if (copied > 0) std::memcpy(block->callerBuffer, block->records.data(), copied);
    overlapped->Internal = block->overlapped.Internal;
    overlapped->InternalHigh = block->overlapped.InternalHigh;
    block->inFlight = false;
    if (bytes != nullptr) *bytes = transferred;
    ::SetLastError(error);
    return true;
}

void RetireDirectoryRead(HANDLE directory)
{
    Reads& reads = Shared();
    std::lock_guard<std::mutex> guard(reads.lock);
    auto const found = reads.byHandle.find(directory);
    if (found == reads.byHandle.end()) return;
    reads.Retire(std::move(found->second));
    reads.byHandle.erase(found);
}

}  // namespace win32
}  // namespace zk64::platform
