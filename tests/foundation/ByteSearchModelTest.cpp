// The vectorised searches against std::string's find and rfind on generated
// haystacks: small alphabets so that partial matches abound, needles of
// every short length, and every start position.

#include <gtest/gtest.h>

#include <zk64/foundation/detail/ByteSearch.h>

#include <random>
#include <string>

namespace {

std::string Random(std::mt19937& rng, std::size_t size, char const* alphabet, std::size_t letters)
{
    std::string out(size, '\0');
    for (char& c : out) c = alphabet[rng() % letters];
    return out;
}

}  // namespace

TEST(ByteSearchModel, SameResultsAsStdString)
{
    using zk64::detail::FindBytes;
    using zk64::detail::RFindByte;
    using zk64::detail::RFindBytes;
    std::mt19937 rng(11);
    char const alphabet[] = {'a', 'b', '\0', '\xff'};
    for (int round = 0; round < 150; ++round) {
        std::size_t const letters = 1 + rng() % 4;
        std::string const haystack = Random(rng, rng() % 80, alphabet, letters);
        std::string const needle = Random(rng, rng() % 6, alphabet, letters);
        for (std::size_t from = 0; from <= haystack.size() + 2; ++from) {
            EXPECT_EQ(FindBytes(haystack.data(), haystack.size(), needle.data(), needle.size(), from),
                      haystack.find(needle, from));
            EXPECT_EQ(RFindBytes(haystack.data(), haystack.size(), needle.data(), needle.size(), from),
                      haystack.rfind(needle, from));
            EXPECT_EQ(RFindByte(haystack.data(), haystack.size(), alphabet[round % 4], from),
                      haystack.rfind(alphabet[round % 4], from));
        }
        std::size_t const far = std::string::npos - 3;
        EXPECT_EQ(FindBytes(haystack.data(), haystack.size(), needle.data(), needle.size(), far),
                  haystack.find(needle, far));
        EXPECT_EQ(RFindBytes(haystack.data(), haystack.size(), needle.data(), needle.size(), far),
                  haystack.rfind(needle, far));
        EXPECT_EQ(RFindByte(haystack.data(), haystack.size(), 'a', far), haystack.rfind('a', far));
    }
}

TEST(ByteSearchModel, LongNeedlesInLongHaystacks)
{
    using zk64::detail::FindBytes;
    using zk64::detail::RFindBytes;
    std::mt19937 rng(12);
    char const alphabet[] = {'x', 'y'};
    for (int round = 0; round < 40; ++round) {
        std::string const haystack = Random(rng, 2000 + rng() % 500, alphabet, 2);
        std::string const needle = haystack.substr(rng() % 1900, 3 + rng() % 40);
        for (std::size_t from : {std::size_t{0}, std::size_t{17}, haystack.size() / 2, haystack.size()}) {
            EXPECT_EQ(FindBytes(haystack.data(), haystack.size(), needle.data(), needle.size(), from),
                      haystack.find(needle, from));
            EXPECT_EQ(RFindBytes(haystack.data(), haystack.size(), needle.data(), needle.size(), from),
                      haystack.rfind(needle, from));
        }
    }
}
