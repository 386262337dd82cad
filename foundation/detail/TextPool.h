#pragma once

// The home of the standard string object that every ZKString owns: blocks of
// one size, handed out and taken back by a per-thread cache in front of one
// shared depot, so that a string made and dropped costs a few nanoseconds and
// no trip through the general allocator.
//
// - A thread keeps at most two magazines of kMagazineBlocks free blocks.
//   Beyond that, full magazines go to the depot; an empty cache takes one
//   from it. A block released on another thread than the one that took it
//   simply joins that thread's cache.
// - When a thread ends, its cache goes back to the depot. Strings released
//   after that on the same thread (by other thread-local objects, or static
//   ones at exit) go straight to the depot.
// - Blocks are carved from slabs that are never given back: the pool keeps
//   the largest number of strings the process ever held at once.
// - Under AddressSanitizer a free block is poisoned, so that a use of a
//   dropped string's object is still reported.

#include <cstddef>

namespace zk64::detail {

constexpr std::size_t kTextBlockSize = 32;
constexpr unsigned kMagazineBlocks = 128;

// A block of kTextBlockSize bytes, aligned for any object of that size.
// Throws std::bad_alloc when no slab can be had.
void* AcquireTextBlock();
// Takes back a block of AcquireTextBlock, from any thread.
void ReleaseTextBlock(void* block) noexcept;

// What the pool holds, for tests: blocks carved from slabs in all, free
// blocks in the depot, and free blocks in the calling thread's cache.
struct TextPoolCounts {
    unsigned long long carved = 0;
    unsigned long long depotFree = 0;
    unsigned long long cachedFree = 0;
};
TextPoolCounts InspectTextPool();

}  // namespace zk64::detail
