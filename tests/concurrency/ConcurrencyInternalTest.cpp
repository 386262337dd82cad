// GetTimeStamp and ZKTimer against a scripted performance counter; the pool
// and its worker, whose debugger lines reach the fake platform.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <algorithm>

#include "concurrency/Eventually.h"
#include "concurrency/detail/PoolWorker.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;

namespace {

long long counter = 0, frequency = 0;

// A timer made and started at `a` and updated at `b`.
ZKTimer Measure(long long a, long long b)
{
    ZKTimer t;
    return counter = a, t.Start(), counter = b, t.UpdateElapsedTime(), t;
}

}  // namespace

TEST(ScriptedClock, TimeStampsAndTimers)
{
    fake::Reset();
    fake::System().QueryPerformanceCounter = [](long long* value) { return *value = counter, 1; };
    EXPECT_TRUE(GetTimeStamp().nanoseconds == 0 && Measure(0, 100).GetElapsedMicrosecondsInt64() == 0)
        << "an unreadable frequency measures nothing";
    fake::System().QueryPerformanceFrequency = [](long long* value) { return *value = frequency, 1; };
    // A stamp is whole seconds plus the scaled remainder, exact for every 64-bit frequency, 0 when unusable. A
    // timer takes the product before the division, and wraps.
    for (auto [f, from, to, micro, stamp] :
         {std::tuple{10000000LL, 5000000LL, 12345678901LL, 1234067890LL, 1234567890100ull},
          {10000000LL, 20000000LL, 5000000LL, -1500000LL, 500000000ull},
          {3LL, 0LL, 7LL, 2333333LL, 2333333333ull},
          {40000000000LL, 0LL, 110000000000LL, 2750000LL, 2750000000ull},
          {1LL, 0LL, 9223372036855LL, -9223372036854551616LL, 224192000ull},
          {0LL, 0LL, 5LL, 0LL, 0ull},
          {10LL, 0LL, -5LL, -500000LL, 0ull}}) {
        ZKTimer const timer = (frequency = f, Measure(from, to));
        EXPECT_TRUE(timer.GetElapsedMicrosecondsInt64() == micro && GetTimeStamp().nanoseconds == stamp)
            << f << " " << to;
    }
    ZKTimer const cut = (frequency = 10000000, Measure(20000000, 5000000));  // the getters cut towards zero
    EXPECT_EQ(std::tuple(cut.GetElapsedMillisecondsInt64(), cut.GetElapsedSecondsInt64(),
                         cut.GetElapsedMicrosecondsDouble(), cut.GetElapsedMillisecondsDouble(),
                         cut.GetElapsedSecondsDouble()),
              std::tuple(-1500LL, -1LL, -1.5e6, -1500.0, -1.5));
    counter = 10000, fake::TakeCalls();
    ZKTimer timer;  // measures from 0 until started, and reads the frequency once
    timer.UpdateElapsedTime();
    frequency = 1, counter = 50000, timer.Start();
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 1000) << "Start keeps the last measurement";
    EXPECT_EQ(fake::TakeCalls(),
              (fake::Calls{"QueryPerformanceFrequency()", "QueryPerformanceCounter()", "QueryPerformanceCounter()"}));
    frequency = 1000, timer = Measure(1000, 3000);  // 2 seconds at 1 kHz
    counter = 11000, timer.UpdateElapsedTime();
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 10000000) << "assignment takes the start and the frequency";
}

namespace {

std::atomic<int> counted{0};
std::atomic<bool> hold{true};
std::string order;  // one worker writes it
ZKThreadPool* growing = nullptr;
void Count() { ++counted; }
void AddMore() { growing->AddNewJob(&Count); }
void Held()
{
    order += Eventually([] { return !hold; }) ? "held " : "?";
}
template <char C>
void Record()
{
    order += C;
}
std::string Line(std::string const& text) { return "OutputDebugStringA(\"" + text + "\")"; }

}  // namespace

TEST(Pool, WorkersLinesQueueOrderAndTheDrain)
{
    fake::Reset();
    auto* pool = new ZKThreadPool;
    for (int i = 0; i < 1000; ++i) pool->AddNewJob(&Count);
    delete pool;
    fake::Calls expected{Line("Joining threads\n")};
    for (int i = 0; i < 8; ++i) expected.push_back(Line("Thread number: " + std::to_string(i) + " started.\n"));
    EXPECT_TRUE(std::ranges::is_permutation(fake::TakeCalls(), expected));
    EXPECT_EQ(counted.exchange(0), 1000) << "every job ran before the destructor returned";
    pool = new ZKThreadPool(0);
    pool->AddNewJob(&Count);
    EXPECT_EQ(pool->GetFlagsData(), 0u);
    delete pool;
    EXPECT_TRUE(fake::TakeCalls() == fake::Calls{Line("Joining threads\n")} && counted == 0) << "jobs dropped";
    pool = growing = new ZKThreadPool(1);
    for (int round = 1; round <= 100; ++round) {  // each job must wake the idle worker
        pool->AddNewJob(&Count);
        ASSERT_TRUE(Eventually([&] { return counted == round; }));
    }
    fake::TakeCalls();  // the worker's start line
    for (auto job : {&Held, &Record<'a'>, &AddMore, &Record<'b'>}) pool->AddNewJob(job);
    std::thread destroyer([pool] { delete pool; });
    EXPECT_TRUE(Eventually([] { return fake::TakeCalls() == fake::Calls{Line("Joining threads\n")}; }))
        << "the worker is held, so nothing was joined before the line";
    hold = false;
    destroyer.join();
    EXPECT_TRUE(order == "held ab" && counted == 101) << "queued jobs run, and so does one added during the drain";

    // A worker returns at once, silent, when any of its pointers is null.
    __ZKAtomic<bool> stopping(true);
    ZKMutex mutex;
    ZKConditionVariable condition;
    zk64::detail::JobQueue jobs;
    jobs.push(&Count);
    for (int n = 0; n < 4; ++n)
        zk64::detail::PoolWorker(nullptr, n == 0 ? nullptr : &stopping, n == 1 ? nullptr : &mutex,
                                 n == 2 ? nullptr : &condition, n == 3 ? nullptr : &jobs, 0);
    EXPECT_TRUE(fake::TakeCalls().empty() && jobs.size() == 1);
}
