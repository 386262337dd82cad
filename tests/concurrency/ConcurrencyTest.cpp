// ZKThread, the locks and the clocks through the shared library, on the real
// platform.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <pthread.h>

#include <ctime>
#include <future>
#include <system_error>

#include "concurrency/Eventually.h"

// The error must compare equal in the caller's runtime, category included.
static std::error_code ErrorOf(void (ZKThread::*call)(), ZKThread& thread)
try {
    (thread.*call)();
    return std::error_code();
} catch (std::system_error const& error) {
    return error.code();
}

TEST(Thread, RunningFlagBodiesJoinsMovesAndTheDestructor)
{
    ZKThread thread;
    EXPECT_TRUE(ErrorOf(&ZKThread::JoinThread, thread) == std::errc::invalid_argument &&
                ErrorOf(&ZKThread::DetachThread, thread) == std::errc::invalid_argument);
    EXPECT_TRUE(!thread.RunThread() && thread.IsRunning()) << "set before the body is checked, and kept";
    std::atomic<int> ran{0};
    thread.SetFuncToRun([&](std::function<bool()>) { ran = Eventually([&] { return ran < 0; }); });
    ASSERT_TRUE(thread.RunThread());
    thread.SetFuncToRun([&](std::function<bool()> stop) { ran = ran * 10 + 2 * Eventually([&] { return !stop(); }); });
    ran = -1;
    ASSERT_TRUE(Eventually([&] { return ran == 1; })) << "the running thread keeps its own copy of the body";
    EXPECT_TRUE(thread.IsJoinable()) << "finished but not joined";
    EXPECT_TRUE((thread.JoinThread(), thread.IsRunning() && !thread.IsJoinable()))
        << "neither the body's end nor a join clears it";
    ASSERT_TRUE(thread.RunThread());
    thread.ShutdownThread(), thread.ShutdownThread();  // the second has nothing left to join: no error
    EXPECT_TRUE(ran == 12 && !thread.IsRunning() && thread.GetID().id == 1) << "returns once the body returned";

    // A moved thread keeps reading its source's flag; only an assignment takes the body.
    ZKThread source(
        [&](std::function<bool()> stop) { ran = stop(), ran = ran + 2 * Eventually([&] { return !stop(); }); });
    ZKThread target(std::move(source));
    EXPECT_TRUE(target.IsJoinable() && !source.IsJoinable() && !target.IsRunning());
    ASSERT_TRUE(Eventually([&] { return ran == 1; })) << "the flag did not travel, the body reads the source's";
    source.ShutdownThread(), target.JoinThread();
    EXPECT_TRUE(ran == 3 && !target.RunThread());
    thread.SetFuncToRun([&](std::function<bool()>) { ++ran; });
    ZKThread& alias = target = std::move(thread);
    target = std::move(alias);
    EXPECT_TRUE(target.RunThread() && !thread.RunThread() && thread.IsRunning());
    target.JoinThread();
    std::make_unique<ZKThread>([&](std::function<bool()>) { ran = (ZKThread::Sleep(50), ran * 10); }).reset();
    EXPECT_EQ(ran, 40) << "the destructor waits for a body that ignores its stop function";
    std::make_unique<ZKThread>([&](std::function<bool()> stop) { ran = Eventually([&] { return !stop(); }); }).reset();
    EXPECT_EQ(ran, 1) << "and stops one that polls it";
}

#if !defined(_WIN32)
TEST(ThreadDeathTest, MisuseAndEscapingJobsEndTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(ZKThread([](std::function<bool()>) {}).RunThread(), "") << "still joinable";
    EXPECT_DEATH(ZKThread([](std::function<bool()>) {}) = ZKThread(), "") << "onto a joinable thread";
    EXPECT_DEATH(ZKThreadPool(1).AddNewJob([] { throw std::runtime_error("escaped"); }), "");
    EXPECT_DEATH(ZKThreadPool(1).AddNewJob(nullptr), "");
}
#endif

TEST(Locks, AtomicsMutexGuardAndTheRealClocks)
{
    __ZKAtomic<unsigned long long> wide(1ull << 63);  // Load tells only whether it is non-zero
    __ZKAtomic<bool> flag(true);
    EXPECT_TRUE(wide.Load() && flag.Load() && ZKThread::IsRunZKThread(&flag) && !ZKThread::IsRunZKThread(nullptr));
    wide.Store(1ull << 32), flag.Store(false);
    EXPECT_TRUE(wide.Load() && !flag.Load() && !ZKThread::IsRunZKThread(&flag) &&
                !__ZKAtomic<unsigned long long>().Load());
    ZKMutex mutex;  // a second TryLock by the holder is undefined: another thread tries
    auto const freeForOthers = [&] {
        return std::async([&] { return mutex.TryLock() && (mutex.Unlock(), true); }).get();
    };
    EXPECT_THROW((__zkLockGuard(mutex), freeForOthers() ? void() : throw std::runtime_error("held")),
                 std::runtime_error);
    auto* native = static_cast<pthread_mutex_t*>(mutex.GetNativeMutexHandle());
    ASSERT_EQ(pthread_mutex_trylock(native), 0) << "the guard released it, also when an exception passed";
    EXPECT_FALSE(freeForOthers()) << "locked natively, the object is busy";
    EXPECT_TRUE((pthread_mutex_unlock(native), freeForOthers()));

    EXPECT_TRUE(GetElapsedMilliseconds({1999999}, {0}) == 1 &&
                GetElapsedMilliseconds({0}, {1000000}) == (0ull - 1000000) / 1000000)
        << "an unsigned difference";
    auto const clockBefore = std::chrono::steady_clock::now();
    TimeStamp const before = GetTimeStamp();
    ZKTimer timer;
    timer.Start();
    ZKThread::Sleep(20);
    timer.UpdateElapsedTime();
    unsigned long long const stamps = GetElapsedMilliseconds(GetTimeStamp(), before);
    auto const clock = std::chrono::steady_clock::now() - clockBefore;
    EXPECT_TRUE(timer.GetElapsedMicrosecondsInt64() >= 20000 &&
                std::chrono::microseconds(timer.GetElapsedMicrosecondsInt64()) <= clock);
    EXPECT_TRUE(stamps >= 20 && std::chrono::milliseconds(stamps) <= clock);

    std::time_t const now = std::time(nullptr);
    EXPECT_TRUE(GetDateTimeStr("%Y") == std::to_string(std::localtime(&now)->tm_year + 1900).c_str() &&
                GetDateTimeStr("at %%") == "at %" && GetDateTimeStr("") == "");
    std::string text(511, 'x'), percentY;  // the text must fit in 511 bytes, on both tries
    for (int i = 0; i < 128; ++i) percentY += "%Y";
    EXPECT_TRUE(GetDateTimeStr(text.c_str()) == text.c_str() && GetDateTimeStr((text + "x").c_str()) == "");
    EXPECT_TRUE(GetDateTimeStr(percentY.c_str() + 2).GetSize() == 4 * 127 && GetDateTimeStr(percentY.c_str()) == "");
}
