#pragma once

// HashString: a text turned into a chosen number of upper-case hexadecimal
// digits by the library's own byte digest. The digest is a cheap, repeatable
// scrambler, not a cryptographic hash; its exact output is fixed.
//
// The digest of n bytes s[0..n) has n digits: for each position i, the
// bytes s[i], s[i+1], s[i+2], s[i+3] (indexes modulo n) are summed modulo
// 256, complemented, multiplied by (i + 1) modulo 256 and written as two
// digits, high first; the first n of those 2n digits are the digest.
//
// HashString returns `length` digits (with useTextLength, as many digits as
// the text has bytes, that count cut to 16 bits): the digest repeated as
// often as needed, or a prefix of it. "wxyz" with length 6 is "1D3A1D".
// An empty text gives an empty result for every length.

#include "ZKExport.h"
#include "ZKString.h"

// The text is read up to its terminator; it must not be null.
ZK_API ZKString HashString(char const* text, unsigned short length, bool useTextLength);
// The text is read up to its first zero byte.
ZK_API ZKString HashString(ZKString const& text, unsigned short length, bool useTextLength);
