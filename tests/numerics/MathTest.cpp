// Float and double comparison, field split, interpolation and units.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKMath.h>

#include <cstring>
#include <limits>
#include <tuple>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr float kInfF = std::numeric_limits<float>::infinity();
constexpr float kNaNF = std::numeric_limits<float>::quiet_NaN();

TEST(FloatCompare, EqualityScalesTheFamiliesDifferAndTheRanges)
{
    // |1 - 2| = 1 is within 0.5 * larger but not 0.5 * smaller; bounds count.
    EXPECT_TRUE(AreFloatApproximatelyEqual(1.0f, 2.0f, 0.5f) && AreDoubleApproximatelyEqual(1.0, 2.0, 0.5) &&
                AreFloatEssentiallyEqual(1.0f, 1.5f, 0.5f));
    EXPECT_FALSE(AreFloatEssentiallyEqual(1.0f, 2.0f, 0.5f) || AreDoubleEssentiallyEqual(1.0, 2.0, 0.5) ||
                 AreDoubleEssentiallyEqual(1.5, 1.0, 0.4999));
    // A zero scale: the float forms multiply by it, the double forms use
    // epsilon as an absolute tolerance; the larger of 0 and 1e-9 is 1e-9.
    EXPECT_TRUE(AreFloatApproximatelyEqual(0.0f, 0.0f, 1e-6f) && AreDoubleEssentiallyEqual(0.0, 1e-9, 1e-6) &&
                AreDoubleEssentiallyEqual(-1e-6, 0.0, 1e-6));
    EXPECT_FALSE(AreFloatEssentiallyEqual(0.0f, 1e-9f, 1e-6f) || AreFloatEssentiallyEqual(1e-9f, 0.0f, 1e30f) ||
                 AreDoubleEssentiallyEqual(0.0, 1e-5, 1e-6) || AreDoubleApproximatelyEqual(0.0, 1e-9, 1e-6));
    // a == b first: only the double forms call equal infinities equal. NaN is never equal or ordered.
    EXPECT_TRUE(AreDoubleApproximatelyEqual(kInf, kInf, 1e-6) && AreDoubleEssentiallyEqual(-kInf, -kInf, 1e-6));
    EXPECT_FALSE(AreFloatApproximatelyEqual(kInfF, kInfF, 1e-6f) || AreFloatEssentiallyEqual(kInfF, kInfF, 1e-6f));
    EXPECT_FALSE(AreDoubleApproximatelyEqual(kNaN, kNaN, 1.0) || AreDoubleEssentiallyEqual(kNaN, 0.0, 1.0) ||
                 AreDoubleEssentiallyEqual(0.0, kNaN, 1.0) || AreFloatApproximatelyEqual(kNaNF, 1.0f, 1.0f) ||
                 AreFloatEssentiallyEqual(0.0f, kNaNF, 1.0f) || IsDoubleDefinitelyGreaterThan(kNaN, 0.0, 0.0) ||
                 IsDoubleDefinitelyLessThan(0.0, kNaN, 0.0) || IsFloatDefinitelyGreaterThan(kNaNF, 0.0f, 0.0f) ||
                 IsDoubleDefinitelyGreaterThan(kInf, kInf, 1e-6));
    // Definitely is strict and scales by the larger magnitude: 1 is not above 0.5 * 2.
    EXPECT_FALSE(IsFloatDefinitelyGreaterThan(1.0f, 1.0f, 1e-6f) || IsFloatDefinitelyLessThan(1.0f, 1.0f, 1e-6f) ||
                 IsDoubleDefinitelyGreaterThan(2.0, 1.0, 0.5) || IsFloatDefinitelyLessThan(1.0f, 2.0f, 0.5f) ||
                 IsDoubleDefinitelyLessThan(2.5, 1.0, 0.5));
    EXPECT_TRUE(IsDoubleDefinitelyGreaterThan(2.5, 1.0, 0.5) && IsFloatDefinitelyGreaterThan(2.5f, 1.0f, 0.5f) &&
                IsDoubleDefinitelyLessThan(1.0, 2.5, 0.5) && IsFloatDefinitelyLessThan(-2.5f, -1.0f, 0.5f));
    EXPECT_TRUE(IsFloatInRangeExclusive(0.0f, 0.5f, 1.0f, 1e-6f) && IsDoubleInRangeExclusive(1.0, 1.5, 2.0, 1e-6));
    EXPECT_FALSE(IsFloatInRangeExclusive(0.0f, 0.0f, 1.0f, 1e-6f) || IsFloatInRangeExclusive(0.0f, 1.0f, 1.0f, 1e-6f) ||
                 IsDoubleInRangeExclusive(1.0, 1.0 + 1e-9, 2.0, 1e-6));
    // At the low end, at the high end, inside; at both ends is in no case.
    double const e = 1e-9;
    EXPECT_TRUE(IsDoubleInRangeInclusive(1.0, 1.0, 2.0, e) && IsDoubleInRangeInclusive(0.0, 1.0, 1.0, e) &&
                IsDoubleInRangeInclusive(0.0, 0.5, 1.0, e) && IsFloatInRangeInclusive(1.0f, 1.0f, 2.0f, 1e-6f) &&
                IsFloatInRangeInclusive(0.0f, 1.0f, 1.0f, 1e-6f));
    EXPECT_FALSE(IsDoubleInRangeInclusive(1.0, 1.0, 1.0, e) || IsDoubleInRangeInclusive(0.0, 2.0, 1.0, e) ||
                 IsDoubleInRangeInclusive(2.0, 2.0, 1.0, e) || IsFloatInRangeInclusive(1.0f, 1.0f, 1.0f, 1e-6f));
    // Each family's own equality: 0 is within 1e-6 of 1e-9 only for double.
    EXPECT_TRUE(IsDoubleInRangeInclusive(1e-9, 0.0, 1.0, 1e-6) && IsDoubleInRangeInclusive(-1.0, 1e-9, 0.0, 1e-6));
    EXPECT_FALSE(IsFloatInRangeInclusive(1e-9f, 0.0f, 1.0f, 1e-6f) ||
                 IsFloatInRangeInclusive(-1.0f, 1e-9f, 0.0f, 1e-6f));
}

// The sign, exponent and mantissa fields of `bits` read as a value of type
// Value (with an Exponent-sized exponent).
template <class Value, class Exponent, class Bits>
std::tuple<bool, Exponent, Bits> Split(Bits bits, void (*split)(Value const&, bool&, Exponent&, Bits&))
{
    Value value = 0;
    std::memcpy(&value, &bits, sizeof value);
    std::tuple<bool, Exponent, Bits> fields{false, Exponent(0), ~Bits(0)};
    split(value, std::get<0>(fields), std::get<1>(fields), std::get<2>(fields));
    return fields;
}

TEST(FieldSplit, FieldsAreTheRawStoredBits)
{
    using F = std::tuple<bool, unsigned char, unsigned int>;
    EXPECT_EQ(Split(0xBF800000u, &GetZKFloatFormat), F(true, 127, 0));
    EXPECT_EQ(Split(0x3FC00000u, &GetZKFloatFormat), F(false, 127, 0x400000u));
    EXPECT_EQ(Split(0xFFC12345u, &GetZKFloatFormat), F(true, 255, 0x412345u));
    EXPECT_EQ(Split(0x00000001u, &GetZKFloatFormat), F(false, 0, 1));
    EXPECT_EQ(Split(0x80000000u, &GetZKFloatFormat), F(true, 0, 0));
    using D = std::tuple<bool, unsigned short, unsigned long long>;
    EXPECT_EQ(Split(0x3FF0000000000000ull, &GetZKDoubleFormat), D(false, 1023, 0));
    EXPECT_EQ(Split(0xC008000000000000ull, &GetZKDoubleFormat), D(true, 1024, 0x8000000000000ull));
    EXPECT_EQ(Split(0xFFF0000000000000ull, &GetZKDoubleFormat), D(true, 2047, 0));
    EXPECT_EQ(Split(0x7FF80000DEADBEEFull, &GetZKDoubleFormat), D(false, 2047, 0x80000DEADBEEFull));
}

TEST(Units, InterpolationWithoutClampingByteCountsAnglesAndLengths)
{
    EXPECT_TRUE(LinearInterpolate(2.0, 4.0, 0.5) == 3.0 && LinearInterpolate(2.0, 4.0, 2.0) == 6.0 &&
                LinearInterpolate(2.0, 4.0, -1.0) == 0.0 && LinearInterpolate(2.0f, 4.0f, 2.0f) == 6.0f);
    // (1 - t) * a + t * b gives b exactly at t = 1; a + t * (b - a) would not.
    EXPECT_TRUE(LinearInterpolate(1e16, 1.0, 1.0) == 1.0 && LinearInterpolate(1e8f, 1.0f, 1.0f) == 1.0f);
    EXPECT_TRUE(ConvertBytesToKB(1023) == 0u && ConvertBytesToKB(1024) == 1u &&
                ConvertBytesToMB((5ull << 20) - 1) == 4u && ConvertBytesToGB(~0ull) == (1ull << 34) - 1);
    // ~0 rounds to 2^64 first; 16777217 is 16777216 as a float.
    EXPECT_TRUE(ConvertBytesToDoubleKB(1023) == 0.9990234375 && ConvertBytesToDoubleMB(1ull << 19) == 0.5 &&
                ConvertBytesToDoubleGB(~0ull) == 17179869184.0 && ConvertBytesToDoubleKB(16777217) == 16384.0009765625);
    EXPECT_TRUE(ConvertBytesToFloatKB(16777217) == 16384.0f && ConvertBytesToFloatMB(3ull << 19) == 1.5f &&
                ConvertBytesToFloatGB(1ull << 29) == 0.5f);
    // Inputs where dividing and multiplying by the reciprocal differ. The
    // yard pair runs backwards: feet to yards multiplies by 3.
    EXPECT_TRUE(DegreesToRadians(180.0) == 3.141592653589793 && RadiansToDegrees(-1.0) == -57.29577951308232);
    EXPECT_TRUE(ConvertMetersToFeet(2.5) == 8.2021 && ConvertFeetToMeters(2.5) == 0.762);
    EXPECT_TRUE(ConvertMetersToDecimeters(2.5) == 25.0 && ConvertDecimetersToMeters(3.0) == 0.3);
    EXPECT_TRUE(ConvertMetersToCentimeters(2.5) == 250.0 && ConvertCentimetersToMetersD(35.0) == 0.35);
    EXPECT_TRUE(ConvertMetersToMillimeters(2.5) == 2500.0 && ConvertMillimetersToMetersD(9.0) == 0.009);
    EXPECT_TRUE(ConvertMetersToMicrometers(2.5) == 2500000.0 && ConvertMicrometersToMetersD(5.0) == 5e-06);
    EXPECT_TRUE(ConvertMetersToNanometers(2.5) == 2500000000.0 && ConvertNanometersToMetersD(3.0) == 3e-09);
    EXPECT_TRUE(ConvertFeetToInches(2.5) == 30.0 && ConvertInchesToFeetD(5.0) == 0.4166666666666667);
    EXPECT_TRUE(ConvertFeetToMiles(13200.0) == 2.5 && ConvertMilesToFeet(2.5) == 13200.0);
    EXPECT_TRUE(ConvertFeetToYards(1.0) == 3.0 && ConvertYardsToFeet(5.0) == 1.6666666666666667);
    // Counts are converted as unsigned: the largest is not read as -1.
    EXPECT_TRUE(ConvertCentimetersToMetersUI(35) == 0.35 && ConvertMillimetersToMetersUI(9) == 0.009 &&
                ConvertMicrometersToMetersUI(5) == 5e-06 && ConvertNanometersToMetersUI(3) == 3e-09);
    EXPECT_TRUE(ConvertInchesToFeetUI(5) == 0.4166666666666667 &&
                ConvertNanometersToMetersUI(~0ull) == 18446744073.709553);
    // The two meter-foot factors are rounded independently.
    EXPECT_EQ(ConvertMetersToFeet(ConvertFeetToMeters(1.0)), 1.000000032);
}

}  // namespace
