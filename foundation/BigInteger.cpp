#include "BigInteger.h"

#include <algorithm>
#include <stdexcept>
#include <string>

BigInteger::BigInteger() : value("0") {}

BigInteger::BigInteger(BigInteger const& other) { value = other.value; }

BigInteger::BigInteger(ZKString const& text) { value = text; }

BigInteger::~BigInteger() = default;

void BigInteger::Init() { value = "0"; }

ZKString BigInteger::GetValue() const { return value; }

void BigInteger::SetValue(ZKString const& text) { value = text; }

BigInteger& BigInteger::operator=(BigInteger const& other)
{
    value = other.value;
    return *this;
}

bool BigInteger::operator==(BigInteger const& other) const { return value == other.value; }

BigInteger& BigInteger::operator+=(BigInteger const& other)
{
    value = AddIntStrs(value, other.value);
    return *this;
}

BigInteger BigInteger::operator+(BigInteger const& other) const { return BigInteger(value + other.value); }

ZKString BigInteger::AddIntStrs(ZKString const& left, ZKString const& right) const
{
    std::string a(left.GetString());
    std::string b(right.GetString());
    std::size_t const n = std::max(a.size(), b.size());
    a.insert(0, n - a.size(), '0');
    b.insert(0, n - b.size(), '0');

    // Each byte is read as the one-byte text it is, with ToUInt8's rules: a
    // lone digit is its value, and any other lone byte has no digits.
    auto digitOf = [](char c) -> unsigned {
        if (c < '0' || c > '9') throw std::invalid_argument("invalid stoul argument");
        return static_cast<unsigned>(c - '0');
    };
    std::string sum(n, '0');
    unsigned carry = 0;
    for (std::size_t i = n; i-- > 0;) {
        unsigned const digit = digitOf(a[i]) + digitOf(b[i]) + carry;
        carry = digit > 9 ? 1 : 0;
        sum[i] = static_cast<char>('0' + digit - 10 * carry);
    }
    if (carry != 0) sum.insert(sum.begin(), '1');
    return ZKString(sum.c_str(), static_cast<int>(sum.size()));
}
