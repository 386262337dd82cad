// ZKString conversions, formatting, scanning, free operators and the byte
// and hexadecimal formatters.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cerrno>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdarg>
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

void ExpectInvalid(auto&& f, char const* message) { ExpectThrowWithMessage<std::invalid_argument>(f, message); }
void ExpectOutOfRange(auto&& f, char const* message) { ExpectThrowWithMessage<std::out_of_range>(f, message); }

// All three forms of a conversion give the same answer: on a C string, on a
// ZKString (up to its first zero byte) and on the object itself.
template <class T>
void ExpectAllForms(T (*onText)(char const*), T (*onString)(ZKString const&), T (ZKString::*onSelf)() const,
                    char const* text, T expected)
{
    ZKString const withTail = Counted(std::string(text) + std::string("\000999", 4));
    EXPECT_EQ(onText(text), expected) << text;
    EXPECT_EQ(onString(withTail), expected) << text;
    EXPECT_EQ((withTail.*onSelf)(), expected) << text;
}
#define EXPECT_ALL_FORMS(name, text, expected) \
    ExpectAllForms<decltype(ZKString::name(""))>(ZKString::name, ZKString::name, &ZKString::name, text, expected)

ZKString FormatList(char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ZKString result = ZKString::FormatStr(format, &arguments);
    EXPECT_TRUE(result == ZKString::FormatStr(format, &arguments)) << "the list is left unconsumed";
    va_end(arguments);
    return result;
}

template <class Text>
void ScanList(Text const& text, Text const& format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ZKString::Scan(text, format, &arguments);
    va_end(arguments);
}

}  // namespace

TEST(StringToString, NumbersInDecimal)
{
    EXPECT_EQ(AllBytes(ZKString::ToString(static_cast<signed char>(-5)), ZKString::ToString(static_cast<short>(-32768)),
                       ZKString::ToString(static_cast<unsigned char>(200)), ZKString::ToString(INT_MIN),
                       ZKString::ToString(LLONG_MIN), ZKString::ToString(ULLONG_MAX), ZKString::ToString(2.5, 0),
                       ZKString::ToString(HUGE_VAL, 2), ZKString::ToString(0.1f, 10)),
              (Texts{"-5", "-32768", "200", "-2147483648", "-9223372036854775808", "18446744073709551615", "2", "inf",
                     "0.1000000015"}))
        << "floats are widened to double";
    EXPECT_EQ(ZKString::ToString(DBL_MAX, 2).GetSize(), 312) << "no length limit";
}

TEST(StringToNumber, ConversionsAndTheirMessages)
{
    EXPECT_ALL_FORMS(ToInt32, "  42xyz", 42);
    EXPECT_ALL_FORMS(ToInt32, "\t-2147483648", INT_MIN);
    EXPECT_ALL_FORMS(ToInt8, "300", 44);  // the narrow forms cut the 32-bit result unchecked
    EXPECT_ALL_FORMS(ToInt8, "-129", 127);
    EXPECT_ALL_FORMS(ToInt16, "65537", 1);
    EXPECT_ALL_FORMS(ToInt64, "-9223372036854775808", LLONG_MIN);
    // The unsigned forms accept a minus sign: the magnitude negated modulo 2^n.
    EXPECT_ALL_FORMS(ToUInt32, "-1", 4294967295u);
    EXPECT_ALL_FORMS(ToUInt32, "-4294967295", 1u);
    EXPECT_ALL_FORMS(ToUInt8, "257", 1);
    EXPECT_ALL_FORMS(ToUInt16, "70000", 4464);
    EXPECT_ALL_FORMS(ToUInt64, "-2", ULLONG_MAX - 1);
    EXPECT_ALL_FORMS(ToDouble, " 2.5e3kg", 2500.0);
    EXPECT_ALL_FORMS(ToFloat, "-.25", -0.25f);
    EXPECT_TRUE(std::isinf(ZKString::ToDouble("inf")));

    // Failures throw what the standard conversions throw; the 32-bit limits
    // hold even where long has 64 bits.
    using Convert = void (*)(char const*);
    Convert const i8 = [](char const* t) { ZKString::ToInt8(t); }, i16 = [](char const* t) { ZKString::ToInt16(t); },
                  i32 = [](char const* t) { ZKString::ToInt32(t); }, i64 = [](char const* t) { ZKString::ToInt64(t); },
                  u8 = [](char const* t) { ZKString::ToUInt8(t); }, u16 = [](char const* t) { ZKString::ToUInt16(t); },
                  u32 = [](char const* t) { ZKString::ToUInt32(t); }, u64 = [](char const* t) { ZKString::ToUInt64(t); },
                  f = [](char const* t) { ZKString::ToFloat(t); }, d = [](char const* t) { ZKString::ToDouble(t); };
    struct Row {
        Convert convert;
        char const* text;
        char const* message;
    } const invalid[] = {{i32, "xyz", "stoi"}, {i32, "", "stoi"}, {i32, "- 1", "stoi"}, {i32, "+-1", "stoi"},
                         {i8, "z", "stoi"},   {i64, ".", "stoll"}, {u16, "+", "stoul"}, {u64, "x1", "stoull"},
                         {f, "e5", "stof"},   {d, "", "stod"}},
      range[] = {{i32, "2147483648", "stoi"}, {i32, "-2147483649", "stoi"}, {i16, "99999999999", "stoi"},
                 {i64, "9223372036854775808", "stoll"}, {u32, "4294967296", "stoul"}, {u32, "-4294967296", "stoul"},
                 {u8, "99999999999999999999999", "stoul"}, {u64, "18446744073709551616", "stoull"},
                 {d, "1e999", "stod"}, {d, "1e-999", "stod"}, {f, "1e39", "stof"}, {f, "1e-50", "stof"}};
    for (Row const& r : invalid) ExpectInvalid([&] { r.convert(r.text); }, ("invalid " + std::string(r.message) + " argument").c_str());
    for (Row const& r : range) ExpectOutOfRange([&] { r.convert(r.text); }, (std::string(r.message) + " argument out of range").c_str());
    ExpectInvalid([] { Counted(std::string("\00012", 3)).ToInt32(); }, "invalid stoi argument");
    errno = EDOM;
    EXPECT_EQ(ZKString::ToInt32("5"), 5);
    EXPECT_EQ(errno, EDOM) << "errno is left as it was on success";
}

TEST(StringFormat, FormatAndScanForms)
{
    EXPECT_EQ(Bytes(ZKString::FormatStr("%d-%s-%c", 12, "ab", 'z') + ZKString::FormatStr(ZKString("[%5.1f]"), 3.14)),
              "12-ab-z[  3.1]");
    EXPECT_EQ(Bytes(FormatList("%lld|%x", -3LL, 255u)), "-3|ff");
    std::string const big(100000, 'q');
    EXPECT_EQ(Bytes(ZKString::FormatStr("<%s>", big.c_str())), "<" + big + ">") << "no length limit";
    EXPECT_EQ(Bytes(ZKString::FormatStr("ab%cde", '\0')), "ab") << "the result stops at a formatted zero";
    va_list* none = nullptr;
    EXPECT_TRUE(ZKString::FormatStr("%d", none).IsEmpty()) << "a null list pointer gives an empty string";
    EXPECT_TRUE(ZKString::FormatStr("%d", 0).IsEmpty()) << "a literal 0 is a null list pointer";
    ZKString target("old text that goes away");
    target.Format("%u items", 3u);
    ZKString other;
    other.Format(ZKString("%s%s"), "x", "y");
    EXPECT_EQ(AllBytes(target, other), (Texts{"3 items", "xy"}));

    int a = 0, b = 0;
    double d = 0;
    ZKString::Scan(ZKString("31 2.5"), ZKString("%d %lf"), &a, &d);
    EXPECT_TRUE(a == 31 && d == 2.5);
    ZKString("7 8").Scan("%d %d", &a, &b);
    EXPECT_EQ(a * 10 + b, 78);
    ScanList<char const*>("3,4", "%d,%d", &a, &b);
    ScanList<char const*>(nullptr, "%d", &a);
    ScanList<char const*>("5", nullptr, &a);
    EXPECT_EQ(a * 10 + b, 34) << "a null text or format does nothing";
    ScanList<ZKString>(Counted(std::string("1\0002", 3)), ZKString("%d%d"), &a, &b);
    EXPECT_EQ(a * 10 + b, 14) << "the text ends at its first zero byte";
    ScanList<ZKString>(ZKString("9 8"), Counted(std::string("%d\0 %d", 6)), &a, &b);
    EXPECT_EQ(a * 10 + b, 94) << "the format is copied up to its first zero byte";
}

TEST(StringHex, SizesAndHexFormatters)
{
    EXPECT_EQ(AllBytes(FormatStrBytesToKB(1536, 1), FormatStrBytesToMB(3u << 19, 2), FormatStrBytesToGB(1ull << 40, 0),
                       FormatStrBytesToGB(ULLONG_MAX, 0)),
              (Texts{"1.5", "1.50", "1024", "17179869184"}))
        << "converted as an unsigned value";
    // A wider value keeps its digits.
    EXPECT_EQ(AllBytes(FormatStrValueToHex(255, true, 4), FormatStrValueToHex(255, false, 4),
                       FormatStrValueToHex(4096, true, 2), FormatStrValueToHex(0, true, 0),
                       FormatStrValueToHex(ULLONG_MAX, true, 20)),
              (Texts{"00ff", "ff", "1000", "0", "0000ffffffffffffffff"}));

    auto hex = [](std::string const& text) { return FormatStrHexToValue(Counted(text)); };
    EXPECT_EQ(std::vector({hex("0xFF"), hex("  aBc"), hex("12g4"), hex("xyz"), hex(""), hex("ffffffffffffffff"),
                           hex("10000000000000000"), hex(std::string("1\0f", 3))}),
              std::vector<unsigned long long>({255, 0xabc, 0x12, 0, 0, ULLONG_MAX, ULLONG_MAX, 1}));

    unsigned char const bytes[] = {1, 2, 3, 171};
    EXPECT_EQ(AllBytes(FormatStrBytesToHex(bytes, 4, 2), FormatStrBytesToHex(bytes, 3, 0),
                       FormatStrBytesToHex(bytes, 2, 1), FormatStrBytesToHex(bytes, 0, 2),
                       FormatStrBytesToHex(nullptr, 3, 2), FormatStrBytesToHex(Counted(std::string("a\0b", 3)), 8)),
              (Texts{"00000001 00000002 \n00000003 000000ab", "00000001 00000002 00000003", "00000001 \n00000002", "",
                     "", "00000061 00000000 00000062"}))
        << "no line feed after the last byte";
}
