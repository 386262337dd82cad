// HashString and ZKString::Hash on hand-computed digests and against the
// literal steps: every position, 2n digits cut to n, then the result joined
// to itself until it is long enough.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <random>
#include <string>
#include <vector>

#include "foundation/Support.h"

using zk64::test::AllBytes;
using zk64::test::Bytes;

namespace {

std::string LiteralHash(std::string const& text, unsigned short length, bool useTextLength)
{
    std::size_t const n = text.size();
    std::string digest;
    for (std::size_t i = 0; i < n; ++i) {
        unsigned sum = 0;
        for (std::size_t k = 0; k < 4; ++k) sum += static_cast<unsigned char>(text[(i + k) % n]);
        unsigned const value = ((~sum & 0xFF) * ((i + 1) % 256)) & 0xFF;
        digest += "0123456789ABCDEF"[value >> 4];
        digest += "0123456789ABCDEF"[value & 15];
    }
    digest.resize(n);
    std::size_t const target = useTextLength ? static_cast<unsigned short>(n) : length;
    while (n > 0 && target > digest.size()) digest += digest;
    return n == 0 ? "" : digest.substr(0, target);
}

}  // namespace

TEST(HashString, DigestsAndForms)
{
    // Hand-computed digests; the model below covers the rest. The text's own
    // length ignores the one asked for, an odd length ends in a high digit,
    // bytes count as unsigned, and an empty digest can't be lengthened.
    EXPECT_EQ(AllBytes(HashString("wxyz", 6, false), HashString("wxyz", 99, true), HashString("abc", 7, false),
                       HashString("\xff\xff\xff\xff", 2, false), HashString("", 5, false)),
              (std::vector<std::string>{"1D3A1D", "1D3A", "78E78E7", "03", ""}));
    std::string const long64k(65536, 'q');
    EXPECT_TRUE(HashString(long64k.c_str(), 7, true).IsEmpty()) << "65,536 bytes cut to 16 bits is 0";
    EXPECT_EQ(HashString((long64k + "q").c_str(), 7, true).GetSize(), 1);
    ZKString const cut = zk64::test::Counted(std::string("wxyz\0tail", 9));
    EXPECT_EQ(Bytes(HashString(cut, 0, true)), "1D3A") << "up to the first zero byte";
    EXPECT_EQ(Bytes(ZKString::Hash("wxyz", 6, false) + cut.Hash(6, false)), "1D3A1D1D3A1D");

    std::mt19937 rng(5);
    for (int round = 0; round < 300; ++round) {
        std::string text(rng() % 40, '\0');
        for (char& c : text) c = static_cast<char>(rng() % 255 + 1);
        auto const length = static_cast<unsigned short>(rng() % 130);
        bool const useTextLength = rng() % 4 == 0;
        EXPECT_EQ(Bytes(HashString(text.c_str(), length, useTextLength)), LiteralHash(text, length, useTextLength))
            << text.size() << " " << length << " " << useTextLength;
    }
    std::string big(70000, 'a');  // also shows the multiplier wrapping every 256 positions
    for (std::size_t i = 0; i < big.size(); i += 1 + rng() % 700) big[i] = static_cast<char>(rng() % 255 + 1);
    EXPECT_EQ(Bytes(HashString(big.c_str(), 65535, false)), LiteralHash(big, 65535, false));
}
