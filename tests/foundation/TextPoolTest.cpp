// The string pool: blocks come back to the depot from ended threads, from
// strings dropped after a thread's cache is gone, and across threads without
// the pool growing.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

#include "foundation/detail/TextPool.h"

namespace {

using zk64::detail::InspectTextPool;
using zk64::detail::kMagazineBlocks;
using zk64::detail::TextPoolCounts;

// Destroyed after the thread's cache is given back, since it is constructed
// before the cache is first used.
thread_local struct LateOwner { std::unique_ptr<ZKString> text; } tLateOwner;

// Everything a finished thread took from the pool is back in the depot: the
// blocks it carved, those it took from the depot, and one released only after
// its cache was returned.
TEST(TextPool, AnEndedThreadLeavesEveryBlockInTheDepot)
{
    TextPoolCounts const before = InspectTextPool();
    unsigned long long cachedAtEnd = 0;
    std::thread([&] {
        LateOwner& owner = tLateOwner;  // constructed before any string
        {
            std::vector<ZKString> texts(3 * kMagazineBlocks + 7, ZKString("text"));
        }
        owner.text = std::make_unique<ZKString>("released after the cache");
        cachedAtEnd = InspectTextPool().cachedFree;
    }).join();
    TextPoolCounts const after = InspectTextPool();

    EXPECT_GT(cachedAtEnd, 0u);
    EXPECT_EQ(after.depotFree - before.depotFree, after.carved - before.carved);
    EXPECT_EQ(after.cachedFree, before.cachedFree);
}

// Strings made on one thread and dropped on another, round after round: the
// dropping thread's surplus goes back through the depot, so the pool stays at
// one round's worth of strings plus the caches.
TEST(TextPool, StringsDroppedOnAnotherThreadAreReused)
{
    constexpr int kRounds = 40;
    constexpr std::size_t kBatch = 5000;
    TextPoolCounts const before = InspectTextPool();
    for (int round = 0; round < kRounds; ++round) {
        auto batch = std::make_unique<std::vector<ZKString>>();
        std::thread([&] {
            batch->reserve(kBatch);
            for (std::size_t i = 0; i < kBatch; ++i) batch->emplace_back("made here");
        }).join();
        std::thread([&] { batch.reset(); }).join();
    }
    TextPoolCounts const after = InspectTextPool();
    // Each ended thread returns at most two magazines' worth beyond the batch.
    EXPECT_LE(after.carved - before.carved, kBatch + 4 * kMagazineBlocks);
}

// Within one thread a string dropped and made again reuses its block.
TEST(TextPool, OneThreadReusesItsOwnBlocks)
{
    {
        std::vector<ZKString> warm(2 * kMagazineBlocks);
    }
    TextPoolCounts const before = InspectTextPool();
    for (int i = 0; i < 1000; ++i) {
        std::vector<ZKString> texts(2 * kMagazineBlocks);
        texts.back() = "in use";
    }
    EXPECT_EQ(InspectTextPool().carved, before.carved);
}

}  // namespace

#if defined(__SANITIZE_ADDRESS__)
// A block back in the pool is poisoned: a use of a dropped string's object
// is still reported.
TEST(TextPoolDeathTest, AReleasedBlockIsPoisoned)
{
    EXPECT_DEATH(
        {
            void* const block = zk64::detail::AcquireTextBlock();
            zk64::detail::ReleaseTextBlock(block);
            std::printf("%d\n", *static_cast<volatile char*>(block));
        },
        "use-after-poison");
}
#endif
