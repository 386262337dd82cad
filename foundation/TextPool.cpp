#include "detail/TextPool.h"

#include "../platform/ThreadSlot.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#  include <sanitizer/asan_interface.h>
#  define ZK_POISON(address, size) ASAN_POISON_MEMORY_REGION(address, size)
#  define ZK_UNPOISON(address, size) ASAN_UNPOISON_MEMORY_REGION(address, size)
#else
#  define ZK_POISON(address, size) ((void)(address), (void)(size))
#  define ZK_UNPOISON(address, size) ((void)(address), (void)(size))
#endif

namespace zk64::detail {
namespace {

// A free block starts with the link to the next free block of its stack; the
// first block of a full magazine in the depot also links to the next magazine.
struct FreeBlock {
    FreeBlock* next;
    FreeBlock* nextMagazine;
};
static_assert(sizeof(FreeBlock) <= kTextBlockSize);

constexpr std::size_t kSlabBlocks = 4096;  // 128 KiB, the first block for the slab list
constexpr std::size_t kSlabAlignment = 64;

// Free blocks as a list with its length. A free block is poisoned as a whole;
// a block is unpoisoned only while it is handed out.
struct Stack {
    FreeBlock* head = nullptr;
    unsigned count = 0;

    void Push(void* address) noexcept
    {
        auto* block = static_cast<FreeBlock*>(address);
        block->next = head;
        ZK_POISON(block, kTextBlockSize);
        head = block;
        ++count;
    }
    void* Pop() noexcept
    {
        FreeBlock* block = head;
        ZK_UNPOISON(block, kTextBlockSize);
        head = block->next;
        --count;
        // The next block to hand out is likely the next one wanted.
        __builtin_prefetch(head, 1);
        return block;
    }
};

// The process-wide store behind the thread caches: full magazines, loose
// blocks (from caches of ended threads) and the rest of the newest slab.
class Depot {
public:
    void GiveMagazine(Stack magazine) noexcept
    {
        std::lock_guard<std::mutex> guard(lock);
        if (magazine.count != kMagazineBlocks) {
            while (magazine.count != 0) loose.Push(magazine.Pop());
            return;
        }
        ZK_UNPOISON(&magazine.head->nextMagazine, sizeof(FreeBlock*));
        magazine.head->nextMagazine = magazines;
        ZK_POISON(&magazine.head->nextMagazine, sizeof(FreeBlock*));
        magazines = magazine.head;
        ++magazineCount;
    }

    void GiveBlock(void* block) noexcept
    {
        std::lock_guard<std::mutex> guard(lock);
        loose.Push(block);
    }

    // A non-empty stack of free blocks: a full magazine, else loose blocks,
    // else blocks carved from a slab.
    Stack TakeMagazine()
    {
        std::unique_lock<std::mutex> guard(lock);
        Stack taken;
        if (magazines != nullptr) {
            taken.head = magazines;
            taken.count = kMagazineBlocks;
            ZK_UNPOISON(&magazines->nextMagazine, sizeof(FreeBlock*));
            magazines = magazines->nextMagazine;
            --magazineCount;
            return taken;
        }
        if (loose.count != 0) {
            while (loose.count != 0 && taken.count != kMagazineBlocks) taken.Push(loose.Pop());
            return taken;
        }
        if (slabNext == slabEnd) {
            guard.unlock();
            auto* slab = static_cast<char*>(::operator new(kSlabBlocks * kTextBlockSize, std::align_val_t{kSlabAlignment}));
            guard.lock();
            if (slabNext == slabEnd) {
                // The first block links the slabs, so that every slab stays
                // reachable from the depot itself, not only through links
                // inside free (poisoned) blocks.
                *reinterpret_cast<char**>(slab) = slabs;
                slabs = slab;
                slabNext = slab + kTextBlockSize;
                slabEnd = slab + kSlabBlocks * kTextBlockSize;
            } else {
                // Another thread brought a slab in the meantime.
                ::operator delete(slab, std::align_val_t{kSlabAlignment});
            }
        }
        char* const first = slabNext;
        std::size_t const blocks = std::min<std::size_t>(kMagazineBlocks, (slabEnd - slabNext) / kTextBlockSize);
        slabNext += blocks * kTextBlockSize;
        carved += blocks;
        guard.unlock();
        for (std::size_t i = blocks; i-- > 0;) taken.Push(first + i * kTextBlockSize);
        return taken;
    }

    TextPoolCounts Counts()
    {
        std::lock_guard<std::mutex> guard(lock);
        TextPoolCounts counts;
        counts.carved = carved;
        counts.depotFree = magazineCount * kMagazineBlocks + loose.count;
        return counts;
    }

private:
    std::mutex lock;
    FreeBlock* magazines = nullptr;
    unsigned long long magazineCount = 0;
    Stack loose;
    char* slabs = nullptr;  // the newest slab; each starts with the link to the one before
    char* slabNext = nullptr;
    char* slabEnd = nullptr;
    unsigned long long carved = 0;
};

// Never destroyed: strings of static objects are released after every
// destructor that could have run before them.
Depot& TheDepot()
{
    static Depot* const depot = new Depot;
    return *depot;
}

enum class CacheState : unsigned char { Live, Retired };

// Two magazines per thread: `loaded` serves every call; `spare` is swapped
// in when `loaded` runs empty (or full), so that a thread going back and
// forth around a magazine boundary does not meet the depot each time.
struct Cache {
    Stack loaded;
    Stack spare;
    CacheState state = CacheState::Live;
};

// What a thread's slot holds once its cache is given back: never written,
// shared by every ended thread.
Cache gRetired{{}, {}, CacheState::Retired};

void RetireCache(void* value)
{
    auto* const cache = static_cast<Cache*>(value);
    if (cache == &gRetired) return;
    platform::SetThreadSlot(&gRetired, RetireCache);
    if (cache->loaded.count != 0) TheDepot().GiveMagazine(cache->loaded);
    if (cache->spare.count != 0) TheDepot().GiveMagazine(cache->spare);
    delete cache;
}

// The calling thread's cache, made on its first use.
Cache& ThreadCache()
{
    if (void* const value = platform::GetThreadSlot()) return *static_cast<Cache*>(value);
    auto* const cache = new Cache;
    platform::SetThreadSlot(cache, RetireCache);
    return *cache;
}

[[gnu::noinline]] void* AcquireSlow()
{
    Cache& cache = ThreadCache();
    if (cache.loaded.count != 0) return cache.loaded.Pop();
    if (cache.state == CacheState::Retired) {
        Stack magazine = TheDepot().TakeMagazine();
        void* const block = magazine.Pop();
        if (magazine.count != 0) TheDepot().GiveMagazine(magazine);
        return block;
    }
    if (cache.spare.count != 0) std::swap(cache.loaded, cache.spare);
    else cache.loaded = TheDepot().TakeMagazine();
    return cache.loaded.Pop();
}

[[gnu::noinline]] void ReleaseSlow(void* block) noexcept
{
    Cache* cache = static_cast<Cache*>(platform::GetThreadSlot());
    if (cache == nullptr) {
        // A first release before any string was made here: no cache worth
        // making for it.
        TheDepot().GiveBlock(block);
        return;
    }
    if (cache->state == CacheState::Retired) {
        TheDepot().GiveBlock(block);
        return;
    }
    // `loaded` is full.
    if (cache->spare.count != 0) TheDepot().GiveMagazine(std::exchange(cache->spare, Stack{}));
    std::swap(cache->loaded, cache->spare);
    cache->loaded.Push(block);
}

}  // namespace

void* AcquireTextBlock()
{
    auto* const cache = static_cast<Cache*>(platform::GetThreadSlot());
    if (cache != nullptr && cache->loaded.count != 0) return cache->loaded.Pop();
    return AcquireSlow();
}

void ReleaseTextBlock(void* block) noexcept
{
    auto* const cache = static_cast<Cache*>(platform::GetThreadSlot());
    if (cache != nullptr && cache->loaded.count < kMagazineBlocks && cache->state == CacheState::Live) {
        cache->loaded.Push(block);
        return;
    }
    ReleaseSlow(block);
}

TextPoolCounts InspectTextPool()
{
    TextPoolCounts counts = TheDepot().Counts();
    if (auto const* const cache = static_cast<Cache const*>(platform::GetThreadSlot()))
        counts.cachedFree = cache->loaded.count + cache->spare.count;
    return counts;
}

}  // namespace zk64::detail
