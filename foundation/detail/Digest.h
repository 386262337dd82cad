#pragma once

// The library's byte digest (see ZKHash.h), for HashString and for the
// machine identifier.

#include <cstddef>
#include <string>

#include "../ZKString.h"

namespace zk64::detail {

// The digest of `length` bytes: `length` upper-case hexadecimal digits.
// Empty for a length of 0.
ZKString ComputeByteDigest(char const* text, std::size_t length);

// The first `count` digits of the digest (count <= length) into `out`.
void DigestDigits(unsigned char const* text, std::size_t length, std::size_t count, std::string& out);

}  // namespace zk64::detail
