#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/Support.h"

using zk64::test::AllBytes;
using zk64::test::Bytes;
using zk64::test::Counted;
using zk64::test::ExpectThrowWithMessage;

namespace {

using Texts = std::vector<std::string>;

std::string const kZero("a\0b", 3);  // three bytes with an embedded zero

void ExpectTooLong(auto&& f) { ExpectThrowWithMessage<std::length_error>(f, "string too long"); }
void ExpectBadPosition(auto&& f) { ExpectThrowWithMessage<std::out_of_range>(f, "invalid string position"); }

}  // namespace

// Which forms keep the whole counted text and which cut it at the first zero.
TEST(StringConstruction, CountedFormsAndWhereTextsAreCut)
{
    ZKString const zero = Counted(kZero);
    ZKString const source("abc");
    // The counted forms read past the first zero, and past the size they
    // read zeros; copy construction and operator+ cut.
    EXPECT_EQ(
        AllBytes(ZKString("ab\0xy", 5), ZKString("xyz", 2), ZKString('\0'), ZKString(source, 5), ZKString(zero, 3),
                 ZKString(zero), zero + ""),
        (Texts{std::string("ab\0xy", 5), "xy", std::string(1, '\0'), std::string("abc\0\0", 5), kZero, "a", "a"}));
    ZKString assigned, set;
    assigned = zero;
    set.SetString(zero);
    EXPECT_EQ(AllBytes(assigned, set), (Texts{kZero, "a"})) << "assignment keeps the whole text, SetString cuts";
    EXPECT_EQ(ZKString(ZKString(zero, 3)).GetSize(), 3) << "moves keep the whole text";
    set.SetString("p\0q");
    EXPECT_EQ(Bytes(set), "p");
    set.SetString(set, 3);
    EXPECT_EQ(Bytes(set), std::string("p\0\0", 3)) << "a counted copy of itself pads";

    ZKString target("keep");
    ExpectTooLong([] { ZKString s("abc", -1); });
    ExpectTooLong([&] { ZKString s(source, -1); });
    ExpectTooLong([&] { target.SetString("abc", -2); });
    ExpectTooLong([&] { target.SetString(source, -2); });
    EXPECT_EQ(Bytes(target), "keep");

    ZKString moved(std::move(target));
    EXPECT_TRUE(target.IsEmpty());  // NOLINT(bugprone-use-after-move): a move empties the source
    target = std::move(moved);
    EXPECT_TRUE(moved.IsEmpty());  // NOLINT(bugprone-use-after-move)
    ZKString& alias = target;
    target = std::move(alias);
    target = static_cast<ZKString const&>(alias);
    EXPECT_EQ(Bytes(target), "keep") << "self-assignment does nothing";
}

// Each row holds for the member operators and for the free ones with the
// sides exchanged.
TEST(StringComparison, ByteExactOverTheRightLengths)
{
    auto check = [](ZKString const& s, auto other, bool equal) {
        EXPECT_EQ(s == other, equal) << Bytes(s);
        EXPECT_EQ(other == s, equal) << Bytes(s);
        EXPECT_EQ(s != other, !equal) << Bytes(s);
        EXPECT_EQ(other != s, !equal) << Bytes(s);
    };
    ZKString const zero = Counted(kZero);
    check(zero, "a", false);  // sizes differ: 3 against 1
    check(Counted(std::string("a\0", 2)), "a", false);
    check(ZKString("A"), "a", false);  // no case folding
    check(ZKString("a"), "a", true);
    check(ZKString("a"), "ab", false);
    check(zero, Counted(kZero), true);
    check(zero, Counted(std::string("a\0c", 3)), false);
    check(ZKString("x"), 'x', true);
    check(ZKString("xx"), 'x', false);
    check(ZKString("a"), 'b', false);
    check(ZKString('\0'), '\0', true);
    check(ZKString(), '\0', false);  // an empty string is not char 0
}

TEST(StringConcatenation, AppendAndPlusCuts)
{
    ZKString s("ab");
    s += ZKString("cd");
    s += "ef";
    s += 'g';
    s += Counted(kZero);
    EXPECT_EQ(Bytes(s), "abcdefga") << "appends up to the right side's first zero";
    s += '\0';
    EXPECT_EQ(s.GetSize(), 9) << "a zero byte is appended too";
    s = "xy";
    s += s;
    EXPECT_EQ(Bytes(s), "xyxy");

    ZKString const left("ab");
    EXPECT_EQ(Bytes(left + ZKString("cd") + "e" + 'f'), "abcdef");
    EXPECT_EQ(Bytes(left + '\0'), "ab") << "char 0 leaves the left side alone";
    EXPECT_EQ(Bytes(left + Counted(kZero)), "aba");
    EXPECT_EQ(Bytes(Counted(kZero) + "zz"), "a") << "the left side's zero cuts the result";
    EXPECT_EQ(Bytes("x" + ZKString("yz")), "xyz");
    EXPECT_EQ(Bytes('x' + ZKString("yz")), "xyz");
    EXPECT_TRUE(('\0' + ZKString("yz")).IsEmpty()) << "a zero left side cuts everything";
    EXPECT_EQ(Bytes("x" + Counted(kZero)), "xa");
}

TEST(StringAccess, IndexingSubstringsAndSizes)
{
    ZKString s("xyz");
    EXPECT_EQ(s[3u], '\0') << "index == size reaches the terminator";
    s[1u] = 'Y';
    s.At(2) = 'Z';
    EXPECT_EQ(Bytes(s), "xYZ");
    ExpectBadPosition([&] { (void)s.At(3); });
    ExpectBadPosition([&] { (void)static_cast<ZKString const&>(s).At(100); });

    ZKString const t("xyz");
    EXPECT_EQ(AllBytes(t.GetString(3ull), t.GetString(2ull), t.GetString(4ull), t.GetString(1ull, 100u),
                       t.GetString(3ull, 1u), Counted(kZero).GetString(1ull, 2u)),
              (Texts{"xyz", "xy", "", "yz", "", ""}))
        << "a count past the size gives nothing, and so does a start on the zero byte";

    s.Reserve(1000);
    EXPECT_EQ(Bytes(s), "xYZ") << "Reserve never changes the text";
    char const* buffer = s.GetString();
    s.Clear();
    EXPECT_TRUE(s.IsEmpty() && s.GetString() == buffer) << "Clear keeps the buffer";
    s = "abc";
    s.Resize(5);
    EXPECT_EQ(Bytes(s), std::string("abc\0\0", 5));
    s.Resize(1);
    ExpectTooLong([&] { s.Resize(~0ull); });
    ExpectTooLong([&] { s.Reserve(~0ull); });
    EXPECT_EQ(Bytes(s), "a");
}

TEST(StringInsert, SingleRepeatedAndStaticForms)
{
    ZKString s("bd");
    s.Insert('a');
    for (auto [byte, at] : {std::pair{'c', 2u}, {'e', 4u}, {'\0', 1u}}) s.Insert(byte, at);
    EXPECT_EQ(Bytes(s), "abcde") << "a zero byte inserts nothing";
    ExpectBadPosition([&] { s.Insert('\0', 99); });
    s.Insert(ZKString(">"));
    s.Insert(Counted(kZero), 6);
    EXPECT_EQ(Bytes(s), ">abcdea") << "a ZKString is inserted up to its first zero";
    s.Insert(s, 1);
    EXPECT_EQ(Bytes(s), ">>abcdeaabcdea");
    ExpectBadPosition([&] { s.Insert(ZKString("x"), 100); });

    ZKString r("[]");
    r.Insert(ZKString("ab"), 3, 1);
    EXPECT_EQ(Bytes(r), "[ababab]");
    ExpectBadPosition([&] { r.Insert(ZKString("x"), 2, 99); });
    EXPECT_EQ(Bytes(r), "[ababab]") << "a failing position leaves the target untouched";
    ZKString cut = Counted(kZero);
    cut.Insert(ZKString("x"), 0, 0);
    EXPECT_EQ(Bytes(cut), "a") << "the copy stops at the first zero, even for a count of 0";

    // The static form returns at once for a count of 0, and steps by the
    // inserted text's whole size: "a\0b" inserts "a" but steps by 3.
    ZKString target("XY"), unchanged = Counted(kZero), stepped("0123456"), partial("abc");
    ZKString::Insert(target, ZKString("ab"), 2, 1);
    ZKString::Insert(unchanged, ZKString("q"), 0, 0);
    ZKString::Insert(stepped, Counted(kZero), 2, 0);
    ExpectBadPosition([&] { ZKString::Insert(partial, Counted(kZero), 3, 2); });
    EXPECT_EQ(AllBytes(target, unchanged, stepped, partial), (Texts{"XababY", kZero, "a01a23456", "abac"}))
        << "copies made before the failure stay";
}
