// The vectorised searches against std::string's find and rfind on generated
// haystacks: small alphabets so that partial matches abound, needles of
// every short length and long ones, and every start position.

#include <gtest/gtest.h>

#include <zk64/foundation/detail/ByteSearch.h>

#include <random>
#include <string>

TEST(ByteSearchModel, SameResultsAsStdString)
{
    using zk64::detail::FindBytes;
    using zk64::detail::RFindByte;
    using zk64::detail::RFindBytes;
    std::mt19937 rng(11);
    char const alphabet[] = {'a', 'b', '\0', '\xff'};
    auto random = [&](std::size_t size, std::size_t letters) {
        std::string out(size, '\0');
        for (char& c : out) c = alphabet[rng() % letters];
        return out;
    };
    std::size_t const far = std::string::npos - 3;
    for (int round = 0; round < 190; ++round) {
        bool const large = round >= 150;
        std::size_t const letters = large ? 2 : 1 + rng() % 4;
        std::string const haystack = random(large ? 2000 + rng() % 500 : rng() % 80, letters);
        std::string const needle = large ? haystack.substr(rng() % 1900, 3 + rng() % 40) : random(rng() % 6, letters);
        char const byte = alphabet[round % 4];
        for (std::size_t from = 0; from <= haystack.size() + 2; from += large ? 97 : 1) {
            for (std::size_t at : {from, far}) {
                EXPECT_EQ(FindBytes(haystack.data(), haystack.size(), needle.data(), needle.size(), at),
                          haystack.find(needle, at));
                EXPECT_EQ(RFindBytes(haystack.data(), haystack.size(), needle.data(), needle.size(), at),
                          haystack.rfind(needle, at));
                EXPECT_EQ(RFindByte(haystack.data(), haystack.size(), byte, at), haystack.rfind(byte, at));
            }
        }
    }
}
