#include "detail/ByteSearch.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#  include <emmintrin.h>
#endif

namespace zk64::detail {
namespace {

// Inline rather than memcmp: candidates are checked inside the vector
// loops, where a call would force the vector registers out to memory, and
// a mismatch is usually found within a few bytes.
inline bool SameBytes(char const* a, char const* b, std::size_t count)
{
    for (std::size_t k = 0; k < count; ++k)
        if (a[k] != b[k]) return false;
    return true;
}

#if defined(__SSE2__)
// Bit k: both needle[0] at haystack[k] and needle[m - 1] at
// haystack[k + m - 1], for the 16 starts from `at`.
inline unsigned Candidates(char const* at, std::size_t m, __m128i first, __m128i last)
{
    __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const*>(at));
    __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const*>(at + m - 1));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, last))));
}
#endif

}  // namespace

std::size_t FindBytes(char const* haystack, std::size_t n, char const* needle, std::size_t m, std::size_t from)
{
    if (from > n || m > n - from) return m == 0 && from <= n ? from : kNoPosition;
    if (m == 0) return from;
    if (m == 1) {
        void const* hit = std::memchr(haystack + from, needle[0], n - from);
        return hit ? static_cast<std::size_t>(static_cast<char const*>(hit) - haystack) : kNoPosition;
    }
    std::size_t const lastStart = n - m;
    std::size_t i = from;
#if defined(__SSE2__)
    __m128i const first = _mm_set1_epi8(needle[0]);
    __m128i const last = _mm_set1_epi8(needle[m - 1]);
    // 32 starts per step, so that a typical gap between hits costs one or
    // two branches.
    for (; i <= lastStart && lastStart - i >= 31; i += 32) {
        std::uint32_t mask = Candidates(haystack + i, m, first, last) |
                             (static_cast<std::uint32_t>(Candidates(haystack + i + 16, m, first, last)) << 16);
        for (; mask != 0; mask &= mask - 1) {
            std::size_t const at = i + static_cast<unsigned>(std::countr_zero(mask));
            if (SameBytes(haystack + at + 1, needle + 1, m - 2)) return at;
        }
    }
    for (; i <= lastStart && lastStart - i >= 15; i += 16) {
        for (unsigned mask = Candidates(haystack + i, m, first, last); mask != 0; mask &= mask - 1) {
            std::size_t const at = i + static_cast<unsigned>(std::countr_zero(mask));
            if (SameBytes(haystack + at + 1, needle + 1, m - 2)) return at;
        }
    }
#endif
    for (; i <= lastStart; ++i)
        if (haystack[i] == needle[0] && SameBytes(haystack + i + 1, needle + 1, m - 1)) return i;
    return kNoPosition;
}

std::size_t RFindBytes(char const* haystack, std::size_t n, char const* needle, std::size_t m, std::size_t from)
{
    if (m > n) return kNoPosition;
    std::size_t const start = std::min(from, n - m);
    if (m == 0) return start;
    if (m == 1) return RFindByte(haystack, n, needle[0], start);
    // Candidate starts from `start` down to 0; `end` is one past the
    // highest start still to be tried.
    std::size_t end = start + 1;
#if defined(__SSE2__)
    __m128i const first = _mm_set1_epi8(needle[0]);
    __m128i const last = _mm_set1_epi8(needle[m - 1]);
    for (; end >= 16; end -= 16) {
        std::size_t const base = end - 16;
        for (unsigned mask = Candidates(haystack + base, m, first, last); mask != 0;) {
            unsigned const bit = 31u - static_cast<unsigned>(std::countl_zero(mask));
            if (SameBytes(haystack + base + bit + 1, needle + 1, m - 2)) return base + bit;
            mask &= ~(1u << bit);
        }
    }
#endif
    while (end-- > 0)
        if (haystack[end] == needle[0] && SameBytes(haystack + end + 1, needle + 1, m - 1)) return end;
    return kNoPosition;
}

std::size_t RFindByte(char const* haystack, std::size_t n, char c, std::size_t from)
{
    if (n == 0) return kNoPosition;
    std::size_t end = std::min(from, n - 1) + 1;  // one past the highest position to try
#if defined(__SSE2__)
    __m128i const wanted = _mm_set1_epi8(c);
    for (; end >= 16; end -= 16) {
        __m128i const block = _mm_loadu_si128(reinterpret_cast<__m128i const*>(haystack + end - 16));
        auto const mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, wanted)));
        if (mask != 0) return end - 16 + (31u - static_cast<unsigned>(std::countl_zero(mask)));
    }
#endif
    while (end-- > 0)
        if (haystack[end] == c) return end;
    return kNoPosition;
}

}  // namespace zk64::detail
