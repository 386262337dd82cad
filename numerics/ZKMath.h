#pragma once

// Floating-point comparison with a relative tolerance, IEEE 754 field split,
// linear interpolation and unit conversions. Pure functions, no state.
//
// Comparison. `|x|` is the absolute value; "larger"/"smaller" are taken of
// |a| and |b|.
//   ApproximatelyEqual  |a - b| <= epsilon * larger
//   EssentiallyEqual    |a - b| <= epsilon * smaller
//   DefinitelyGreater   a - b  >  epsilon * larger
//   DefinitelyLess      b - a  >  epsilon * larger
// The two families are deliberately not alike in the equality tests:
//   * the double forms answer true at once when a == b (so two equal
//     infinities are equal), the float forms do not;
//   * when the scale is exactly 0 the double forms compare |a - b| with
//     epsilon itself (an absolute tolerance), while the float forms always
//     multiply by the scale, so AreFloatEssentiallyEqual(0, x, e) is false
//     for every non-zero x.
// A NaN in a or b makes every comparison false.
//
// Ranges. Exclusive: low definitely less than value, and value definitely
// less than high. Inclusive is the union of exactly three cases:
//   low ~= value and value < high;  value ~= high and low < value;
//   low < value < high
// (~= essentially equal, < definitely less). A value essentially equal to
// both ends is in none of them: 1 is not in the inclusive range [1, 1].

#include "../foundation/ZKExport.h"

ZK_API bool AreFloatApproximatelyEqual(float const& a, float const& b, float const& epsilon);
ZK_API bool AreDoubleApproximatelyEqual(double const& a, double const& b, double const& epsilon);
ZK_API bool AreFloatEssentiallyEqual(float const& a, float const& b, float const& epsilon);
ZK_API bool AreDoubleEssentiallyEqual(double const& a, double const& b, double const& epsilon);
ZK_API bool IsFloatDefinitelyGreaterThan(float const& a, float const& b, float const& epsilon);
ZK_API bool IsDoubleDefinitelyGreaterThan(double const& a, double const& b, double const& epsilon);
ZK_API bool IsFloatDefinitelyLessThan(float const& a, float const& b, float const& epsilon);
ZK_API bool IsDoubleDefinitelyLessThan(double const& a, double const& b, double const& epsilon);
ZK_API bool IsFloatInRangeExclusive(float const& low, float const& value, float const& high,
                                    float const& epsilon);
ZK_API bool IsDoubleInRangeExclusive(double const& low, double const& value, double const& high,
                                     double const& epsilon);
ZK_API bool IsFloatInRangeInclusive(float const& low, float const& value, float const& high,
                                    float const& epsilon);
ZK_API bool IsDoubleInRangeInclusive(double const& low, double const& value, double const& high,
                                     double const& epsilon);

// The raw fields of the stored bits, nothing interpreted: the exponent is
// biased as stored and the mantissa lacks the hidden bit, so NaNs,
// infinities and denormals come out as they are stored.
ZK_API void GetZKFloatFormat(float const& value, bool& sign, unsigned char& exponent,
                             unsigned int& mantissa);
ZK_API void GetZKDoubleFormat(double const& value, bool& sign, unsigned short& exponent,
                              unsigned long long& mantissa);

// (1 - t) * a + t * b in the arguments' precision; t is not clamped.
ZK_API double LinearInterpolate(double const& a, double const& b, double const& t);
ZK_API float LinearInterpolate(float const& a, float const& b, float const& t);

// Byte counts (1 KB = 1024 bytes). The integer forms shift and so truncate;
// the others multiply the converted count by the exact power of two.
ZK_API unsigned long long ConvertBytesToKB(unsigned long long bytes);
ZK_API unsigned long long ConvertBytesToMB(unsigned long long bytes);
ZK_API unsigned long long ConvertBytesToGB(unsigned long long bytes);
ZK_API double ConvertBytesToDoubleKB(unsigned long long bytes);
ZK_API double ConvertBytesToDoubleMB(unsigned long long bytes);
ZK_API double ConvertBytesToDoubleGB(unsigned long long bytes);
ZK_API float ConvertBytesToFloatKB(unsigned long long bytes);
ZK_API float ConvertBytesToFloatMB(unsigned long long bytes);
ZK_API float ConvertBytesToFloatGB(unsigned long long bytes);

// Angles and lengths. The ...UI forms take an unsigned count and convert it
// to double (as an unsigned value) first.
ZK_API double DegreesToRadians(double degrees);
ZK_API double RadiansToDegrees(double radians);
ZK_API double ConvertMetersToFeet(double meters);    // x 3.28084
ZK_API double ConvertFeetToMeters(double feet);      // x 0.3048 (not the inverse of the above)
ZK_API double ConvertMetersToDecimeters(double meters);
ZK_API double ConvertDecimetersToMeters(double decimeters);
ZK_API double ConvertMetersToCentimeters(double meters);
ZK_API double ConvertCentimetersToMetersD(double centimeters);
ZK_API double ConvertCentimetersToMetersUI(unsigned long long centimeters);
ZK_API double ConvertMetersToMillimeters(double meters);
ZK_API double ConvertMillimetersToMetersD(double millimeters);
ZK_API double ConvertMillimetersToMetersUI(unsigned long long millimeters);
ZK_API double ConvertMetersToMicrometers(double meters);
ZK_API double ConvertMicrometersToMetersD(double micrometers);
ZK_API double ConvertMicrometersToMetersUI(unsigned long long micrometers);
ZK_API double ConvertMetersToNanometers(double meters);
ZK_API double ConvertNanometersToMetersD(double nanometers);
ZK_API double ConvertNanometersToMetersUI(unsigned long long nanometers);
ZK_API double ConvertFeetToInches(double feet);
ZK_API double ConvertInchesToFeetD(double inches);
ZK_API double ConvertInchesToFeetUI(unsigned long long inches);
// This library's yard pair runs the other way round from the real relation:
// feet to yards multiplies by 3, yards to feet divides by 3.
ZK_API double ConvertFeetToYards(double feet);
ZK_API double ConvertYardsToFeet(double yards);
ZK_API double ConvertFeetToMiles(double feet);
ZK_API double ConvertMilesToFeet(double miles);
