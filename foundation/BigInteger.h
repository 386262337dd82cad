#pragma once

// BigInteger: a non-negative whole number of any length, held as decimal
// text, most significant digit first. It only adds, digit by digit.
//
// No invariant is enforced: the constructor and SetValue store any text, and
// leading zeros stay. Note the two additions:
//   operator+=  adds:  "999" += "1" gives "1000".
//   operator+   joins the texts: "12" + "34" gives "1234".

#include "ZKExport.h"
#include "ZKString.h"

class ZK_API BigInteger {
public:
    BigInteger();                            // "0"
    BigInteger(BigInteger const& other);     // the whole of other's text
    BigInteger(ZKString const& text);        // the whole text, unchecked
    ~BigInteger();

    void Init();                             // back to "0"
    ZKString GetValue() const;               // a copy (the copy constructor's: up to the first zero byte)
    void SetValue(ZKString const& text);     // the whole text, unchecked

    BigInteger& operator=(BigInteger const& other);
    // Text equality: "007" differs from "7".
    bool operator==(BigInteger const& other) const;
    // value becomes AddIntStrs(value, other.value); on an error value stays.
    BigInteger& operator+=(BigInteger const& other);
    // The two texts joined (ZKString's operator+), not a sum.
    BigInteger operator+(BigInteger const& other) const;

    // Schoolbook addition of two digit texts, each read up to its first zero
    // byte. The shorter one is padded on the left with zeros; the result has
    // the longer length, plus one digit if the top digit carries. Leading
    // zeros survive ("007" + "1" is "008"), two empty texts give an empty
    // one. A byte that isn't a digit throws std::invalid_argument("invalid
    // stoul argument"). Doesn't read this object.
    ZKString AddIntStrs(ZKString const& left, ZKString const& right) const;

private:
    ZKString value;
};
