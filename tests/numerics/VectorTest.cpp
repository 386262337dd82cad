// __ZKVector3<T> on all six types, and UpdateVectorPosition.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKVector3.h>

#include <cmath>
#include <limits>

namespace {

template <class T>
class VectorCommon : public ::testing::Test {
};

using VectorTypes = ::testing::Types<double, float, int, long long, unsigned int, unsigned long long>;
TYPED_TEST_SUITE(VectorCommon, VectorTypes);

template <class T>
void Expect(__ZKVector3<T> const& v, T x, T y, T z)
{
    EXPECT_TRUE(v.x == x && v.y == y && v.z == z) << v.x << ", " << v.y << ", " << v.z;
}

template <class T>
__ZKVector3<T> Normalized(__ZKVector3<T> v)
{
    v.Normalize();
    return v;
}

TYPED_TEST(VectorCommon, ConstructionArithmeticMagnitudeAndNormalize)
{
    using T = TypeParam;
    using V = __ZKVector3<T>;
    EXPECT_TRUE(V() == V(0, 0, 0) && V(7) == V(7, 0, 0) && V(7, 8) == V(7, 8, 0));
    V v(9, 9, 9);
    v.SetVector(1, 2);
    Expect(v, T(1), T(2), T(0));
    v.SetVector(3, 4, 5);
    v.SetVector(6);
    Expect(v, T(6), T(0), T(0));
    V a(5, 7, 9);
    V const b(1, 2, 3);
    EXPECT_TRUE(a == V(5, 7, 9) && !(a == V(5, 7, 8)) && !(a == V(4, 7, 9)));
    Expect(a + b, T(6), T(9), T(12));  // member form
    Expect(a - b, T(4), T(5), T(6));
    V const constA(a);
    Expect(constA + b, T(6), T(9), T(12));  // free form
    Expect(constA - b, T(4), T(5), T(6));
    (a += b) -= V(2, 4, 6);
    Expect(a, T(4), T(5), T(6));
    a.Scale(3);
    Expect(a, T(12), T(15), T(18));
    EXPECT_TRUE(V::DotProduct(V(1, 2, 3), V(4, 5, 6)) == T(32) && V(1, 2, 3).DotProduct(V(4, 5, 6)) == T(32));
    EXPECT_EQ(V(3, 4, 0).GetMagnitude(), T(5));
    Expect(Normalized(V(0, 5, 0)), T(0), T(1), T(0));
    Expect(Normalized(V()), T(0), T(0), T(0));  // stays, no NaN
}

TEST(VectorMagnitude, PerTypeRoundingBeyondTheTypeItsLargestValueAndNormalizing)
{
    using I = __ZKVector3<int>;
    using L = __ZKVector3<long long>;
    using U = __ZKVector3<unsigned int>;
    using W = __ZKVector3<unsigned long long>;
    // 5.196 truncates to 5; 2^63 and above are widened and come back as unsigned values.
    unsigned long long const big = (1ull << 63) + 4096;
    EXPECT_TRUE(I(2, 2, 1).GetMagnitude() == 3 && L(-3, -3, -3).GetMagnitude() == 5 && I(3, 3, 3).GetMagnitude() == 5 &&
                U(0xFFFFFFFFu, 0, 0).GetMagnitude() == 0xFFFFFFFFu && W(0, 0, big).GetMagnitude() == big);
    // Single precision throughout: 1 + y^2 rounds to 1 in float, while a
    // double root would narrow to 1.00000012.
    EXPECT_EQ(__ZKVector3<float>(1.0f, 0.000352275325f, 0.0f).GetMagnitude(), 1.0f);
    EXPECT_TRUE(__ZKVector3<double>(1.0, 2.0, 2.0).GetMagnitude() == 3.0 &&
                __ZKVector3<double>(1.0, 0.0, 1.0).GetMagnitude() == std::sqrt(2.0));
    int const iMin = std::numeric_limits<int>::min();
    long long const lMax = std::numeric_limits<long long>::max();
    EXPECT_TRUE(I(iMin, iMin, iMin).GetMagnitude() == std::numeric_limits<int>::max() &&
                L(lMax, lMax, 0).GetMagnitude() == lMax && U(~0u, ~0u, ~0u).GetMagnitude() == ~0u &&
                W(~0ull, 1, 0).GetMagnitude() == ~0ull);
    // Integers divide by the truncated magnitude, floats become unit vectors.
    Expect(Normalized(I(3, 4, 0)), 0, 0, 0);
    Expect(Normalized(I(1, 1, 1)), 1, 1, 1);          // 1.73 truncates to 1
    Expect(Normalized(L(-7, 3, 0)), -1ll, 0ll, 0ll);  // 7.6 -> 7: -7 / 7, 3 / 7
    Expect(Normalized(W(10, 0, 3)), 1ull, 0ull, 0ull);
    Expect(Normalized(__ZKVector3<double>(3.0, 4.0, 0.0)), 0.6, 0.8, 0.0);
    Expect(Normalized(__ZKVector3<float>(0.0f, -2.0f, 0.0f)), 0.0f, -1.0f, 0.0f);
    EXPECT_EQ(Normalized(__ZKVector3<double>(std::nan(""), 1.0, 0.0)).y, 1.0) << "a NaN magnitude is not above 0";
}

TEST(VectorEquality, DoubleComponentsCompareByTheirFloatImagesIntegerArithmeticWraps)
{
    using V = __ZKVector3<double>;
    using F = __ZKVector3<float>;
    V const huge(0.0, 1e300, 0.0);
    EXPECT_TRUE(V(1.0, 2.0, 3.0) == V(1.0 + 1e-12, 2.0, 3.0));
    EXPECT_FALSE(V(1.0, 2.0, 3.0) == V(1.0, 2.0, 3.0 + 0x1p-20) || V(huge) == huge ||
                 F(1.0f, 0, 0) == F(std::nextafter(1.0f, 2.0f), 0, 0));
    int const iMax = std::numeric_limits<int>::max();
    int const iMin = std::numeric_limits<int>::min();
    using I = __ZKVector3<int>;
    EXPECT_TRUE(I::DotProduct(I(iMax, 0, 0), I(2, 0, 0)) == -2 && I::DotProduct(I(iMax, 1, 0), I(1, 1, 0)) == iMin);
    I v(iMax, 0, iMin);
    v += I(1, 0, 0);
    v -= I(0, 0, 1);
    Expect(v, iMin, 0, iMax);
    __ZKVector3<unsigned int> u(0, 1, 2);
    u -= __ZKVector3<unsigned int>(1, 1, 1);
    u.Scale(2);
    Expect(u, 0xFFFFFFFEu, 0u, 2u);
    __ZKVector3<long long> l(std::numeric_limits<long long>::max(), 0, 0);
    l.Scale(2);
    EXPECT_EQ(l.x, -2);
}

TEST(UpdatePositionDouble, AxisHeadingsAreExactDiagonalsNearAxisSnapsTimeAndFloatRounding)
{
    // Position (0, 0, 5), speed 10, one second; the near-zero sine or cosine
    // snaps to 0.
    struct Move {
        double heading, x, y;
    };
    Move const moves[] = {{0, 0, -10},  {90, 10, 0},   {180, 0, 10},  {270, -10, 0},
                          {450, 10, 0}, {-90, -10, 0}, {360, 0, -10}, {-180, 0, 10}};
    for (Move const& move : moves) {
        __ZKVector3<double> position(0.0, 0.0, 5.0);
        __ZKVector3<double> previous(1.0, 2.0, 3.0);
        UpdateVectorPosition(position, previous, 10.0, move.heading, 1000);
        Expect(position, move.x, move.y, 5.0);
        Expect(previous, 0.0, 0.0, 5.0);
    }
    __ZKVector3<double> position(1.0, 1.0, 0.0);
    __ZKVector3<double> previous;
    UpdateVectorPosition(position, previous, 10.0, 45.0, 1000);
    Expect(position, 1.0 + 7.0710678118654755, 1.0 - 7.071067811865475, 0.0);
    Expect(previous, 1.0, 1.0, 0.0);
    UpdateVectorPosition(position, previous, 4.0, 90.0, 250);  // 4 units/s for 0.25 s
    EXPECT_DOUBLE_EQ(position.x, 9.0710678118654755);

    // 1e-6 degrees off 90: the cosine is 1 - 2^-53, within 2^-52 of 1, so it
    // snaps and x moves exactly 10; the sine is far from 0 and stays.
    position.SetVector(0.0, 0.0, 0.0);
    UpdateVectorPosition(position, previous, 10.0, 90.0 - 1e-6, 1000);
    EXPECT_EQ(position.x, 10.0);
    EXPECT_NEAR(position.y, -1.7453292475877967e-07, 1e-20);

    position.SetVector(3.0, -4.0, 5.0);
    UpdateVectorPosition(position, previous, 100.0, 33.0, 0);  // no time: no move
    Expect(position, 3.0, -4.0, 5.0);
    Expect(previous, 3.0, -4.0, 5.0);

    // In float the main term is exact; the cosine or sine of the narrowed
    // angle is not snapped and leaves a small sideways term.
    struct FloatMove {
        float heading, x, y;
    };
    FloatMove const floatMoves[] = {
        {0.0f, -4.37113897e-07f, -10.0f}, {180.0f, 1.1924881e-07f, 10.0f}, {270.0f, -10.0f, 8.74227794e-07f}};
    for (FloatMove const& move : floatMoves) {
        __ZKVector3<float> start(0.0f, 0.0f, 5.0f);
        __ZKVector3<float> before;
        UpdateVectorPosition(start, before, 10.0f, move.heading, 1000);
        EXPECT_FLOAT_EQ(start.x, move.x);
        EXPECT_FLOAT_EQ(start.y, move.y);
        EXPECT_TRUE(start.x * start.y != 0.0f && start.z == 5.0f);
        Expect(before, 0.0f, 0.0f, 5.0f);
    }
    __ZKVector3<float> point(1.0f, 2.0f, 3.0f);
    __ZKVector3<float> last;
    UpdateVectorPosition(point, last, 2.0f, 90.0f, 1500);
    Expect(point, 4.0f, 2.0f, 3.0f);
    UpdateVectorPosition(point, last, 2.0f, 450.0f, 500);
    Expect(point, 5.0f, 2.0f, 3.0f);
    Expect(last, 4.0f, 2.0f, 3.0f);
}

}  // namespace
