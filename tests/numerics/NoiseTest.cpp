// CreateNoise, SmoothNoise and GeneratePerlinNoise through the public
// interface: shapes, ranges, and SmoothNoise on hand-built grids.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKNoise.h>

#include <cmath>
#include <new>

#include "GridTestSupport.h"

namespace {

using zk64test::Grid;
using zk64test::MakeGrid;
using zk64test::Rows;
using zk64test::ToRows;

// The row lengths; every cell is within [low, high], or NaN if `nan`.
std::vector<std::size_t> ShapeWithin(Grid const& grid, double low, double high, bool nan = false)
{
    std::vector<std::size_t> shape;
    for (auto const& row : ToRows(grid)) {
        shape.push_back(row.size());
        for (double v : row) EXPECT_TRUE(nan ? std::isnan(v) : v >= low && v <= high) << v;
    }
    return shape;
}

using Shape = std::vector<std::size_t>;

TEST(CreateNoise, ShapesRangesAndFreshSeedsOfPlainAndPerlinNoise)
{
    EXPECT_EQ(ShapeWithin(CreateNoise(2, 3, -1.5, 2.5), -1.5, 2.5), (Shape{3, 3}));
    EXPECT_EQ(ShapeWithin(CreateNoise(1, 1000, 0.0, 1.0), 0.0, 1.0), (Shape{1000}));
    EXPECT_EQ(ShapeWithin(CreateNoise(3, 4, 7.25, 7.25), 7.25, 7.25), Shape(3, 4));
    EXPECT_EQ(ShapeWithin(CreateNoise(2, 2, 10.0, 0.0), 0.0, 10.0), Shape(2, 2));  // reversed bounds
    EXPECT_EQ(CreateNoise(0, 5, 0.0, 1.0).GetItemCount(), 0u);
    EXPECT_EQ(ShapeWithin(CreateNoise(3, 0, 0.0, 1.0), 0.0, 1.0), Shape(3, 0));
    EXPECT_NE(ToRows(CreateNoise(2, 4, 0.0, 1.0)), ToRows(CreateNoise(2, 4, 0.0, 1.0)));
    EXPECT_EQ(ShapeWithin(GeneratePerlinNoise(5, 7, 4, -2.0, 3.0), -2.0, 3.0), Shape(5, 7));
    EXPECT_EQ(ShapeWithin(GeneratePerlinNoise(4, 4, 6, 0.75, 0.75), 0.75, 0.75), Shape(4, 4));
    EXPECT_EQ(ShapeWithin(GeneratePerlinNoise(3, 3, 40, 0.0, 1.0), 0.0, 1.0), Shape(3, 3));
    EXPECT_EQ(GeneratePerlinNoise(0, 4, 3, 0.0, 1.0).GetItemCount(), 0u);
    EXPECT_EQ(ToRows(GeneratePerlinNoise(2, 0, 3, 0.0, 1.0)), (Rows{{}, {}}));
    for (int octaves : {0, -3})  // no weights: 0 / 0 in every cell
        EXPECT_EQ(ShapeWithin(GeneratePerlinNoise(2, 3, octaves, 0.0, 1.0), 0.0, 1.0, true), Shape(2, 3));
    // 2^80 cells: the count itself overflows, and nothing is allocated.
    EXPECT_THROW(GeneratePerlinNoise(1ull << 40, 1ull << 40, 2, 0.0, 1.0), std::bad_alloc);
}

TEST(SmoothNoise, OctaveZeroAndThirtyTwoCopyTheGridRaggedAndEmptyGrids)
{
    Rows const values = {{0.5, -1.25, 3.0, 8.0}, {2.0, 4.0, 6.0, 1e300}, {-7.0, 0.0, 0.125, 9.0}};
    EXPECT_EQ(ToRows(SmoothNoise(MakeGrid(values), 0)), values);
    EXPECT_EQ(ToRows(SmoothNoise(MakeGrid(values), 32)), values);  // the shift wraps at 32
    EXPECT_EQ(ToRows(SmoothNoise(MakeGrid({{1, 2, 3}, {4}}), 1)), (Rows{{1, 2, 3}, {1}}));
    EXPECT_EQ(SmoothNoise(Grid(), 2).GetItemCount(), 0u);
    EXPECT_EQ(ToRows(SmoothNoise(MakeGrid({{}, {}}), 1)), (Rows{{}, {}}));
    // A cell past the end of a shorter row reads that row's storage: row 0
    // holds one live value, 4, and its slots 2 and 3 still hold 5 and 6.
    ZKContainer<double> shortRow;
    for (double v : {4.0, 5.0, 6.0}) shortRow.PushBack(v);
    shortRow.PopBack();
    shortRow.PopBack();
    Grid grid;
    grid.PushBack(shortRow);
    grid.PushBack(MakeGrid({{1, 2, 3}}).GetItem(0));
    EXPECT_EQ(ToRows(SmoothNoise(grid, 1)), (Rows{{4}, {4, 5, 6}}));
}

TEST(SmoothNoise, PeriodTwoWrapsAtTheFarEdgeLongerPeriodsBlendTheCornerSamples)
{
    // Only even rows and columns are samples (the 99s are never read); row
    // and column 3 blend towards row and column 0.
    Rows const four = {{0, 99, 8, 99}, {99, 99, 99, 99}, {4, 99, 12, 99}, {99, 99, 99, 99}};
    EXPECT_EQ(ToRows(SmoothNoise(MakeGrid(four), 1)),
              (Rows{{0, 4, 8, 4}, {2, 6, 10, 6}, {4, 8, 12, 8}, {2, 6, 10, 6}}));
    // Period 8 on 3 x 3: i0 = j0 = 0, i1 = j1 = 8 % 3 = 2, blends i / 8, j / 8.
    Rows const values = {{8, 99, 16}, {99, 99, 99}, {24, 99, 40}};
    EXPECT_EQ(ToRows(SmoothNoise(MakeGrid(values), 3)), (Rows{{8, 9, 10}, {10, 11.125, 12.25}, {12, 13.25, 14.5}}));
    // Octave 31 (and -1) is the period 2^31: the far samples barely count.
    Rows const top = ToRows(SmoothNoise(MakeGrid(values), 31));
    EXPECT_EQ(top, ToRows(SmoothNoise(MakeGrid(values), -1)));
    EXPECT_TRUE(top[0][0] == 8.0 && top[2][2] > 8.0 && top[2][2] < 8.0 + 1e-7) << top[2][2];
}

// Containers past 512 items grew by doubling, and each doubling leaves a
// stale copy of the item that had just filled the ring in slot 0: logical
// index capacity - 1, read through GetItem's unchecked reference form.
TEST(GrownResults, SlotZeroKeepsWhatTheLastDoublingLeft)
{
    Rows wide(1, std::vector<double>(600));
    Rows tall(600, std::vector<double>(1));
    for (std::size_t j = 0; j < 600; ++j) wide[0][j] = tall[j][0] = static_cast<double>(j) + 0.5;
    Grid smooth = SmoothNoise(MakeGrid(wide), 0);
    ASSERT_EQ(smooth.GetItem(0).GetMaxItemCount(), 1024u);
    EXPECT_TRUE(smooth.GetItem(0).GetItem(1023) == 511.5 && smooth.GetItem(0).GetItem(600) == 0.0)
        << "600 never written";
    Grid smoothTall = SmoothNoise(MakeGrid(tall), 0);
    ASSERT_TRUE(smoothTall.GetMaxItemCount() == 1024 && smoothTall.GetItem(1023).GetItemCount() == 1);
    EXPECT_EQ(smoothTall.GetItem(1023).GetItem(0), 511.5);

    Grid noise = CreateNoise(2, 700, 0.0, 1.0);
    Grid noiseTall = CreateNoise(700, 1, 0.0, 1.0);
    EXPECT_TRUE(noise.GetItem(1).GetItem(1023) == noise.GetItem(1).GetItem(511) &&
                noiseTall.GetItem(1023).GetItem(0) == noiseTall.GetItem(511).GetItem(0));

    // The octave sum adds onto a grid of zeros: the doublings left zeros.
    Grid perlin = GeneratePerlinNoise(1, 600, 2, 1.0, 2.0);
    Grid perlinTall = GeneratePerlinNoise(600, 2, 2, 1.0, 2.0);
    Grid staleRow;
    staleRow.PushBack(perlinTall.GetItem(1023));
    EXPECT_TRUE(perlin.GetItem(0).GetItem(1023) == 0.0 && ToRows(staleRow) == (Rows{{0.0, 0.0}}));
}

}  // namespace
