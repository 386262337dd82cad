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
    value.Init();
    EXPECT_TRUE(value == BigInteger());
    EXPECT_EQ(Bytes((BigInteger(ZKString("12")) + BigInteger(ZKString("34"))).GetValue()), "1234");
}

TEST(BigInteger, PlusAssignAddsDigitTexts)
{
    auto sum = [](std::string const& left, std::string const& right) {
        BigInteger value{ZKString(left.c_str())};
        value += BigInteger(ZKString(right.c_str()));
        return Bytes(value.GetValue());
    };
    // Rows read "left+right=sum".
    for (std::string const row : {"999+1=1000", "5+5=10", "123+9=132", "9+123=132", "007+1=008", "0+0=0",
                                  "+=", "+12=12", "19+81=100", "45+54=99", "18+1=19"}) {
        std::size_t const plus = row.find('+'), equals = row.find('=');
        EXPECT_EQ(sum(row.substr(0, plus), row.substr(plus + 1, equals - plus - 1)), row.substr(equals + 1)) << row;
    }
    EXPECT_EQ(sum(std::string(3000, '9'), "1"), "1" + std::string(3000, '0'));
    EXPECT_EQ(sum(std::string(2500, '5'), std::string(2500, '5')), std::string(2500, '1') + "0");

    BigInteger chained(ZKString("1"));
    for (int i = 0; i < 10; ++i) chained += chained;
    EXPECT_EQ(Bytes(chained.GetValue()), "1024") << "adding itself";
    ZKString const cut = zk64::test::Counted(std::string("12\00099", 5));
    EXPECT_EQ(Bytes(chained.AddIntStrs(cut, ZKString("1"))), "13") << "operands are read up to their first zero";

    for (char const* bad : {"12a", "-1", "1 2", "+1", "\t", "/", ":"}) {
        BigInteger left{ZKString("5")};
        zk64::test::ExpectThrowWithMessage<std::invalid_argument>([&] { left += BigInteger(ZKString(bad)); },
                                                                  "invalid stoul argument");
        zk64::test::ExpectThrowWithMessage<std::invalid_argument>([&] { BigInteger(ZKString(bad)) += left; },
                                                                  "invalid stoul argument");
        EXPECT_EQ(Bytes(left.GetValue()), "5") << "a failed addition leaves the value";
    }
}
