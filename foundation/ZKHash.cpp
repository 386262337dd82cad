// The byte digest, HashString and ZKString::Hash.

#include "ZKHash.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "detail/Digest.h"

namespace zk64::detail {

namespace {

// Two upper-case hexadecimal digits per byte value, high digit first.
constexpr std::array<std::array<char, 2>, 256> MakeDigitPairs()
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::array<std::array<char, 2>, 256> pairs{};
    for (unsigned v = 0; v < 256; ++v) pairs[v] = {kDigits[v >> 4], kDigits[v & 15]};
    return pairs;
}
constexpr auto kDigitPairs = MakeDigitPairs();

inline unsigned PositionValue(std::size_t i, unsigned sum)
{
    return ((~sum & 0xFFu) * static_cast<unsigned>((i + 1) & 0xFFu)) & 0xFFu;
}

}  // namespace

void DigestDigits(unsigned char const* text, std::size_t length, std::size_t count, std::string& out)
{
    // Position i gives digits 2i and 2i + 1; only the first `count` digits
    // are kept, so only the first half of the positions are ever computed.
    std::size_t const positions = (count + 1) / 2;
    out.resize(2 * positions);
    char* digits = out.data();
    // Positions whose four bytes don't wrap, then the ones that do.
    std::size_t const direct = length >= 3 ? std::min(positions, length - 3) : 0;
    for (std::size_t i = 0; i < direct; ++i) {
        unsigned const sum = text[i] + text[i + 1] + text[i + 2] + text[i + 3];
        std::memcpy(digits + 2 * i, kDigitPairs[PositionValue(i, sum)].data(), 2);
    }
    for (std::size_t i = direct; i < positions; ++i) {
        unsigned const sum =
            text[i % length] + text[(i + 1) % length] + text[(i + 2) % length] + text[(i + 3) % length];
        std::memcpy(digits + 2 * i, kDigitPairs[PositionValue(i, sum)].data(), 2);
    }
    out.resize(count);
}

ZKString ComputeByteDigest(char const* text, std::size_t length)
{
    std::string digits;
    DigestDigits(reinterpret_cast<unsigned char const*>(text), length, length, digits);
    return ZKString(digits.c_str(), static_cast<int>(digits.size()));
}

}  // namespace zk64::detail

ZKString HashString(char const* text, unsigned short length, bool useTextLength)
{
    std::size_t const size = std::strlen(text);
    std::size_t const target = useTextLength ? static_cast<unsigned short>(size) : length;
    // An empty text has an empty digest, which no repetition lengthens.
    if (size == 0 || target == 0) return ZKString();

    // The digest joined to itself until it is long enough, then cut: digit
    // k of the result is digit k mod size of the digest.
    std::string result;
    zk64::detail::DigestDigits(reinterpret_cast<unsigned char const*>(text), size, std::min(size, target), result);
    if (target > size) {
        result.resize(target);
        for (std::size_t k = size; k < target; ++k) result[k] = result[k - size];
    }
    return ZKString(result.c_str(), static_cast<int>(result.size()));
}

ZKString HashString(ZKString const& text, unsigned short length, bool useTextLength)
{
    return HashString(text.GetString(), length, useTextLength);
}

ZKString ZKString::Hash(char const* text, unsigned short length, bool useTextLength)
{
    return HashString(text, length, useTextLength);
}

ZKString ZKString::Hash(unsigned short length, bool useTextLength) const
{
    return HashString(*this, length, useTextLength);
}
