// ZKString conversions, formatting, scanning, free operators and the byte
// and hexadecimal formatters.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <stdexcept>
#include <string>

#include "foundation/StringTestSupport.h"

using zk64::test::Bytes;
using zk64::test::ExpectThrowWithMessage;

namespace {

void ExpectInvalid(auto&& f, char const* message) { ExpectThrowWithMessage<std::invalid_argument>(f, message); }
void ExpectOutOfRange(auto&& f, char const* message) { ExpectThrowWithMessage<std::out_of_range>(f, message); }

// Every form of one conversion gives the same answer: on a C string, on a
// ZKString (up to its first zero byte) and on the object itself.
template <class T>
void ExpectAllForms(T (*onText)(char const*), T (*onString)(ZKString const&), T (ZKString::*onSelf)() const,
                    char const* text, T expected)
{
    ZKString withTail(text);
    withTail += '\0';
    withTail += "999";
    EXPECT_EQ(onText(text), expected) << text;
    EXPECT_EQ(onString(withTail), expected) << text << " (ZKString form reads to the first zero)";
    EXPECT_EQ((withTail.*onSelf)(), expected) << text;
}

ZKString CallFormatList(char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ZKString result = ZKString::FormatStr(format, &arguments);
    // The list is left unconsumed: it can be read again.
    ZKString again = ZKString::FormatStr(format, &arguments);
    va_end(arguments);
    EXPECT_TRUE(result == again);
    return result;
}

void CallScanList(char const* text, char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ZKString::Scan(text, format, &arguments);
    va_end(arguments);
}

void CallScanListOnStrings(ZKString const& text, ZKString const& format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ZKString::Scan(text, format, &arguments);
    va_end(arguments);
}

}  // namespace

TEST(StringToString, IntegersInDecimal)
{
    EXPECT_EQ(Bytes(ZKString::ToString(static_cast<signed char>(-5))), "-5") << "a number, not a character";
    EXPECT_EQ(Bytes(ZKString::ToString(static_cast<signed char>(65))), "65");
    EXPECT_EQ(Bytes(ZKString::ToString(static_cast<unsigned char>(200))), "200");
    EXPECT_EQ(Bytes(ZKString::ToString(static_cast<short>(-32768))), "-32768");
    EXPECT_EQ(Bytes(ZKString::ToString(static_cast<unsigned short>(65535))), "65535");
    EXPECT_EQ(Bytes(ZKString::ToString(INT_MIN)), "-2147483648");
    EXPECT_EQ(Bytes(ZKString::ToString(0)), "0");
    EXPECT_EQ(Bytes(ZKString::ToString(4294967295u)), "4294967295");
    EXPECT_EQ(Bytes(ZKString::ToString(LLONG_MIN)), "-9223372036854775808");
    EXPECT_EQ(Bytes(ZKString::ToString(ULLONG_MAX)), "18446744073709551615");
}

TEST(StringToString, FloatingPointWithPrecision)
{
    EXPECT_EQ(Bytes(ZKString::ToString(3.14159, 2)), "3.14");
    EXPECT_EQ(Bytes(ZKString::ToString(2.5, 0)), "2") << "no point, round half to even";
    EXPECT_EQ(Bytes(ZKString::ToString(-0.5, 3)), "-0.500");
    EXPECT_EQ(Bytes(ZKString::ToString(0.1f, 10)), "0.1000000015") << "widened to double";
    EXPECT_EQ(Bytes(ZKString::ToString(1e20, 1)), "100000000000000000000.0");
    EXPECT_EQ(ZKString::ToString(DBL_MAX, 2).GetSize(), 312) << "no length limit";
    EXPECT_EQ(Bytes(ZKString::ToString(HUGE_VAL, 2)), "inf");
}

// All three forms of conversion `name` read `text` as `expected`.
#define EXPECT_ALL_FORMS(name, text, expected)                                                                \
    ExpectAllForms<decltype(ZKString::name(""))>(ZKString::name, ZKString::name, &ZKString::name, text, expected)

TEST(StringToNumber, SignedConversionsAndTheirMessages)
{
    EXPECT_ALL_FORMS(ToInt32, "  42xyz", 42);
    EXPECT_ALL_FORMS(ToInt32, "\t-2147483648", INT_MIN);
    EXPECT_ALL_FORMS(ToInt32, "+7", 7);
    EXPECT_ALL_FORMS(ToInt8, "300", 44);  // the narrow forms cut the 32-bit result unchecked
    EXPECT_ALL_FORMS(ToInt8, "-129", 127);
    EXPECT_ALL_FORMS(ToInt16, "65537", 1);
    EXPECT_ALL_FORMS(ToInt64, "-9223372036854775808", LLONG_MIN);
    EXPECT_ALL_FORMS(ToInt64, "4294967296", 4294967296LL);

    for (char const* bad : {"xyz", "", "- 1", "+-1"})
        ExpectInvalid([&] { ZKString::ToInt32(bad); }, "invalid stoi argument");
    ExpectInvalid([] { ZKString(std::string("\0" "12", 3).c_str(), 3).ToInt32(); }, "invalid stoi argument");
    ExpectInvalid([] { ZKString::ToInt8("z"); }, "invalid stoi argument");
    ExpectInvalid([] { ZKString::ToInt64("."); }, "invalid stoll argument");
    // The 32-bit limit holds even where long has 64 bits.
    ExpectOutOfRange([] { ZKString::ToInt32("2147483648"); }, "stoi argument out of range");
    ExpectOutOfRange([] { ZKString::ToInt32("-2147483649"); }, "stoi argument out of range");
    ExpectOutOfRange([] { ZKString::ToInt16("99999999999"); }, "stoi argument out of range");
    ExpectOutOfRange([] { ZKString::ToInt64("9223372036854775808"); }, "stoll argument out of range");
}

TEST(StringToNumber, UnsignedConversionsAcceptAMinusSign)
{
    EXPECT_ALL_FORMS(ToUInt32, "-1", 4294967295u);
    EXPECT_ALL_FORMS(ToUInt32, "4294967295", 4294967295u);
    EXPECT_ALL_FORMS(ToUInt32, "-4294967295", 1u);  // a 32-bit magnitude negated modulo 2^32
    EXPECT_ALL_FORMS(ToUInt32, " -0", 0u);
    EXPECT_ALL_FORMS(ToUInt8, "257", 1);
    EXPECT_ALL_FORMS(ToUInt8, "-1", 255);
    EXPECT_ALL_FORMS(ToUInt16, "70000", 4464);
    EXPECT_ALL_FORMS(ToUInt64, "18446744073709551615", ULLONG_MAX);
    EXPECT_ALL_FORMS(ToUInt64, "-2", ULLONG_MAX - 1);

    ExpectInvalid([] { ZKString::ToUInt32("+"); }, "invalid stoul argument");
    ExpectInvalid([] { ZKString::ToUInt16(" "); }, "invalid stoul argument");
    ExpectInvalid([] { ZKString::ToUInt64("x1"); }, "invalid stoull argument");
    ExpectOutOfRange([] { ZKString::ToUInt32("4294967296"); }, "stoul argument out of range");
    ExpectOutOfRange([] { ZKString::ToUInt32("-4294967296"); }, "stoul argument out of range");
    ExpectOutOfRange([] { ZKString::ToUInt8("99999999999999999999999"); }, "stoul argument out of range");
    ExpectOutOfRange([] { ZKString::ToUInt64("18446744073709551616"); }, "stoull argument out of range");
}

TEST(StringToNumber, FloatingPointConversions)
{
    EXPECT_ALL_FORMS(ToDouble, " 2.5e3kg", 2500.0);
    EXPECT_ALL_FORMS(ToDouble, "-.25", -0.25);
    EXPECT_ALL_FORMS(ToFloat, "1.5", 1.5f);
    EXPECT_EQ(ZKString::ToFloat("3.4e38"), 3.4e38f);
    EXPECT_TRUE(std::isinf(ZKString::ToDouble("inf")));
    ExpectOutOfRange([] { ZKString::ToDouble("1e999"); }, "stod argument out of range");
    ExpectOutOfRange([] { ZKString::ToDouble("1e-999"); }, "stod argument out of range");
    ExpectOutOfRange([] { ZKString::ToFloat("1e39"); }, "stof argument out of range");
    ExpectOutOfRange([] { ZKString::ToFloat("1e-50"); }, "stof argument out of range");
    ExpectInvalid([] { ZKString::ToFloat("e5"); }, "invalid stof argument");
    ExpectInvalid([] { ZKString::ToDouble(""); }, "invalid stod argument");
}

TEST(StringToNumber, ErrnoIsLeftAsItWasOnSuccess)
{
    errno = EDOM;
    EXPECT_EQ(ZKString::ToInt32("5"), 5);
    EXPECT_EQ(errno, EDOM);
}

TEST(StringFormat, AllFormsFormatWithoutALengthLimit)
{
    EXPECT_EQ(Bytes(ZKString::FormatStr("%d-%s-%c", 12, "ab", 'z')), "12-ab-z");
    EXPECT_EQ(Bytes(ZKString::FormatStr(ZKString("[%5.1f]"), 3.14159)), "[  3.1]");
    EXPECT_EQ(Bytes(CallFormatList("%lld|%x", -3LL, 255u)), "-3|ff");

    std::string const big(100000, 'q');
    ZKString const formatted = ZKString::FormatStr("<%s>", big.c_str());
    ASSERT_EQ(formatted.GetSize(), 100002);
    EXPECT_EQ(Bytes(formatted), "<" + big + ">");

    ZKString target("old text that goes away");
    target.Format("%u items", 3u);
    EXPECT_EQ(Bytes(target), "3 items");
    target.Format(ZKString("%s%s"), "x", "y");
    EXPECT_EQ(Bytes(target), "xy");
    target.Format("%s", "");
    EXPECT_TRUE(target.IsEmpty());
}

TEST(StringFormat, ResultStopsAtAFormattedZeroByte)
{
    char const zero = '\0';
    EXPECT_EQ(Bytes(ZKString::FormatStr("ab%cde", zero)), "ab");
    va_list* none = nullptr;
    EXPECT_TRUE(ZKString::FormatStr("%d", none).IsEmpty()) << "a null list pointer gives an empty string";
    EXPECT_TRUE(ZKString::FormatStr("%d", 0).IsEmpty()) << "a literal 0 is a null list pointer";
    int number = 0;
    EXPECT_EQ(Bytes(ZKString::FormatStr("%d", number)), "0");
}

TEST(StringScan, AllFormsWriteThroughThePointers)
{
    int a = 0, b = 0;
    ZKString::Scan("10 20", "%d %d", &a, &b);
    EXPECT_EQ(a, 10);
    EXPECT_EQ(b, 20);

    double d = 0;
    unsigned int hex = 0;
    ZKString::Scan(ZKString("0x1f 2.5"), ZKString("%x %lf"), &hex, &d);
    EXPECT_EQ(hex, 31u);
    EXPECT_EQ(d, 2.5);

    ZKString const self("7 eight");
    char word[16] = {};
    int n = 0;
    self.Scan("%d %15s", &n, word);
    EXPECT_EQ(n, 7);
    EXPECT_STREQ(word, "eight");

    long long big = 0;
    self.Scan(ZKString("%lld"), &big);
    EXPECT_EQ(big, 7);

    int x = 0, y = 0;
    CallScanList("3,4", "%d,%d", &x, &y);
    EXPECT_EQ(x + y, 7);
    CallScanListOnStrings(ZKString("5;6"), ZKString("%d;%d"), &x, &y);
    EXPECT_EQ(x * y, 30);
}

TEST(StringScan, NullInputsAndCutTexts)
{
    int value = -1;
    CallScanList(nullptr, "%d", &value);
    CallScanList("5", nullptr, &value);
    EXPECT_EQ(value, -1) << "a null text or format does nothing";

    ZKString text("1");
    text += '\0';
    text += "2";
    text.Scan("%d%d", &value, &value);
    EXPECT_EQ(value, 1) << "the text ends at its first zero byte";

    ZKString format("%d");
    format += '\0';
    format += "junk %d";
    int other = -1;
    ZKString::Scan(ZKString("9 8"), format, &value, &other);
    EXPECT_EQ(value, 9);
    EXPECT_EQ(other, -1) << "the format is copied up to its first zero byte";
}

TEST(StringFreeOperators, SidesExchanged)
{
    ZKString const a("a");
    EXPECT_TRUE("a" == a);
    EXPECT_FALSE("a" != a);
    EXPECT_FALSE("ab" == a);
    EXPECT_TRUE('a' == a);
    EXPECT_FALSE('b' == a);
    EXPECT_TRUE('a' != ZKString("aa"));
    ZKString withZero(a);
    withZero += '\0';
    EXPECT_FALSE("a" == withZero) << "sizes differ";
    EXPECT_FALSE('\0' == ZKString()) << "an empty string is not char 0";

    EXPECT_EQ(Bytes("x" + ZKString("yz")), "xyz");
    EXPECT_EQ(Bytes('x' + ZKString("yz")), "xyz");
    EXPECT_TRUE(('\0' + ZKString("yz")).IsEmpty()) << "a zero left side cuts everything";
    EXPECT_EQ(Bytes("x" + withZero), "xa");
}

TEST(StringByteSizes, ScaledByPowersOfTwo)
{
    EXPECT_EQ(Bytes(FormatStrBytesToKB(1536, 1)), "1.5");
    EXPECT_EQ(Bytes(FormatStrBytesToKB(1023, 0)), "1");
    EXPECT_EQ(Bytes(FormatStrBytesToMB(3u << 19, 2)), "1.50");
    EXPECT_EQ(Bytes(FormatStrBytesToGB(0, 2)), "0.00");
    EXPECT_EQ(Bytes(FormatStrBytesToGB(1ull << 40, 0)), "1024");
    EXPECT_EQ(Bytes(FormatStrBytesToGB(ULLONG_MAX, 0)), "17179869184") << "converted as an unsigned value";
}

TEST(StringHex, ValueToHex)
{
    EXPECT_EQ(Bytes(FormatStrValueToHex(255, true, 4)), "00ff");
    EXPECT_EQ(Bytes(FormatStrValueToHex(255, false, 4)), "ff");
    EXPECT_EQ(Bytes(FormatStrValueToHex(4096, true, 2)), "1000") << "a wider value keeps its digits";
    EXPECT_EQ(Bytes(FormatStrValueToHex(0, false, 0)), "0");
    EXPECT_EQ(Bytes(FormatStrValueToHex(0, true, 0)), "0");
    EXPECT_EQ(Bytes(FormatStrValueToHex(ULLONG_MAX, true, 20)), "0000ffffffffffffffff");
    EXPECT_EQ(FormatStrValueToHex(1, true, 255).GetSize(), 255);
}

TEST(StringHex, HexToValue)
{
    EXPECT_EQ(FormatStrHexToValue(ZKString("ff")), 255u);
    EXPECT_EQ(FormatStrHexToValue(ZKString("0xFF")), 255u);
    EXPECT_EQ(FormatStrHexToValue(ZKString("  aBc")), 0xabcu);
    EXPECT_EQ(FormatStrHexToValue(ZKString("12g4")), 0x12u) << "stops at the first byte that can't continue";
    EXPECT_EQ(FormatStrHexToValue(ZKString("xyz")), 0u);
    EXPECT_EQ(FormatStrHexToValue(ZKString("")), 0u);
    EXPECT_EQ(FormatStrHexToValue(ZKString("ffffffffffffffff")), ULLONG_MAX);
    EXPECT_EQ(FormatStrHexToValue(ZKString("10000000000000000")), ULLONG_MAX) << "over 64 bits";
    ZKString cut("1");
    cut += '\0';
    cut += "f";
    EXPECT_EQ(FormatStrHexToValue(cut), 1u);
}

TEST(StringHex, BytesToHexLineLayout)
{
    unsigned char const bytes[] = {1, 2, 3, 171};
    EXPECT_EQ(Bytes(FormatStrBytesToHex(bytes, 3, 2)), "00000001 00000002 \n00000003");
    EXPECT_EQ(Bytes(FormatStrBytesToHex(bytes, 4, 2)), "00000001 00000002 \n00000003 000000ab")
        << "no line feed after the last byte";
    EXPECT_EQ(Bytes(FormatStrBytesToHex(bytes, 4, 0)), "00000001 00000002 00000003 000000ab");
    EXPECT_EQ(Bytes(FormatStrBytesToHex(bytes, 2, 1)), "00000001 \n00000002");
    EXPECT_EQ(Bytes(FormatStrBytesToHex(bytes, 1, 1)), "00000001");
    EXPECT_TRUE(FormatStrBytesToHex(bytes, 0, 2).IsEmpty());
    EXPECT_TRUE(FormatStrBytesToHex(nullptr, 3, 2).IsEmpty());

    ZKString counted("a");
    counted += '\0';
    counted += 'b';
    EXPECT_EQ(Bytes(FormatStrBytesToHex(counted, 8)), "00000061 00000000 00000062") << "the whole counted text";
}
