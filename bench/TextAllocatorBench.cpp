// Where a ZKString's text object comes from: the library's pool against
// mimalloc (Debian's libmimalloc) and the C library's malloc, for exactly
// that object, in the two patterns the library meets: one string made and
// dropped, and a default container's worth (512 x 512) made and then dropped.
// Run: build/linux/bin/zk64_bench_text_allocator

#include <benchmark/benchmark.h>

#include <mimalloc.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "foundation/detail/TextPool.h"

namespace {

struct Pool {
    static void* Acquire() { return zk64::detail::AcquireTextBlock(); }
    static void Release(void* block) { zk64::detail::ReleaseTextBlock(block); }
};

struct Mimalloc {
    static void* Acquire() { return mi_malloc(sizeof(std::string)); }
    static void Release(void* block) { mi_free(block); }
};

struct Malloc {
    static void* Acquire() { return std::malloc(sizeof(std::string)); }
    static void Release(void* block) { std::free(block); }
};

template <class Allocator>
void BM_OneText(benchmark::State& state)
{
    for (auto _ : state) {
        auto* const text = new (Allocator::Acquire()) std::string();
        benchmark::DoNotOptimize(text);
        text->~basic_string();
        Allocator::Release(text);
    }
}
BENCHMARK(BM_OneText<Pool>);
BENCHMARK(BM_OneText<Mimalloc>);
BENCHMARK(BM_OneText<Malloc>);

template <class Allocator>
void BM_ContainerOfTexts(benchmark::State& state)
{
    constexpr std::size_t kTexts = 512 * 512;
    std::vector<std::string*> texts(kTexts);
    for (auto _ : state) {
        for (std::string*& text : texts) text = new (Allocator::Acquire()) std::string();
        benchmark::ClobberMemory();
        for (std::string* text : texts) {
            text->~basic_string();
            Allocator::Release(text);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kTexts));
}
BENCHMARK(BM_ContainerOfTexts<Pool>)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ContainerOfTexts<Mimalloc>)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ContainerOfTexts<Malloc>)->Unit(benchmark::kMicrosecond);

}  // namespace
