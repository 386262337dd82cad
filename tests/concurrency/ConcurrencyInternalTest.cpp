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
ZKTimer Timed(auto a, auto b, ZKTimer t = {}) { return counter = a, t.Start(), counter = b, t.UpdateElapsedTime(), t; }

std::atomic<int> counted{0};
std::atomic<bool> hold{true};
std::string order;  // one worker writes it
ZKThreadPool* growing = nullptr;
void Count() { ++counted; }
std::string Line(std::string const& text) { return "OutputDebugStringA(\"" + text + "\")"; }

}  // namespace

TEST(ConcurrencyCalls, ScriptedClockTimersAndThePool)
{
    fake::Reset();
    fake::System().QueryPerformanceCounter = [](long long* value) { return *value = counter, 1; };
    EXPECT_TRUE(GetTimeStamp().nanoseconds == 0 && Timed(0, 100).GetElapsedMicrosecondsInt64() == 0)
        << "an unreadable frequency measures nothing";
    fake::System().QueryPerformanceFrequency = [](long long* value) { return *value = frequency, 1; };
    // A stamp is whole seconds plus the scaled remainder, exact for every 64-bit frequency, 0 when unusable. A
    // timer takes the product before the division, and wraps.
    long long const rows[][5] = {{10000000, 5000000, 12345678901, 1234067890, 1234567890100},
                                 {10000000, 20000000, 5000000, -1500000, 500000000},
                                 {3, 0, 7, 2333333, 2333333333},
                                 {40000000000, 0, 110000000000, 2750000, 2750000000},
                                 {1, 0, 9223372036855, static_cast<long long>(9223372036855000000ull), 224192000},
                                 {0, 0, 5, 0, 0},
                                 {10, 0, -5, -500000, 0}};
    for (auto [f, from, to, micro, stamp] : rows)
        EXPECT_TRUE((frequency = f, Timed(from, to)).GetElapsedMicrosecondsInt64() == micro &&
                    GetTimeStamp().nanoseconds == static_cast<unsigned long long>(stamp));
    ZKTimer const cut = (frequency = 10000000, Timed(20000000, 5000000));  // the getters cut towards zero
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
    frequency = 1000, timer = Timed(1000, 3000);  // 2 seconds at 1 kHz
    counter = 11000, timer.UpdateElapsedTime();
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 10000000) << "assignment takes the start and the frequency";

    // The pool: every worker announces itself, and the destructor its join.
    fake::Reset();
    auto* pool = new ZKThreadPool;
    for (int i = 0; i < 1000; ++i) pool->AddNewJob(&Count);
    delete pool;
    fake::Calls expected{Line("Joining threads\n")};
    for (int i = 0; i < 8; ++i) expected.push_back(Line("Thread number: " + std::to_string(i) + " started.\n"));
    EXPECT_TRUE(std::ranges::is_permutation(fake::TakeCalls(), expected));
    EXPECT_EQ(counted.exchange(0), 1000) << "every job ran before the destructor returned";
    EXPECT_EQ((pool = new ZKThreadPool(0))->GetFlagsData(), 0u);
    pool->AddNewJob(&Count), delete pool;
    EXPECT_TRUE(fake::TakeCalls() == fake::Calls{Line("Joining threads\n")} && counted == 0) << "jobs dropped";
    pool = growing = new ZKThreadPool(1);
    for (int round = 1; round <= 100; ++round)  // each job must wake the idle worker
        ASSERT_TRUE((pool->AddNewJob(&Count), Eventually([&] { return counted == round; })));
    fake::TakeCalls();  // the worker's start line
    for (auto job : {+[] { order += Eventually([] { return !hold; }) ? "held " : "?"; }, +[] { order += 'a'; },
                     +[] { growing->AddNewJob(&Count); }, +[] { order += 'b'; }})
        pool->AddNewJob(job);
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
    zk64::detail::JobQueue jobs({&Count});
    for (int n = 0; n < 4; ++n)
        zk64::detail::PoolWorker(nullptr, n == 0 ? nullptr : &stopping, n == 1 ? nullptr : &mutex,
                                 n == 2 ? nullptr : &condition, n == 3 ? nullptr : &jobs, 0);
    EXPECT_TRUE(fake::TakeCalls().empty() && jobs.size() == 1);
}
