#include "ZKTimer.h"

#include <ctime>

#include "../platform/System.h"

namespace {

constexpr unsigned long long kNanosecondsPerSecond = 1000000000ull;
constexpr unsigned long long kMicrosecondsPerSecond = 1000000ull;
constexpr std::size_t kDateTimeLimit = 512;

long long ReadCounter()
{
    long long count = 0;
    zk64::platform::QueryPerformanceCounter(&count);
    return count;
}

long long ReadFrequency()
{
    long long frequency = 0;
    zk64::platform::QueryPerformanceFrequency(&frequency);
    return frequency;
}

// remainder * 10^9 / frequency for remainder < frequency, exact for every
// 64-bit frequency.
unsigned long long ScaleRemainder(unsigned long long remainder, unsigned long long frequency)
{
    __extension__ using Wide = unsigned __int128;
    return static_cast<unsigned long long>(static_cast<Wide>(remainder) * kNanosecondsPerSecond / frequency);
}

// The local time now, broken down; false when the clock or the conversion
// fails.
bool LocalTimeNow(std::tm& out)
{
#if defined(_WIN32)
    __time64_t const now = _time64(nullptr);
    return _localtime64_s(&out, &now) == 0;
#else
    std::time_t const now = std::time(nullptr);
    return localtime_r(&now, &out) != nullptr;
#endif
}

// strftime into `block` with the fixed limit of 512 bytes, whatever the
// block's size; 0 when the text does not fit or is empty. The format is the
// caller's by design.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::size_t FormatNow(char* block, char const* format)
{
    std::tm parts{};
    if (!LocalTimeNow(parts)) return 0;
    return std::strftime(block, kDateTimeLimit, format, &parts);
}
#pragma GCC diagnostic pop

}  // namespace

TimeStamp GetTimeStamp()
{
    long long const frequency = ReadFrequency();
    long long const counter = ReadCounter();
    if (frequency <= 0 || counter < 0) return TimeStamp{0};
    auto const ticks = static_cast<unsigned long long>(counter);
    auto const perSecond = static_cast<unsigned long long>(frequency);
    return TimeStamp{ticks / perSecond * kNanosecondsPerSecond + ScaleRemainder(ticks % perSecond, perSecond)};
}

unsigned long long GetElapsedMilliseconds(TimeStamp later, TimeStamp earlier)
{
    return (later.nanoseconds - earlier.nanoseconds) / 1000000ull;
}

ZKString GetDateTimeStr(ZKString const& format)
{
    // A second try with a larger block but the same limit: a text that did
    // not fit the first time does not fit the second either.
    char first[kDateTimeLimit] = {};
    if (FormatNow(first, format.GetString()) != 0) return ZKString(first);
    char second[2 * kDateTimeLimit] = {};
    if (FormatNow(second, format.GetString()) != 0) return ZKString(second);
    return ZKString();
}

ZKTimer::ZKTimer() : start(0), frequency(ReadFrequency()), elapsedMicroseconds(0) {}

ZKTimer& ZKTimer::operator=(ZKTimer const& other)
{
    start = other.start;
    frequency = other.frequency;
    elapsedMicroseconds = other.elapsedMicroseconds;
    return *this;
}

ZKTimer::~ZKTimer() = default;

void ZKTimer::Start() { start = ReadCounter(); }

void ZKTimer::UpdateElapsedTime()
{
    long long const counter = ReadCounter();
    if (frequency <= 0) {
        elapsedMicroseconds = 0;
        return;
    }
    // Signed arithmetic that wraps: the difference and the product are taken
    // modulo 2^64 and read back as signed, then divided.
    unsigned long long const ticks = static_cast<unsigned long long>(counter) - static_cast<unsigned long long>(start);
    auto const scaled = static_cast<long long>(ticks * kMicrosecondsPerSecond);
    elapsedMicroseconds = scaled / frequency;
}

long long ZKTimer::GetElapsedMicrosecondsInt64() const { return elapsedMicroseconds; }
long long ZKTimer::GetElapsedMillisecondsInt64() const { return elapsedMicroseconds / 1000; }
long long ZKTimer::GetElapsedSecondsInt64() const { return elapsedMicroseconds / 1000000; }
double ZKTimer::GetElapsedMicrosecondsDouble() const { return static_cast<double>(elapsedMicroseconds); }
double ZKTimer::GetElapsedMillisecondsDouble() const { return static_cast<double>(elapsedMicroseconds) / 1000.0; }
double ZKTimer::GetElapsedSecondsDouble() const { return static_cast<double>(elapsedMicroseconds) / 1000000.0; }
