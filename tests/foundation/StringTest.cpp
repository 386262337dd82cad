#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <stdexcept>
#include <string>

#include "foundation/StringTestSupport.h"

using zk64::test::ExpectThrowWithMessage;

namespace {

std::string Bytes(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

// "a\0b": three bytes with an embedded zero.
ZKString WithZero()
{
    ZKString s;
    s += 'a';
    s += '\0';
    s += 'b';
    return s;
}

void ExpectTooLong(auto&& f) { ExpectThrowWithMessage<std::length_error>(f, "string too long"); }
void ExpectBadPosition(auto&& f) { ExpectThrowWithMessage<std::out_of_range>(f, "invalid string position"); }

}  // namespace

TEST(StringConstruction, CountedFormsTakeExactlyTheLength)
{
    char const buffer[] = "ab\0xy";
    EXPECT_EQ(Bytes(ZKString(buffer, 5)), std::string("ab\0xy", 5)) << "reads past the first zero";
    EXPECT_EQ(Bytes(ZKString("xyz", 2)), "xy");
    EXPECT_TRUE(ZKString("xyz", 0).IsEmpty());
    EXPECT_EQ(ZKString('\0').GetSize(), 1);

    ZKString const source("abc");
    EXPECT_EQ(Bytes(ZKString(source, 2)), "ab");
    EXPECT_EQ(Bytes(ZKString(source, 5)), std::string("abc\0\0", 5)) << "past the size reads zeros";
    EXPECT_EQ(Bytes(ZKString(WithZero(), 3)), std::string("a\0b", 3));
}

TEST(StringConstruction, NegativeLengthsThrowAndLeaveTheTarget)
{
    ExpectTooLong([] { ZKString s("abc", -1); });
    ExpectTooLong([] { ZKString s(ZKString("abc"), -1); });
    ZKString target("keep");
    ExpectTooLong([&] { target.SetString("abc", -2); });
    ExpectTooLong([&] { target.SetString(ZKString("abc"), -2); });
    EXPECT_EQ(Bytes(target), "keep");
}

TEST(StringConstruction, CopyCutsWhereAssignmentKeepsTheWholeText)
{
    ZKString const source = WithZero();
    ASSERT_EQ(source.GetSize(), 3);

    ZKString copied(source);
    EXPECT_EQ(Bytes(copied), "a");

    ZKString assigned;
    assigned = source;
    EXPECT_EQ(assigned.GetSize(), 3);
    EXPECT_TRUE(assigned == source);

    ZKString set;
    set.SetString(source);
    EXPECT_EQ(Bytes(set), "a");

    ZKString moved(ZKString(source, 3));
    EXPECT_EQ(moved.GetSize(), 3) << "moves keep the whole text";
    EXPECT_EQ((source + "").GetSize(), 1) << "operator+ cuts the joined text";
}

TEST(StringConstruction, MovesLeaveAnEmptyUsableSource)
{
    ZKString source("some text");
    ZKString target(std::move(source));
    EXPECT_EQ(Bytes(target), "some text");
    EXPECT_TRUE(source.IsEmpty());  // NOLINT(bugprone-use-after-move): contract
    source = "again";
    EXPECT_EQ(Bytes(source), "again");

    ZKString other("x");
    other = std::move(source);
    EXPECT_EQ(Bytes(other), "again");
    EXPECT_TRUE(source.IsEmpty());  // NOLINT(bugprone-use-after-move): contract

    ZKString& alias = other;
    other = std::move(alias);
    EXPECT_EQ(Bytes(other), "again") << "self-move does nothing";
    ZKString const& same = other;
    other = same;
    EXPECT_EQ(Bytes(other), "again");
}

TEST(StringAssignment, CharAndPointerForms)
{
    ZKString s("long text");
    s = 'q';
    EXPECT_EQ(Bytes(s), "q");
    s = '\0';
    EXPECT_EQ(s.GetSize(), 1);
    s = "abc";
    EXPECT_EQ(Bytes(s), "abc");
    s.SetString('z');
    EXPECT_EQ(Bytes(s), "z");
    s.SetString("p\0q");
    EXPECT_EQ(Bytes(s), "p");
    s.SetString("xyz", 2);
    EXPECT_EQ(Bytes(s), "xy");
    s.SetString(ZKString("abc"), 5);
    EXPECT_EQ(Bytes(s), std::string("abc\0\0", 5));
    s.SetString(s, 6);
    EXPECT_EQ(s.GetSize(), 6) << "a counted copy of itself pads";
    s.SetString(s, 2);
    EXPECT_EQ(Bytes(s), "ab");
}

TEST(StringComparison, ByteExactOverTheRightLengths)
{
    ZKString const zero = WithZero();
    EXPECT_FALSE(zero == "a") << "sizes differ: 3 against 1";
    EXPECT_TRUE(zero != "a");
    EXPECT_TRUE(ZKString("a") == "a");
    EXPECT_FALSE(ZKString("A") == "a") << "no case folding";
    EXPECT_TRUE(zero == WithZero());
    EXPECT_FALSE(zero == ZKString("a"));
    EXPECT_TRUE(zero != ZKString(std::string("a\0c", 3).c_str(), 3));

    EXPECT_TRUE(ZKString("x") == 'x');
    EXPECT_FALSE(ZKString("xx") == 'x');
    EXPECT_FALSE(ZKString() == '\0') << "an empty string is not char 0";
    EXPECT_TRUE(ZKString('\0') == '\0');
    EXPECT_TRUE(ZKString() != '\0');
}

TEST(StringConcatenation, AppendFormsAndTheirCuts)
{
    ZKString s("ab");
    s += ZKString("cd");
    s += "ef";
    s += 'g';
    EXPECT_EQ(Bytes(s), "abcdefg");
    s += WithZero();
    EXPECT_EQ(Bytes(s), "abcdefga") << "appends up to the right side's first zero";
    s += '\0';
    EXPECT_EQ(s.GetSize(), 9) << "a zero byte is appended too";

    ZKString self("xy");
    self += self;
    EXPECT_EQ(Bytes(self), "xyxy");
}

TEST(StringConcatenation, PlusCutsTheJoinedText)
{
    ZKString const left("ab");
    EXPECT_EQ(Bytes(left + ZKString("cd")), "abcd");
    EXPECT_EQ(Bytes(left + "cd"), "abcd");
    EXPECT_EQ(Bytes(left + 'c'), "abc");
    EXPECT_EQ(Bytes(left + '\0'), "ab") << "char 0 leaves the left side alone";
    EXPECT_EQ(Bytes(left + WithZero()), "aba");
    EXPECT_EQ(Bytes(WithZero() + "zz"), "a") << "the left side's zero cuts the result";
    EXPECT_EQ(Bytes(WithZero() + '\0'), "a");
    EXPECT_EQ(Bytes(left + left), "abab");
}

TEST(StringAccess, IndexingAndCheckedAccess)
{
    ZKString s("xyz");
    EXPECT_EQ(s[0u], 'x');
    EXPECT_EQ(s[3u], '\0') << "index == size reaches the terminator";
    s[1u] = 'Y';
    EXPECT_EQ(s.At(1), 'Y');
    s.At(2) = 'Z';
    EXPECT_EQ(Bytes(s), "xYZ");
    ExpectBadPosition([&] { (void)s.At(3); });
    ZKString const& constant = s;
    ExpectBadPosition([&] { (void)constant.At(100); });
    EXPECT_EQ(constant[2u], 'Z');
}

TEST(StringAccess, SubstringsAreCutAndOutOfRangeIsEmpty)
{
    ZKString const s("xyz");
    EXPECT_EQ(Bytes(s.GetString(3ull)), "xyz");
    EXPECT_EQ(Bytes(s.GetString(2ull)), "xy");
    EXPECT_TRUE(s.GetString(4ull).IsEmpty()) << "a count past the size gives nothing";
    EXPECT_EQ(Bytes(s.GetString(1ull, 100u)), "yz");
    EXPECT_EQ(Bytes(s.GetString(0ull, 2u)), "xy");
    EXPECT_TRUE(s.GetString(3ull, 1u).IsEmpty());
    EXPECT_TRUE(s.GetString(4ull, 1u).IsEmpty());
    EXPECT_EQ(Bytes(WithZero().GetString(3ull)), "a");
    EXPECT_TRUE(WithZero().GetString(1ull, 2u).IsEmpty()) << "starts on the zero byte";
    EXPECT_EQ(Bytes(WithZero().GetString(2ull, 2u)), "b");
}

TEST(StringAccess, SizeClearReserveResize)
{
    ZKString s("abc");
    EXPECT_TRUE(s.IsNotEmpty());
    s.Reserve(1000);
    EXPECT_EQ(Bytes(s), "abc") << "Reserve never changes the text";
    char const* buffer = s.GetString();
    s.Clear();
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(s.GetString(), buffer) << "Clear keeps the buffer";
    EXPECT_EQ(s.GetString()[0], '\0');
    s = "abc";
    s.Resize(5);
    EXPECT_EQ(Bytes(s), std::string("abc\0\0", 5));
    s.Resize(1);
    EXPECT_EQ(Bytes(s), "a");
    ExpectTooLong([&] { s.Resize(~0ull); });
    ExpectTooLong([&] { s.Reserve(~0ull); });
    EXPECT_EQ(Bytes(s), "a");
}

TEST(StringInsert, SingleInsertions)
{
    ZKString s("bd");
    s.Insert('a');
    s.Insert('c', 2);
    s.Insert('e', 4);
    EXPECT_EQ(Bytes(s), "abcde");
    s.Insert('\0', 1);
    EXPECT_EQ(Bytes(s), "abcde") << "a zero byte inserts nothing";
    ExpectBadPosition([&] { s.Insert('x', 99); });
    ExpectBadPosition([&] { s.Insert('\0', 99); });
    s.Insert(ZKString(">"));
    s.Insert(WithZero(), 6);
    EXPECT_EQ(Bytes(s), ">abcdea") << "a ZKString is inserted up to its first zero";
    s.Insert(s, 1);
    EXPECT_EQ(Bytes(s), ">>abcdeaabcdea");
    ExpectBadPosition([&] { s.Insert(ZKString("x"), 100); });
}

TEST(StringInsert, RepeatedInsertionOnACopy)
{
    ZKString s("[]");
    s.Insert(ZKString("ab"), 3, 1);
    EXPECT_EQ(Bytes(s), "[ababab]");

    ZKString failing("short");
    ExpectBadPosition([&] { failing.Insert(ZKString("x"), 2, 99); });
    EXPECT_EQ(Bytes(failing), "short") << "a failing position leaves the target untouched";

    ZKString cut = WithZero();
    cut.Insert(ZKString("x"), 0, 0);
    EXPECT_EQ(Bytes(cut), "a") << "the copy stops at the first zero, even for a count of 0";
}

TEST(StringInsert, StaticFormStepsByTheWholeSizeOfTheText)
{
    ZKString target("XY");
    ZKString::Insert(target, ZKString("ab"), 2, 1);
    EXPECT_EQ(Bytes(target), "XababY");

    ZKString unchanged = WithZero();
    ZKString::Insert(unchanged, ZKString("q"), 0, 0);
    EXPECT_EQ(unchanged.GetSize(), 3) << "a count of 0 returns at once";

    // "a\0b" inserts "a" but steps by its size of 3.
    ZKString stepped("0123456");
    ZKString::Insert(stepped, WithZero(), 2, 0);
    EXPECT_EQ(Bytes(stepped), "a01a23456");

    // The second copy would land at 2 + 3 = 5, past the size of 4.
    ZKString partial("abc");
    ExpectBadPosition([&] { ZKString::Insert(partial, WithZero(), 3, 2); });
    EXPECT_EQ(Bytes(partial), "abac") << "copies made before the failure stay";
}
