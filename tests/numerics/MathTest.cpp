// Float and double comparison, field split, interpolation and units.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKMath.h>

#include <cstring>
#include <limits>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr float kInfF = std::numeric_limits<float>::infinity();
constexpr float kNaNF = std::numeric_limits<float>::quiet_NaN();

TEST(FloatCompare, EqualityScalesAndTheFamiliesDiffer)
{
    // |1 - 2| = 1 is within 0.5 * larger but not 0.5 * smaller; bounds count.
    EXPECT_TRUE(AreFloatApproximatelyEqual(1.0f, 2.0f, 0.5f));
    EXPECT_FALSE(AreFloatEssentiallyEqual(1.0f, 2.0f, 0.5f));
    EXPECT_TRUE(AreDoubleApproximatelyEqual(1.0, 2.0, 0.5));
    EXPECT_FALSE(AreDoubleEssentiallyEqual(1.0, 2.0, 0.5));
    EXPECT_TRUE(AreFloatEssentiallyEqual(1.0f, 1.5f, 0.5f));
    EXPECT_FALSE(AreDoubleEssentiallyEqual(1.5, 1.0, 0.4999));
    // A zero scale: the float forms multiply by it, the double forms use
    // epsilon as an absolute tolerance.
    EXPECT_TRUE(AreFloatApproximatelyEqual(0.0f, 0.0f, 1e-6f));
    EXPECT_FALSE(AreFloatEssentiallyEqual(0.0f, 1e-9f, 1e-6f));
    EXPECT_FALSE(AreFloatEssentiallyEqual(1e-9f, 0.0f, 1e30f));
    EXPECT_TRUE(AreDoubleEssentiallyEqual(0.0, 1e-9, 1e-6));
    EXPECT_TRUE(AreDoubleEssentiallyEqual(-1e-6, 0.0, 1e-6));
    EXPECT_FALSE(AreDoubleEssentiallyEqual(0.0, 1e-5, 1e-6));
    EXPECT_FALSE(AreDoubleApproximatelyEqual(0.0, 1e-9, 1e-6));  // the larger is 1e-9
    // a == b first: only the double forms call equal infinities equal.
    EXPECT_TRUE(AreDoubleApproximatelyEqual(kInf, kInf, 1e-6));
    EXPECT_TRUE(AreDoubleEssentiallyEqual(-kInf, -kInf, 1e-6));
    EXPECT_FALSE(AreFloatApproximatelyEqual(kInfF, kInfF, 1e-6f));
    EXPECT_FALSE(AreFloatEssentiallyEqual(kInfF, kInfF, 1e-6f));
}

TEST(FloatCompare, NaNIsNeverEqualOrOrdered)
{
    EXPECT_FALSE(AreDoubleApproximatelyEqual(kNaN, kNaN, 1.0));
    EXPECT_FALSE(AreDoubleEssentiallyEqual(kNaN, 0.0, 1.0));
    EXPECT_FALSE(AreDoubleEssentiallyEqual(0.0, kNaN, 1.0));
    EXPECT_FALSE(AreFloatApproximatelyEqual(kNaNF, 1.0f, 1.0f));
    EXPECT_FALSE(AreFloatEssentiallyEqual(0.0f, kNaNF, 1.0f));
    EXPECT_FALSE(IsDoubleDefinitelyGreaterThan(kNaN, 0.0, 0.0));
    EXPECT_FALSE(IsDoubleDefinitelyLessThan(0.0, kNaN, 0.0));
    EXPECT_FALSE(IsFloatDefinitelyGreaterThan(kNaNF, 0.0f, 0.0f));
    EXPECT_FALSE(IsDoubleDefinitelyGreaterThan(kInf, kInf, 1e-6));
}

TEST(FloatCompare, DefinitelyIsStrictAndScalesByTheLargerMagnitude)
{
    EXPECT_FALSE(IsFloatDefinitelyGreaterThan(1.0f, 1.0f, 1e-6f));
    EXPECT_FALSE(IsFloatDefinitelyLessThan(1.0f, 1.0f, 1e-6f));
    EXPECT_FALSE(IsDoubleDefinitelyGreaterThan(2.0, 1.0, 0.5));  // 1 is not above 0.5 * 2
    EXPECT_FALSE(IsFloatDefinitelyLessThan(1.0f, 2.0f, 0.5f));
    EXPECT_TRUE(IsDoubleDefinitelyGreaterThan(2.5, 1.0, 0.5));
    EXPECT_TRUE(IsFloatDefinitelyGreaterThan(2.5f, 1.0f, 0.5f));
    EXPECT_TRUE(IsDoubleDefinitelyLessThan(1.0, 2.5, 0.5));
    EXPECT_TRUE(IsFloatDefinitelyLessThan(-2.5f, -1.0f, 0.5f));
    EXPECT_FALSE(IsDoubleDefinitelyLessThan(2.5, 1.0, 0.5));
}

TEST(FloatRange, ExclusiveAndTheThreeInclusiveCases)
{
    EXPECT_FALSE(IsFloatInRangeExclusive(0.0f, 0.0f, 1.0f, 1e-6f));
    EXPECT_FALSE(IsFloatInRangeExclusive(0.0f, 1.0f, 1.0f, 1e-6f));
    EXPECT_TRUE(IsFloatInRangeExclusive(0.0f, 0.5f, 1.0f, 1e-6f));
    EXPECT_FALSE(IsDoubleInRangeExclusive(1.0, 1.0 + 1e-9, 2.0, 1e-6));
    EXPECT_TRUE(IsDoubleInRangeExclusive(1.0, 1.5, 2.0, 1e-6));

    double const e = 1e-9;
    EXPECT_TRUE(IsDoubleInRangeInclusive(1.0, 1.0, 2.0, e));   // at the low end
    EXPECT_TRUE(IsDoubleInRangeInclusive(0.0, 1.0, 1.0, e));   // at the high end
    EXPECT_TRUE(IsDoubleInRangeInclusive(0.0, 0.5, 1.0, e));   // inside
    EXPECT_FALSE(IsDoubleInRangeInclusive(1.0, 1.0, 1.0, e));  // at both ends: in no case
    EXPECT_FALSE(IsDoubleInRangeInclusive(0.0, 2.0, 1.0, e));
    EXPECT_FALSE(IsDoubleInRangeInclusive(2.0, 2.0, 1.0, e));
    EXPECT_TRUE(IsFloatInRangeInclusive(1.0f, 1.0f, 2.0f, 1e-6f));
    EXPECT_TRUE(IsFloatInRangeInclusive(0.0f, 1.0f, 1.0f, 1e-6f));
    EXPECT_FALSE(IsFloatInRangeInclusive(1.0f, 1.0f, 1.0f, 1e-6f));
    // Each family's own equality: 0 is within 1e-6 of 1e-9 only for double.
    EXPECT_TRUE(IsDoubleInRangeInclusive(1e-9, 0.0, 1.0, 1e-6));
    EXPECT_FALSE(IsFloatInRangeInclusive(1e-9f, 0.0f, 1.0f, 1e-6f));
    EXPECT_TRUE(IsDoubleInRangeInclusive(-1.0, 1e-9, 0.0, 1e-6));
    EXPECT_FALSE(IsFloatInRangeInclusive(-1.0f, 1e-9f, 0.0f, 1e-6f));
}

TEST(FieldSplit, FieldsAreTheRawStoredBits)
{
    struct FloatCase {
        unsigned int bits;
        bool sign;
        unsigned char exponent;
        unsigned int mantissa;
    };
    FloatCase const floats[] = {{0xBF800000u, true, 127, 0},       {0x3FC00000u, false, 127, 0x400000u},
                                {0xFFC12345u, true, 255, 0x412345u}, {0x00000001u, false, 0, 1},
                                {0x80000000u, true, 0, 0}};
    for (FloatCase const& c : floats) {
        float value = 0;
        std::memcpy(&value, &c.bits, sizeof value);
        bool sign = !c.sign;
        unsigned char exponent = 0;
        unsigned int mantissa = ~0u;
        GetZKFloatFormat(value, sign, exponent, mantissa);
        EXPECT_EQ(sign, c.sign) << std::hex << c.bits;
        EXPECT_EQ(exponent, c.exponent) << std::hex << c.bits;
        EXPECT_EQ(mantissa, c.mantissa) << std::hex << c.bits;
    }

    struct DoubleCase {
        unsigned long long bits;
        bool sign;
        unsigned short exponent;
        unsigned long long mantissa;
    };
    DoubleCase const doubles[] = {{0x3FF0000000000000ull, false, 1023, 0},
                                  {0xC008000000000000ull, true, 1024, 0x8000000000000ull},
                                  {0xFFF0000000000000ull, true, 2047, 0},
                                  {0x7FF80000DEADBEEFull, false, 2047, 0x80000DEADBEEFull}};
    for (DoubleCase const& c : doubles) {
        double value = 0;
        std::memcpy(&value, &c.bits, sizeof value);
        bool sign = !c.sign;
        unsigned short exponent = 0;
        unsigned long long mantissa = ~0ull;
        GetZKDoubleFormat(value, sign, exponent, mantissa);
        EXPECT_EQ(sign, c.sign) << std::hex << c.bits;
        EXPECT_EQ(exponent, c.exponent) << std::hex << c.bits;
        EXPECT_EQ(mantissa, c.mantissa) << std::hex << c.bits;
    }
}

TEST(Interpolate, WeighsBothEndsWithoutClampingT)
{
    EXPECT_EQ(LinearInterpolate(2.0, 4.0, 0.5), 3.0);
    EXPECT_EQ(LinearInterpolate(2.0, 4.0, 2.0), 6.0);
    EXPECT_EQ(LinearInterpolate(2.0, 4.0, -1.0), 0.0);
    EXPECT_EQ(LinearInterpolate(2.0f, 4.0f, 2.0f), 6.0f);
    // (1 - t) * a + t * b gives b exactly at t = 1; a + t * (b - a) would not.
    EXPECT_EQ(LinearInterpolate(1e16, 1.0, 1.0), 1.0);
    EXPECT_EQ(LinearInterpolate(1e8f, 1.0f, 1.0f), 1.0f);
}

TEST(Units, ByteCounts)
{
    EXPECT_EQ(ConvertBytesToKB(1023), 0u);
    EXPECT_EQ(ConvertBytesToKB(1024), 1u);
    EXPECT_EQ(ConvertBytesToMB((5ull << 20) - 1), 4u);
    EXPECT_EQ(ConvertBytesToGB(~0ull), (1ull << 34) - 1);
    EXPECT_EQ(ConvertBytesToDoubleKB(1023), 0.9990234375);
    EXPECT_EQ(ConvertBytesToDoubleMB(1ull << 19), 0.5);
    EXPECT_EQ(ConvertBytesToDoubleGB(~0ull), 17179869184.0);  // the count rounds to 2^64 first
    EXPECT_EQ(ConvertBytesToDoubleKB(16777217), 16384.0009765625);
    EXPECT_EQ(ConvertBytesToFloatKB(16777217), 16384.0f);  // 16777216 as a float
    EXPECT_EQ(ConvertBytesToFloatMB(3ull << 19), 1.5f);
    EXPECT_EQ(ConvertBytesToFloatGB(1ull << 29), 0.5f);
}

TEST(Units, AnglesAndLengthsMultiplyOrDivideAsTabled)
{
    // Inputs where dividing and multiplying by the reciprocal differ.
    struct Case {
        double (*convert)(double);
        double input;
        double expected;
    };
    Case const cases[] = {
        {DegreesToRadians, 180.0, 3.141592653589793},  {RadiansToDegrees, -1.0, -57.29577951308232},
        {ConvertMetersToFeet, 2.5, 8.2021},            {ConvertFeetToMeters, 2.5, 0.762},
        {ConvertMetersToDecimeters, 2.5, 25.0},        {ConvertDecimetersToMeters, 3.0, 0.3},
        {ConvertMetersToCentimeters, 2.5, 250.0},      {ConvertCentimetersToMetersD, 35.0, 0.35},
        {ConvertMetersToMillimeters, 2.5, 2500.0},     {ConvertMillimetersToMetersD, 9.0, 0.009},
        {ConvertMetersToMicrometers, 2.5, 2500000.0},  {ConvertMicrometersToMetersD, 5.0, 5e-06},
        {ConvertMetersToNanometers, 2.5, 2500000000.0}, {ConvertNanometersToMetersD, 3.0, 3e-09},
        {ConvertFeetToInches, 2.5, 30.0},              {ConvertInchesToFeetD, 5.0, 0.4166666666666667},
        {ConvertFeetToMiles, 13200.0, 2.5},            {ConvertMilesToFeet, 2.5, 13200.0},
        // The yard pair runs backwards: feet to yards multiplies by 3.
        {ConvertFeetToYards, 1.0, 3.0},                {ConvertYardsToFeet, 5.0, 1.6666666666666667},
    };
    for (Case const& c : cases) EXPECT_EQ(c.convert(c.input), c.expected) << c.input << " -> " << c.expected;

    struct CountCase {
        double (*convert)(unsigned long long);
        unsigned long long input;
        double expected;
    };
    CountCase const counts[] = {
        {ConvertCentimetersToMetersUI, 35, 0.35},
        {ConvertMillimetersToMetersUI, 9, 0.009},
        {ConvertMicrometersToMetersUI, 5, 5e-06},
        {ConvertNanometersToMetersUI, 3, 3e-09},
        {ConvertInchesToFeetUI, 5, 0.4166666666666667},
        // Converted as unsigned: the largest count is not read as -1.
        {ConvertNanometersToMetersUI, ~0ull, 18446744073.709553},
    };
    for (CountCase const& c : counts) EXPECT_EQ(c.convert(c.input), c.expected) << c.input;

    // The two meter-foot factors are rounded independently.
    EXPECT_EQ(ConvertMetersToFeet(ConvertFeetToMeters(1.0)), 1.000000032);
}

}  // namespace
