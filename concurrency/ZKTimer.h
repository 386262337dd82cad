#pragma once

// Time: a monotonic timestamp with a difference in milliseconds, the local
// date and time as strftime text, and ZKTimer, a stopwatch on the platform's
// high-resolution counter (QueryPerformanceCounter on Windows, the monotonic
// clock on Linux) that measures only when told to.

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

// Nanoseconds on the steady clock; meaningful only as an operand of a
// difference within one boot of the machine.
struct TimeStamp {
    unsigned long long nanoseconds;
};

// The high-resolution counter in nanoseconds: whole seconds times 10^9 plus
// the remainder scaled to nanoseconds. 0 when the counter or its frequency
// cannot be read (a frequency of zero or less, a negative count).
ZK_API TimeStamp GetTimeStamp();
// (later - earlier) / 1000000 in unsigned 64-bit arithmetic. With `later`
// before `earlier` the difference wraps to a huge value.
ZK_API unsigned long long GetElapsedMilliseconds(TimeStamp later, TimeStamp earlier);
// The current local time in the strftime `format`. The text must fit in 511
// bytes plus its terminator; a longer text, and a format that produces
// nothing, give an empty string.
ZK_API ZKString GetDateTimeStr(ZKString const& format);

// Start, then UpdateElapsedTime, then read any of the getters, which report
// the last update's measurement in their own unit and never look at the
// clock. A later update measures again from the same Start; Start does not
// reset the stored measurement.
//
// The measurement is (counter - start) * 1000000 / frequency in 64-bit
// arithmetic, the multiplication first. For very long measurements the
// product overflows; it wraps (two's complement) instead of being undefined.
// A new timer measures 0 and starts from 0 until Start, and a frequency that
// cannot be read (zero or less) measures 0.
class ZK_API ZKTimer {
public:
    // Reads the frequency, once.
    ZKTimer();
    ZKTimer(ZKTimer const&) = default;
    // Copies all three fields.
    ZKTimer& operator=(ZKTimer const& other);
    ~ZKTimer();

    void Start();
    void UpdateElapsedTime();

    long long GetElapsedMicrosecondsInt64() const;
    // Divisions cut towards zero.
    long long GetElapsedMillisecondsInt64() const;
    long long GetElapsedSecondsInt64() const;
    double GetElapsedMicrosecondsDouble() const;
    double GetElapsedMillisecondsDouble() const;
    double GetElapsedSecondsDouble() const;

private:
    long long start;                // counter at the last Start
    long long frequency;            // counts per second
    long long elapsedMicroseconds;  // the last UpdateElapsedTime's result
};
