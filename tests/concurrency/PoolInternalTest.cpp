// ZKThreadPool's worker and its debugger lines, through the fake platform's
// OutputDebugStringA, and the concurrency slots of the library's globals.

#include <gtest/gtest.h>

#include <zk64/foundation/detail/Globals.h>
#include <zk64/zk64.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "concurrency/PoolTestSupport.h"
#include "concurrency/detail/PoolWorker.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
using zk64::detail::JobQueue;
using zk64::detail::PoolWorker;

namespace {

std::string DebuggerLine(std::string const& text) { return "OutputDebugStringA(\"" + text + "\")"; }

std::string StartLine(int number) { return DebuggerLine("Thread number: " + std::to_string(number) + " started.\n"); }

std::vector<std::string> Sorted(std::vector<std::string> lines)
{
    std::sort(lines.begin(), lines.end());
    return lines;
}

}  // namespace

TEST_F(PoolTest, JoiningLineComesAfterTheStopRequestAndBeforeTheJoins)
{
    fake::Reset();
    auto* pool = new PoolProbe(1);
    pool->AddNewJob(&pool_jobs::Blocking);
    ASSERT_TRUE(blockedEntered.Wait());
    __ZKAtomic<bool> const* stopping = pool->StopFlag();
    std::thread destroyer([pool] { delete pool; });
    // The worker is held by its job, so no join can have finished while the
    // line is awaited.
    std::vector<std::string> seen;
    EXPECT_TRUE(Eventually([&] {
        for (auto& call : fake::TakeCalls()) seen.push_back(call);
        return std::find(seen.begin(), seen.end(), DebuggerLine("Joining threads\n")) != seen.end();
    }));
    EXPECT_TRUE(stopping->Load());
    release.Open();
    destroyer.join();
    EXPECT_EQ(Sorted(seen), Sorted({StartLine(0), DebuggerLine("Joining threads\n")}));
}

TEST(PoolWorker, ReturnsAtOnceWhenAPointerIsNull)
{
    __ZKAtomic<bool> stopping(true);
    ZKMutex mutex;
    ZKConditionVariable condition;
    JobQueue jobs;
    int ran = 0;
    jobs.push([&] { ++ran; });
    fake::Reset();
    PoolWorker(nullptr, nullptr, &mutex, &condition, &jobs, 0);
    PoolWorker(nullptr, &stopping, nullptr, &condition, &jobs, 0);
    PoolWorker(nullptr, &stopping, &mutex, nullptr, &jobs, 0);
    PoolWorker(nullptr, &stopping, &mutex, &condition, nullptr, 0);
    EXPECT_TRUE(fake::TakeCalls().empty()) << "no start line";
    EXPECT_EQ(ran, 0);
    EXPECT_EQ(jobs.size(), 1u);
}

TEST(PoolWorker, DrainsTheQueueInOrderThenReturnsWhenStopping)
{
    __ZKAtomic<bool> stopping(true);
    ZKMutex mutex;
    ZKConditionVariable condition;
    JobQueue jobs;
    std::vector<int> ran;
    for (int i = 0; i < 3; ++i) jobs.push([&ran, i] { ran.push_back(i); });
    int stopFunctionCalls = 0;
    fake::Reset();
    PoolWorker([&] { ++stopFunctionCalls; return false; }, &stopping, &mutex, &condition, &jobs, 5);
    EXPECT_EQ(ran, (std::vector<int>{0, 1, 2}));
    EXPECT_TRUE(jobs.empty());
    EXPECT_EQ(stopFunctionCalls, 0) << "the worker ignores its stop function";
    EXPECT_EQ(fake::TakeCalls(), (fake::Calls{StartLine(5)}));
    EXPECT_TRUE(mutex.TryLock()) << "the lock is released on return";
    mutex.Unlock();
}

TEST(PoolWorker, RunsJobsOutsideTheLock)
{
    __ZKAtomic<bool> stopping(true);
    ZKMutex mutex;
    ZKConditionVariable condition;
    JobQueue jobs;
    bool lockFreeDuringJob = false;
    jobs.push([&] {
        // Another thread, since a second TryLock by the holder is undefined.
        std::thread([&] {
            lockFreeDuringJob = mutex.TryLock();
            if (lockFreeDuringJob) mutex.Unlock();
        }).join();
    });
    fake::Reset();
    PoolWorker(nullptr, &stopping, &mutex, &condition, &jobs, 0);
    EXPECT_TRUE(lockFreeDuringJob);
}

TEST(ConcurrencyGlobals, DirectoryWatchingLockIsFreeAndItsWorkerIdle)
{
    using zk64::detail::globals;
    ASSERT_TRUE(globals.directoryWatchLock.TryLock());
    globals.directoryWatchLock.Unlock();
    EXPECT_FALSE(globals.directoryWatchWorker.IsRunning());
    EXPECT_FALSE(globals.directoryWatchWorker.IsJoinable());
    EXPECT_EQ(globals.directoryWatchWorker.GetID().id, 1u);
}
