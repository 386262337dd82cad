// The noise functions on engines with known seeds, the octave sum against a
// plain model that builds every octave grid and adds them as weighted layers,
// and grids built at their final capacities against grids grown by pushes.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKNoise.h>
#include <zk64/numerics/detail/GridAccess.h>
#include <zk64/numerics/detail/Noise.h>

#include <cmath>
#include <random>
#include <vector>

#include "GridTestSupport.h"

namespace {

using zk64::detail::NoiseGrid;
using zk64test::Rows;
using zk64test::ToRows;

TEST(NoiseDraw, TwoDrawsLowWordFirstRowByRow)
{
    // std::mt19937 with its default seed starts 3499211612, 581869302,
    // 3890346734, 3586334585, ...; (d0 + d1 * 2^32) / 2^64 is 0.13547...
    std::mt19937 engine;
    EXPECT_EQ(zk64::detail::NoiseDraw(engine, -1.0, 3.0), -0.458091982812878);  // * (3 - -1) + -1
    EXPECT_EQ(zk64::detail::NoiseDraw(engine, -1.0, 3.0), 2.340034359978318);
    std::mt19937 fresh;
    Rows const expected = {{0.1354770042967805, 0.8350085899945795}, {0.9688677711242314, 0.2210340429827049}};
    EXPECT_EQ(ToRows(zk64::detail::CreateNoise(fresh, 2, 2, 0.0, 1.0)), expected);
}

// Every octave as a grid of its own, a grid of zeros, the weighted layers
// added from the coarsest octave down, then divided by the weights' sum.
Rows ModelPerlin(NoiseGrid const& base, unsigned long long rows, unsigned long long columns, int octaves)
{
    Rows result(rows, std::vector<double>(columns, 0.0));
    double amplitude = 1.0;
    double total = 0.0;
    for (int o = octaves - 1; o >= 0; --o) {
        amplitude *= 0.5;
        total += amplitude;
        Rows const layer = ToRows(SmoothNoise(base, o));
        for (unsigned long long i = 0; i < rows; ++i)
            for (unsigned long long j = 0; j < columns; ++j) result[i][j] += amplitude * layer[i][j];
    }
    for (auto& row : result)
        for (double& cell : row) cell /= total;
    return result;
}

TEST(OctaveSum, MatchesTheLayeredModelBitForBit)
{
    struct Case {
        unsigned long long rows, columns;
        int octaves;
    };
    // One octave is the base itself; no octave divides zero by zero.
    Case const cases[] = {{5, 7, 1}, {5, 7, 3}, {8, 8, 4},  {13, 9, 6}, {1, 1, 2},
                          {3, 1, 5}, {1, 6, 7}, {6, 5, 34}, {2, 3, 0}};
    std::mt19937 engine(20240607u);
    for (Case const& c : cases) {
        NoiseGrid const base = zk64::detail::CreateNoise(engine, c.rows, c.columns, -3.0, 5.0);
        std::vector<double> flat;
        for (auto const& row : ToRows(base)) flat.insert(flat.end(), row.begin(), row.end());
        auto const expected = ModelPerlin(base, c.rows, c.columns, c.octaves);
        auto const actual = ToRows(zk64::detail::SumOctaves(flat, c.rows, c.columns, c.octaves));
        if (c.octaves == 0)
            EXPECT_TRUE(std::isnan(actual[1][2]) && std::isnan(expected[1][2]));
        else
            EXPECT_EQ(actual, expected) << c.rows << " x " << c.columns << ", " << c.octaves << " octaves";
    }
}

using Row = ZKContainer<int>;
using Grid = ZKContainer<Row>;

// Everything a caller can observe: counts, capacities, every storage slot
// (logical indexes 0 .. capacity - 1 cover them all), and the slots that the
// next pushes at both ends write.
void ExpectSameState(Row a, Row b)
{
    ASSERT_TRUE(a.GetItemCount() == b.GetItemCount() && a.GetMaxItemCount() == b.GetMaxItemCount());
    for (unsigned long long i = 0; i < a.GetMaxItemCount(); ++i) ASSERT_EQ(a.GetItem(i), b.GetItem(i)) << i;
    EXPECT_TRUE(a.PushBack(-1) == b.PushBack(-1) && a.PushFront(-2) == b.PushFront(-2));
}

TEST(GridBuild, CapacitiesDoubleFrom512AndGridsMatchGrownOnes)
{
    for (auto [count, capacity] :
         {std::pair{0ull, 512ull}, {512ull, 512ull}, {513ull, 1024ull}, {5000ull, 8192ull}, {~0ull, 1ull << 63}})
        EXPECT_EQ(zk64::detail::GrownCapacity(count), capacity) << count;
    Row const blank;
    for (unsigned long long size : {0ull, 1ull, 511ull, 512ull, 513ull, 1023ull, 1024ull, 1025ull, 3000ull}) {
        SCOPED_TRACE(size);
        Grid pushed, built = zk64::detail::NewGrid<int>(1);
        pushed.EmplaceBack();
        Row& row = zk64::detail::AppendRow(built, blank, size);
        for (unsigned long long j = 0; j < size; ++j) pushed.GetItem(0).PushBack(static_cast<int>(j) + 1);
        for (unsigned long long j = 0; j < size; ++j) row.PushBack(static_cast<int>(j) + 1);
        zk64::detail::FinishGrown(row);
        ExpectSameState(pushed.GetItem(0), built.GetItem(0));

        Grid tallPushed, tall = zk64::detail::NewGrid<int>(size);
        for (unsigned long long i = 0; i < size; ++i) {
            tallPushed.EmplaceBack();
            tallPushed.GetItem(i).PushBack(static_cast<int>(i));
            zk64::detail::AppendRow(tall, blank, 1).PushBack(static_cast<int>(i));
        }
        zk64::detail::FinishGrown(tall);
        ASSERT_TRUE(tallPushed.GetItemCount() == tall.GetItemCount() &&
                    tallPushed.GetMaxItemCount() == tall.GetMaxItemCount());
        for (unsigned long long i = 0; i < tall.GetMaxItemCount(); ++i)
            ExpectSameState(tallPushed.GetItem(i), tall.GetItem(i));
        EXPECT_EQ(tallPushed.EmplaceBack(), tall.EmplaceBack());
    }
}

}  // namespace
