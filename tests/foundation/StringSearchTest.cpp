// ZKString searching, byte classes, prefixes, replacing, case and splitting.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cctype>
#include <string>
#include <vector>

#include "foundation/Support.h"

using zk64::test::Bytes;
using zk64::test::Counted;
using zk64::test::ItemBytes;
using zk64::test::RingState;
using Pieces = std::vector<std::string>;
using Found = std::vector<bool>;

TEST(StringFind, ForwardAndReverse)
{
    ZKString const s("xyzxyz"), aba("aba"), zero = Counted(std::string("a\0bc", 4));
    // Negative positions widen to huge ones forward and mean the end in
    // reverse; the target keeps its whole text, ZKString needles are cut.
    using Positions = std::vector<long long>;
    EXPECT_EQ(Positions({ZKString("xyz").Find('x', 1), ZKString("xyz").Find('z', 3), s.Find('x', -1), zero.Find('b', 0),
                         s.Find("yz", 2), s.Find("yz", 5), s.Find("xyzxyzx", 0), s.Find("", 6),
                         ZKString("xyz").Find("", 4), s.Find(Counted(std::string("zx\0q", 4)), 0), zero.Find("bc", 0)}),
              Positions({-1, -1, -1, 2, 4, -1, -1, 6, -1, 2, 2}));
    EXPECT_EQ(Positions({aba.RFind('a', 1), aba.RFind('a', -7), aba.RFind('a', 100), ZKString().RFind('a', -1),
                         s.RFind("xy", 3), s.RFind("xy", 2), s.RFind("zz", -1), ZKString("xyz").RFind("", 1),
                         ZKString("xyz").RFind("", -1), s.RFind(Counted(std::string("yz\0x", 4)), -1)}),
              Positions({0, 2, 2, -1, 3, 0, -1, 1, 3, 4}));
}

TEST(StringFindSubsequence, AdjacentBytesWithoutBackingUp)
{
    // The bytes must be adjacent, there is no back-up after a partial match,
    // an empty pattern never matches, and the ZKString forms are counted.
    ZKString const s("ppxyzp"), zero = Counted(std::string("a\0b", 3));
    EXPECT_EQ(Found({s.FindSubsequence("XYZ", true), s.FindSubsequence("XYZ", false), s.FindSubsequence("xz", false),
                     ZKString("aaab").FindSubsequence("aab", false), ZKString("xaab").FindSubsequence("aab", false),
                     s.FindSubsequence("", false), s.FindSubsequence(ZKString("zp"), false),
                     zero.FindSubsequence(Counted(std::string("\0b", 2)), false), zero.FindSubsequence("b", false)}),
              Found({true, false, false, false, true, false, true, true, true}));

    // The static form: (start, pattern index, text, end, pattern, length).
    // The end is exclusive. The pattern may start inside, until a mismatch
    // resets it; an index past the pattern mismatches once, spending that
    // byte, then restarts. Nulls and negative numbers find nothing.
    char const text[] = "abcabc";
    auto find = [](int start, int index, char const* in, int end, char const* pattern, int length) {
        return ZKString::FindSubsequence(start, index, in, end, pattern, length, false);
    };
    EXPECT_EQ(Found({find(3, 0, text, 3, "a", 1), find(3, 0, text, 6, "ca", 2), find(1, 0, text, 6, "ca", 2),
                     find(0, 0, text, 3, "ca", 2), find(1, 1, text, 6, "xb", 2), find(0, 1, text, 6, "xb", 2),
                     find(4, 0, text, 2, "a", 1), find(0, 0, nullptr, 6, "a", 1), find(0, 0, text, 6, nullptr, 1),
                     find(-1, 0, text, 6, "a", 1), find(0, 0, text, 6, "a", -1), find(0, -1, text, 6, "a", 1),
                     find(0, 5, text, 6, "b", 1), find(0, 5, text, 1, "a", 1)}),
              Found({false, false, true, false, true, false, false, false, false, false, false, false, true, false}));
}

TEST(StringByteClasses, WholeTablesAndCase)
{
    for (int c = 0; c < 256; ++c) {
        auto const byte = static_cast<unsigned char>(c);
        EXPECT_EQ(ZKString::IsBytePrintable(byte), c == 9 || c == 10 || c == 13 || (c >= 32 && c <= 126)) << c;
        EXPECT_EQ(ZKString::IsByteWhitespace(byte), c == 9 || c == 10 || c == 12 || c == 13 || c == 32) << c;
        EXPECT_EQ(ZKString::IsByteAlphanumeric(byte), c < 128 && std::isalnum(c) != 0) << c;
    }
    ZKString s(" a b\tc \n d  ");
    s.RemoveAllSpaces();
    EXPECT_EQ(Bytes(s), "ab\tc\nd") << "only byte 32 goes";
    ZKString t = Counted(std::string("Ab\0cZ\xc4!", 7));
    t.ToUpper();
    EXPECT_EQ(Bytes(t), std::string("AB\0CZ\xc4!", 7)) << "the whole counted text, ASCII letters only";
    t.ToLower();
    EXPECT_EQ(Bytes(t), std::string("ab\0cz\xc4!", 7));
}

TEST(StringPrefix, StartsAndEndsWith)
{
    ZKString const s("prefix-body");
    EXPECT_TRUE(s.StartsWith("pre") && s.StartsWith("") && s.StartsWith("prefix-body"));
    EXPECT_FALSE(s.StartsWith("prefix-body!") || s.StartsWith("Pre") || s.StartsWith(static_cast<char const*>(nullptr)));
    EXPECT_TRUE(s.EndsWith("body") && s.EndsWith(""));
    EXPECT_FALSE(s.EndsWith("xprefix-body") || s.EndsWith("bod") || s.EndsWith(static_cast<char const*>(nullptr)));
    EXPECT_TRUE(Counted(std::string("a\0b", 3)).EndsWith("b") && !ZKString().EndsWith("a")) << "the whole target";
    EXPECT_TRUE(s.StartsWith(Counted(std::string("pre\0zzz", 7)))) << "the argument is cut";
    EXPECT_TRUE(s.EndsWith(Counted(std::string("dy\0zzz", 6))));
}

TEST(StringReplace, SingleBytesAndOnce)
{
    ZKString s = Counted(std::string("ba\0ana", 6));
    EXPECT_EQ(s.ReplaceAll('a', 'a') + s.ReplaceAll('\0', 'n'), 4u) << "the whole text; bytes rewritten to themselves count";
    EXPECT_TRUE(s.ReplaceOnceFromEnd('a', 'b') && s.ReplaceOnceFromStart('a', 'c'));
    EXPECT_FALSE(s.ReplaceOnceFromEnd('z', 'c'));
    EXPECT_EQ(Bytes(s), "bcnanb");
    EXPECT_TRUE(s.ReplaceOnceFromStart("na", "") && s.ReplaceOnceFromEnd(ZKString("b"), ZKString("xyz")));
    EXPECT_TRUE(s.ReplaceOnceFromStart(ZKString("b"), ZKString("a")) && !s.ReplaceOnceFromStart("q", "r"));
    EXPECT_TRUE(s.ReplaceOnceFromStart("", "<")) << "an empty text is found at the start";
    EXPECT_TRUE(s.ReplaceOnceFromEnd("", ">")) << "and from the end, at the end";
    EXPECT_EQ(Bytes(s), "<acnxyz>");
}

// ReplaceAll searches again from where the replacement begins; arguments that
// would never end (empty, or a replacement holding the text) are refused.
TEST(StringReplace, AllAgainstAStepByStepModel)
{
    auto model = [](std::string text, std::string const& from, std::string const& to) {
        unsigned long long count = 0;
        if (from.empty() || to.find(from) != std::string::npos) return std::make_pair(text, count);
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at), ++count)
            text.replace(at, from.size(), to);
        return std::make_pair(text, count);
    };
    Pieces const texts = {"", "ab", "aab", "aaba", "abab", "aaaa", "acbb", "aXbXb", "abbbb", "xaabaab", "bbabbabba"};
    Pieces const parts = {"a", "b", "ab", "ba", "aa", "bb", "aab", "aba", "Xb", "aX", "cb", "xc", "xa", ""};
    for (auto const& text : texts)
        for (auto const& from : parts)
            for (auto const& to : parts) {
                ZKString s(text.c_str());
                unsigned long long const count = s.ReplaceAll(from.c_str(), to.c_str());
                EXPECT_EQ(std::make_pair(Bytes(s), count), model(text, from, to)) << text << "/" << from << "/" << to;
            }
    ZKString zero = Counted(std::string("a\0a", 3));
    EXPECT_EQ(zero.ReplaceAll("a", "bb"), 2u) << "the search covers the counted text";
    EXPECT_EQ(zero.ReplaceAll(Counted(std::string("bb\0x", 4)), ZKString("c")), 2u) << "arguments are cut";
    EXPECT_EQ(Bytes(zero), std::string("c\0c", 3));
}

namespace {

// Counts the pushes, to show that results go through the virtual PushBack.
struct CountingList : ZKContainer<ZKString> {
    int pushes = 0;
    unsigned long long PushBack(ZKString const& item) override
    {
        ++pushes;
        return ZKContainer<ZKString>::PushBack(item);
    }
};

}  // namespace

TEST(StringSplit, DelimiterRunsAndSets)
{
    struct Row {
        char const* text;
        char const* set;
        Pieces pieces;
    } const rows[] = {
        {"a,,b", ",", {"a", "b"}},  // a run of delimiters counts as one
        {",,,a", ",", {"a"}},       // a leading delimiter gives no empty item
        {"a,,,", ",", {"a", ""}},   // a trailing delimiter gives one empty last item
        {"", ",", {""}}, {",", ",", {""}}, {"x,y,z", ",", {"x", "y", "z"}}, {"a b;c;; d", " ;", {"a", "b", "c", "d"}},
        {"a b", "", {"a b"}},        // an empty set splits nothing
        {"a;;b", ";;", {"a", "b"}},  // repeats in the set are harmless
        {"b;a;c", "c;", {"b", "a", ""}}, {"\xff" "a\xff" "b", "\xff", {"a", "b"}},
    };
    for (Row const& row : rows) EXPECT_EQ(ItemBytes(ZKString::Split(row.text, row.set, false)), row.pieces) << row.text;
    EXPECT_EQ(ItemBytes(ZKString::Split("a b", '\0', true)), (Pieces{"a b"})) << "a zero delimiter is an empty set";

    // All ten forms agree, the flag does nothing, the ZKString forms cut the
    // text at its first zero, and items go through the virtual PushBack.
    ZKString const text = Counted(std::string("p q  r\0s t", 10));
    for (bool flag : {false, true}) {
        CountingList lists[4];
        ZKString::Split("p q  r", ' ', flag, &lists[0]);
        ZKString::Split("p q  r", " ", flag, &lists[1]);
        ZKString::Split(text, ' ', flag, &lists[2]);
        ZKString::Split(text, " ", flag, &lists[3]);
        for (ZKContainer<ZKString> const& list : {ZKString::Split("p q  r", ' ', flag), ZKString::Split(text, ' ', flag),
                                                  ZKString::Split(text, " ", flag), text.Split(' ', flag),
                                                  text.Split(" ", flag), ZKContainer<ZKString>(lists[0]),
                                                  ZKContainer<ZKString>(lists[1]), ZKContainer<ZKString>(lists[2]),
                                                  ZKContainer<ZKString>(lists[3])})
            EXPECT_EQ(ItemBytes(list), (Pieces{"p", "q", "r"}));
        EXPECT_EQ(lists[0].pushes + lists[1].pushes + lists[2].pushes + lists[3].pushes, 12);
    }
}

TEST(StringSplit, IntoListsOldAndNew)
{
    ZKContainer<ZKString> list(3);
    list.PushBack(ZKString("old"));
    ZKString::Split("a,b", ',', false, &list);
    ZKString::Split(static_cast<char const*>(nullptr), ",", false, &list);
    ZKString::Split("a,b", static_cast<char const*>(nullptr), false, &list);
    ZKString::Split("a,b", ",", false, nullptr);
    ZKString::Split(list.GetItem(2), ';', false, &list);
    EXPECT_EQ(ItemBytes(list), (Pieces{"old", "a", "b", "b"})) << "appends, ignores nulls, may split its own item";

    // The returning forms size the new list at once: every slot, stale ones
    // included, and every counter must be what pushes into a default list leave.
    for (int pieces : {1, 511, 512, 513, 1025, 2000}) {
        std::string text;
        ZKContainer<ZKString> pushed;
        for (int i = 0; i < pieces; ++i) {
            std::string const piece = "p" + std::to_string(i);
            text += piece + (i + 1 < pieces ? ";" : "");
            pushed.PushBack(ZKString(piece.c_str()));
        }
        EXPECT_EQ(RingState(ZKString::Split(text.c_str(), ';', false)), RingState(pushed)) << pieces;
    }
}
