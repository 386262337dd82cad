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

// A timer made and started at `from` and updated at `to`.
ZKTimer Measure(long long from, long long to)
{
    ZKTimer timer;
    counter = from;
    timer.Start();
    counter = to;
    timer.UpdateElapsedTime();
    return timer;
}

}  // namespace

TEST(ScriptedClock, TimeStampsAndTimers)
{
    fake::Reset();
    fake::System().QueryPerformanceCounter = [](long long* value) { return *value = counter, 1; };
    EXPECT_TRUE(GetTimeStamp().nanoseconds == 0 && Measure(0, 100).GetElapsedMicrosecondsInt64() == 0)
        << "an unreadable frequency measures nothing";
    fake::System().QueryPerformanceFrequency = [](long long* value) { return *value = frequency, 1; };
    // Whole seconds plus the scaled remainder, exact for every 64-bit frequency; 0 when unusable.
    for (auto [f, c, expected] : {std::tuple{10000000LL, 12345678901LL, 1234567890100ull},
                                  {3LL, 7LL, 2333333333ull},
                                  {40000000000LL, 110000000000LL, 2750000000ull},
                                  {0LL, 5LL, 0ull},
                                  {10LL, -5LL, 0ull}})
        EXPECT_EQ((frequency = f, counter = c, GetTimeStamp().nanoseconds), expected) << f << " " << c;
    // The getters cut towards zero; the product comes before the division, and wraps.
    for (auto [f, from, to, micro] : {std::tuple{10000000LL, 5000000LL, 20000000LL, 1500000LL},
                                      {10000000LL, 20000000LL, 5000000LL, -1500000LL},
                                      {3LL, 0LL, 2LL, 666666LL},
                                      {1LL, 0LL, 9223372036855LL, static_cast<long long>(9223372036855000000ull)},
                                      {0LL, 0LL, 123456LL, 0LL}}) {
        ZKTimer const timer = (frequency = f, Measure(from, to));
        EXPECT_TRUE(timer.GetElapsedMicrosecondsInt64() == micro &&
                    timer.GetElapsedMillisecondsInt64() == micro / 1000 &&
                    timer.GetElapsedSecondsInt64() == micro / 1000000 &&
                    timer.GetElapsedMicrosecondsDouble() == static_cast<double>(micro) &&
                    timer.GetElapsedMillisecondsDouble() == static_cast<double>(micro) / 1000.0 &&
                    timer.GetElapsedSecondsDouble() == static_cast<double>(micro) / 1000000.0)
            << f << " " << from << " " << to;
    }
    frequency = 10000000;
    counter = 10000;
    fake::TakeCalls();
    ZKTimer timer;  // measures from 0 until started
    timer.UpdateElapsedTime();
    frequency = 1;  // read once: a later change does not reach the timer
    counter = 50000;
    timer.Start();
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 1000) << "Start keeps the last measurement";
    EXPECT_EQ(fake::TakeCalls(),
              (fake::Calls{"QueryPerformanceFrequency()", "QueryPerformanceCounter()", "QueryPerformanceCounter()"}));
    frequency = 1000;
    timer = Measure(1000, 3000);  // 2 seconds at 1 kHz
    counter = 11000;
    timer.UpdateElapsedTime();
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
    {
        ZKThreadPool pool;
        for (int i = 0; i < 1000; ++i) pool.AddNewJob(&Count);
    }
    fake::Calls const calls = fake::TakeCalls();
    fake::Calls expected{Line("Joining threads\n")};
    for (int i = 0; i < 8; ++i) expected.push_back(Line("Thread number: " + std::to_string(i) + " started.\n"));
    EXPECT_TRUE(std::is_permutation(calls.begin(), calls.end(), expected.begin(), expected.end()));
    EXPECT_EQ(counted.exchange(0), 1000) << "every job ran before the destructor returned";
    {
        ZKThreadPool none(0);
        none.AddNewJob(&Count);
        EXPECT_EQ(none.GetFlagsData(), 0u);
    }
    EXPECT_TRUE(fake::TakeCalls() == fake::Calls{Line("Joining threads\n")} && counted == 0) << "jobs dropped";
    auto* pool = new ZKThreadPool(1);
    for (int round = 1; round <= 100; ++round) {  // each job must wake the idle worker
        pool->AddNewJob(&Count);
        ASSERT_TRUE(Eventually([&] { return counted == round; }));
    }
    fake::TakeCalls();  // the worker's start line
    growing = pool;
    for (auto job : {&Held, &Record<'a'>, &AddMore, &Record<'b'>}) pool->AddNewJob(job);
    std::thread destroyer([pool] { delete pool; });
    EXPECT_TRUE(Eventually([] { return fake::TakeCalls() == fake::Calls{Line("Joining threads\n")}; }))
        << "the worker is held, so nothing was joined before the line";
    hold = false;
    destroyer.join();
    EXPECT_TRUE(order == "held ab" && counted == 101) << "queued jobs run, and so does one added during the drain";
}

TEST(PoolWorker, ReturnsAtOnceWhenAPointerIsNull)
{
    __ZKAtomic<bool> stopping(true);
    ZKMutex mutex;
    ZKConditionVariable condition;
    zk64::detail::JobQueue jobs;
    jobs.push(&Count);
    fake::Reset();
    zk64::detail::PoolWorker(nullptr, nullptr, &mutex, &condition, &jobs, 0);
    zk64::detail::PoolWorker(nullptr, &stopping, nullptr, &condition, &jobs, 0);
    zk64::detail::PoolWorker(nullptr, &stopping, &mutex, nullptr, &jobs, 0);
    zk64::detail::PoolWorker(nullptr, &stopping, &mutex, &condition, nullptr, 0);
    EXPECT_TRUE(fake::TakeCalls().empty() && jobs.size() == 1);
}
