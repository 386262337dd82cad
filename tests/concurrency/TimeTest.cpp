// Timestamps, date strings and ZKTimer on the real clocks.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <chrono>
#include <ctime>
#include <string>

namespace {

std::string Text(ZKString const& text) { return std::string(text.GetString(), static_cast<std::size_t>(text.GetSize())); }

std::string Repeat(std::string const& piece, int count)
{
    std::string out;
    for (int i = 0; i < count; ++i) out += piece;
    return out;
}

}  // namespace

TEST(TimeStamps, ElapsedMillisecondsIsAnUnsignedDifferenceCutToWholeMilliseconds)
{
    TimeStamp const t{123456789};
    EXPECT_EQ(GetElapsedMilliseconds(t, t), 0u);
    EXPECT_EQ(GetElapsedMilliseconds(TimeStamp{1999999}, TimeStamp{0}), 1u);
    EXPECT_EQ(GetElapsedMilliseconds(TimeStamp{5000000}, TimeStamp{3000000}), 2u);
    // The order matters: reversed, the difference wraps.
    EXPECT_EQ(GetElapsedMilliseconds(TimeStamp{0}, TimeStamp{1000000}), (0ull - 1000000ull) / 1000000ull);
    EXPECT_EQ(GetElapsedMilliseconds(TimeStamp{~0ull}, TimeStamp{0}), ~0ull / 1000000ull);
}

TEST(TimeStamps, FollowTheSteadyClock)
{
    using Clock = std::chrono::steady_clock;
    auto milliseconds = [](Clock::duration d) {
        return static_cast<unsigned long long>(std::chrono::duration_cast<std::chrono::milliseconds>(d).count());
    };
    // The stamps lie between the outer and the inner pair of clock readings.
    auto const outerBefore = Clock::now();
    TimeStamp const before = GetTimeStamp();
    auto const innerBefore = Clock::now();
    ZKThread::Sleep(20);
    auto const innerAfter = Clock::now();
    TimeStamp const after = GetTimeStamp();
    auto const outerAfter = Clock::now();
    unsigned long long const elapsed = GetElapsedMilliseconds(after, before);
    EXPECT_GE(innerAfter - innerBefore, std::chrono::milliseconds(20));
    EXPECT_GE(elapsed + 1, milliseconds(innerAfter - innerBefore));
    EXPECT_LE(elapsed, milliseconds(outerAfter - outerBefore) + 1);
}

TEST(DateTime, YearIsTheCurrentLocalYear)
{
    std::time_t const now = std::time(nullptr);
    std::tm const local = *std::localtime(&now);
    std::string const year = std::to_string(local.tm_year + 1900);
    std::string const text = Text(GetDateTimeStr(ZKString("%Y")));
    EXPECT_EQ(text.size(), 4u);
    EXPECT_EQ(text, year);
}

TEST(DateTime, LiteralTextAndEmptyResults)
{
    EXPECT_EQ(Text(GetDateTimeStr(ZKString(""))), "");
    EXPECT_EQ(Text(GetDateTimeStr(ZKString("at %%"))), "at %");
    EXPECT_EQ(Text(GetDateTimeStr(ZKString("%Y-%m-%d"))).size(), 10u);
}

TEST(DateTime, TheTextMustFitIn511BytesOnBothTries)
{
    std::string const fits(511, 'x');
    EXPECT_EQ(Text(GetDateTimeStr(ZKString(fits.c_str()))), fits);
    std::string const tooLong(512, 'x');
    EXPECT_EQ(Text(GetDateTimeStr(ZKString(tooLong.c_str()))), "") << "the second try keeps the limit of 512";
    EXPECT_EQ(Text(GetDateTimeStr(ZKString(Repeat("%Y", 127).c_str()))).size(), 508u);
    EXPECT_EQ(Text(GetDateTimeStr(ZKString(Repeat("%Y", 128).c_str()))), "");
}

TEST(Timer, MeasuresOnlyWhenUpdated)
{
    ZKTimer timer;
    timer.Start();
    ZKThread::Sleep(15);
    timer.UpdateElapsedTime();
    long long const micro = timer.GetElapsedMicrosecondsInt64();
    EXPECT_GE(micro, 15000);
    EXPECT_EQ(timer.GetElapsedMillisecondsInt64(), micro / 1000);
    EXPECT_EQ(timer.GetElapsedSecondsInt64(), micro / 1000000);
    EXPECT_EQ(timer.GetElapsedMicrosecondsDouble(), static_cast<double>(micro));
    EXPECT_EQ(timer.GetElapsedMillisecondsDouble(), static_cast<double>(micro) / 1000.0);
    EXPECT_EQ(timer.GetElapsedSecondsDouble(), static_cast<double>(micro) / 1000000.0);

    ZKThread::Sleep(5);
    EXPECT_EQ(timer.GetElapsedMicrosecondsInt64(), micro) << "getters never read the clock";
    timer.UpdateElapsedTime();
    EXPECT_GE(timer.GetElapsedMicrosecondsInt64(), micro + 5000) << "measured again from the same Start";
}
