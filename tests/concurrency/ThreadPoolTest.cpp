// ZKThreadPool through the public interface: draining, ordering, the size-0
// pool and the lines it prints.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "concurrency/PoolTestSupport.h"

namespace {

std::vector<std::string> Lines(std::string const& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();  // Windows text mode
        lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<int> order;  // written by the single worker, read after the join
template <int N>
void Record()
{
    order.push_back(N);
}

template <int... N>
void AddRecorders(ZKThreadPool& pool, std::integer_sequence<int, N...>)
{
    (pool.AddNewJob(&Record<N>), ...);
}

}  // namespace

TEST_F(PoolTest, DefaultPoolRunsEveryJobBeforeItsDestructorReturns)
{
    {
        ZKThreadPool pool;
        for (int i = 0; i < 1000; ++i) pool.AddNewJob(&pool_jobs::Count);
    }
    EXPECT_EQ(pool_jobs::counted, 1000);
}

namespace {
Signal* ran = nullptr;
void Announce() { ran->Add(); }
}  // namespace

TEST_F(PoolTest, EachJobWakesAWorkerWhileThePoolLives)
{
    // One job at a time, each awaited before the next: an idle worker must be
    // woken by AddNewJob, since the destructor is far away.
    Signal done;
    ran = &done;
    ZKThreadPool pool(1);
    for (int round = 1; round <= 100; ++round) {
        pool.AddNewJob(&Announce);
        ASSERT_TRUE(done.WaitFor(round)) << "round " << round;
    }
}

TEST_F(PoolTest, DefaultPoolPrintsEightStartLinesAndTheJoiningLine)
{
    testing::internal::CaptureStdout();
    { ZKThreadPool pool; }
    std::vector<std::string> expected{"Joining threads"};
    for (int i = 0; i < 8; ++i) expected.push_back("Thread number: " + std::to_string(i) + " started.");
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(Lines(testing::internal::GetCapturedStdout()), expected);
}

TEST_F(PoolTest, JobsWaitingWhenTheDestructorBeginsStillRun)
{
    DestroyWhileBlocked(
        2, [](ZKThreadPool& pool) { for (int i = 0; i < 100; ++i) pool.AddNewJob(&pool_jobs::Count); },
        [] { EXPECT_EQ(pool_jobs::counted, 0) << "every worker was blocked"; });
    EXPECT_EQ(pool_jobs::counted, 100);
}

TEST_F(PoolTest, AJobAddedDuringTheDrainRunsToo)
{
    DestroyWhileBlocked(
        1,
        [](ZKThreadPool& pool) {
            pool_jobs::self = &pool;
            pool.AddNewJob(&pool_jobs::AddMore);
        },
        [] {});
    EXPECT_EQ(pool_jobs::counted, 1);
}

TEST_F(PoolTest, SizeZeroPoolDropsItsJobs)
{
    testing::internal::CaptureStdout();
    {
        ZKThreadPool pool(0);
        for (int i = 0; i < 10; ++i) pool.AddNewJob(&pool_jobs::Count);
    }
    EXPECT_EQ(Lines(testing::internal::GetCapturedStdout()), (std::vector<std::string>{"Joining threads"}));
    EXPECT_EQ(pool_jobs::counted, 0);
}

TEST_F(PoolTest, OneWorkerStartsJobsInQueueOrder)
{
    order.clear();
    {
        ZKThreadPool pool(1);
        AddRecorders(pool, std::make_integer_sequence<int, 12>{});
    }
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
}

namespace {

Signal* arrivals = nullptr;
std::atomic<int> metPartner{0};

// Returns only once a second job is running at the same time, or after the
// bound.
void Rendezvous()
{
    arrivals->Add();
    if (arrivals->WaitFor(2)) ++metPartner;
}

}  // namespace

TEST_F(PoolTest, JobsRunConcurrentlyOnDifferentWorkers)
{
    Signal met;
    arrivals = &met;
    metPartner = 0;
    {
        ZKThreadPool pool(2);
        pool.AddNewJob(&Rendezvous);
        pool.AddNewJob(&Rendezvous);
    }
    EXPECT_EQ(metPartner, 2);
}

TEST_F(PoolTest, FlagsFieldStartsAtZeroAndIsTheCallers)
{
    ZKThreadPool pool(0);
    EXPECT_EQ(pool.GetFlagsData(), 0u);
    pool.SetBitsOn(0b0110);
    pool.SetBitsOff(0b0011);  // all or nothing: bit 0 is not set
    EXPECT_EQ(pool.GetFlagsData(), 0b0110u);
}

#if !defined(_WIN32)
class PoolDeathTest : public ::testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

namespace {
void Throwing() { throw std::runtime_error("escaped job"); }
}  // namespace

TEST_F(PoolDeathTest, AJobThatThrowsEndsTheProcess)
{
    EXPECT_DEATH(
        {
            ZKThreadPool pool(1);
            pool.AddNewJob(&Throwing);
        },
        "");
}

TEST_F(PoolDeathTest, ANullJobEndsTheProcessWhenItRuns)
{
    EXPECT_DEATH(
        {
            ZKThreadPool pool(1);
            pool.AddNewJob(nullptr);
        },
        "");
}

#endif
