// ZKString's regular-expression members and their flag word.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <regex>
#include <string>
#include <vector>

#include "foundation/Support.h"

using zk64::test::Counted;
using zk64::test::ItemBytes;
using Items = std::vector<std::string>;

TEST(StringRegex, MatchSearchAndTheFlagWord)
{
    // Bit 1 ignores case; grammar bits 2 ECMAScript, 4 POSIX basic, 8 POSIX
    // extended, the lowest wins, none is ECMAScript; higher bits are ignored.
    struct Row {
        char const *text, *pattern;
        unsigned flags;
        bool match, search;
    } const rows[] = {
        {"xyz", "y", 0, false, true},     {"xyz", "x.z", 0, true, true},       {"xyz", "q", 0, false, false},
        {"XYZ", "xyz", 1, true, true},    {"XYZ", "xyz", 2, false, false},      {"XYZ", "xyz", 16 | 1, true, true},
        {"12", "\\d+", 0, true, true},    {"12", "\\d+", 2 | 4 | 8, true, true}, {"aa", "a\\{2\\}", 4, true, true},
        {"aa", "a{2}", 8, true, true},    {"a{2}", "a{2}", 4, true, true},      {"a{2}", "a{2}", 4 | 8, true, true},
        {"aa", "a{2}", 4 | 8, false, false}, {"aa", "A+", 8 | 1, true, true},
    };
    for (Row const& r : rows) {
        EXPECT_EQ(ZKString::RegexMatch(ZKString(r.text), ZKString(r.pattern), r.flags), r.match) << r.text << " " << r.pattern;
        EXPECT_EQ(ZKString(r.text).RegexSearch(ZKString(r.pattern), r.flags), r.search) << r.text << " " << r.pattern;
    }
    ZKString const text = Counted(std::string("ab\0cd", 5));
    EXPECT_TRUE(ZKString::RegexMatch(text, ZKString("ab"), 0) && text.RegexMatch(ZKString("ab"), 0)) << "text cut";
    EXPECT_FALSE(text.RegexSearch(ZKString("cd"), 0));
    EXPECT_TRUE(ZKString::RegexMatch(ZKString("a"), Counted(std::string("a\0b", 3)), 0)) << "so does the pattern";
}

TEST(StringRegex, CapturesAppendInGroupOrder)
{
    ZKContainer<ZKString> list;
    list.PushBack(ZKString("old"));
    EXPECT_TRUE(ZKString::RegexMatch(ZKString("k=v"), ZKString("(\\w)=(\\w)"), list, 0));
    EXPECT_TRUE(ZKString::RegexSearch(ZKString("x1y2"), ZKString("[0-9]"), list, 0)) << "only the first match";
    EXPECT_TRUE(ZKString::RegexSearch(ZKString("ab"), ZKString("(a)|(z)"), list, 0)) << "an unmatched group is empty";
    EXPECT_TRUE(ZKString("key: value").RegexMatch(ZKString("(\\w+): (\\w+)"), list, 0));
    EXPECT_TRUE(ZKString("key: value").RegexSearch(ZKString("v(a)"), list, 2));
    EXPECT_FALSE(ZKString::RegexMatch(ZKString("k=v"), ZKString("(\\w)"), list, 0));
    EXPECT_FALSE(ZKString::RegexSearch(ZKString("k=v"), ZKString("(\\d)"), list, 0));
    EXPECT_EQ(ItemBytes(list), (Items{"old", "k=v", "k", "v", "1", "a", "a", "", "key: value", "key", "value", "va", "a"}));

    ZKContainer<ZKString> own(1);
    own.PushBack(ZKString("k=v"));
    EXPECT_TRUE(ZKString::RegexMatch(own.GetItem(0), ZKString("(\\w)=(\\w)"), own, 0));
    EXPECT_EQ(ItemBytes(own), (Items{"k=v", "k=v", "k", "v"})) << "the text may be an item of the captures";

    EXPECT_THROW(ZKString::RegexMatch(ZKString("x"), ZKString("("), 0), std::regex_error);
    EXPECT_THROW(ZKString::RegexSearch(ZKString("x"), ZKString("[a"), own, 0), std::regex_error);
    EXPECT_THROW(ZKString("x").RegexMatch(ZKString("a{2"), own, 8), std::regex_error);
    EXPECT_EQ(own.GetItemCount(), 4u) << "bad patterns throw before touching the captures";
}
