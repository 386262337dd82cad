#pragma once

// The posix backend's handles. A process or token handle is a small number
// (like a Win32 handle, never a pointer) naming an entry of a process-wide
// table. A process entry holds a pidfd and a directory descriptor of
// /proc/PID, both opened by OpenProcess: they stay bound to that very
// process, so a pid reused after it exited cannot be mistaken for it (reads
// through the directory then fail with ESRCH, and the pidfd reports the exit).
// A token entry names the process it was opened from, the same way.
//
// The pseudo handle of GetCurrentProcess (all ones) is recognised here: it
// stands for the calling process with every right.

#include <memory>

#include <sys/types.h>

#include "../PlatformTypes.h"

namespace zk64::platform::posix {

struct KernelObject {
    enum class Kind { Process, Token };
    Kind kind = Kind::Process;
    pid_t pid = 0;
    int pidfd = -1;
    int procfd = -1;  // O_PATH directory descriptor of /proc/PID
    DWORD access = 0;

    KernelObject() = default;
    KernelObject(KernelObject const&) = delete;
    KernelObject& operator=(KernelObject const&) = delete;
    ~KernelObject();
};

// A process that an operation acts on: its pid and a descriptor of its
// /proc directory, alive for the target's lifetime.
class Target {
public:
    pid_t pid = 0;
    int procfd = -1;

    // Resolves `handle`, a process handle or the pseudo handle, and checks
    // that it was opened with every right of `rights` (Win32 values; the
    // full query right includes the limited one). Fails with EBADF for
    // anything that is not such a handle, EACCES for a missing right and
    // ESRCH for a process that has exited.
    bool Open(HANDLE handle, DWORD rights);
    // The same for a token handle (token rights).
    bool OpenToken(HANDLE handle, DWORD rights);

    Target() = default;
    Target(Target const&) = delete;
    Target& operator=(Target const&) = delete;
    ~Target();

private:
    std::shared_ptr<KernelObject> object;
    int ownfd = -1;  // /proc/self, opened for the pseudo handle
    bool Resolve(HANDLE handle, KernelObject::Kind kind, DWORD rights);
};

HANDLE PseudoProcessHandle();
HANDLE Insert(std::shared_ptr<KernelObject> object);
std::shared_ptr<KernelObject> Find(HANDLE handle);
bool Remove(HANDLE handle);

// Whether the process behind a pidfd still runs (a zombie counts as gone).
bool Alive(int pidfd);

}  // namespace zk64::platform::posix
