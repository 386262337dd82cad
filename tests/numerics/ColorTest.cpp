// ZKColor: construction, the two comparisons, the text forms and gradients.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKColor.h>

#include <initializer_list>
#include <limits>
#include <utility>
#include <vector>

#include "GridTestSupport.h"

namespace {

void ExpectColor(ZKColor const& c, int r, int g, int b, int a)
{
    EXPECT_EQ(c.r, r);
    EXPECT_EQ(c.g, g);
    EXPECT_EQ(c.b, b);
    EXPECT_EQ(c.a, a);
}

TEST(Color, ConstructionCopiesAndMoves)
{
    ExpectColor(ZKColor(), 0, 0, 0, 255);
    ExpectColor(ZKColor(9, 8, 7), 9, 8, 7, 255);
    ZKColor source(10, 20, 30, 40);
    ZKColor moved(std::move(source));
    ExpectColor(moved, 10, 20, 30, 40);
    ExpectColor(source, 10, 20, 30, 40);  // a move leaves the source as it was
    ZKColor other(1, 1, 1, 1);
    other = std::move(moved);
    ExpectColor(other, 10, 20, 30, 40);
    ExpectColor(moved, 10, 20, 30, 40);
}

TEST(Color, UnequalOnlyWhenEveryComponentDiffers)
{
    ZKColor const base(1, 2, 3, 4);
    EXPECT_TRUE(base == ZKColor(1, 2, 3, 4));
    EXPECT_FALSE(base != ZKColor(1, 2, 3, 4));
    EXPECT_FALSE(base == ZKColor(1, 2, 3, 5));
    // One shared component: neither equal nor unequal.
    for (ZKColor const& other : {ZKColor(1, 9, 9, 9), ZKColor(9, 2, 9, 9), ZKColor(9, 9, 3, 9), ZKColor(9, 9, 9, 4)}) {
        EXPECT_FALSE(base == other);
        EXPECT_FALSE(base != other);
    }
    EXPECT_TRUE(base != ZKColor(5, 6, 7, 8));
}

TEST(ColorText, FormatAndScan)
{
    EXPECT_TRUE(ZKColor().GetColorAsString() == "0,0,0,255");
    EXPECT_TRUE(ZKColor::Red().GetColorAsString() == "255,0,0,255");
    EXPECT_TRUE(ZKColor(7, 80, 255, 0).GetColorAsString() == "7,80,255,0");

    // Four integers start at 0; each stores its low 8 bits.
    struct Case {
        ZKString text;
        int r, g, b, a;
    };
    Case const cases[] = {
        {"1,2,3,4", 1, 2, 3, 4},  {"300,-1,0,0", 44, 255, 0, 0}, {"", 0, 0, 0, 0},
        {"255", 255, 0, 0, 0},    {"7,8;9,10", 7, 8, 0, 0},       {"red", 0, 0, 0, 0},
        {ZKString("5,6\0" "7,8", 7), 5, 6, 0, 0},  // read up to the first zero byte
        {ZKColor(12, 34, 56, 78).GetColorAsString(), 12, 34, 56, 78},
    };
    for (Case const& c : cases) {
        ZKColor color(9, 9, 9, 9);
        color.SetColorFromString(c.text);
        SCOPED_TRACE(c.text.GetString());
        ExpectColor(color, c.r, c.g, c.b, c.a);
    }
}

TEST(Gradient, ComponentsTruncateWrapAndAlphaIsOpaque)
{
    ExpectColor(GradientToColor(ZKColor::Black(), ZKColor::White(), 0.5), 127, 127, 127, 255);
    ZKColor const from(10, 20, 30, 0);
    ZKColor const to(200, 100, 0, 5);
    ExpectColor(GradientToColor(from, to, 0.0), 10, 20, 30, 255);
    ExpectColor(GradientToColor(from, to, 1.0), 200, 100, 0, 255);
    ExpectColor(GradientToColor(from, to, 0.25), 57, 40, 22, 255);  // 57.5, 40, 22.5
    // t outside 0..1: 400 -> 144, -100 -> 156, 20; then -200 -> 56, 200, -10 -> 246.
    ExpectColor(GradientToColor(ZKColor(0, 100, 0), ZKColor(200, 0, 10), 2.0), 144, 156, 20, 255);
    ExpectColor(GradientToColor(ZKColor(0, 100, 0), ZKColor(200, 0, 10), -1.0), 56, 200, 246, 255);
    ExpectColor(GradientToColor(ZKColor(0, 0, 0), ZKColor(1, 1, 1), -0.5), 0, 0, 0, 255);  // towards zero
    // Beyond every integer type 1e20 and 3e20 still wrap: both are multiples of 256.
    ExpectColor(GradientToColor(ZKColor(0, 0, 0), ZKColor(1, 3, 0), 1e20), 0, 0, 0, 255);
    double const nan = std::numeric_limits<double>::quiet_NaN();
    ExpectColor(GradientToColor(ZKColor(5, 5, 5), ZKColor(6, 6, 6), nan), 0, 0, 0, 255);
}

using ValueRows = zk64test::Rows;
using zk64test::MakeGrid;

TEST(MapGradient, KeepsTheGridsShapeAndBlendsEachCell)
{
    ZKColor const from(0, 0, 0, 10);
    ZKColor const to(100, 200, 40, 20);
    auto const colors = MapGradient(from, to, MakeGrid({{0.0, 0.5, 1.0}, {0.25}, {}}));
    ASSERT_EQ(colors.GetItemCount(), 3u);
    ZKContainer<ZKColor> const first = colors.GetItem(0);
    ZKContainer<ZKColor> const second = colors.GetItem(1);
    ASSERT_EQ(first.GetItemCount(), 3u);
    ASSERT_EQ(second.GetItemCount(), 1u);
    EXPECT_EQ(colors.GetItem(2).GetItemCount(), 0u);
    ExpectColor(first.GetItem(0), 0, 0, 0, 255);
    ExpectColor(first.GetItem(1), 50, 100, 20, 255);
    ExpectColor(first.GetItem(2), 100, 200, 40, 255);
    ExpectColor(second.GetItem(0), 25, 50, 10, 255);

    auto const empty = MapGradient(from, to, ZKContainer<ZKContainer<double>>());
    EXPECT_EQ(empty.GetItemCount(), 0u);
    EXPECT_EQ(empty.GetMaxItemCount(), 512u);
}

TEST(MapGradient, GrownContainersKeepTheirLastDoublingsStaleCopyInSlotZero)
{
    ValueRows rows(1, std::vector<double>(600, 0.0));
    rows[0][511] = 1.0;
    auto colors = MapGradient(ZKColor(0, 0, 0), ZKColor(9, 8, 7), MakeGrid(rows));
    ASSERT_EQ(colors.GetItem(0).GetMaxItemCount(), 1024u);
    ExpectColor(colors.GetItem(0).GetItem(1023), 9, 8, 7, 255);  // slot 0, unchecked
    ExpectColor(colors.GetItem(0).GetItem(1022), 0, 0, 0, 255);  // never written

    ValueRows tall(600, std::vector<double>(1, 0.0));
    tall[511][0] = 1.0;
    auto tallColors = MapGradient(ZKColor(0, 0, 0), ZKColor(9, 8, 7), MakeGrid(tall));
    ASSERT_EQ(tallColors.GetMaxItemCount(), 1024u);
    EXPECT_EQ(tallColors.GetItem(1023).GetItemCount(), 1u);
    ExpectColor(tallColors.GetItem(1023).GetItem(0), 9, 8, 7, 255);
}

TEST(ColorContainer, HoldsColors)
{
    ZKContainer<ZKColor> colors(1);
    colors.PushBack(ZKColor::Teal());
    colors.PushFront(ZKColor::Navy());
    EXPECT_TRUE(colors.PopFront() == ZKColor(0, 0, 128));
    EXPECT_TRUE(colors.PopFront() == ZKColor(0, 128, 128));
}

}  // namespace
