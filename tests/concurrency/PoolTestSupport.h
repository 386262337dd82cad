#pragma once

// Jobs for ZKThreadPool tests. Jobs are plain functions without arguments,
// so what they touch lives in globals, reset by PoolTest::SetUp.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <atomic>
#include <thread>
#include <vector>

#include "concurrency/WaitSupport.h"

// Shows the stop request of a pool, for tests that act while its destructor
// runs. Take the flag's address before the destructor begins: from then on
// the object is no longer a PoolProbe, but the flag lives until the
// destructor ends.
class PoolProbe : public ZKThreadPool {
public:
    using ZKThreadPool::ZKThreadPool;
    __ZKAtomic<bool> const* StopFlag() const { return &stopping; }
};

namespace pool_jobs {

inline std::atomic<int> counted{0};
inline Signal* blockedEntered = nullptr;  // raised by Blocking on entry
inline Signal* release = nullptr;         // Blocking waits for it
inline ZKThreadPool* self = nullptr;      // the pool AddMore adds to

inline void Count() { ++counted; }
inline void Blocking()
{
    blockedEntered->Open();
    EXPECT_TRUE(release->Wait());
}
inline void AddMore() { self->AddNewJob(&Count); }

}  // namespace pool_jobs

class PoolTest : public ::testing::Test {
protected:
    Signal blockedEntered, release;

    void SetUp() override
    {
        pool_jobs::counted = 0;
        pool_jobs::blockedEntered = &blockedEntered;
        pool_jobs::release = &release;
        pool_jobs::self = nullptr;
    }

    // Destroys `pool` on another thread while `workers` Blocking jobs hold
    // every worker, so that the destructor begins with `prepare`'s jobs still
    // queued; `whileStopping` runs once the stop request is set, before the
    // blocked jobs are released.
    template <class Prepare, class WhileStopping>
    void DestroyWhileBlocked(unsigned int workers, Prepare prepare, WhileStopping whileStopping)
    {
        auto* pool = new PoolProbe(workers);
        for (unsigned int i = 0; i < workers; ++i) pool->AddNewJob(&pool_jobs::Blocking);
        ASSERT_TRUE(blockedEntered.WaitFor(static_cast<int>(workers)));
        prepare(*pool);
        __ZKAtomic<bool> const* stopping = pool->StopFlag();
        std::thread destroyer([pool] { delete pool; });
        EXPECT_TRUE(Eventually([stopping] { return stopping->Load(); }));
        whileStopping();
        release.Open();
        destroyer.join();
    }
};
