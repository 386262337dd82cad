#pragma once

// UTF-8 <-> UTF-16 conversion, the library's own so that both builds give
// the same results.
//
// Ill-formed input never fails and never stops a conversion:
//   * UTF-8 -> UTF-16: each maximal subpart of an ill-formed sequence (a
//     byte that cannot start a sequence, or the valid start of a sequence cut
//     short by a byte that cannot continue it) becomes one U+FFFD. Overlong
//     forms, encoded surrogates (ED A0..BF) and values above U+10FFFF are
//     ill-formed. This is the Unicode "maximal subpart" practice.
//   * UTF-16 -> UTF-8: an unpaired surrogate becomes U+FFFD (EF BF BD).

#include <cstddef>
#include <string>

#include "../ZKExport.h"

namespace zk64::detail {

// Number of UTF-16 units that `length` bytes of UTF-8 convert to.
std::size_t Utf16Length(unsigned char const* text, std::size_t length);
// Converts `length` bytes; `out` has room for Utf16Length(text, length) units.
void Utf8ToUtf16(unsigned char const* text, std::size_t length, ZKWideChar* out);
// Appends the UTF-8 form of `length` UTF-16 units to `out`.
void AppendUtf16AsUtf8(ZKWideChar const* text, std::size_t length, std::string& out);

}  // namespace zk64::detail
