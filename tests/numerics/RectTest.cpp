// __ZKRect<T>: the shared rules on all six types, then the per-type rules.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKRect.h>

#include <cmath>
#include <limits>

namespace {

template <class T>
class RectCommon : public ::testing::Test {
};

using RectTypes = ::testing::Types<double, float, int, long long, unsigned int, unsigned long long>;
TYPED_TEST_SUITE(RectCommon, RectTypes);

TYPED_TEST(RectCommon, ConstructionBoundsOverlapSlopeAndDistance)
{
    using R = __ZKRect<TypeParam>;
    R full(1, 2, 3, 4);
    EXPECT_TRUE(R(3, 4) == R(3, 4, 0, 0) && R(3, 4).x == TypeParam(3)) << "the corner, not the size";
    EXPECT_FALSE(full == R(1, 2, 3, 5) || full == R(9, 2, 3, 4));
    // Slope and distance use the corners only.
    EXPECT_TRUE(R::CalculateSlope(full, R(4, 6, 9, 9)) == R(3, 4, 0, 0) &&
                full.CalculateSlope(R(4, 6)) == R(3, 4, 0, 0));
    full.Clear();
    EXPECT_TRUE(full == R(0, 0, 0, 0) && R() == R(0, 0, 0, 0));
    EXPECT_TRUE(R::CalculateDistance(full, R(3, 4, 1, 1)) == TypeParam(5) &&
                full.CalculateDistance(R(3, 4)) == TypeParam(5) && full.CalculateDistance(full) == TypeParam(0));
    // In bounds includes the edges; overlap only the low edges.
    R const a(0, 0, 10, 10);
    R const in1(1, 1, 10, 10);  // width 0 at the right edge is in
    EXPECT_TRUE(a.IsCoordRectInBounds(a) && a.IsCoordRectInBounds(R(10, 0, 0, 0)) &&
                a.IsCoordRectInBounds(R(2, 3, 8, 7)));
    EXPECT_FALSE(a.IsCoordRectInBounds(R(2, 3, 9, 7)) || a.IsCoordRectInBounds(R(2, 3, 8, 8)) ||
                 in1.IsCoordRectInBounds(R(0, 5, 1, 1)) || in1.IsCoordRectInBounds(R(5, 0, 1, 1)));
    // a's high edges are out, its low edges in; both axes must pass.
    EXPECT_TRUE(R(10, 0, 5, 5).IsCoordRectOverLap(a) && R(0, 10, 5, 5).IsCoordRectOverLap(a) &&
                a.IsCoordRectOverLap(R(5, 5, 20, 20)));
    EXPECT_FALSE(a.IsCoordRectOverLap(R(10, 0, 5, 5)) || a.IsCoordRectOverLap(R(0, 10, 5, 5)) ||
                 a.IsCoordRectOverLap(R(5, 11, 2, 2)) || R(20, 20, 5, 5).IsCoordRectOverLap(a));
}

template <class T>
void ExpectCenter(__ZKRect<T> const& rect, T cx, T cy)
{
    T x = 0, y = 0;
    rect.GetCenterPoint(x, y);
    EXPECT_TRUE(x == cx && y == cy) << x << ", " << y;
}

TEST(RectCenter, PerTypeHalvingAndFloatingFieldsCompareByTheirFloatImages)
{
    ExpectCenter(__ZKRect<int>(0, 0, 5, 7), 2, 3);
    ExpectCenter(__ZKRect<int>(0, 10, -5, -7), -2, 7);  // towards zero, not a shift
    ExpectCenter(__ZKRect<long long>(1ll << 40, -3, (1ll << 41) + 1, -3), 1ll << 41, -4ll);
    ExpectCenter(__ZKRect<unsigned int>(10, 20, 5, 7), 12u, 23u);
    ExpectCenter(__ZKRect<unsigned int>(1, 0, 0xFFFFFFFFu, 0), 0x80000000u, 0u);
    ExpectCenter(__ZKRect<unsigned long long>(~0ull, 0, 4, 0), 1ull, 0ull);  // wraps
    ExpectCenter(__ZKRect<double>(1.0, 2.0, 3.0, 5.0), 2.5, 4.5);
    ExpectCenter(__ZKRect<float>(1.0f, -2.0f, 3.0f, -5.0f), 2.5f, -4.5f);
    float const big = std::numeric_limits<float>::max();
    ExpectCenter(__ZKRect<float>(big, 0.0f, big, 0.0f), std::numeric_limits<float>::infinity(), 0.0f);
    using D = __ZKRect<double>;
    using F = __ZKRect<float>;
    D const huge(1e300, 0.0, 0.0, 0.0);  // infinities as floats, whose difference is NaN
    float const nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(D(1.0, 2.0, 3.0, 4.0) == D(1.0 + 1e-12, 2.0, 3.0, 4.0 - 1e-13) && D(0.0, 0, 0, 0) == D(-0.0, 0, 0, 0));
    EXPECT_FALSE(D(1.0, 2.0, 3.0, 4.0) == D(1.0 + 0x1p-20, 2.0, 3.0, 4.0) || D(huge) == huge ||
                 F(1.0f, 0, 0, 0) == F(std::nextafter(1.0f, 2.0f), 0, 0, 0) || F(nan, 0, 0, 0) == F(nan, 0, 0, 0));
}

TEST(RectDistance, IntegerDifferencesWrapTruncateAndSaturateFloatOnesStayFloat)
{
    using I = __ZKRect<int>;
    using L = __ZKRect<long long>;
    using U = __ZKRect<unsigned int>;
    using W = __ZKRect<unsigned long long>;
    EXPECT_TRUE(I(0, 0).CalculateDistance(I(1, 1)) == 1 && L(0, 0).CalculateDistance(L(-2, -2)) == 2);
    // 0 - 5 wraps to 2^32 - 5 before it is squared; 2^63 and above convert back as unsigned values.
    unsigned long long const far = (1ull << 63) + 4096;
    EXPECT_TRUE(U(5, 0).CalculateDistance(U(0, 0)) == 4294967291u && W(0, 0).CalculateDistance(W(0, far)) == far &&
                W(0, 4096).CalculateDistance(W(0, 0)) == ~0ull - 4095);
    // INT_MIN - 1 wraps to INT_MAX, in the distance and in the slope.
    int const iMin = std::numeric_limits<int>::min();
    int const iMax = std::numeric_limits<int>::max();
    EXPECT_TRUE(I(1, 0).CalculateDistance(I(iMin, 0)) == iMax && I::CalculateSlope(I(1, 0), I(iMin, 0)).x == iMax);
    // Distances beyond the type give its largest value.
    long long const lMin = std::numeric_limits<long long>::min();
    EXPECT_TRUE(I(0, 0).CalculateDistance(I(iMin, iMin)) == iMax &&
                L(0, 0).CalculateDistance(L(lMin, lMin)) == std::numeric_limits<long long>::max() &&
                U(0, 0).CalculateDistance(U(~0u, ~0u)) == ~0u && W(0, 0).CalculateDistance(W(~0ull, ~0ull)) == ~0ull);
    // Differences rounded to float give 9.6449461; exact ones 9.64494705.
    EXPECT_EQ(__ZKRect<float>::CalculateDistance(__ZKRect<float>(0.1f, 0.25f), __ZKRect<float>(9.25f, 3.3f)),
              9.6449461f);
    // Squares of 1e20 overflow float but not double.
    float const d = __ZKRect<float>(0, 0).CalculateDistance(__ZKRect<float>(1e20f, 1e20f));
    EXPECT_NEAR(d / 1e20f, 1.41421356f, 1e-6f);
    EXPECT_EQ(__ZKRect<double>(0.0, 0.0).CalculateDistance(__ZKRect<double>(1.0, 1.0)), std::sqrt(2.0));
    // x + width wraps to 9, so nothing to the right of x fits or overlaps; negative sizes stand.
    U const wrapped(10, 0, 0xFFFFFFFFu, 10);
    I const negative(10, 10, -5, -5);
    EXPECT_FALSE(wrapped.IsCoordRectInBounds(U(10, 0, 1, 1)) || wrapped.IsCoordRectOverLap(U(10, 0, 1, 1)) ||
                 negative.IsCoordRectInBounds(I(6, 6, 1, 1)));
    EXPECT_TRUE(negative.IsCoordRectOverLap(I(0, 0, 10, 10)));
}

}  // namespace
