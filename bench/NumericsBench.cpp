// Noise grids and gradient mapping: the time per cell should not depend on
// the grid's size.
// Run: <build>/bin/zk64_bench_numerics
//
// Every iteration builds a fresh grid of many small rows and frees the last
// one. glibc hands freed memory back to the kernel once the free space at
// the top of its heap passes a threshold that it raises and lowers as it
// goes, and the next iteration then pays a page fault per 4 KiB touched:
// whether that happens depends on the sizes earlier benchmarks left behind,
// not on the code measured. So the heap keeps its memory here; set
// ZK64_BENCH_DEFAULT_HEAP=1 in the environment to measure with glibc's own
// policy instead.

#include <benchmark/benchmark.h>

#include <zk64/zk64.h>

#include <cstdlib>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

#if defined(__GLIBC__)
bool KeepHeapMemory()
{
    if (std::getenv("ZK64_BENCH_DEFAULT_HEAP") != nullptr) return false;
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    return true;
}
bool const heapKept = KeepHeapMemory();
#endif

// Reports the mean time per cell as the counter per_cell (in seconds, shown
// with an SI prefix: 30n is 30 ns).
void ReportPerCell(benchmark::State& state, unsigned long long cells)
{
    state.SetItemsProcessed(static_cast<long long>(state.iterations()) * static_cast<long long>(cells));
    state.counters["per_cell"] = benchmark::Counter(static_cast<double>(cells) * static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_GeneratePerlinNoise6(benchmark::State& state)
{
    auto const side = static_cast<unsigned long long>(state.range(0));
    for (auto _ : state) {
        auto grid = GeneratePerlinNoise(side, side, 6, 0.0, 1.0);
        benchmark::DoNotOptimize(grid);
    }
    ReportPerCell(state, side * side);
}
BENCHMARK(BM_GeneratePerlinNoise6)->Arg(256)->Arg(512)->Arg(1024)->Unit(benchmark::kMillisecond);

void BM_MapGradient(benchmark::State& state)
{
    auto const side = static_cast<unsigned long long>(state.range(0));
    ZKContainer<ZKContainer<double>> const values = CreateNoise(side, side, 0.0, 1.0);
    for (auto _ : state) {
        auto colors = MapGradient(ZKColor::Navy(), ZKColor::Caféaulait(), values);
        benchmark::DoNotOptimize(colors);
    }
    ReportPerCell(state, side * side);
}
BENCHMARK(BM_MapGradient)->Arg(256)->Arg(512)->Arg(1024)->Unit(benchmark::kMillisecond);

void BM_SmoothNoise(benchmark::State& state)
{
    auto const side = static_cast<unsigned long long>(state.range(0));
    ZKContainer<ZKContainer<double>> const values = CreateNoise(side, side, 0.0, 1.0);
    for (auto _ : state) {
        auto smooth = SmoothNoise(values, 3);
        benchmark::DoNotOptimize(smooth);
    }
    ReportPerCell(state, side * side);
}
BENCHMARK(BM_SmoothNoise)->Arg(256)->Arg(1024)->Unit(benchmark::kMillisecond);

}  // namespace
