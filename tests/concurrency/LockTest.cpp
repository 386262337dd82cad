// __ZKAtomic, ZKMutex, __zkLockGuard and ZKConditionVariable.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <thread>
#include <vector>

#include "concurrency/WaitSupport.h"

namespace {

// TryLock from another thread: a second TryLock by the holder is undefined.
bool FreeForOthers(ZKMutex& mutex)
{
    bool locked = false;
    std::thread([&] {
        locked = mutex.TryLock();
        if (locked) mutex.Unlock();
    }).join();
    return locked;
}

}  // namespace

TEST(Atomic, StoresAndLoads)
{
    __ZKAtomic<bool> flag;
    EXPECT_FALSE(flag.Load());
    flag.Store(true);
    EXPECT_TRUE(flag.Load());
    EXPECT_TRUE(__ZKAtomic<bool>(true).Load());

    // The wide form's Load tells only whether the value is non-zero, for
    // bits above the low 32 too.
    __ZKAtomic<unsigned long long> wide(5);
    EXPECT_TRUE(wide.Load());
    wide.Store(0);
    EXPECT_FALSE(wide.Load());
    wide.Store(1ull << 32);
    EXPECT_TRUE(wide.Load());
    wide.Store(1ull << 63);
    EXPECT_TRUE(wide.Load());
    EXPECT_FALSE(__ZKAtomic<unsigned long long>().Load());
}

TEST(Mutex, TryLockIsFalseWhileAnotherThreadHoldsIt)
{
    ZKMutex mutex;
    mutex.Lock();
    EXPECT_FALSE(FreeForOthers(mutex));
    mutex.Unlock();
    EXPECT_TRUE(FreeForOthers(mutex));
}

TEST(Mutex, NativeHandleIsTheMutexInsideTheObject)
{
    ZKMutex mutex;
    void* handle = mutex.GetNativeMutexHandle();
    auto const* begin = reinterpret_cast<unsigned char const*>(&mutex);
    auto const* at = static_cast<unsigned char const*>(handle);
    ASSERT_TRUE(at >= begin && at < begin + sizeof(ZKMutex));

    auto* native = static_cast<pthread_mutex_t*>(handle);
    mutex.Lock();
    EXPECT_EQ(pthread_mutex_trylock(native), EBUSY);
    mutex.Unlock();
    ASSERT_EQ(pthread_mutex_trylock(native), 0);
    EXPECT_FALSE(FreeForOthers(mutex)) << "locked natively, the object is busy";
    pthread_mutex_unlock(native);
    EXPECT_TRUE(FreeForOthers(mutex));
}

TEST(LockGuard, ReleasesAtScopeExitAlsoWhenAnExceptionPasses)
{
    ZKMutex mutex;
    {
        __zkLockGuard guard(mutex);
        EXPECT_FALSE(FreeForOthers(mutex));
    }
    EXPECT_TRUE(FreeForOthers(mutex));
    EXPECT_THROW(
        {
            __zkLockGuard guard(mutex);
            throw std::runtime_error("passing");
        },
        std::runtime_error);
    EXPECT_TRUE(FreeForOthers(mutex));
}

TEST(ConditionVariable, NotifyAllWakesEveryWaiterEachHoldingTheMutexInTurn)
{
    constexpr int kWaiters = 4;
    ZKMutex mutex;
    ZKConditionVariable condition;
    bool go = false;                    // guarded by mutex
    int inside = 0, mostInside = 0;     // guarded: waiters back from Wait
    Signal registered, woken;
    std::vector<std::thread> waiters;
    for (int i = 0; i < kWaiters; ++i) {
        waiters.emplace_back([&] {
            mutex.Lock();
            registered.Add();
            while (!go) condition.Wait(mutex);
            mostInside = std::max(mostInside, ++inside);
            --inside;
            mutex.Unlock();
            woken.Add();
        });
    }
    ASSERT_TRUE(registered.WaitFor(kWaiters));
    // A waiter holds the mutex from registering until Wait releases it, so
    // once this Lock returns every waiter is asleep in Wait.
    mutex.Lock();
    go = true;
    condition.NotifyAll();
    mutex.Unlock();
    EXPECT_TRUE(woken.WaitFor(kWaiters)) << "one NotifyAll must wake them all";
    // Free whatever a failing implementation left asleep, then join.
    while (!woken.WaitFor(kWaiters, std::chrono::milliseconds(10))) condition.NotifyAll();
    for (auto& waiter : waiters) waiter.join();
    EXPECT_EQ(mostInside, 1);
}
