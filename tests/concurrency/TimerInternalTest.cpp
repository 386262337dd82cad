// GetTimeStamp and ZKTimer against a scripted high-resolution counter.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;

namespace {

// A counter and frequency the test sets; the fake platform reads them.
class ScriptedClock : public ::testing::Test {
protected:
    long long counter = 0;
    long long frequency = 10000000;  // Windows' usual 10 MHz

    void SetUp() override
    {
        fake::Reset();
        fake::System().QueryPerformanceCounter = [this](long long* value) {
            *value = counter;
            return 1;
        };
        fake::System().QueryPerformanceFrequency = [this](long long* value) {
            *value = frequency;
            return 1;
        };
    }
    void TearDown() override { fake::Reset(); }

    // A timer started at `from` and updated at `to`.
    ZKTimer Measure(long long from, long long to)
    {
        ZKTimer timer;
        counter = from;
        timer.Start();
        counter = to;
        timer.UpdateElapsedTime();
        return timer;
    }
};

}  // namespace

TEST_F(ScriptedClock, TimeStampIsWholeSecondsPlusTheScaledRemainder)
{
    counter = 12345678901;
    EXPECT_EQ(GetTimeStamp().nanoseconds, 1234567890100ull);
    frequency = 3;
    counter = 7;
    EXPECT_EQ(GetTimeStamp().nanoseconds, 2333333333ull);
    // A frequency so high that remainder * 10^9 no longer fits 64 bits.
    frequency = 40000000000;
    counter = 2 * frequency + 30000000000;
    EXPECT_EQ(GetTimeStamp().nanoseconds, 2750000000ull);
}

TEST_F(ScriptedClock, TimeStampIsZeroWithoutAUsableCounter)
{
    frequency = 0;
    counter = 5;
    EXPECT_EQ(GetTimeStamp().nanoseconds, 0u);
    frequency = 10;
    counter = -5;
    EXPECT_EQ(GetTimeStamp().nanoseconds, 0u);
}

TEST_F(ScriptedClock, TimerReadsTheFrequencyOnceAndTheCounterPerCall)
{
    ZKTimer timer;
    EXPECT_EQ(fake::TakeCalls(), (fake::Calls{"QueryPerformanceFrequency()"}));
    timer.Start();
    timer.UpdateElapsedTime();
    (void)timer.GetElapsedSecondsDouble();
    EXPECT_EQ(fake::TakeCalls(), (fake::Calls{"QueryPerformanceCounter()", "QueryPerformanceCounter()"}));
    frequency = 1;  // read once: a later change does not reach the timer
    counter = 10000000;
    timer.UpdateElapsedTime();
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 1000000);
}

TEST_F(ScriptedClock, OneAndAHalfSeconds)
{
    ZKTimer const timer = Measure(5000000, 20000000);
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 1500000);
    EXPECT_EQ(timer.GetElapsedMillisecondsInt64(), 1500);
    EXPECT_EQ(timer.GetElapsedSecondsInt64(), 1);
    EXPECT_EQ(timer.GetElapsedMicrosecondsDouble(), 1500000.0);
    EXPECT_EQ(timer.GetElapsedMillisecondsDouble(), 1500.0);
    EXPECT_EQ(timer.GetElapsedSecondsDouble(), 1.5);
}

TEST_F(ScriptedClock, MultipliesBeforeItDivides)
{
    frequency = 3;
    EXPECT_EQ(Measure(0, 1).GetElapsedMicrosecondsInt64(), 333333);
    EXPECT_EQ(Measure(0, 2).GetElapsedMicrosecondsInt64(), 666666);
}

TEST_F(ScriptedClock, IntegerGettersCutTowardsZero)
{
    ZKTimer const backwards = Measure(20000000, 5000000);
    EXPECT_EQ(backwards.GetElapsedMicrosecondsInt64(), -1500000);
    EXPECT_EQ(backwards.GetElapsedMillisecondsInt64(), -1500);
    EXPECT_EQ(backwards.GetElapsedSecondsInt64(), -1);
    EXPECT_EQ(backwards.GetElapsedSecondsDouble(), -1.5);
    ZKTimer const short_ = Measure(0, 9999);  // 999.9 microseconds
    EXPECT_EQ(short_.GetElapsedMicrosecondsInt64(), 999);
    EXPECT_EQ(short_.GetElapsedMillisecondsInt64(), 0);
    EXPECT_EQ(Measure(9999, 0).GetElapsedMillisecondsInt64(), 0);
}

TEST_F(ScriptedClock, AVeryLongMeasurementWrapsInsteadOfBeingUndefined)
{
    frequency = 1;
    long long const ticks = 9223372036855LL;  // ticks * 10^6 passes 2^63
    long long const expected = static_cast<long long>(static_cast<unsigned long long>(ticks) * 1000000ull);
    EXPECT_LT(expected, 0);
    EXPECT_EQ(Measure(0, ticks).GetElapsedMicrosecondsInt64(), expected);
}

TEST_F(ScriptedClock, StartKeepsTheLastMeasurementAndUpdatesRepeatFromTheSameStart)
{
    counter = 10000;
    ZKTimer timer;  // measures 0, from 0, until told otherwise
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 0);
    timer.UpdateElapsedTime();
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 1000);
    counter = 50000;
    timer.Start();
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 1000);
    counter = 70000;
    timer.UpdateElapsedTime();
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 2000);
    counter = 90000;
    timer.UpdateElapsedTime();
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 4000);
}

TEST_F(ScriptedClock, AnUnreadableFrequencyMeasuresZero)
{
    frequency = 0;
    ZKTimer timer = Measure(0, 123456);
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), 0);
    fake::Reset();  // nothing scripted: both queries fail
    ZKTimer unscripted;
    unscripted.Start();
    unscripted.UpdateElapsedTime();
    EXPECT_EQ(unscripted.GetElapsedMicrosecondsInt64(), 0);
}

TEST_F(ScriptedClock, AssignmentCopiesAllThreeFields)
{
    ZKTimer source = Measure(1000, 3000);  // 200 microseconds at 10 MHz
    frequency = 1000;
    counter = 0;
    ZKTimer target;  // 1 kHz, started at 0
    target.Start();
    target = source;
    EXPECT_EQ(target.GetElapsedMicrosecondsInt64(), 200);
    counter = 11000;
    target.UpdateElapsedTime();
    EXPECT_EQ(target.GetElapsedMicrosecondsInt64(), 1000) << "the source's start and frequency";
}
