// The block-wise strings extractor against the byte-at-a-time machine it
// stands for, on generated data: every item and every byte behind each
// item's zero must agree.

#include <gtest/gtest.h>

#include <zk64/foundation/detail/ListFill.h>
#include <zk64/foundation/detail/StringExtractor.h>

#include <random>
#include <string>
#include <vector>

#include "foundation/Support.h"

using zk64::test::ItemBytes;
using zk64::test::RingState;

namespace {

// Pieces that drive the machine through all its rows: printable runs of
// every length (across block edges and past the 8,191-byte cap), zero
// runs, wide text, noise, and the control bytes at the edges of the
// printable set.
std::string MakeData(std::mt19937& rng, std::size_t size, bool longRuns)
{
    auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); };
    static char const edges[] = {0, 9, 10, 11, 12, 13, 31, 32, 126, 127, -1};
    std::string data;
    while (data.size() < size) {
        int const kind = pick(0, 6);
        if (kind == 0) data.append(static_cast<std::size_t>(longRuns ? pick(7000, 9500) : pick(1, 90)), static_cast<char>(pick(32, 126)));
        if (kind == 1) data.append(static_cast<std::size_t>(pick(1, 80)), '\0');
        for (int n = kind < 2 ? 0 : pick(1, 60); n > 0; --n) {
            if (kind == 2 || kind == 3) data += static_cast<char>(pick(32, 126));  // printable, or wide text
            if (kind == 3) data += '\0';
            if (kind == 4) data += static_cast<char>(pick(0, 255));
            if (kind == 5) data += edges[pick(0, 10)];
            if (kind == 6) data += static_cast<char>(pick(0, 1) ? pick(32, 126) : pick(0, 31));
        }
    }
    data.resize(size);
    return data;
}

void ExpectSameAsMachine(std::string const& data, unsigned int minimum, bool wide, bool vectors)
{
    auto const* bytes = reinterpret_cast<unsigned char const*>(data.data());
    ZKContainer<ZKString> expected, actual;
    zk64::detail::ExtractStringsByteByByte(bytes, data.size(), minimum, wide, expected);
    zk64::detail::ExtractStrings(bytes, data.size(), minimum, wide, actual, vectors);
    ASSERT_EQ(ItemBytes(actual), ItemBytes(expected))
        << "size " << data.size() << " minimum " << minimum << " wide " << wide << " vectors " << vectors;
}

}  // namespace

TEST(StringExtractModel, GeneratedData)
{
    std::mt19937 rng(20240516);
    unsigned int const minimums[] = {0, 1, 2, 3, 4, 5, 8, 64, 8190, 8191, 9000};
    for (int round = 0; round < 40; ++round) {
        std::string const data = MakeData(rng, std::uniform_int_distribution<std::size_t>(0, 3000)(rng), false);
        for (unsigned int minimum : minimums)
            for (int mode = 0; mode < 4; ++mode) ExpectSameAsMachine(data, minimum, mode & 1, mode & 2);
    }
    for (int round = 0; round < 4; ++round) {  // long runs across the cap
        std::string const data = MakeData(rng, 60000, true);
        for (unsigned int minimum : {1u, 4u, 8191u, 8200u})
            for (bool wide : {false, true}) ExpectSameAsMachine(data, minimum, wide, round % 2 == 0);
    }
}

// A list the caller has not used yet (a plain, growing list with a capacity,
// empty in the state its construction or a Clear leaves) is filled in one
// go: slot for slot it must end as the one-by-one pushes (with their
// doublings) leave it. Stale slots from an earlier use stay; a list emptied
// by pops, one holding an item and one that does not grow are pushed to.
TEST(StringExtractModel, OneGoFillMatchesPushesSlotForSlot)
{
    for (unsigned long long items : {0ull, 1ull, 4ull, 5ull, 511ull, 512ull, 513ull, 1025ull, 2100ull}) {
        std::string data;
        for (unsigned long long i = 0; i < items; ++i)
            data += "item" + std::string{static_cast<char>('0' + i % 10), '\0'};
        auto const* bytes = reinterpret_cast<unsigned char const*>(data.data());
        for (unsigned long long capacity : {0ull, 1ull, 3ull, 512ull}) {
            for (int state = 0; state < 5; ++state) {
                ZKContainer<ZKString> expected(capacity), actual(capacity);
                for (auto* list : {&expected, &actual}) {
                    if (state == 1) {
                        for (char const* text : {"stale1", "stale2", "stale3", "stale4", "stale5"})
                            list->PushBack(text);
                        list->Clear();
                    }
                    if (state == 2 || state == 4) list->PushBack("gone");
                    if (state == 2) list->PopFront();
                    if (state == 3) list->SetContainerAutoResize(false);
                }
                zk64::detail::ExtractStringsByteByByte(bytes, data.size(), 4, false, expected);
                zk64::detail::ExtractStrings(bytes, data.size(), 4, false, actual);
                ASSERT_EQ(RingState(actual), RingState(expected))
                    << items << " items, capacity " << capacity << " state " << state;
            }
        }
    }
    struct Derived : ZKContainer<ZKString> {};
    EXPECT_TRUE(zk64::detail::IsUnusedList(ZKContainer<ZKString>()));
    EXPECT_FALSE(zk64::detail::IsUnusedList(Derived())) << "only the plain type is filled in one go";
}
