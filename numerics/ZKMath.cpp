#include "ZKMath.h"

#include <cmath>
#include <cstring>

namespace {

// The larger and the smaller of |a| and |b|. With a NaN either may come out
// as the NaN or as the other value; every comparison built on them is false
// for a NaN anyway, because |a - b| is then NaN.
template <class F>
F LargerMagnitude(F a, F b)
{
    F const x = std::fabs(a), y = std::fabs(b);
    return x < y ? y : x;
}

template <class F>
F SmallerMagnitude(F a, F b)
{
    F const x = std::fabs(a), y = std::fabs(b);
    return y < x ? y : x;
}

// Float equality: always relative, no shortcut for a == b.
template <class F>
bool RelativeEqual(F a, F b, F epsilon, F scale)
{
    return std::fabs(a - b) <= epsilon * scale;
}

// Double equality: a == b first, then an absolute tolerance when the scale
// is exactly zero.
bool DoubleEqual(double a, double b, double epsilon, double scale)
{
    if (a == b) return true;
    double const difference = std::fabs(a - b);
    if (scale == 0.0) return difference <= epsilon;
    return difference <= epsilon * scale;
}

template <class F>
bool DefinitelyGreater(F a, F b, F epsilon)
{
    return a - b > epsilon * LargerMagnitude(a, b);
}

// The three cases of the inclusive range, with the family's own tests.
template <class F, class Equal, class Less>
bool InclusiveRange(F low, F value, F high, F epsilon, Equal equal, Less less)
{
    return (equal(low, value, epsilon) && less(value, high, epsilon)) ||
           (equal(value, high, epsilon) && less(low, value, epsilon)) ||
           (less(low, value, epsilon) && less(value, high, epsilon));
}

}  // namespace

bool AreFloatApproximatelyEqual(float const& a, float const& b, float const& epsilon)
{
    return RelativeEqual(a, b, epsilon, LargerMagnitude(a, b));
}

bool AreDoubleApproximatelyEqual(double const& a, double const& b, double const& epsilon)
{
    return DoubleEqual(a, b, epsilon, LargerMagnitude(a, b));
}

bool AreFloatEssentiallyEqual(float const& a, float const& b, float const& epsilon)
{
    return RelativeEqual(a, b, epsilon, SmallerMagnitude(a, b));
}

bool AreDoubleEssentiallyEqual(double const& a, double const& b, double const& epsilon)
{
    return DoubleEqual(a, b, epsilon, SmallerMagnitude(a, b));
}

bool IsFloatDefinitelyGreaterThan(float const& a, float const& b, float const& epsilon)
{
    return DefinitelyGreater(a, b, epsilon);
}

bool IsDoubleDefinitelyGreaterThan(double const& a, double const& b, double const& epsilon)
{
    return DefinitelyGreater(a, b, epsilon);
}

bool IsFloatDefinitelyLessThan(float const& a, float const& b, float const& epsilon)
{
    return DefinitelyGreater(b, a, epsilon);
}

bool IsDoubleDefinitelyLessThan(double const& a, double const& b, double const& epsilon)
{
    return DefinitelyGreater(b, a, epsilon);
}

bool IsFloatInRangeExclusive(float const& low, float const& value, float const& high, float const& epsilon)
{
    return IsFloatDefinitelyLessThan(low, value, epsilon) && IsFloatDefinitelyLessThan(value, high, epsilon);
}

bool IsDoubleInRangeExclusive(double const& low, double const& value, double const& high,
                              double const& epsilon)
{
    return IsDoubleDefinitelyLessThan(low, value, epsilon) && IsDoubleDefinitelyLessThan(value, high, epsilon);
}

bool IsFloatInRangeInclusive(float const& low, float const& value, float const& high, float const& epsilon)
{
    return InclusiveRange(low, value, high, epsilon, AreFloatEssentiallyEqual, IsFloatDefinitelyLessThan);
}

bool IsDoubleInRangeInclusive(double const& low, double const& value, double const& high,
                              double const& epsilon)
{
    return InclusiveRange(low, value, high, epsilon, AreDoubleEssentiallyEqual, IsDoubleDefinitelyLessThan);
}

void GetZKFloatFormat(float const& value, bool& sign, unsigned char& exponent, unsigned int& mantissa)
{
    static_assert(sizeof(float) == sizeof(unsigned int));
    unsigned int bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    sign = (bits >> 31) != 0;
    exponent = static_cast<unsigned char>((bits >> 23) & 0xFFu);
    mantissa = bits & 0x7FFFFFu;
}

void GetZKDoubleFormat(double const& value, bool& sign, unsigned short& exponent, unsigned long long& mantissa)
{
    static_assert(sizeof(double) == sizeof(unsigned long long));
    unsigned long long bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    sign = (bits >> 63) != 0;
    exponent = static_cast<unsigned short>((bits >> 52) & 0x7FFu);
    mantissa = bits & 0xFFFFFFFFFFFFFull;
}

double LinearInterpolate(double const& a, double const& b, double const& t)
{
    return (1.0 - t) * a + t * b;
}

float LinearInterpolate(float const& a, float const& b, float const& t)
{
    return (1.0f - t) * a + t * b;
}

unsigned long long ConvertBytesToKB(unsigned long long bytes) { return bytes >> 10; }
unsigned long long ConvertBytesToMB(unsigned long long bytes) { return bytes >> 20; }
unsigned long long ConvertBytesToGB(unsigned long long bytes) { return bytes >> 30; }
double ConvertBytesToDoubleKB(unsigned long long bytes) { return static_cast<double>(bytes) * 0x1p-10; }
double ConvertBytesToDoubleMB(unsigned long long bytes) { return static_cast<double>(bytes) * 0x1p-20; }
double ConvertBytesToDoubleGB(unsigned long long bytes) { return static_cast<double>(bytes) * 0x1p-30; }
float ConvertBytesToFloatKB(unsigned long long bytes) { return static_cast<float>(bytes) * 0x1p-10f; }
float ConvertBytesToFloatMB(unsigned long long bytes) { return static_cast<float>(bytes) * 0x1p-20f; }
float ConvertBytesToFloatGB(unsigned long long bytes) { return static_cast<float>(bytes) * 0x1p-30f; }

double DegreesToRadians(double degrees) { return degrees * 0.017453292519943295; }
double RadiansToDegrees(double radians) { return radians * 57.29577951308232; }
double ConvertMetersToFeet(double meters) { return meters * 3.28084; }
double ConvertFeetToMeters(double feet) { return feet * 0.3048; }
double ConvertMetersToDecimeters(double meters) { return meters * 10.0; }
double ConvertDecimetersToMeters(double decimeters) { return decimeters / 10.0; }
double ConvertMetersToCentimeters(double meters) { return meters * 100.0; }
double ConvertCentimetersToMetersD(double centimeters) { return centimeters / 100.0; }
double ConvertCentimetersToMetersUI(unsigned long long centimeters) { return static_cast<double>(centimeters) / 100.0; }
double ConvertMetersToMillimeters(double meters) { return meters * 1000.0; }
double ConvertMillimetersToMetersD(double millimeters) { return millimeters / 1000.0; }
double ConvertMillimetersToMetersUI(unsigned long long millimeters) { return static_cast<double>(millimeters) / 1000.0; }
double ConvertMetersToMicrometers(double meters) { return meters * 1000000.0; }
double ConvertMicrometersToMetersD(double micrometers) { return micrometers / 1000000.0; }
double ConvertMicrometersToMetersUI(unsigned long long micrometers) { return static_cast<double>(micrometers) / 1000000.0; }
double ConvertMetersToNanometers(double meters) { return meters * 1000000000.0; }
double ConvertNanometersToMetersD(double nanometers) { return nanometers / 1000000000.0; }
double ConvertNanometersToMetersUI(unsigned long long nanometers) { return static_cast<double>(nanometers) / 1000000000.0; }
double ConvertFeetToInches(double feet) { return feet * 12.0; }
double ConvertInchesToFeetD(double inches) { return inches / 12.0; }
double ConvertInchesToFeetUI(unsigned long long inches) { return static_cast<double>(inches) / 12.0; }
double ConvertFeetToYards(double feet) { return feet * 3.0; }
double ConvertYardsToFeet(double yards) { return yards / 3.0; }
double ConvertFeetToMiles(double feet) { return feet / 5280.0; }
double ConvertMilesToFeet(double miles) { return miles * 5280.0; }
