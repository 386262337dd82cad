#include "ZKMutex.h"

ZKMutex::ZKMutex() = default;
ZKMutex::~ZKMutex() = default;

void ZKMutex::Lock() { nativeMutex.lock(); }
bool ZKMutex::TryLock() { return nativeMutex.try_lock(); }
void ZKMutex::Unlock() { nativeMutex.unlock(); }
void* ZKMutex::GetNativeMutexHandle() { return static_cast<void*>(nativeMutex.native_handle()); }

__zkLockGuard::__zkLockGuard(ZKMutex& locked) : mutex(&locked) { mutex->Lock(); }
__zkLockGuard::~__zkLockGuard() { mutex->Unlock(); }

ZKConditionVariable::ZKConditionVariable() = default;
ZKConditionVariable::~ZKConditionVariable() = default;

void ZKConditionVariable::NotifyOne() noexcept { nativeCondition.notify_one(); }
void ZKConditionVariable::NotifyAll() noexcept { nativeCondition.notify_all(); }

void ZKConditionVariable::Wait(ZKMutex& mutex)
{
    // The standard wait takes a unique_lock. This one adopts the caller's
    // lock and gives it back untouched on every way out, so the lock belongs
    // to the caller before, during a failure, and after.
    std::unique_lock<std::mutex> lock(mutex.nativeMutex, std::adopt_lock);
    struct GiveBack {
        std::unique_lock<std::mutex>& lock;
        ~GiveBack() { lock.release(); }
    } giveBack{lock};
    nativeCondition.wait(lock);
}
