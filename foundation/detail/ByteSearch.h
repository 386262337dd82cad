#pragma once

// Substring and byte searches with exactly the results of std::string's
// find and rfind (npos for a miss), vectorised: candidate positions are
// those where both the needle's first and its last byte match, 16 at a
// time, and only those are compared in full.

#include <cstddef>

namespace zk64::detail {

inline constexpr std::size_t kNoPosition = static_cast<std::size_t>(-1);

// First occurrence of needle[0, m) in haystack[0, n) starting at or after
// `from`; an empty needle is found at `from` while from <= n.
std::size_t FindBytes(char const* haystack, std::size_t n, char const* needle, std::size_t m, std::size_t from);
// Last occurrence starting at or before `from`; an empty needle is found at
// min(from, n).
std::size_t RFindBytes(char const* haystack, std::size_t n, char const* needle, std::size_t m, std::size_t from);
// Last `c` at or before `from` (a `from` past the end means the last byte).
std::size_t RFindByte(char const* haystack, std::size_t n, char c, std::size_t from);

}  // namespace zk64::detail
