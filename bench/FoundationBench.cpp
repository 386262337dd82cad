// ZKContainer and ZKString against their standard counterparts.
// Run: build/linux/bin/zk64_bench_foundation

#include <benchmark/benchmark.h>

#include <zk64/zk64.h>

#include <deque>
#include <string>
#include <vector>

namespace {

// Steady state: a ring of 1024 slots kept half full, one push and one pop
// per iteration, so the ends keep wrapping.
void BM_Container_PushBackPopFront(benchmark::State& state)
{
    ZKContainer<int> ring(1024);
    for (int i = 0; i < 512; ++i) ring.PushBack(i);
    int value = 0, out = 0;
    for (auto _ : state) {
        ring.PushBack(value++);
        ring.PopFront(out);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_Container_PushBackPopFront);

void BM_Deque_PushBackPopFront(benchmark::State& state)
{
    std::deque<int> ring;
    for (int i = 0; i < 512; ++i) ring.push_back(i);
    int value = 0, out = 0;
    for (auto _ : state) {
        ring.push_back(value++);
        out = ring.front();
        ring.pop_front();
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_Deque_PushBackPopFront);

void BM_Container_GrowTo1M(benchmark::State& state)
{
    for (auto _ : state) {
        ZKContainer<int> c(1);
        for (int i = 0; i < 1000000; ++i) c.PushBack(i);
        benchmark::DoNotOptimize(c.GetItem(999999));
    }
    state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(BM_Container_GrowTo1M)->Unit(benchmark::kMillisecond);

void BM_Vector_GrowTo1M(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<int> v;
        for (int i = 0; i < 1000000; ++i) v.push_back(i);
        benchmark::DoNotOptimize(v[999999]);
    }
    state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(BM_Vector_GrowTo1M)->Unit(benchmark::kMillisecond);

std::string Text(int64_t size) { return std::string(static_cast<std::size_t>(size), 'x'); }

void BM_ZKString_Construct(benchmark::State& state)
{
    std::string const text = Text(state.range(0));
    for (auto _ : state) {
        ZKString s(text.c_str());
        benchmark::DoNotOptimize(s.GetString());
    }
}
BENCHMARK(BM_ZKString_Construct)->Arg(16)->Arg(4096);

void BM_StdString_Construct(benchmark::State& state)
{
    std::string const text = Text(state.range(0));
    for (auto _ : state) {
        std::string s(text.c_str());
        benchmark::DoNotOptimize(s.data());
    }
}
BENCHMARK(BM_StdString_Construct)->Arg(16)->Arg(4096);

void BM_ZKString_Append(benchmark::State& state)
{
    std::string const text = Text(state.range(0));
    for (auto _ : state) {
        ZKString s;
        s += text.c_str();
        s += text.c_str();
        benchmark::DoNotOptimize(s.GetString());
    }
}
BENCHMARK(BM_ZKString_Append)->Arg(16)->Arg(4096);

void BM_StdString_Append(benchmark::State& state)
{
    std::string const text = Text(state.range(0));
    for (auto _ : state) {
        std::string s;
        s += text.c_str();
        s += text.c_str();
        benchmark::DoNotOptimize(s.data());
    }
}
BENCHMARK(BM_StdString_Append)->Arg(16)->Arg(4096);

void BM_ZKString_Compare(benchmark::State& state)
{
    ZKString const a(Text(state.range(0)).c_str()), b(Text(state.range(0)).c_str());
    for (auto _ : state) benchmark::DoNotOptimize(a == b);
}
BENCHMARK(BM_ZKString_Compare)->Arg(16)->Arg(4096);

void BM_StdString_Compare(benchmark::State& state)
{
    std::string const a = Text(state.range(0)), b = Text(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(a == b);
}
BENCHMARK(BM_StdString_Compare)->Arg(16)->Arg(4096);

}  // namespace
