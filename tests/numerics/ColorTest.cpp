// ZKColor: construction, the two comparisons, the text forms, gradients, and
// every named colour against a table kept apart from the library's own.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKColor.h>

#include <iterator>
#include <limits>
#include <utility>

#include "GridTestSupport.h"

namespace {

// A colour of all 9s set from `text`.
ZKColor FromText(ZKString const& text)
{
    ZKColor color(9, 9, 9, 9);
    color.SetColorFromString(text);
    return color;
}

TEST(Color, ConstructionMovesComparisonsAndTextForms)
{
    EXPECT_TRUE(ZKColor() == ZKColor(0, 0, 0, 255) && ZKColor(9, 8, 7) == ZKColor(9, 8, 7, 255));
    ZKColor source(10, 20, 30, 40), other(1, 1, 1, 1);
    ZKColor moved(std::move(source));
    other = std::move(moved);
    EXPECT_TRUE(source == ZKColor(10, 20, 30, 40) && moved == source && other == source) << "moves copy";
    ZKColor const base(1, 2, 3, 4);
    EXPECT_TRUE(!(base != ZKColor(1, 2, 3, 4)) && !(base == ZKColor(1, 2, 3, 5)) && base != ZKColor(5, 6, 7, 8));
    // One shared component: neither equal nor unequal.
    for (ZKColor const& partial : {ZKColor(1, 9, 9, 9), ZKColor(9, 2, 9, 9), ZKColor(9, 9, 3, 9), ZKColor(9, 9, 9, 4)})
        EXPECT_FALSE(base == partial || base != partial);
    EXPECT_TRUE(ZKColor().GetColorAsString() == "0,0,0,255" &&
                ZKColor(7, 80, 255, 0).GetColorAsString() == "7,80,255,0");
    // Four integers start at 0; each stores its low 8 bits; the text ends at its first zero byte.
    char const* const texts[][2] = {{"1,2,3,4", "1,2,3,4"}, {"300,-1,0,0", "44,255,0,0"}, {"", "0,0,0,0"},
                                    {"255", "255,0,0,0"},   {"7,8;9,10", "7,8,0,0"},      {"red", "0,0,0,0"}};
    for (auto const& [text, expected] : texts) EXPECT_TRUE(FromText(text).GetColorAsString() == expected) << text;
    EXPECT_TRUE(FromText(ZKString("5,6\0 7,8", 8)) == ZKColor(5, 6, 0, 0));
}

TEST(Gradient, ComponentsTruncateWrapAndAlphaIsOpaque)
{
    // 0.25: 57.5, 40, 22.5. t outside 0..1: 400 -> 144, -100 -> 156, 20; then -200 -> 56, 200, -10 -> 246.
    // Beyond every integer type 1e20 and 3e20 still wrap: both are multiples of 256.
    struct Case {
        char const* from;
        char const* to;
        double t;
        char const* expected;
    } const cases[] = {{"0,0,0,255", "255,255,255,255", 0.5, "127,127,127,255"},
                       {"10,20,30,0", "200,100,0,5", 0.0, "10,20,30,255"},
                       {"10,20,30,0", "200,100,0,5", 1.0, "200,100,0,255"},
                       {"10,20,30,0", "200,100,0,5", 0.25, "57,40,22,255"},
                       {"0,100,0", "200,0,10", 2.0, "144,156,20,255"},
                       {"0,100,0", "200,0,10", -1.0, "56,200,246,255"},
                       {"0,0,0", "1,1,1", -0.5, "0,0,0,255"},
                       {"0,0,0", "1,3,0", 1e20, "0,0,0,255"}};
    for (Case const& c : cases) {
        ZKString const got = GradientToColor(FromText(c.from), FromText(c.to), c.t).GetColorAsString();
        EXPECT_TRUE(got == c.expected) << c.t << " gave " << got.GetString();
    }
    double const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(GradientToColor(ZKColor(5, 5, 5), ZKColor(6, 6, 6), nan) == ZKColor(0, 0, 0));
}

TEST(MapGradient, KeepsTheGridsShapeBlendsEachCellAndKeepsStaleSlots)
{
    auto const colors =
        MapGradient(ZKColor(0, 0, 0, 10), ZKColor(100, 200, 40, 20), zk64test::MakeGrid({{0.0, 0.5, 1.0}, {0.25}, {}}));
    ASSERT_EQ(colors.GetItemCount(), 3u);
    ZKContainer<ZKColor> const first = colors.GetItem(0), second = colors.GetItem(1);
    ASSERT_TRUE(first.GetItemCount() == 3 && second.GetItemCount() == 1 && colors.GetItem(2).GetItemCount() == 0);
    EXPECT_TRUE(first.GetItem(0) == ZKColor(0, 0, 0) && first.GetItem(1) == ZKColor(50, 100, 20) &&
                first.GetItem(2) == ZKColor(100, 200, 40) && second.GetItem(0) == ZKColor(25, 50, 10));
    auto const empty = MapGradient(ZKColor(), ZKColor(), zk64test::Grid());
    EXPECT_TRUE(empty.GetItemCount() == 0 && empty.GetMaxItemCount() == 512);

    // Past 512 items a container grew by doubling, which left a stale copy
    // of the item that had filled the ring in slot 0 (logical index 1023,
    // read through the unchecked reference form of a non-const GetItem).
    zk64test::Rows wide(1, std::vector<double>(600, 0.0)), tall(600, std::vector<double>(1, 0.0));
    wide[0][511] = tall[511][0] = 1.0;
    auto wideColors = MapGradient(ZKColor(0, 0, 0), ZKColor(9, 8, 7), zk64test::MakeGrid(wide));
    ASSERT_EQ(wideColors.GetItem(0).GetMaxItemCount(), 1024u);
    EXPECT_TRUE(wideColors.GetItem(0).GetItem(1023) == ZKColor(9, 8, 7));
    EXPECT_TRUE(wideColors.GetItem(0).GetItem(1022) == ZKColor(0, 0, 0)) << "never written";
    auto tallColors = MapGradient(ZKColor(0, 0, 0), ZKColor(9, 8, 7), zk64test::MakeGrid(tall));
    ASSERT_TRUE(tallColors.GetMaxItemCount() == 1024 && tallColors.GetItem(1023).GetItemCount() == 1);
    EXPECT_TRUE(tallColors.GetItem(1023).GetItem(0) == ZKColor(9, 8, 7));
}

struct NamedColor {
    char const* name;
    ZKColor (*factory)();
    int r, g, b;
};

NamedColor const kNamedColors[] = {
#include "NamedColors.inc"
};

TEST(NamedColors, EveryFactoryGivesItsOpaqueValue)
{
    EXPECT_EQ(std::size(kNamedColors), 451u);
    for (NamedColor const& expected : kNamedColors)
        EXPECT_TRUE(expected.factory() == ZKColor(expected.r, expected.g, expected.b, 255)) << expected.name;
}

}  // namespace
