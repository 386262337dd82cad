#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <stdexcept>
#include <string>

#include "foundation/Support.h"

using zk64::test::Bytes;
using zk64::test::Counted;
using zk64::test::ExpectThrowWithMessage;

namespace {

std::string const kZero("a\0b", 3);  // three bytes with an embedded zero

void ExpectTooLong(auto&& f) { ExpectThrowWithMessage<std::length_error>(f, "string too long"); }
void ExpectBadPosition(auto&& f) { ExpectThrowWithMessage<std::out_of_range>(f, "invalid string position"); }

}  // namespace

// Which forms keep the whole counted text and which cut it at the first zero.
TEST(StringConstruction, CountedFormsAndWhereTextsAreCut)
{
    ZKString const zero = Counted(kZero);
    ZKString const source("abc");
    EXPECT_EQ(Bytes(ZKString("ab\0xy", 5)), std::string("ab\0xy", 5)) << "reads past the first zero";
    EXPECT_EQ(Bytes(ZKString("xyz", 2)), "xy");
    EXPECT_EQ(ZKString('\0').GetSize(), 1);
    EXPECT_EQ(Bytes(ZKString(source, 5)), std::string("abc\0\0", 5)) << "past the size reads zeros";
    EXPECT_EQ(Bytes(ZKString(zero, 3)), kZero);
    EXPECT_EQ(Bytes(ZKString(zero)), "a") << "copy construction cuts";
    ZKString assigned, set;
    assigned = zero;
    set.SetString(zero);
    EXPECT_EQ(Bytes(assigned), kZero) << "assignment keeps the whole text";
    EXPECT_EQ(Bytes(set), "a");
    EXPECT_EQ(ZKString(ZKString(zero, 3)).GetSize(), 3) << "moves keep the whole text";
    EXPECT_EQ(Bytes(zero + ""), "a") << "operator+ cuts the joined text";
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

TEST(StringComparison, ByteExactOverTheRightLengths)
{
    ZKString const zero = Counted(kZero);
    EXPECT_FALSE(zero == "a") << "sizes differ: 3 against 1";
    EXPECT_FALSE(ZKString("A") == "a") << "no case folding";
    EXPECT_TRUE(zero == Counted(kZero));
    EXPECT_TRUE(zero != Counted(std::string("a\0c", 3)));
    EXPECT_TRUE(ZKString("x") == 'x' && !(ZKString("xx") == 'x'));
    EXPECT_TRUE(ZKString('\0') == '\0' && ZKString() != '\0') << "an empty string is not char 0";
}

TEST(StringConcatenation, AppendAndPlusCuts)
{
    ZKString s("ab");
    s += ZKString("cd"), s += "ef", s += 'g', s += Counted(kZero);
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
    EXPECT_EQ(Bytes(t.GetString(3ull)), "xyz");
    EXPECT_EQ(Bytes(t.GetString(2ull)), "xy");
    EXPECT_TRUE(t.GetString(4ull).IsEmpty()) << "a count past the size gives nothing";
    EXPECT_EQ(Bytes(t.GetString(1ull, 100u)), "yz");
    EXPECT_TRUE(t.GetString(3ull, 1u).IsEmpty());
    EXPECT_TRUE(Counted(kZero).GetString(1ull, 2u).IsEmpty()) << "starts on the zero byte";

    s.Reserve(1000);
    EXPECT_EQ(Bytes(s), "xYZ") << "Reserve never changes the text";
    char const* buffer = s.GetString();
    s.Clear();
    EXPECT_TRUE(s.IsEmpty() && s.GetString() == buffer) << "Clear keeps the buffer";
    s = "abc";
    EXPECT_EQ(Bytes((s.Resize(5), s)), std::string("abc\0\0", 5));
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
    s.Insert(ZKString(">")), s.Insert(Counted(kZero), 6);
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
    EXPECT_EQ(Bytes(target), "XababY");
    ZKString::Insert(unchanged, ZKString("q"), 0, 0);
    EXPECT_EQ(unchanged.GetSize(), 3);
    ZKString::Insert(stepped, Counted(kZero), 2, 0);
    EXPECT_EQ(Bytes(stepped), "a01a23456");
    ExpectBadPosition([&] { ZKString::Insert(partial, Counted(kZero), 3, 2); });
    EXPECT_EQ(Bytes(partial), "abac") << "copies made before the failure stay";
}
