// ZKString's regular-expression members and the library's flag word.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <regex>
#include <string>
#include <vector>

#include "foundation/StringTestSupport.h"

using zk64::test::Counted;
using zk64::test::ItemBytes;
using Items = std::vector<std::string>;

TEST(StringRegex, MatchIsWholeTextSearchIsAnywhere)
{
    EXPECT_FALSE(ZKString::RegexMatch(ZKString("xyz"), ZKString("y"), 0));
    EXPECT_TRUE(ZKString::RegexSearch(ZKString("xyz"), ZKString("y"), 0));
    EXPECT_TRUE(ZKString::RegexMatch(ZKString("xyz"), ZKString("x.z"), 0));
    EXPECT_FALSE(ZKString::RegexSearch(ZKString("xyz"), ZKString("q"), 0));
}

TEST(StringRegex, FlagWord)
{
    ZKString const upper("XYZ");
    EXPECT_TRUE(ZKString::RegexMatch(upper, ZKString("xyz"), 1)) << "1 ignores case";
    EXPECT_FALSE(ZKString::RegexMatch(upper, ZKString("xyz"), 0));
    EXPECT_FALSE(ZKString::RegexMatch(upper, ZKString("xyz"), 2));
    EXPECT_TRUE(ZKString::RegexMatch(upper, ZKString("xyz"), 16 | 1)) << "only the four low bits are read";

    ZKString const digits("12");
    EXPECT_TRUE(ZKString::RegexMatch(digits, ZKString("\\d+"), 0)) << "no grammar bit is ECMAScript";
    EXPECT_TRUE(ZKString::RegexMatch(digits, ZKString("\\d+"), 2));
    ZKString const twoA("aa");
    EXPECT_TRUE(ZKString::RegexMatch(twoA, ZKString("a\\{2\\}"), 4)) << "4 is POSIX basic";
    EXPECT_TRUE(ZKString::RegexMatch(twoA, ZKString("a{2}"), 8)) << "8 is POSIX extended";
    EXPECT_TRUE(ZKString::RegexMatch(ZKString("a{2}"), ZKString("a{2}"), 4)) << "braces are literal in basic";
    EXPECT_TRUE(ZKString::RegexMatch(twoA, ZKString("A+"), 8 | 1));

    // Several grammar bits: the lowest wins.
    EXPECT_TRUE(ZKString::RegexMatch(digits, ZKString("\\d+"), 2 | 4 | 8));
    EXPECT_TRUE(ZKString::RegexMatch(ZKString("a{2}"), ZKString("a{2}"), 4 | 8));
    EXPECT_FALSE(ZKString::RegexMatch(twoA, ZKString("a{2}"), 4 | 8));
}

TEST(StringRegex, CapturesInGroupOrder)
{
    ZKContainer<ZKString> groups;
    EXPECT_TRUE(ZKString::RegexMatch(ZKString("xyz"), ZKString("x(y)z"), groups, 2));
    EXPECT_EQ(ItemBytes(groups), (Items{"xyz", "y"}));

    ZKContainer<ZKString> first;
    EXPECT_TRUE(ZKString::RegexSearch(ZKString("x1y2"), ZKString("[0-9]"), first, 0));
    EXPECT_EQ(ItemBytes(first), (Items{"1"})) << "only the first match";

    ZKContainer<ZKString> unmatched;
    EXPECT_TRUE(ZKString::RegexSearch(ZKString("ab"), ZKString("(a)|(z)"), unmatched, 0));
    EXPECT_EQ(ItemBytes(unmatched), (Items{"a", "a", ""})) << "a group outside the match is empty";

    ZKContainer<ZKString> kept;
    kept.PushBack(ZKString("old"));
    EXPECT_TRUE(ZKString::RegexMatch(ZKString("k=v"), ZKString("(\\w)=(\\w)"), kept, 0));
    EXPECT_EQ(ItemBytes(kept), (Items{"old", "k=v", "k", "v"}));
    EXPECT_FALSE(ZKString::RegexMatch(ZKString("k=v"), ZKString("(\\w)"), kept, 0));
    EXPECT_FALSE(ZKString::RegexSearch(ZKString("k=v"), ZKString("(\\d)"), kept, 0));
    EXPECT_EQ(kept.GetItemCount(), 4u) << "a failed match appends nothing";
}

TEST(StringRegex, TheTextMayBeAnItemOfTheCaptures)
{
    ZKContainer<ZKString> own(1);
    own.PushBack(ZKString("k=v"));
    EXPECT_TRUE(ZKString::RegexMatch(own.GetItem(0), ZKString("(\\w)=(\\w)"), own, 0));
    EXPECT_EQ(ItemBytes(own), (Items{"k=v", "k=v", "k", "v"}));
}

TEST(StringRegex, TextAndPatternEndAtTheirFirstZero)
{
    ZKString const text = Counted(std::string("ab\0cd", 5));
    EXPECT_TRUE(ZKString::RegexMatch(text, ZKString("ab"), 0));
    EXPECT_TRUE(text.RegexMatch(ZKString("ab"), 0)) << "the instance form copies up to the zero";
    EXPECT_FALSE(text.RegexSearch(ZKString("cd"), 0));
    EXPECT_TRUE(ZKString::RegexMatch(ZKString("a"), Counted(std::string("a\0b", 3)), 0));
}

TEST(StringRegex, InstanceForms)
{
    ZKString const s("key: value");
    EXPECT_TRUE(s.RegexMatch(ZKString("(\\w+): (\\w+)"), 0));
    EXPECT_TRUE(s.RegexSearch(ZKString("VAL"), 1));
    ZKContainer<ZKString> a, b;
    EXPECT_TRUE(s.RegexMatch(ZKString("(\\w+): (\\w+)"), a, 0));
    EXPECT_EQ(ItemBytes(a), (Items{"key: value", "key", "value"}));
    EXPECT_TRUE(s.RegexSearch(ZKString("v(a)"), b, 0));
    EXPECT_EQ(ItemBytes(b), (Items{"va", "a"}));
}

TEST(StringRegex, BadPatternsThrowBeforeTouchingCaptures)
{
    ZKContainer<ZKString> captures;
    captures.PushBack(ZKString("kept"));
    EXPECT_THROW(ZKString::RegexMatch(ZKString("x"), ZKString("("), 0), std::regex_error);
    EXPECT_THROW(ZKString::RegexSearch(ZKString("x"), ZKString("[a"), captures, 0), std::regex_error);
    EXPECT_THROW(ZKString("x").RegexMatch(ZKString("a{2"), captures, 8), std::regex_error);
    EXPECT_EQ(ItemBytes(captures), (Items{"kept"}));
}
