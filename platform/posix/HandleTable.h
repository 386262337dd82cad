#pragma once

// POSIX backend, internal: the objects behind the layer's handles.
//
// A HANDLE is the address of a HandleObject registered in one table, which
// one mutex guards together with every object's state. An address that is
// not registered (never made, or closed) is an invalid handle: the
// operations fail with EBADF instead of touching it.

#include <memory>
#include <mutex>

#include "../PlatformTypes.h"

namespace zk64::platform::posix {

class HandleObject {
public:
    virtual ~HandleObject() = default;

    // For objects with an overlapped operation (directories): whether a
    // pending one waited for through `event` has something to complete with.
    virtual bool ReadyFor(HANDLE /*event*/) { return false; }
    // Completes the pending operation into `overlapped` when it can: 1 done
    // and successful, 0 done and failed (errno set), -1 still pending.
    virtual int Collect(Overlapped* /*overlapped*/, DWORD* /*bytes*/) { return -1; }
    // A descriptor that becomes readable when the object may have news, -1
    // for none.
    virtual int PollDescriptor() const { return -1; }
};

class EventObject : public HandleObject {
public:
    explicit EventObject(bool manual, bool signalledAtStart) : manualReset(manual), signalled(signalledAtStart) {}
    bool manualReset;
    bool signalled;
    HANDLE source = nullptr;  // the object whose pending read signals this event
};

std::mutex& TableLock();
HANDLE Register(std::unique_ptr<HandleObject> object);
// The registered object of `handle` with type T, or null (errno EBADF). The
// caller holds TableLock().
template <class T>
T* Find(HANDLE handle);
HandleObject* FindObject(HANDLE handle);
// Unregisters and destroys; false (errno EBADF) for an unregistered handle.
bool Destroy(HANDLE handle);

template <class T>
T* Find(HANDLE handle)
{
    return dynamic_cast<T*>(FindObject(handle));
}

// Waits up to `milliseconds` (-1: no limit) for `descriptor` to be readable,
// or just sleeps when it is -1.
void WaitForDescriptor(int descriptor, int milliseconds);

}  // namespace zk64::platform::posix
