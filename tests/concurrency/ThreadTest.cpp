// ZKThread: the stop function, RunThread's order, joins, moves and the
// blocking destructor.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "concurrency/WaitSupport.h"

using Body = std::function<void(std::function<bool()>)>;

namespace {

// The error an action throws must compare equal to the portable condition
// in the caller, category included: a library with its own copy of the C++
// runtime would throw codes that print right and compare false.
testing::AssertionResult Throws(std::function<void()> const& action, std::errc expected)
{
    try {
        action();
    } catch (std::system_error const& error) {
        if (error.code() == expected) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "threw " << error.code() << " (category "
                                           << error.code().category().name() << "), not "
                                           << std::make_error_code(expected);
    }
    return testing::AssertionFailure() << "threw nothing";
}

// Polls the stop function until it says stop, or gives up after kBound so
// that a stop that never arrives fails the test instead of hanging it. True
// when the stop function ended the loop.
bool LoopUntilStopped(std::function<bool()> const& keepRunning, Signal& entered)
{
    entered.Open();
    auto const deadline = std::chrono::steady_clock::now() + kBound;
    while (keepRunning()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::yield();
    }
    return true;
}

// A body that answers keepRunning() each time the test asks, and ends when
// the answer is false.
struct StopSampler {
    std::mutex lock;
    std::condition_variable changed;
    int requests = 0;
    std::vector<bool> answers;

    Body MakeBody()
    {
        return [this](std::function<bool()> keepRunning) {
            std::unique_lock<std::mutex> guard(lock);
            for (int served = 0;; ++served) {
                if (!changed.wait_for(guard, kBound, [&] { return requests > served; })) return;
                answers.push_back(keepRunning());
                changed.notify_all();
                if (!answers.back()) return;
            }
        };
    }
    bool Sample()
    {
        std::unique_lock<std::mutex> guard(lock);
        std::size_t const before = answers.size();
        ++requests;
        changed.notify_all();
        EXPECT_TRUE(changed.wait_for(guard, kBound, [&] { return answers.size() > before; }));
        return answers.size() > before && answers.back();
    }
};

}  // namespace

TEST(Thread, RunThreadWithoutBodySetsRunningFirstAndFails)
{
    ZKThread thread;
    EXPECT_FALSE(thread.IsRunning());
    EXPECT_FALSE(thread.IsJoinable());
    EXPECT_FALSE(thread.RunThread());
    EXPECT_TRUE(thread.IsRunning()) << "set before the body is checked, and kept";
    EXPECT_FALSE(thread.IsJoinable());
    thread.ShutdownThread();  // nothing to join: no error
    EXPECT_FALSE(thread.IsRunning());
}

TEST(Thread, ShutdownEndsABodyLoopingOnItsStopFunction)
{
    std::atomic<bool> stopped{false}, ended{false};
    Signal entered;
    ZKThread thread([&](std::function<bool()> keepRunning) {
        stopped = LoopUntilStopped(keepRunning, entered);
        ended = true;
    });
    EXPECT_TRUE(thread.IsRunning());
    EXPECT_TRUE(thread.IsJoinable());
    ASSERT_TRUE(entered.Wait());
    thread.ShutdownThread();
    EXPECT_TRUE(ended) << "ShutdownThread returns only after the body has returned";
    EXPECT_TRUE(stopped);
    EXPECT_FALSE(thread.IsRunning());
    EXPECT_FALSE(thread.IsJoinable());
    thread.ShutdownThread();  // the second does nothing
}

TEST(Thread, RunningStaysTrueAfterTheBodyReturnedByItself)
{
    Signal finished;
    ZKThread thread([&](std::function<bool()>) { finished.Open(); });
    ASSERT_TRUE(finished.Wait());
    EXPECT_TRUE(thread.IsJoinable()) << "finished but not joined";
    thread.JoinThread();
    EXPECT_FALSE(thread.IsJoinable());
    EXPECT_TRUE(thread.IsRunning()) << "neither the end of the body nor JoinThread clears it";
    thread.ShutdownThread();
    EXPECT_FALSE(thread.IsRunning());
}

TEST(Thread, RunsAgainAfterJoinAndKeepsItsOwnCopyOfTheBody)
{
    std::vector<std::string> ran;  // one writer at a time, read after joins
    Signal release;
    ZKThread thread;
    thread.SetFuncToRun([&](std::function<bool()>) {
        EXPECT_TRUE(release.Wait());
        ran.push_back("first");
    });
    EXPECT_FALSE(thread.IsJoinable()) << "SetFuncToRun starts nothing";
    ASSERT_TRUE(thread.RunThread());
    thread.SetFuncToRun([&](std::function<bool()>) { ran.push_back("second"); });
    release.Open();
    thread.JoinThread();
    ASSERT_TRUE(thread.RunThread());
    thread.JoinThread();
    EXPECT_EQ(ran, (std::vector<std::string>{"first", "second"}));
}

TEST(Thread, JoinAndDetachNeedAJoinableThread)
{
    ZKThread thread;
    EXPECT_TRUE(Throws([&] { thread.JoinThread(); }, std::errc::invalid_argument));
    EXPECT_TRUE(Throws([&] { thread.DetachThread(); }, std::errc::invalid_argument));

    auto release = std::make_shared<Signal>();
    thread.SetFuncToRun([release](std::function<bool()>) { EXPECT_TRUE(release->Wait()); });
    thread.RunThread();
    thread.DetachThread();
    EXPECT_FALSE(thread.IsJoinable());
    EXPECT_TRUE(thread.IsRunning());
    release->Open();
}

TEST(Thread, IdIsOneAndStopFunctionReadsTheFlag)
{
    ZKThread first([](std::function<bool()>) {});
    ZKThread second;
    EXPECT_EQ(first.GetID().id, 1u);
    EXPECT_EQ(second.GetID().id, 1u);
    ZKThread moved(std::move(first));
    EXPECT_EQ(moved.GetID().id, 1u);
    moved.JoinThread();

    EXPECT_FALSE(ZKThread::IsRunZKThread(nullptr));
    __ZKAtomic<bool> flag(true);
    EXPECT_TRUE(ZKThread::IsRunZKThread(&flag));
    flag.Store(false);
    EXPECT_FALSE(ZKThread::IsRunZKThread(&flag));

    auto const before = std::chrono::steady_clock::now();
    ZKThread::Sleep(25);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(25));
}

TEST(ThreadMove, AMovedThreadKeepsReadingItsSourceFlag)
{
    StopSampler sampler;
    ZKThread source(sampler.MakeBody());
    ZKThread target(std::move(source));
    EXPECT_TRUE(target.IsJoinable());
    EXPECT_FALSE(source.IsJoinable());
    EXPECT_FALSE(target.IsRunning()) << "the flag does not travel";
    EXPECT_TRUE(sampler.Sample()) << "the body reads the source's flag, which is still true";
    source.ShutdownThread();  // stores false; nothing to join on the source
    EXPECT_FALSE(sampler.Sample());
    target.JoinThread();
    EXPECT_FALSE(target.RunThread()) << "the body does not travel with a move construction";
}

TEST(ThreadMove, AssignmentTakesTheNativeThreadAndTheBody)
{
    std::atomic<int> runs{0};
    ZKThread source([&](std::function<bool()>) { ++runs; });
    ZKThread target;
    target = std::move(source);
    EXPECT_TRUE(target.IsJoinable());
    EXPECT_FALSE(source.IsJoinable());
    EXPECT_TRUE(source.IsRunning()) << "no running flag changes in a move";
    EXPECT_FALSE(target.IsRunning());
    EXPECT_EQ(target.GetID().id, 1u);
    target.JoinThread();
    EXPECT_FALSE(source.RunThread()) << "the source's body went to the target";
    ASSERT_TRUE(target.RunThread());
    target.JoinThread();
    EXPECT_EQ(runs, 2);

    ZKThread& alias = target;  // a self-move keeps the body
    target = std::move(alias);
    ASSERT_TRUE(target.RunThread());
    target.JoinThread();
    EXPECT_EQ(runs, 3);
}

TEST(ThreadLifetime, DestructorBlocksUntilABodyThatIgnoresItsStopFunctionReturns)
{
    Signal release, destroying, destroyed;
    std::atomic<bool> bodyReturned{false};
    bool returnedBeforeDestructorEnded = false;
    auto thread = std::make_unique<ZKThread>([&](std::function<bool()>) {
        EXPECT_TRUE(release.Wait());
        bodyReturned = true;
    });
    std::thread destroyer([&] {
        destroying.Open();
        thread.reset();
        returnedBeforeDestructorEnded = bodyReturned;
        destroyed.Open();
    });
    ASSERT_TRUE(destroying.Wait());
    EXPECT_FALSE(destroyed.WaitFor(1, std::chrono::milliseconds(100))) << "returned while the body ran";
    release.Open();
    destroyer.join();
    EXPECT_TRUE(returnedBeforeDestructorEnded);
}

TEST(ThreadLifetime, DestructorStopsABodyThatPollsItsStopFunction)
{
    std::atomic<bool> stopped{false};
    Signal entered;
    {
        ZKThread thread([&](std::function<bool()> keepRunning) { stopped = LoopUntilStopped(keepRunning, entered); });
        ASSERT_TRUE(entered.Wait());
    }
    EXPECT_TRUE(stopped);
}

#if !defined(_WIN32)
// Operations that end the process. The re-executing death test style suits
// a threaded process, ThreadSanitizer included.
class ThreadDeathTest : public ::testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ThreadDeathTest, RunThreadOnAThreadNotYetJoinedEndsTheProcess)
{
    EXPECT_DEATH(
        {
            ZKThread thread([](std::function<bool()>) {});
            thread.RunThread();
        },
        "");
}

TEST_F(ThreadDeathTest, MoveAssignmentOntoAJoinableThreadEndsTheProcess)
{
    EXPECT_DEATH(
        {
            ZKThread target([](std::function<bool()>) {});
            ZKThread source;
            target = std::move(source);
        },
        "");
}
#endif
