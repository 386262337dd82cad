#pragma once

// Directory watching: a process-wide service that reports changes in
// watched directories to callbacks.
//
// One worker thread serves every directory. Each directory has an
// asynchronous read on the system's change journal and an event that tells
// when the read is done; the worker polls the events in turn, converts the
// first change record's name to UTF-8, calls the directory's callback with
// the directory's record, and starts the next read. The design is simple and
// its limits are part of the service's contract:
//   * One lock guards the list. The worker holds it through a whole pass,
//     callbacks included, and sleeps one second with it held for every
//     directory with nothing to report. A pass over n quiet directories takes
//     about n seconds; reaction time is between nothing and about n seconds,
//     and Add/Remove/IsBeing... can block that long.
//   * A callback runs on the worker with the lock held: it must not call
//     AddDirectoryToWatchForChanges, RemoveDirectoryToWatchForChanges or
//     IsDirectoryBeingWatchedForChanges (the lock is not recursive).
//   * One change buffer (4096 bytes) serves every read. Only the first
//     record of a completed read is delivered (two names for a rename,
//     action 4); the rest is discarded by the next read. A completion that
//     reports lost changes (0 bytes) is not recognised: the stale start of
//     the buffer is delivered again.
//   * newFileName is set by renames only and kept through later events:
//     look at it only when action is 4.
//   * Nothing is reported after a successful add: a read that fails leaves
//     the directory polled forever without a callback.
//   * Remove takes the record out of the list but closes neither its
//     directory handle nor its event: the directory stays held (on Windows it
//     cannot be deleted) for the life of the process.
//   * Cleanup stops the worker, frees the buffers and closes the handles of
//     the listed records, but leaves the records listed: paths watched once
//     stay "being watched", and adding them again is refused.
//   * InitDirectoryWatching must come before the first add and again after
//     each cleanup; nothing checks this.
//   * Paths compare as whole byte strings, without normalising: C:\dir and
//     C:\dir\ are two directories.
// The worker starts with the first successful add and ends in
// CleanupDirectoryWatching or when the library unloads. Two threads making
// the first add at the same time is the callers' error (the second start of
// the worker ends the process).
//
// On Linux the journal is inotify (see the platform layer): the same action
// codes and filter bits, names with '/' between directories, and a watched
// directory can be deleted by others (the watch then goes quiet).

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

// The platform's OVERLAPPED block, field for field (32 bytes).
struct ZKOverlappedOffset {
    unsigned int Offset = 0;
    unsigned int OffsetHigh = 0;
};
struct ZKOverlapped {
    unsigned long long Internal = 0;      // status of the read
    unsigned long long InternalHigh = 0;  // bytes it delivered
    union {
        ZKOverlappedOffset Offsets = {};
        void* Pointer;
    };
    void* hEvent = nullptr;  // the record's event
};

// FILE_ACTION_* codes delivered in DirChangeStruct::action.
constexpr unsigned int ZK_FILE_ACTION_ADDED = 1;
constexpr unsigned int ZK_FILE_ACTION_REMOVED = 2;
constexpr unsigned int ZK_FILE_ACTION_MODIFIED = 3;
constexpr unsigned int ZK_FILE_ACTION_RENAMED_OLD_NAME = 4;
constexpr unsigned int ZK_FILE_ACTION_RENAMED_NEW_NAME = 5;

// FILE_NOTIFY_CHANGE_* bits for the notify filter.
constexpr unsigned long long ZK_FILE_NOTIFY_CHANGE_FILE_NAME = 0x001;
constexpr unsigned long long ZK_FILE_NOTIFY_CHANGE_DIR_NAME = 0x002;
constexpr unsigned long long ZK_FILE_NOTIFY_CHANGE_ATTRIBUTES = 0x004;
constexpr unsigned long long ZK_FILE_NOTIFY_CHANGE_SIZE = 0x008;
constexpr unsigned long long ZK_FILE_NOTIFY_CHANGE_LAST_WRITE = 0x010;
constexpr unsigned long long ZK_FILE_NOTIFY_CHANGE_LAST_ACCESS = 0x020;
constexpr unsigned long long ZK_FILE_NOTIFY_CHANGE_CREATION = 0x040;
constexpr unsigned long long ZK_FILE_NOTIFY_CHANGE_SECURITY = 0x100;

// One watched directory, and what a change callback receives. A default
// record has every plain field zero and three empty strings. Copies copy
// every field, the overlapped block and both handles included; the
// destructor frees the strings only and never closes a handle, so whoever
// discards the last copy closes them.
struct ZK_API DirChangeStruct {
    void (*callback)(DirChangeStruct const&) = nullptr;
    ZKOverlapped overlapped;
    ZKString dirPath;          // as given to AddDirectoryToWatchForChanges
    void* dirHandle = nullptr;  // the opened directory
    unsigned long long notifyFilter = 0;
    bool watchSubtree = false;
    unsigned int action = 0;  // the last change's FILE_ACTION_* code
    ZKString fileName;        // its name, UTF-8, relative to dirPath; for a rename the old name
    ZKString newFileName;     // a rename's new name (kept until the next rename)
};

// Allocates the change buffer (4096 bytes) and the name buffer (at its
// current size, 1024 at first; it grows and never shrinks).
ZK_API void InitDirectoryWatching();
// Stops the worker (a call from a callback raises JoinThread's
// std::system_error), frees both buffers, and closes each listed record's
// event, then its directory. Takes no lock; the list is not emptied.
ZK_API void CleanupDirectoryWatching();
// False when the path is watched already, for a null callback, and when the
// directory cannot be opened; true otherwise. notifyFilter: FILE_NOTIFY_CHANGE_*
// bits (the low 32 bits are used).
ZK_API bool AddDirectoryToWatchForChanges(ZKString const& path, void (*callback)(DirChangeStruct const&),
                                          unsigned long long notifyFilter, bool watchSubtree);
// Takes the first record with this path out of the list; false when none.
ZK_API bool RemoveDirectoryToWatchForChanges(ZKString const& path);
ZK_API bool IsDirectoryBeingWatchedForChanges(ZKString const& path);
