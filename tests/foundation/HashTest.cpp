// HashString and ZKString::Hash on hand-computed digests.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <random>
#include <string>

#include "foundation/StringTestSupport.h"

using zk64::test::Bytes;
using zk64::test::Counted;

namespace {

// The digest and HashString's doubling loop exactly as described: every
// position, 2n digits cut to n, then the result joined to itself.
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
    if (n == 0) return "";
    while (target > digest.size()) digest += digest;
    return digest.substr(0, target);
}

}  // namespace

TEST(HashString, HandComputedDigests)
{
    EXPECT_EQ(Bytes(HashString("wxyz", 4, false)), "1D3A");
    EXPECT_EQ(Bytes(HashString("wxyz", 8, false)), "1D3A1D3A");
    EXPECT_EQ(Bytes(HashString("wxyz", 6, false)), "1D3A1D");
    EXPECT_EQ(Bytes(HashString("wxyz", 2, false)), "1D");
    EXPECT_EQ(Bytes(HashString("wxyz", 99, true)), "1D3A") << "the length is ignored";
    EXPECT_EQ(Bytes(HashString("A", 3, false)), "FFF") << "one byte has a one-digit digest";
    EXPECT_EQ(Bytes(HashString("hello", 5, false)), "5AA6F");
    EXPECT_EQ(Bytes(HashString("hello", 12, false)), "5AA6F5AA6F5A");
    EXPECT_EQ(Bytes(HashString("abc", 3, false)), "78E") << "an odd length ends in a high digit";
    EXPECT_EQ(Bytes(HashString("abc", 7, false)), "78E78E7");
    EXPECT_EQ(Bytes(HashString("ab", 2, false)), "79") << "indexes wrap around a short text";
    EXPECT_EQ(Bytes(HashString("\xff\xff\xff\xff", 2, false)), "03") << "bytes count as unsigned";
}

TEST(HashString, TheMultiplierWrapsEvery256Positions)
{
    std::string const text(600, 'a');  // every sum is 0x84, its complement 0x7B
    std::string const digest = Bytes(HashString(text.c_str(), 0, true));
    ASSERT_EQ(digest.size(), 600u);
    EXPECT_EQ(digest.substr(0, 4), "7BF6");
    EXPECT_EQ(digest.substr(510, 2), "00") << "position 255 multiplies by 0";
    EXPECT_EQ(digest.substr(512, 2), "7B") << "position 256 multiplies by 1 again";
}

TEST(HashString, EmptyResults)
{
    EXPECT_TRUE(HashString("xyz", 0, false).IsEmpty());
    EXPECT_TRUE(HashString("", 0, false).IsEmpty());
    EXPECT_TRUE(HashString("", 0, true).IsEmpty());
    EXPECT_TRUE(HashString("", 5, false).IsEmpty()) << "an empty digest can't be lengthened";
    EXPECT_TRUE(HashString(ZKString(), 65535, false).IsEmpty());
    std::string const long64k(65536, 'q');
    EXPECT_TRUE(HashString(long64k.c_str(), 7, true).IsEmpty()) << "65,536 bytes cut to 16 bits is 0";
    EXPECT_EQ(HashString((long64k + "q").c_str(), 7, true).GetSize(), 1);
}

TEST(HashString, AllFormsAgree)
{
    ZKString const cut = Counted(std::string("wxyz\0tail", 9));
    EXPECT_EQ(Bytes(HashString(cut, 4, false)), "1D3A") << "up to the first zero byte";
    EXPECT_EQ(Bytes(HashString(cut, 0, true)), "1D3A");
    EXPECT_EQ(Bytes(ZKString::Hash("wxyz", 6, false)), "1D3A1D");
    EXPECT_EQ(Bytes(cut.Hash(6, false)), "1D3A1D");
    EXPECT_EQ(Bytes(ZKString("hello").Hash(0, true)), "5AA6F");
}

TEST(HashString, MatchesTheLiteralStepsOnGeneratedTexts)
{
    std::mt19937 rng(5);
    for (int round = 0; round < 300; ++round) {
        std::string text(rng() % 40, '\0');
        for (char& c : text) c = static_cast<char>(rng() % 255 + 1);
        auto const length = static_cast<unsigned short>(rng() % 130);
        bool const useTextLength = rng() % 4 == 0;
        if (text.empty() && !useTextLength && length > 0) continue;  // no literal end
        EXPECT_EQ(Bytes(HashString(text.c_str(), length, useTextLength)), LiteralHash(text, length, useTextLength))
            << text.size() << " " << length << " " << useTextLength;
    }
    std::string big(70000, '\0');
    for (char& c : big) c = static_cast<char>(rng() % 255 + 1);
    EXPECT_EQ(Bytes(HashString(big.c_str(), 65535, false)), LiteralHash(big, 65535, false));
}
