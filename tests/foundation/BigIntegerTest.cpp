// BigInteger: addition on digit texts, and the + that joins.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <stdexcept>
#include <string>

#include "foundation/Support.h"

using zk64::test::Bytes;

TEST(BigInteger, ValueAndJoin)
{
    BigInteger value;
    EXPECT_EQ(Bytes(value.GetValue()), "0");
    value.SetValue(ZKString("007"));
    EXPECT_FALSE(value == BigInteger(ZKString("7"))) << "stored unchecked, compared as text";
    EXPECT_TRUE((value.Init(), value) == BigInteger());
    EXPECT_EQ(Bytes((BigInteger(ZKString("12")) + BigInteger(ZKString("34"))).GetValue()), "1234");
}

TEST(BigInteger, PlusAssignAddsDigitTexts)
{
    std::string const nines(3000, '9'), fives(2500, '5');
    struct Row {
        std::string left, right, sum;
    } const rows[] = {
        {"999", "1", "1000"}, {"5", "5", "10"},   {"123", "9", "132"}, {"9", "123", "132"},
        {"007", "1", "008"},  {"0", "0", "0"},    {"", "", ""},        {"", "12", "12"},
        {"19", "81", "100"},  {"45", "54", "99"}, {"18", "1", "19"},   {nines, "1", "1" + std::string(3000, '0')},
        {fives, fives, std::string(2500, '1') + "0"},
    };
    for (Row const& row : rows) {
        BigInteger value{ZKString(row.left.c_str())};
        value += BigInteger(ZKString(row.right.c_str()));
        EXPECT_EQ(Bytes(value.GetValue()), row.sum) << row.left.substr(0, 10) << " + " << row.right.substr(0, 10);
    }
    BigInteger chained(ZKString("1"));
    for (int i = 0; i < 10; ++i) chained += chained;
    EXPECT_EQ(Bytes(chained.GetValue()), "1024") << "adding itself";
    EXPECT_EQ(Bytes(chained.AddIntStrs(zk64::test::Counted(std::string("12\0" "99", 5)), ZKString("1"))), "13")
        << "operands are read up to their first zero";

    for (char const* bad : {"12a", "-1", "1 2", "+1", "\t", "/", ":"}) {
        BigInteger left{ZKString("5")};
        zk64::test::ExpectThrowWithMessage<std::invalid_argument>([&] { left += BigInteger(ZKString(bad)); },
                                                                   "invalid stoul argument");
        zk64::test::ExpectThrowWithMessage<std::invalid_argument>([&] { BigInteger(ZKString(bad)) += left; },
                                                                   "invalid stoul argument");
        EXPECT_EQ(Bytes(left.GetValue()), "5") << "a failed addition leaves the value";
    }
}
