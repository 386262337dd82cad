// Every named colour against a table kept apart from the library's own.

#include <gtest/gtest.h>

#include <zk64/numerics/ZKColor.h>

#include <iterator>
#include <set>
#include <string>

namespace {

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
    for (NamedColor const& expected : kNamedColors) {
        ZKColor const color = expected.factory();
        EXPECT_EQ(color.r, expected.r) << expected.name;
        EXPECT_EQ(color.g, expected.g) << expected.name;
        EXPECT_EQ(color.b, expected.b) << expected.name;
        EXPECT_EQ(color.a, 255) << expected.name;
    }
}

TEST(NamedColors, NamesAreDistinctAndCaseMatters)
{
    std::set<std::string> names;
    for (NamedColor const& entry : kNamedColors) EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
    EXPECT_EQ(names.count("DarkSlateGray") + names.count("Darkslategray"), 2u);
}

TEST(NamedColors, SharedAndLookalikeNames)
{
    EXPECT_TRUE(ZKColor::Green() == ZKColor::Electricgreen());
    EXPECT_TRUE(ZKColor::Green() == ZKColor(0, 255, 0));
    EXPECT_TRUE(ZKColor::ForestGreen() == ZKColor(0, 128, 0));
    EXPECT_FALSE(ZKColor::ForestGreen() == ZKColor::Forestgreenweb());
    EXPECT_FALSE(ZKColor::DarkSlateGray() == ZKColor::Darkslategray());
    EXPECT_FALSE(ZKColor::Darkgreen() == ZKColor::DarkgreenX11());
    EXPECT_TRUE(ZKColor::Caféaulait() == ZKColor::Frenchbeige());
    EXPECT_TRUE(ZKColor::Cafénoir() == ZKColor(75, 54, 33));
    ZKColor const c = ZKColor::C();
    EXPECT_EQ(c.r, 83);
    EXPECT_EQ(c.g, 104);
    EXPECT_EQ(c.b, 114);
    EXPECT_TRUE(ZKColor::E() == ZKColor(225, 169, 95));
}

}  // namespace
