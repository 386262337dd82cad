// ZKThreadPool allocates no memory per job beyond its queue's blocks: a job
// is a function pointer held inside its std::function. Counted through a
// replacement operator new, which serves the shared library too (Linux
// only: a Windows DLL keeps its own allocator).

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "concurrency/WaitSupport.h"

namespace {
std::atomic<long long> allocations{0};
}  // namespace

// GCC pairs the inlined malloc and free of these replacements with the new
// and delete expressions around them and calls them mismatched.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size)
{
    ++allocations;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#pragma GCC diagnostic pop

namespace {

constexpr int kJobs = 1600;
Signal* finished = nullptr;
void Nothing() {}
void Finish() { finished->Add(); }

}  // namespace

TEST(PoolAllocations, AddingJobsAllocatesOnlyQueueBlocks)
{
    ZKThreadPool pool(0);
    for (int i = 0; i < 64; ++i) pool.AddNewJob(&Nothing);
    long long const before = allocations;
    for (int i = 0; i < kJobs; ++i) pool.AddNewJob(&Nothing);
    EXPECT_LE(allocations - before, kJobs / 8);
}

TEST(PoolAllocations, RunningJobsAllocatesNothingPerJob)
{
    Signal done;
    finished = &done;
    ZKThreadPool pool(2);
    long long const before = allocations;
    for (int i = 0; i < kJobs; ++i) pool.AddNewJob(&Finish);
    ASSERT_TRUE(done.WaitFor(kJobs));
    EXPECT_LE(allocations - before, kJobs / 4);
}
