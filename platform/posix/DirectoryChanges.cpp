// POSIX backend (Linux) of the directory-change journal, over inotify.
//
// CreateFileA (OPEN_EXISTING with backup semantics only; anything else
// fails with EINVAL) makes a directory object holding a non-blocking inotify
// descriptor with a watch on the directory. Access and share modes have no
// Linux meaning and are ignored: a watched directory can be removed or
// renamed by anyone. As on Windows, a file opens too; reads on it fail with
// ENOTDIR.
//
// ReadDirectoryChangesW records the pending read (buffer, size, filter) and
// links the read's event to the directory (HandleTable.h). With a subtree
// read, the first such read watches every directory below the root, and a
// directory created or moved in later is watched when its event arrives
// (entries made in it before its watch exists go unreported). Changes go
// through a queue of this object: they are taken from inotify when the
// event is waited for, kept between reads as Windows keeps them, and written
// into the read's buffer by GetOverlappedResult as FILE_NOTIFY_INFORMATION
// records (UTF-16 names relative to the root, '/' between directories),
// as many whole records as fit; the rest wait for the next read.
//
// inotify to FILE_ACTION_*, and the FILE_NOTIFY_CHANGE_* bits that select
// each (a change is reported when the read's filter holds one of them):
//   IN_CREATE                            1 added      FILE_NAME, or DIR_NAME for a directory
//   IN_DELETE                            2 removed    FILE_NAME / DIR_NAME
//   IN_MOVED_FROM + IN_MOVED_TO, one cookie
//                                        4 old name then 5 new name, in one buffer
//   IN_MOVED_FROM alone (moved out)      2 removed
//   IN_MOVED_TO alone (moved in)         1 added
//   IN_MODIFY                            3 modified   SIZE, LAST_WRITE
//   IN_ATTRIB                            3 modified   ATTRIBUTES, LAST_WRITE, CREATION, SECURITY
//                                                     (inotify does not tell which attribute)
//   IN_ACCESS                            3 modified   LAST_ACCESS
// IN_CLOSE_WRITE is not used: every write already gives IN_MODIFY. Events
// about the watched directory itself are not reported, as on Windows.
//
// Faults:
//   IN_Q_OVERFLOW, or more than 4096 changes queued: the queue is dropped
//     and the next read completes with 0 bytes, status kStatusNotifyEnumDir
//     (GetOverlappedResult: FALSE, ENOBUFS), as Windows' overflow does.
//     So does a first record too large for the read's buffer (it is dropped).
//   The watched directory deleted or unmounted (IN_DELETE_SELF, IN_IGNORED):
//     what was queued is still delivered; after that the read never
//     completes, as under Wine.
//   ENOSPC (the inotify watch limit): on the root, CreateFileA fails with
//     ENOSPC. Below it, the subtree is watched as far as the limit allows;
//     the directories left out are not reported and the read still starts.

#include <cerrno>
#include <cstring>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <dirent.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include "../../foundation/detail/Utf.h"
#include "../DirectoryChanges.h"
#include "HandleTable.h"

namespace zk64::platform {
namespace {

constexpr std::uint32_t kAlwaysWatched =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_ONLYDIR | IN_DONT_FOLLOW | IN_EXCL_UNLINK;
constexpr DWORD kModifyBits = kFileNotifyChangeSize | kFileNotifyChangeLastWrite;
constexpr DWORD kAttributeBits =
    kFileNotifyChangeAttributes | kFileNotifyChangeLastWrite | kFileNotifyChangeCreation | kFileNotifyChangeSecurity;
constexpr std::size_t kQueueLimit = 4096;

std::uint32_t MaskFor(DWORD filter)
{
    std::uint32_t mask = kAlwaysWatched;
    if ((filter & kModifyBits) != 0) mask |= IN_MODIFY;
    if ((filter & kAttributeBits) != 0) mask |= IN_ATTRIB;
    if ((filter & kFileNotifyChangeLastAccess) != 0) mask |= IN_ACCESS;
    return mask;
}

std::string Join(std::string const& parent, std::string const& name)
{
    return parent.empty() ? name : parent + "/" + name;
}

bool IsWithin(std::string const& path, std::string const& directory)
{
    return path == directory || (path.size() > directory.size() && path.compare(0, directory.size(), directory) == 0 &&
                                 path[directory.size()] == '/');
}

struct Change {
    DWORD action;
    std::string name;
    bool pairedWithNext;  // a rename's old name, whose new name follows
};

struct HeldMove {
    std::uint32_t cookie;
    std::string path;
    bool isDirectory;
};

std::size_t RecordSize(std::size_t units) { return (sizeof(FileNotifyInformationHead) + units * 2 + 3) & ~std::size_t{3}; }

class DirectoryObject : public posix::HandleObject {
public:
    DirectoryObject(std::string path, int inotify) : root(std::move(path)), descriptor(inotify) {}
    ~DirectoryObject() override
    {
        if (descriptor >= 0) ::close(descriptor);
    }

    bool IsDirectory() const { return descriptor >= 0; }

    bool AddWatch(std::string const& relative)
    {
        int const wd = ::inotify_add_watch(descriptor, Full(relative).c_str(), mask);
        if (wd < 0) return false;
        watches[wd] = relative;
        return true;
    }

    void Start(unsigned char* target, DWORD targetSize, bool subtree, DWORD notifyFilter, HANDLE readEvent)
    {
        buffer = target;
        size = targetSize;
        filter = notifyFilter;
        event = readEvent;
        pending = true;
        if (MaskFor(filter) != mask) {
            mask = MaskFor(filter);
            for (auto const& [wd, path] : watches) ::inotify_add_watch(descriptor, Full(path).c_str(), mask);
        }
        if (subtree && !subtreeWatched) {
            subtreeWatched = true;
            WatchTree("");
        }
    }

    bool ReadyFor(HANDLE waitedEvent) override
    {
        if (!pending || waitedEvent != event) return false;
        Drain();
        return lost || !queue.empty();
    }

    int Collect(Overlapped* overlapped, DWORD* bytes) override
    {
        if (!pending) return -1;
        Drain();
        if (!lost && queue.empty()) return -1;
        DWORD const written = lost ? 0 : Fill();
        bool const ok = written > 0;
        lost = false;
        pending = false;
        overlapped->Internal = ok ? 0 : kStatusNotifyEnumDir;
        overlapped->InternalHigh = written;
        if (bytes != nullptr) *bytes = written;
        if (ok) return 1;
        errno = ENOBUFS;
        return 0;
    }

    int PollDescriptor() const override { return descriptor; }

private:
    std::string Full(std::string const& relative) const { return relative.empty() ? root : root + "/" + relative; }

    // Watches every directory below `top` (relative), as far as the watch
    // limit allows.
    void WatchTree(std::string const& top)
    {
        std::vector<std::string> pendingDirectories{top};
        while (!pendingDirectories.empty()) {
            std::string const current = std::move(pendingDirectories.back());
            pendingDirectories.pop_back();
            DIR* listing = ::opendir(Full(current).c_str());
            if (listing == nullptr) continue;
            while (dirent* entry = ::readdir(listing)) {
                std::string const name = entry->d_name;
                if (name == "." || name == "..") continue;
                std::string const child = Join(current, name);
                struct stat info{};
                bool const directory = entry->d_type == DT_DIR ||
                                       (entry->d_type == DT_UNKNOWN && ::lstat(Full(child).c_str(), &info) == 0 &&
                                        S_ISDIR(info.st_mode));
                if (directory && AddWatch(child)) pendingDirectories.push_back(child);
            }
            ::closedir(listing);
        }
    }

    void NewDirectory(std::string const& relative)
    {
        if (subtreeWatched && AddWatch(relative)) WatchTree(relative);
    }

    void Unwatch(std::string const& directory)
    {
        std::erase_if(watches, [&](auto const& watch) {
            if (!IsWithin(watch.second, directory)) return false;
            ::inotify_rm_watch(descriptor, watch.first);
            return true;
        });
    }

    void Rename(std::string const& from, std::string const& to)
    {
        for (auto& [wd, path] : watches) {
            if (IsWithin(path, from)) path = to + path.substr(from.size());
        }
    }

    static DWORD NameBit(bool directory) { return directory ? kFileNotifyChangeDirName : kFileNotifyChangeFileName; }

    void Push(DWORD action, std::string const& name, DWORD bits, bool pairedWithNext = false)
    {
        if ((filter & bits) == 0) return;
        if (queue.size() >= kQueueLimit) {
            Lose();
            return;
        }
        queue.push_back(Change{action, name, pairedWithNext});
    }

    void Lose()
    {
        lost = true;
        queue.clear();
    }

    void FlushHeldMove()
    {
        if (!held) return;
        Push(kFileActionRemoved, held->path, NameBit(held->isDirectory));
        if (held->isDirectory) Unwatch(held->path);
        held.reset();
    }

    void Translate(inotify_event const& raw, std::string const& name)
    {
        if ((raw.mask & IN_Q_OVERFLOW) != 0) {
            held.reset();
            Lose();
            return;
        }
        auto const watch = watches.find(raw.wd);
        if (watch == watches.end()) return;
        if ((raw.mask & IN_IGNORED) != 0) {
            watches.erase(watch);
            return;
        }
        if (name.empty()) return;  // about a watched directory itself
        std::string const path = Join(watch->second, name);
        bool const directory = (raw.mask & IN_ISDIR) != 0;
        bool const movedTo = (raw.mask & IN_MOVED_TO) != 0;
        if (held && !(movedTo && raw.cookie == held->cookie)) FlushHeldMove();
        if ((raw.mask & IN_MOVED_FROM) != 0) {
            held = HeldMove{raw.cookie, path, directory};
        } else if (movedTo && held) {
            if ((filter & NameBit(directory)) != 0 && queue.size() + 2 <= kQueueLimit) {
                queue.push_back(Change{kFileActionRenamedOldName, held->path, true});
                queue.push_back(Change{kFileActionRenamedNewName, path, false});
            } else if ((filter & NameBit(directory)) != 0) {
                Lose();
            }
            if (directory) Rename(held->path, path);
            held.reset();
        } else if (movedTo || (raw.mask & IN_CREATE) != 0) {
            Push(kFileActionAdded, path, NameBit(directory));
            if (directory) NewDirectory(path);
        } else if ((raw.mask & IN_DELETE) != 0) {
            Push(kFileActionRemoved, path, NameBit(directory));
        } else {
            if ((raw.mask & IN_MODIFY) != 0) Push(kFileActionModified, path, kModifyBits);
            if ((raw.mask & IN_ATTRIB) != 0) Push(kFileActionModified, path, kAttributeBits);
            if ((raw.mask & IN_ACCESS) != 0) Push(kFileActionModified, path, kFileNotifyChangeLastAccess);
        }
    }

    // Takes every event inotify holds.
    void Drain()
    {
        alignas(inotify_event) char data[16384];
        for (;;) {
            ssize_t const length = ::read(descriptor, data, sizeof data);
            if (length <= 0) break;
            for (ssize_t at = 0; at + static_cast<ssize_t>(sizeof(inotify_event)) <= length;) {
                inotify_event raw;
                std::memcpy(&raw, data + at, sizeof raw);
                char const* name = data + at + sizeof raw;
                Translate(raw, raw.len > 0 ? std::string(name, strnlen(name, raw.len)) : std::string());
                at += static_cast<ssize_t>(sizeof raw + raw.len);
            }
        }
        FlushHeldMove();
    }

    // Writes whole records (a rename's two together) into the read's buffer;
    // the bytes written, 0 when the first does not fit (it is dropped).
    DWORD Fill()
    {
        std::size_t offset = 0;
        std::size_t previous = 0;
        while (!queue.empty()) {
            std::size_t const count = queue.front().pairedWithNext && queue.size() > 1 ? 2 : 1;
            std::vector<std::u16string> names;
            std::size_t needed = 0;
            for (std::size_t i = 0; i < count; ++i) {
                auto const* text = reinterpret_cast<unsigned char const*>(queue[i].name.data());
                std::u16string wide(detail::Utf16Length(text, queue[i].name.size()), u'\0');
                detail::Utf8ToUtf16(text, queue[i].name.size(), wide.data());
                needed += RecordSize(wide.size());
                names.push_back(std::move(wide));
            }
            if (offset + needed > size) {
                if (offset == 0) queue.erase(queue.begin(), queue.begin() + static_cast<std::ptrdiff_t>(count));
                break;
            }
            for (std::size_t i = 0; i < count; ++i) {
                if (offset > 0) {
                    DWORD const next = static_cast<DWORD>(offset - previous);
                    std::memcpy(buffer + previous, &next, sizeof next);
                }
                FileNotifyInformationHead const head{0, queue[i].action, static_cast<DWORD>(names[i].size() * 2)};
                std::memcpy(buffer + offset, &head, sizeof head);
                std::memcpy(buffer + offset + sizeof head, names[i].data(), names[i].size() * 2);
                previous = offset;
                offset += RecordSize(names[i].size());
            }
            queue.erase(queue.begin(), queue.begin() + static_cast<std::ptrdiff_t>(count));
        }
        return static_cast<DWORD>(offset);
    }

    std::string root;
    int descriptor;
    std::uint32_t mask = kAlwaysWatched;
    std::map<int, std::string> watches;  // watch descriptor -> directory relative to the root
    bool subtreeWatched = false;

    bool pending = false;
    unsigned char* buffer = nullptr;
    DWORD size = 0;
    DWORD filter = 0;
    HANDLE event = nullptr;

    std::deque<Change> queue;
    std::optional<HeldMove> held;  // an IN_MOVED_FROM waiting for its IN_MOVED_TO
    bool lost = false;
};

}  // namespace

HANDLE CreateFileA(char const* path, DWORD /*desiredAccess*/, DWORD /*shareMode*/, void* /*securityAttributes*/,
                   DWORD creationDisposition, DWORD flagsAndAttributes, HANDLE /*templateFile*/)
{
    if (path == nullptr || creationDisposition != kOpenExisting || (flagsAndAttributes & kFileFlagBackupSemantics) == 0) {
        errno = EINVAL;
        return kInvalidHandleValue;
    }
    struct stat info{};
    if (::stat(path, &info) != 0) return kInvalidHandleValue;
    int descriptor = -1;
    if (S_ISDIR(info.st_mode)) {
        descriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        if (descriptor < 0) return kInvalidHandleValue;
    }
    auto directory = std::make_unique<DirectoryObject>(path, descriptor);
    if (directory->IsDirectory() && !directory->AddWatch("")) {
        int const error = errno;
        directory.reset();
        errno = error;
        return kInvalidHandleValue;
    }
    std::lock_guard<std::mutex> guard(posix::TableLock());
    return posix::Register(std::move(directory));
}

BOOL ReadDirectoryChangesW(HANDLE directory, void* buffer, DWORD bufferLength, BOOL watchSubtree, DWORD notifyFilter,
                           DWORD* /*bytesReturned*/, Overlapped* overlapped, void* completionRoutine)
{
    if (overlapped == nullptr || completionRoutine != nullptr || buffer == nullptr) {
        errno = EINVAL;
        return 0;
    }
    std::lock_guard<std::mutex> guard(posix::TableLock());
    posix::HandleObject* object = posix::FindObject(directory);
    auto* target = dynamic_cast<DirectoryObject*>(object);
    if (target == nullptr || !target->IsDirectory()) {
        if (object != nullptr) errno = ENOTDIR;
        return 0;
    }
    target->Start(static_cast<unsigned char*>(buffer), bufferLength, watchSubtree != 0, notifyFilter,
                  overlapped->hEvent);
    overlapped->Internal = kStatusPending;
    overlapped->InternalHigh = 0;
    if (auto* event = posix::Find<posix::EventObject>(overlapped->hEvent)) {
        event->signalled = false;
        event->source = directory;
    }
    return 1;
}

}  // namespace zk64::platform
