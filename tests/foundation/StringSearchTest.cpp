// ZKString searching, byte classes, prefixes, replacing, case and splitting.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cctype>
#include <string>
#include <vector>

#include "foundation/ContainerTestSupport.h"
#include "foundation/StringTestSupport.h"

using zk64::test::Bytes;
using zk64::test::Counted;
using zk64::test::ItemBytes;
using Pieces = std::vector<std::string>;

namespace {

// A container that records every push, to show that results go through the
// virtual PushBack.
struct CountingList : ZKContainer<ZKString> {
    int pushes = 0;
    unsigned long long PushBack(ZKString const& item) override
    {
        ++pushes;
        return ZKContainer<ZKString>::PushBack(item);
    }
};

}  // namespace

TEST(StringFind, BytePositions)
{
    ZKString const s("xyz");
    EXPECT_EQ(s.Find('y', 1), 1);
    EXPECT_EQ(s.Find('x', 0), 0);
    EXPECT_EQ(s.Find('x', 1), -1);
    EXPECT_EQ(s.Find('z', 3), -1) << "from the size";
    EXPECT_EQ(s.Find('x', -1), -1) << "a negative position widens to a huge one";
    EXPECT_EQ(s.Find('q', 0), -1);

    ZKString const zero = Counted(std::string("a\0b", 3));
    EXPECT_EQ(zero.Find('b', 0), 2) << "the byte search covers the counted text";
    EXPECT_EQ(zero.Find('\0', 0), 1);
}

TEST(StringFind, TextPositions)
{
    ZKString const s("xyzxyz");
    EXPECT_EQ(s.Find("yz", 0), 1);
    EXPECT_EQ(s.Find("yz", 2), 4);
    EXPECT_EQ(s.Find("yz", 5), -1) << "doesn't fit behind the position";
    EXPECT_EQ(s.Find("xyzxyzx", 0), -1) << "longer than the target";
    EXPECT_EQ(s.Find("", 2), 2);
    EXPECT_EQ(s.Find("", 6), 6);
    EXPECT_EQ(ZKString("xyz").Find("", 4), -1);
    EXPECT_EQ(s.Find("", -1), -1);

    ZKString const needle = Counted(std::string("zx\0q", 4));
    EXPECT_EQ(s.Find(needle, 0), 2) << "the ZKString needle is cut at its first zero";
    EXPECT_EQ(Counted(std::string("a\0bc", 4)).Find("bc", 0), 2) << "the target keeps its whole text";
}

TEST(StringFind, ReverseSearch)
{
    ZKString const s("aba");
    EXPECT_EQ(s.RFind('a', -1), 2);
    EXPECT_EQ(s.RFind('a', 1), 0);
    EXPECT_EQ(s.RFind('a', -7), 2) << "any negative position means the end";
    EXPECT_EQ(s.RFind('a', 100), 2) << "past the end is the last byte";
    EXPECT_EQ(s.RFind('z', -1), -1);
    EXPECT_EQ(ZKString().RFind('a', -1), -1);

    ZKString const t("xyzxyz");
    EXPECT_EQ(t.RFind("xy", -1), 3);
    EXPECT_EQ(t.RFind("xy", 3), 3) << "begins at the position";
    EXPECT_EQ(t.RFind("xy", 2), 0);
    EXPECT_EQ(t.RFind("zz", -1), -1);
    EXPECT_EQ(ZKString("xyz").RFind("", -1), 3);
    EXPECT_EQ(ZKString("xyz").RFind("", 1), 1) << "the smaller of size and position";
    EXPECT_EQ(t.RFind(Counted(std::string("yz\0x", 4)), -1), 4);
}

TEST(StringFindSubsequence, AdjacentBytesWithoutBackingUp)
{
    ZKString const s("ppxyzp");
    EXPECT_TRUE(s.FindSubsequence("XYZ", true));
    EXPECT_FALSE(s.FindSubsequence("XYZ", false));
    EXPECT_TRUE(s.FindSubsequence("xyz", false));
    EXPECT_FALSE(s.FindSubsequence("xz", false)) << "the bytes must be adjacent";
    EXPECT_FALSE(ZKString("aaab").FindSubsequence("aab", false)) << "no back-up after a partial match";
    EXPECT_TRUE(ZKString("aab").FindSubsequence("aab", false));
    EXPECT_TRUE(ZKString("xaab").FindSubsequence("aab", false));
    EXPECT_FALSE(s.FindSubsequence("", false)) << "an empty pattern never matches";
    EXPECT_FALSE(ZKString().FindSubsequence("a", false));
    EXPECT_TRUE(s.FindSubsequence(ZKString("zp"), false));
    EXPECT_TRUE(Counted(std::string("a\0b", 3)).FindSubsequence(Counted(std::string("\0b", 2)), false))
        << "the ZKString forms use the counted texts";
    EXPECT_TRUE(Counted(std::string("a\0b", 3)).FindSubsequence("b", false));
}

TEST(StringFindSubsequence, StaticFormBoundaries)
{
    char const text[] = "abcabc";
    EXPECT_FALSE(ZKString::FindSubsequence(3, 0, text, 3, "a", 1, false)) << "start equal to end";
    EXPECT_TRUE(ZKString::FindSubsequence(3, 0, text, 6, "ca", 2, false) == false);
    EXPECT_TRUE(ZKString::FindSubsequence(1, 0, text, 6, "ca", 2, false));
    EXPECT_FALSE(ZKString::FindSubsequence(0, 0, text, 3, "ca", 2, false)) << "the end is exclusive";
    EXPECT_TRUE(ZKString::FindSubsequence(1, 1, text, 6, "xb", 2, false)) << "the pattern may start inside";
    EXPECT_FALSE(ZKString::FindSubsequence(0, 1, text, 6, "xb", 2, false)) << "until a mismatch resets it";
    EXPECT_TRUE(ZKString::FindSubsequence(4, 0, text, 2, "a", 1, false) == false) << "start past the end";
    // Arguments outside the text or pattern.
    EXPECT_FALSE(ZKString::FindSubsequence(0, 0, nullptr, 6, "a", 1, false));
    EXPECT_FALSE(ZKString::FindSubsequence(0, 0, text, 6, nullptr, 1, false));
    EXPECT_FALSE(ZKString::FindSubsequence(-1, 0, text, 6, "a", 1, false));
    EXPECT_FALSE(ZKString::FindSubsequence(0, 0, text, 6, "a", -1, false));
    EXPECT_FALSE(ZKString::FindSubsequence(0, -1, text, 6, "a", 1, false)) << "a negative index never matches";
    EXPECT_TRUE(ZKString::FindSubsequence(0, 5, text, 6, "b", 1, false))
        << "an index past the pattern mismatches once, then the scan restarts the pattern";
    EXPECT_FALSE(ZKString::FindSubsequence(0, 5, text, 1, "a", 1, false))
        << "the first byte is spent on the mismatch";
}

TEST(StringByteClasses, WholeTables)
{
    for (int c = 0; c < 256; ++c) {
        auto const byte = static_cast<unsigned char>(c);
        bool const printable = c == 9 || c == 10 || c == 13 || (c >= 32 && c <= 126);
        bool const whitespace = c == 9 || c == 10 || c == 12 || c == 13 || c == 32;
        bool const alphanumeric = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        EXPECT_EQ(ZKString::IsBytePrintable(byte), printable) << c;
        EXPECT_EQ(ZKString::IsByteWhitespace(byte), whitespace) << c;
        EXPECT_EQ(ZKString::IsByteAlphanumeric(byte), alphanumeric) << c;
    }
}

TEST(StringPrefix, StartsAndEndsWith)
{
    ZKString const s("prefix-body");
    EXPECT_TRUE(s.StartsWith("pre"));
    EXPECT_TRUE(s.StartsWith(""));
    EXPECT_TRUE(s.StartsWith("prefix-body"));
    EXPECT_FALSE(s.StartsWith("prefix-body!"));
    EXPECT_FALSE(s.StartsWith("Pre"));
    EXPECT_FALSE(s.StartsWith(static_cast<char const*>(nullptr)));
    EXPECT_TRUE(s.EndsWith("body"));
    EXPECT_TRUE(s.EndsWith(""));
    EXPECT_FALSE(s.EndsWith("xprefix-body")) << "longer than the target";
    EXPECT_FALSE(s.EndsWith("bod"));
    EXPECT_FALSE(s.EndsWith(static_cast<char const*>(nullptr)));
    EXPECT_TRUE(ZKString().StartsWith(""));
    EXPECT_FALSE(ZKString().EndsWith("a"));

    ZKString const zero = Counted(std::string("a\0b", 3));
    EXPECT_TRUE(zero.EndsWith("b")) << "the target keeps its whole text";
    EXPECT_TRUE(s.StartsWith(Counted(std::string("pre\0zzz", 7)))) << "the argument is cut";
    EXPECT_TRUE(s.EndsWith(Counted(std::string("dy\0zzz", 6))));
}

TEST(StringReplace, SingleBytes)
{
    ZKString s("banana");
    EXPECT_EQ(s.ReplaceAll('a', 'o'), 3u);
    EXPECT_EQ(Bytes(s), "bonono");
    EXPECT_EQ(s.ReplaceAll('z', 'q'), 0u);
    EXPECT_EQ(s.ReplaceAll('o', 'o'), 3u) << "counts bytes it rewrote, even to themselves";
    EXPECT_EQ(ZKString().ReplaceAll('a', 'b'), 0u);

    ZKString zero = Counted(std::string("a\0a", 3));
    EXPECT_EQ(zero.ReplaceAll('a', 'x'), 2u) << "over the whole counted text";
    EXPECT_EQ(zero.ReplaceAll('\0', 'y'), 1u);
    EXPECT_EQ(Bytes(zero), "xyx");

    ZKString twice("aa");
    EXPECT_TRUE(twice.ReplaceOnceFromEnd('a', 'b'));
    EXPECT_EQ(Bytes(twice), "ab");
    EXPECT_TRUE(twice.ReplaceOnceFromStart('a', 'c'));
    EXPECT_EQ(Bytes(twice), "cb");
    EXPECT_FALSE(twice.ReplaceOnceFromStart('a', 'c'));
    EXPECT_FALSE(twice.ReplaceOnceFromEnd('z', 'c'));
    EXPECT_EQ(Bytes(twice), "cb");
}

TEST(StringReplace, OnceWithTexts)
{
    ZKString s("aaaa");
    EXPECT_TRUE(s.ReplaceOnceFromStart("aa", "b"));
    EXPECT_EQ(Bytes(s), "baa");
    EXPECT_TRUE(s.ReplaceOnceFromEnd("a", "xyz"));
    EXPECT_EQ(Bytes(s), "baxyz");
    EXPECT_FALSE(s.ReplaceOnceFromEnd("q", "r"));
    EXPECT_TRUE(s.ReplaceOnceFromStart(ZKString("xyz"), ZKString("")));
    EXPECT_EQ(Bytes(s), "ba");
    EXPECT_TRUE(s.ReplaceOnceFromEnd(ZKString("b"), ZKString("c")));
    EXPECT_EQ(Bytes(s), "ca");
    EXPECT_TRUE(s.ReplaceOnceFromStart("", "<")) << "an empty text is found at the start";
    EXPECT_TRUE(s.ReplaceOnceFromEnd("", ">")) << "and from the end, at the end";
    EXPECT_EQ(Bytes(s), "<ca>");
}

TEST(StringReplace, AllResearchesFromTheReplacement)
{
    struct Case {
        char const* text;
        char const* from;
        char const* to;
        unsigned long long count;
        char const* result;
    };
    Case const cases[] = {
        {"aaaa", "aa", "a", 3, "a"},
        {"one two one two", "one", "1", 2, "1 two 1 two"},
        {"one two", "x", "y", 0, "one two"},
        // The search restarts where the replacement begins, not before it:
        // "aab" -> "ab", which the next search (from 1) misses.
        {"aab", "ab", "b", 1, "ab"},
        // Matches that begin inside the replacement and run on into the rest.
        {"acbb", "cb", "xc", 2, "axxc"},      // a[cb]b -> ax[cb] -> axxc
        {"aXbXb", "Xb", "aX", 2, "aaXaX"},    // a[Xb]Xb -> aaX[Xb] -> aaXaX
        {"abbbb", "ab", "a", 4, "a"},
        {"aaba", "aba", "ab", 1, "aab"},
        {"xaabaab", "aab", "xa", 2, "xxaxa"},  // x[aab]aab -> xxa[aab] -> xxaxa
    };
    for (Case const& c : cases) {
        ZKString s(c.text);
        EXPECT_EQ(s.ReplaceAll(c.from, c.to), c.count) << c.text << " / " << c.from << " -> " << c.to;
        EXPECT_EQ(Bytes(s), c.result) << c.text << " / " << c.from << " -> " << c.to;
    }

    ZKString t("two two");
    EXPECT_EQ(t.ReplaceAll(ZKString("two"), ZKString("three")), 2u);
    EXPECT_EQ(Bytes(t), "three three");
    ZKString zero = Counted(std::string("a\0a", 3));
    EXPECT_EQ(zero.ReplaceAll("a", "bb"), 2u) << "the search covers the counted text";
    EXPECT_EQ(Bytes(zero), std::string("bb\0bb", 5));
    EXPECT_EQ(zero.ReplaceAll(Counted(std::string("bb\0x", 4)), ZKString("c")), 2u) << "arguments are cut";
    EXPECT_EQ(Bytes(zero), std::string("c\0c", 3));
}

TEST(StringReplace, NeverEndingArgumentsAreRefused)
{
    ZKString s("abc");
    EXPECT_EQ(s.ReplaceAll("", "x"), 0u);
    EXPECT_EQ(s.ReplaceAll("b", "bb"), 0u);
    EXPECT_EQ(s.ReplaceAll("b", "b"), 0u);
    EXPECT_EQ(Bytes(s), "abc");
    EXPECT_EQ(s.ReplaceAll("z", "zz"), 0u) << "no occurrence: the ordinary miss";
    EXPECT_EQ(ZKString().ReplaceAll("", "x"), 0u);
}

TEST(StringReplace, MatchesAStepByStepModel)
{
    // The contract's loop, run literally on std::string for arguments that
    // end, against the one-pass implementation.
    auto model = [](std::string text, std::string const& from, std::string const& to) {
        unsigned long long count = 0;
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
            text.replace(at, from.size(), to);
            ++count;
        }
        return std::make_pair(text, count);
    };
    std::vector<std::string> const texts = {"", "a", "ab", "aab", "abab", "aaaa", "baab", "abaabaab", "bbabbabba",
                                            "ababababb", "aabbaabb"};
    std::vector<std::string> const parts = {"a", "b", "ab", "ba", "aa", "bb", "aab", "abb", "bab", ""};
    for (auto const& text : texts) {
        for (auto const& from : parts) {
            for (auto const& to : parts) {
                if (from.empty() || to.find(from) != std::string::npos) continue;
                ZKString s(text.c_str());
                unsigned long long const count = s.ReplaceAll(from.c_str(), to.c_str());
                auto const expected = model(text, from, to);
                EXPECT_EQ(Bytes(s), expected.first) << text << " / " << from << " -> " << to;
                EXPECT_EQ(count, expected.second) << text << " / " << from << " -> " << to;
            }
        }
    }
}

TEST(StringEdit, RemoveAllSpacesAndCase)
{
    ZKString s(" a b\tc \n d  ");
    s.RemoveAllSpaces();
    EXPECT_EQ(Bytes(s), "ab\tc\nd") << "only byte 32 goes";

    ZKString t = Counted(std::string("Ab\0cZ\xc4!", 7));
    t.ToUpper();
    EXPECT_EQ(Bytes(t), std::string("AB\0CZ\xc4!", 7)) << "the whole counted text, ASCII letters only";
    t.ToLower();
    EXPECT_EQ(Bytes(t), std::string("ab\0cz\xc4!", 7));
}

TEST(StringSplit, DelimiterRunRules)
{
    auto split = [](char const* text) { return ItemBytes(ZKString::Split(text, ',', false)); };
    EXPECT_EQ(split("a,,b"), (Pieces{"a", "b"})) << "a run of delimiters counts as one";
    EXPECT_EQ(split(",a"), (Pieces{"a"})) << "a leading delimiter gives no empty item";
    EXPECT_EQ(split(",,,a"), (Pieces{"a"}));
    EXPECT_EQ(split("a,"), (Pieces{"a", ""})) << "a trailing delimiter gives one empty last item";
    EXPECT_EQ(split("a,,,"), (Pieces{"a", ""}));
    EXPECT_EQ(split(""), (Pieces{""}));
    EXPECT_EQ(split(","), (Pieces{""}));
    EXPECT_EQ(split("abc"), (Pieces{"abc"}));
    EXPECT_EQ(split("x,y,z"), (Pieces{"x", "y", "z"}));
}

TEST(StringSplit, DelimiterSets)
{
    EXPECT_EQ(ItemBytes(ZKString::Split("a b;c;; d", " ;", true)), (Pieces{"a", "b", "c", "d"}));
    EXPECT_EQ(ItemBytes(ZKString::Split("a b", "", true)), (Pieces{"a b"})) << "an empty set splits nothing";
    EXPECT_EQ(ItemBytes(ZKString::Split("a b", '\0', true)), (Pieces{"a b"})) << "a zero delimiter is an empty set";
    EXPECT_EQ(ItemBytes(ZKString::Split("a;;b", ";;", false)), (Pieces{"a", "b"})) << "repeats in the set are harmless";
    EXPECT_EQ(ItemBytes(ZKString::Split("\xff" "a\xff" "b", "\xff", false)), (Pieces{"a", "b"}))
        << "bytes above 127 delimit too";
}

TEST(StringSplit, AllTenFormsAgreeAndTheFlagDoesNothing)
{
    ZKString const text = Counted(std::string("p q  r\0s t", 10));
    Pieces const expected{"p", "q", "r"};
    for (bool flag : {false, true}) {
        EXPECT_EQ(ItemBytes(ZKString::Split("p q  r", ' ', flag)), expected);
        EXPECT_EQ(ItemBytes(ZKString::Split("p q  r", " ", flag)), expected);
        EXPECT_EQ(ItemBytes(ZKString::Split(text, ' ', flag)), expected) << "cut at the first zero";
        EXPECT_EQ(ItemBytes(ZKString::Split(text, " ", flag)), expected);
        EXPECT_EQ(ItemBytes(text.Split(' ', flag)), expected);
        EXPECT_EQ(ItemBytes(text.Split(" ", flag)), expected);

        CountingList a, b, c, d;
        ZKString::Split("p q  r", ' ', flag, &a);
        ZKString::Split("p q  r", " ", flag, &b);
        ZKString::Split(text, ' ', flag, &c);
        ZKString::Split(text, " ", flag, &d);
        for (CountingList* list : {&a, &b, &c, &d}) {
            EXPECT_EQ(ItemBytes(*list), expected);
            EXPECT_EQ(list->pushes, 3) << "every item goes through the virtual PushBack";
        }
    }
}

TEST(StringSplit, AppendsAndIgnoresNulls)
{
    ZKContainer<ZKString> list;
    list.PushBack(ZKString("old"));
    ZKString::Split("a,b", ',', false, &list);
    EXPECT_EQ(ItemBytes(list), (Pieces{"old", "a", "b"}));
    ZKString::Split(static_cast<char const*>(nullptr), ",", false, &list);
    ZKString::Split("a,b", static_cast<char const*>(nullptr), false, &list);
    ZKString::Split("a,b", ",", false, nullptr);
    EXPECT_EQ(list.GetItemCount(), 3u);

    // The text may be an item of the list it splits into, which grows.
    ZKContainer<ZKString> own(1);
    own.PushBack(ZKString("a,b,c,d,e,f"));
    ZKString::Split(own.GetItem(0), ',', false, &own);
    EXPECT_EQ(ItemBytes(own), (Pieces{"a,b,c,d,e,f", "a", "b", "c", "d", "e", "f"}));

    // Many items: the default container grows by doubling.
    std::string many;
    for (int i = 0; i < 1500; ++i) many += std::to_string(i) + ",";
    ZKContainer<ZKString> const big = ZKString::Split(many.c_str(), ',', false);
    ASSERT_EQ(big.GetItemCount(), 1501u);
    EXPECT_EQ(big.GetMaxItemCount(), 2048u);
    EXPECT_EQ(Bytes(big.GetItem(1499)), "1499");
    EXPECT_TRUE(big.GetItem(1500).IsEmpty());
}

TEST(StringSplit, NewListsMatchOnesFilledByPushes)
{
    // The returning forms size the new list at once; every slot, stale ones
    // included, and every counter must be what pushing into a default list
    // leaves.
    for (int pieces : {1, 2, 511, 512, 513, 1024, 1025, 2000}) {
        std::string text;
        ZKContainer<ZKString> pushed;
        for (int i = 0; i < pieces; ++i) {
            std::string const piece = std::string("p").append(std::to_string(i));
            text += piece;
            if (i + 1 < pieces) text += ';';
            pushed.PushBack(ZKString(piece.c_str()));
        }
        ZKContainer<ZKString> const split = ZKString::Split(text.c_str(), ';', false);
        RingView<ZKString> const a(split), b(pushed);
        EXPECT_EQ(split.GetMaxItemCount(), pushed.GetMaxItemCount()) << pieces;
        EXPECT_EQ(split.GetItemCount(), pushed.GetItemCount()) << pieces;
        EXPECT_EQ(split.GetFlagsData(), pushed.GetFlagsData()) << pieces;
        EXPECT_EQ(a.Front(), b.Front()) << pieces;
        EXPECT_EQ(a.Back(), b.Back()) << pieces;
        ASSERT_EQ(a.Storage().size(), b.Storage().size()) << pieces;
        for (std::size_t slot = 0; slot < a.Storage().size(); ++slot)
            ASSERT_EQ(Bytes(a.Storage()[slot]), Bytes(b.Storage()[slot])) << pieces << " slot " << slot;
    }
}
