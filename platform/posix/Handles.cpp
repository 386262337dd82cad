// POSIX backend (Linux) of the kernel-object operations.
//
// Handles are objects of this backend (HandleTable.h), registered in one
// table under one mutex, so a closed or made-up handle fails with EBADF.
//   CreateEventA         an event object: manual or automatic reset, no name
//                        (a name fails with EINVAL).
//   WaitForSingleObject  events only (other handles: kWaitFailed, EINVAL).
//                        An event on which a directory read is pending
//                        (ReadDirectoryChangesW links them) is signalled by
//                        the wait itself when the directory's inotify queue
//                        holds changes for the read: the wait drains the
//                        queue, and with a time-out polls its descriptor.
//   GetOverlappedResult  completes the pending read of a directory: the
//                        records are written into the read's buffer here.
//                        With `wait` it blocks on the inotify descriptor.
//                        A failure of the read shows as FALSE with errno
//                        ENOBUFS (changes lost, as Windows' overflow).
//   CloseHandle          destroys the object (a directory closes its
//                        inotify descriptor); process and token handles
//                        are released from their own table (KernelObjects.h).

#include <cerrno>
#include <chrono>
#include <thread>
#include <unordered_map>

#include <poll.h>

#include "../Handles.h"
#include "HandleTable.h"
#include "KernelObjects.h"

namespace zk64::platform {
namespace posix {
namespace {

struct Table {
    std::mutex lock;
    std::unordered_map<HANDLE, std::unique_ptr<HandleObject>> objects;
};

// Never destroyed: a worker thread may still use handles while the process
// ends.
Table& Shared()
{
    static Table* table = new Table;
    return *table;
}

}  // namespace

std::mutex& TableLock() { return Shared().lock; }

HANDLE Register(std::unique_ptr<HandleObject> object)
{
    HANDLE const handle = object.get();
    Shared().objects.emplace(handle, std::move(object));
    return handle;
}

HandleObject* FindObject(HANDLE handle)
{
    auto const found = Shared().objects.find(handle);
    if (found != Shared().objects.end()) return found->second.get();
    errno = EBADF;
    return nullptr;
}

bool Destroy(HANDLE handle)
{
    if (Shared().objects.erase(handle) == 1) return true;
    errno = EBADF;
    return false;
}

void WaitForDescriptor(int descriptor, int milliseconds)
{
    if (descriptor < 0) {
        // Nothing can signal such a wait here; a limitless one sleeps in
        // steps so that its caller keeps looking.
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds < 0 ? 10 : milliseconds));
        return;
    }
    pollfd entry{descriptor, POLLIN, 0};
    ::poll(&entry, 1, milliseconds);
}

}  // namespace posix

using posix::TableLock;

HANDLE CreateEventA(void* /*securityAttributes*/, BOOL manualReset, BOOL initialState, char const* name)
{
    if (name != nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    std::lock_guard<std::mutex> guard(TableLock());
    return posix::Register(std::make_unique<posix::EventObject>(manualReset != 0, initialState != 0));
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds)
{
    using Clock = std::chrono::steady_clock;
    auto const deadline = Clock::now() + std::chrono::milliseconds(milliseconds == kInfinite ? 0 : milliseconds);
    for (;;) {
        int descriptor = -1;
        {
            std::lock_guard<std::mutex> guard(TableLock());
            auto* event = posix::Find<posix::EventObject>(handle);
            if (event == nullptr) {
                errno = posix::FindObject(handle) != nullptr ? EINVAL : EBADF;
                return kWaitFailed;
            }
            posix::HandleObject* source = event->source != nullptr ? posix::FindObject(event->source) : nullptr;
            if (source != nullptr && source->ReadyFor(handle)) event->signalled = true;
            if (event->signalled) {
                if (!event->manualReset) event->signalled = false;
                return kWaitObject0;
            }
            if (source != nullptr) descriptor = source->PollDescriptor();
        }
        int remaining = -1;
        if (milliseconds != kInfinite) {
            auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
            if (left <= 0) return kWaitTimeout;
            remaining = static_cast<int>(left);
        }
        posix::WaitForDescriptor(descriptor, remaining);
    }
}

BOOL ResetEvent(HANDLE event)
{
    std::lock_guard<std::mutex> guard(TableLock());
    auto* object = posix::Find<posix::EventObject>(event);
    if (object == nullptr) return 0;
    object->signalled = false;
    return 1;
}

BOOL CloseHandle(HANDLE handle)
{
    // Process and token handles live in their own table (KernelObjects.h);
    // the current process's pseudo handle closes without effect.
    if (handle == posix::PseudoProcessHandle() || posix::Remove(handle)) return 1;
    std::lock_guard<std::mutex> guard(TableLock());
    return posix::Destroy(handle) ? 1 : 0;
}

BOOL GetOverlappedResult(HANDLE file, Overlapped* overlapped, DWORD* bytesTransferred, BOOL wait)
{
    for (;;) {
        int descriptor = -1;
        {
            std::lock_guard<std::mutex> guard(TableLock());
            auto* object = posix::FindObject(file);
            if (object == nullptr) return 0;
            if (overlapped == nullptr) {
                errno = EINVAL;
                return 0;
            }
            int const done = object->Collect(overlapped, bytesTransferred);
            if (done >= 0) return done;
            if (overlapped->Internal != kStatusPending) {
                // Not this object's pending read: the block's own outcome.
                if (bytesTransferred != nullptr) *bytesTransferred = static_cast<DWORD>(overlapped->InternalHigh);
                if (overlapped->Internal == 0) return 1;
                errno = ENOBUFS;
                return 0;
            }
            if (!wait) {
                errno = EINPROGRESS;  // Windows: ERROR_IO_INCOMPLETE
                return 0;
            }
            descriptor = object->PollDescriptor();
        }
        posix::WaitForDescriptor(descriptor, -1);
    }
}

}  // namespace zk64::platform
