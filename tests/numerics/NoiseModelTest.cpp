// The noise functions on engines with known seeds, and the octave sum
// against a plain model that builds every octave grid and adds them as
// weighted layers.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKNoise.h>
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

std::vector<double> Flatten(NoiseGrid const& grid)
{
    std::vector<double> flat;
    for (auto const& row : ToRows(grid)) flat.insert(flat.end(), row.begin(), row.end());
    return flat;
}

// Every octave as a grid of its own, a grid of zeros, the weighted layers
// added from the coarsest octave down, then divided by the weights' sum.
Rows ModelPerlin(NoiseGrid const& base, unsigned long long rows, unsigned long long columns, int octaves)
{
    std::vector<NoiseGrid> layers;
    for (int o = 0; o < octaves; ++o) layers.push_back(SmoothNoise(base, o));
    Rows result(rows, std::vector<double>(columns, 0.0));
    double amplitude = 1.0;
    double total = 0.0;
    for (int o = octaves - 1; o >= 0; --o) {
        amplitude *= 0.5;
        total += amplitude;
        for (unsigned long long i = 0; i < rows; ++i) {
            ZKContainer<double> const row = layers[static_cast<std::size_t>(o)].GetItem(i);
            for (unsigned long long j = 0; j < columns; ++j) result[i][j] += amplitude * row.GetItem(j);
        }
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
    Case const cases[] = {{5, 7, 1}, {5, 7, 3}, {8, 8, 4}, {13, 9, 6}, {1, 1, 2}, {3, 1, 5}, {1, 6, 7}, {6, 5, 34}};
    std::mt19937 engine(20240607u);
    for (Case const& c : cases) {
        NoiseGrid const base = zk64::detail::CreateNoise(engine, c.rows, c.columns, -3.0, 5.0);
        auto const expected = ModelPerlin(base, c.rows, c.columns, c.octaves);
        auto const actual = ToRows(zk64::detail::SumOctaves(Flatten(base), c.rows, c.columns, c.octaves));
        EXPECT_EQ(actual, expected) << c.rows << " x " << c.columns << ", " << c.octaves << " octaves";
    }
}

TEST(OctaveSum, OneOctaveIsTheBaseItself)
{
    std::mt19937 engine(7u);
    NoiseGrid const base = zk64::detail::CreateNoise(engine, 4, 6, 0.0, 1.0);
    EXPECT_EQ(ToRows(zk64::detail::SumOctaves(Flatten(base), 4, 6, 1)), ToRows(base));
}

TEST(OctaveSum, NoOctavesDivideZeroByZero)
{
    std::vector<double> const base(6, 0.5);
    auto const rows = ToRows(zk64::detail::SumOctaves(base, 2, 3, 0));
    ASSERT_EQ(rows.size(), 2u);
    for (auto const& row : rows) {
        ASSERT_EQ(row.size(), 3u);
        for (double cell : row) EXPECT_TRUE(std::isnan(cell));
    }
}

}  // namespace
