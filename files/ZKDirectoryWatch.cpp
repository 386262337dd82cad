#include "ZKDirectoryWatch.h"

#include <cstddef>
#include <cstring>
#include <functional>

#include "../foundation/detail/Globals.h"
#include "../platform/DirectoryChanges.h"
#include "../platform/Handles.h"
#include "../platform/Text.h"

namespace platform = zk64::platform;
using zk64::detail::globals;

// The record's block is handed to the platform as its Overlapped.
static_assert(sizeof(ZKOverlapped) == sizeof(platform::Overlapped));
static_assert(offsetof(ZKOverlapped, Internal) == offsetof(platform::Overlapped, Internal));
static_assert(offsetof(ZKOverlapped, InternalHigh) == offsetof(platform::Overlapped, InternalHigh));
static_assert(offsetof(ZKOverlapped, Offsets) == offsetof(platform::Overlapped, Offsets));
static_assert(offsetof(ZKOverlapped, hEvent) == offsetof(platform::Overlapped, hEvent));
static_assert(sizeof(ZKOverlappedOffset) == sizeof(platform::OverlappedOffset));

namespace {

constexpr platform::DWORD kChangeBufferBytes = 4096;
constexpr platform::DWORD kShareReadWrite = platform::kFileShareRead | platform::kFileShareWrite;
constexpr platform::DWORD kOpenFlags = platform::kFileFlagBackupSemantics | platform::kFileFlagOverlapped;

// The two buffers, plain pointers and sizes (no constructors run at load).
unsigned char* changeBuffer = nullptr;
platform::DWORD changeBufferSize = 0;
char* nameBuffer = nullptr;
int nameBufferSize = 1024;

platform::Overlapped* NativeBlock(ZKOverlapped& block) { return reinterpret_cast<platform::Overlapped*>(&block); }

void StartRead(DirChangeStruct& record)
{
    platform::DWORD bytes = 0;
    platform::ReadDirectoryChangesW(record.dirHandle, changeBuffer, changeBufferSize, record.watchSubtree ? 1 : 0,
                                    static_cast<platform::DWORD>(record.notifyFilter), &bytes,
                                    NativeBlock(record.overlapped), nullptr);
}

// The head of the change record at `offset` and where its name starts; an
// all-zero head when the buffer does not hold one there. The name length is
// bounded by the buffer's end.
struct ChangeRecord {
    platform::FileNotifyInformationHead head{};
    unsigned char const* name = nullptr;
};

ChangeRecord ReadRecord(std::size_t offset)
{
    ChangeRecord record;
    std::size_t const headSize = sizeof record.head;
    if (changeBuffer == nullptr || offset + headSize > changeBufferSize) return record;
    std::memcpy(&record.head, changeBuffer + offset, headSize);
    record.name = changeBuffer + offset + headSize;
    std::size_t const room = changeBufferSize - offset - headSize;
    if (record.head.FileNameLength > room) record.head.FileNameLength = static_cast<platform::DWORD>(room);
    return record;
}

// Clears the name buffer and converts the record's UTF-16 name into it,
// growing the buffer when the text and its terminator do not fit.
ZKString ConvertName(ChangeRecord const& record)
{
    if (nameBuffer != nullptr) std::memset(nameBuffer, 0, static_cast<std::size_t>(nameBufferSize));
    auto const* wide = reinterpret_cast<platform::WCHAR const*>(record.name);
    int const count = static_cast<int>(record.head.FileNameLength / 2);
    int const needed = platform::WideCharToMultiByte(platform::kCodePageUtf8, 0, wide, count, nullptr, 0, nullptr,
                                                     nullptr);
    if (nameBuffer == nullptr || needed + 1 > nameBufferSize) {
        delete[] nameBuffer;
        nameBufferSize = needed + 1 > nameBufferSize ? needed + 1 : nameBufferSize;
        nameBuffer = new char[static_cast<std::size_t>(nameBufferSize)]();
    }
    platform::WideCharToMultiByte(platform::kCodePageUtf8, 0, wide, count, nameBuffer, nameBufferSize, nullptr,
                                  nullptr);
    return ZKString(nameBuffer);
}

void HandleSignalled(DirChangeStruct& record)
{
    platform::DWORD bytes = 0;
    platform::GetOverlappedResult(record.dirHandle, NativeBlock(record.overlapped), &bytes, 1);
    ChangeRecord const first = ReadRecord(0);
    if (first.head.Action == ZK_FILE_ACTION_RENAMED_OLD_NAME && first.head.NextEntryOffset != 0) {
        record.newFileName = ConvertName(ReadRecord(first.head.NextEntryOffset));
    }
    ZKString name = ConvertName(first);
    record.action = first.head.Action;
    record.fileName = name;
    record.callback(record);
    platform::ResetEvent(record.overlapped.hEvent);
    StartRead(record);
}

// One pass over the list, under the lock: deliver what is signalled, sleep a
// second for each directory with nothing to report.
void WatchPass()
{
    __zkLockGuard guard(globals.directoryWatchLock);
    auto& list = globals.watchedDirectories;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) {
        DirChangeStruct& record = list.GetItem(i);
        platform::DWORD const state = platform::WaitForSingleObject(record.overlapped.hEvent, 0);
        if (state == platform::kWaitObject0) {
            HandleSignalled(record);
        } else if (state == platform::kWaitTimeout) {
            ZKThread::Sleep(1000);
        }
    }
}

void WatchWorker(std::function<int()> keepRunning)
{
    while (keepRunning() != 0) WatchPass();
}

}  // namespace

void InitDirectoryWatching()
{
    nameBuffer = new char[static_cast<std::size_t>(nameBufferSize)];
    changeBuffer = new unsigned char[kChangeBufferBytes]();  // never read uninitialised, even after a lost read
    changeBufferSize = kChangeBufferBytes;
}

void CleanupDirectoryWatching()
{
    globals.directoryWatchWorker.ShutdownThread();
    delete[] nameBuffer;
    nameBuffer = nullptr;
    delete[] changeBuffer;
    changeBuffer = nullptr;
    auto& list = globals.watchedDirectories;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) {
        DirChangeStruct& record = list.GetItem(i);
        platform::CloseHandle(record.overlapped.hEvent);
        platform::CloseHandle(record.dirHandle);
    }
}

bool AddDirectoryToWatchForChanges(ZKString const& path, void (*callback)(DirChangeStruct const&),
                                   unsigned long long notifyFilter, bool watchSubtree)
{
    if (IsDirectoryBeingWatchedForChanges(path) || callback == nullptr) return false;
    DirChangeStruct record;
    record.overlapped.hEvent = platform::CreateEventA(nullptr, 1, 0, nullptr);
    record.callback = callback;
    record.dirPath = path;
    record.notifyFilter = notifyFilter;
    record.watchSubtree = watchSubtree;
    record.dirHandle = platform::CreateFileA(path.GetString(), platform::kFileListDirectory, kShareReadWrite, nullptr,
                                             platform::kOpenExisting, kOpenFlags, nullptr);
    if (record.dirHandle == platform::kInvalidHandleValue) return false;  // the event stays open, by design
    StartRead(record);  // before the record is listed
    {
        __zkLockGuard guard(globals.directoryWatchLock);
        globals.watchedDirectories.PushBack(record);
    }
    if (globals.directoryWatchWorker.IsRunning()) return true;
    globals.directoryWatchWorker.SetFuncToRun(WatchWorker);
    globals.directoryWatchWorker.RunThread();
    return true;
}

bool RemoveDirectoryToWatchForChanges(ZKString const& path)
{
    __zkLockGuard guard(globals.directoryWatchLock);
    auto& list = globals.watchedDirectories;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) {
        if (list.GetItem(i).dirPath == path) {
            list.Remove(i);  // its handle and event stay open, by design
            return true;
        }
    }
    return false;
}

bool IsDirectoryBeingWatchedForChanges(ZKString const& path)
{
    __zkLockGuard guard(globals.directoryWatchLock);
    auto& list = globals.watchedDirectories;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) {
        if (list.GetItem(i).dirPath == path) return true;
    }
    return false;
}
