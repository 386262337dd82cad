#pragma once

// The library's locking vocabulary: ZKMutex, __zkLockGuard and
// ZKConditionVariable, thin wrappers over the standard thread support so that
// no standard synchronisation type shows in a signature.
//
// Failures of the native objects arrive as std::system_error, from Lock, the
// __zkLockGuard constructor and Wait. NotifyOne, NotifyAll and the guard's
// destructor cannot let an exception out; a native failure there ends the
// process.

#include <condition_variable>
#include <mutex>

#include "../foundation/ZKExport.h"

// A plain, non-recursive mutex with try-locking (std::mutex semantics). A
// thread that locks a ZKMutex it already holds gets no second entry, and
// unlocking a mutex the calling thread does not hold is the caller's error,
// as for std::mutex.
class ZK_API ZKMutex {
public:
    ZKMutex();
    ZKMutex(ZKMutex const&) = delete;
    ZKMutex& operator=(ZKMutex const&) = delete;
    virtual ~ZKMutex();

    void Lock();
    // True when locked now, false when another owner holds it. The standard
    // mutex reports no other failure of a try-lock.
    bool TryLock();
    void Unlock();
    // The address of the native mutex inside this object (a pthread_mutex_t
    // with the POSIX-threads runtimes of both builds), for native calls.
    void* GetNativeMutexHandle();

private:
    friend class ZKConditionVariable;
    std::mutex nativeMutex;
};

// Locks a ZKMutex for the guard's lifetime, also when an exception passes.
class ZK_API __zkLockGuard {
public:
    explicit __zkLockGuard(ZKMutex& mutex);
    __zkLockGuard(__zkLockGuard const&) = delete;
    __zkLockGuard& operator=(__zkLockGuard const&) = delete;
    ~__zkLockGuard();

private:
    ZKMutex* mutex;
};

class ZK_API ZKConditionVariable {
public:
    ZKConditionVariable();
    ZKConditionVariable(ZKConditionVariable const&) = delete;
    ZKConditionVariable& operator=(ZKConditionVariable const&) = delete;
    ~ZKConditionVariable();

    void NotifyOne() noexcept;
    void NotifyAll() noexcept;
    // The caller holds `mutex`. Wait releases it atomically, sleeps, and holds
    // it again on return. There is no predicate: a wait may end without a
    // notification, so the caller checks its own condition in a loop. A
    // failing wait leaves the lock's ownership as it found it.
    void Wait(ZKMutex& mutex);

private:
    std::condition_variable nativeCondition;
};
