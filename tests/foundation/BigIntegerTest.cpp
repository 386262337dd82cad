// BigInteger: addition on digit texts, and the + that joins.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <stdexcept>
#include <string>

#include "foundation/StringTestSupport.h"

using zk64::test::Bytes;
using zk64::test::ExpectThrowWithMessage;

namespace {

std::string Sum(char const* left, char const* right)
{
    BigInteger value{ZKString(left)};
    value += BigInteger(ZKString(right));
    return Bytes(value.GetValue());
}

}  // namespace

TEST(BigInteger, ValueLifecycle)
{
    BigInteger value;
    EXPECT_EQ(Bytes(value.GetValue()), "0");
    value.SetValue(ZKString("0042"));
    EXPECT_EQ(Bytes(value.GetValue()), "0042") << "stored unchecked, leading zeros kept";
    value.Init();
    EXPECT_EQ(Bytes(value.GetValue()), "0");
    value.SetValue(ZKString("not a number"));
    EXPECT_EQ(Bytes(value.GetValue()), "not a number");

    BigInteger const copy(value);
    EXPECT_TRUE(copy == value);
    BigInteger other;
    other = copy;
    EXPECT_TRUE(other == value);
    EXPECT_FALSE(BigInteger(ZKString("007")) == BigInteger(ZKString("7"))) << "text equality";
}

TEST(BigInteger, PlusAssignAdds)
{
    EXPECT_EQ(Sum("999", "1"), "1000");
    EXPECT_EQ(Sum("5", "5"), "10");
    EXPECT_EQ(Sum("123", "9"), "132") << "the shorter operand is padded on the left";
    EXPECT_EQ(Sum("9", "123"), "132");
    EXPECT_EQ(Sum("007", "1"), "008") << "leading zeros survive";
    EXPECT_EQ(Sum("0", "0"), "0");
    EXPECT_EQ(Sum("", ""), "");
    EXPECT_EQ(Sum("", "12"), "12");
    EXPECT_EQ(Sum("19", "81"), "100");

    BigInteger chained(ZKString("1"));
    for (int i = 0; i < 10; ++i) chained += chained;
    EXPECT_EQ(Bytes(chained.GetValue()), "1024") << "adding itself";
}

TEST(BigInteger, PlusJoinsTheTexts)
{
    BigInteger const joined = BigInteger(ZKString("12")) + BigInteger(ZKString("34"));
    EXPECT_EQ(Bytes(joined.GetValue()), "1234");
    EXPECT_EQ(Bytes((BigInteger() + BigInteger()).GetValue()), "00");
}

TEST(BigInteger, NonDigitsThrowAndLeaveTheValue)
{
    auto expectInvalid = [](char const* left, char const* right) {
        BigInteger value{ZKString(left)};
        ExpectThrowWithMessage<std::invalid_argument>([&] { value += BigInteger(ZKString(right)); },
                                                      "invalid stoul argument");
        EXPECT_EQ(Bytes(value.GetValue()), left);
    };
    expectInvalid("12a", "1");
    expectInvalid("-1", "1");
    expectInvalid("1 2", "1");
    expectInvalid("1", "+1");
    expectInvalid("5", "\t");
}

TEST(BigInteger, AddIntStrsOnLongNumbers)
{
    BigInteger const any;
    std::string const nines(3000, '9');
    EXPECT_EQ(Bytes(any.AddIntStrs(ZKString(nines.c_str()), ZKString("1"))), std::string("1").append(3000, '0'));
    std::string const fives(2500, '5');
    EXPECT_EQ(Bytes(any.AddIntStrs(ZKString(fives.c_str()), ZKString(fives.c_str()))),
              std::string(2500, '1') + "0");

    ZKString cut("12");
    cut += '\0';
    cut += "99";
    EXPECT_EQ(Bytes(any.AddIntStrs(cut, ZKString("1"))), "13") << "operands are read up to their first zero";
}
