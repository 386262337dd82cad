// ZKThreadPool throughput against oneTBB's task_group and against running the
// jobs inline on one thread, and ZKMessagingObject::Notify fan-out.
// Run: build/linux/bin/zk64_bench_concurrency

#include <benchmark/benchmark.h>

#include <zk64/zk64.h>

#include <oneapi/tbb/task_arena.h>
#include <oneapi/tbb/task_group.h>

#include <chrono>
#include <iostream>
#include <memory>
#include <streambuf>
#include <vector>

namespace {

constexpr int kEmptyJobs = 1000000;
constexpr int kMicroJobs = 100000;
constexpr unsigned int kWorkers = 2;

void EmptyJob() { benchmark::ClobberMemory(); }

// About one microsecond of work: spins on the steady clock.
void MicroJob()
{
    auto const end = std::chrono::steady_clock::now() + std::chrono::microseconds(1);
    while (std::chrono::steady_clock::now() < end) {
    }
}

// The pool prints a line per worker and one when it stops; keep them out of
// the benchmark's report.
class Silence {
public:
    Silence() : previous(std::cout.rdbuf(&sink)) {}
    ~Silence() { std::cout.rdbuf(previous); }

private:
    struct NullBuffer : std::streambuf {
        int overflow(int c) override { return traits_type::not_eof(c); }
    } sink;
    std::streambuf* previous;
};

// Jobs queued and drained: construction starts the workers, the destructor
// waits for the queue to empty.
void RunPool(benchmark::State& state, void (*job)(), int jobs)
{
    Silence quiet;
    for (auto _ : state) {
        ZKThreadPool pool(kWorkers);
        for (int i = 0; i < jobs; ++i) pool.AddNewJob(job);
    }
    state.SetItemsProcessed(state.iterations() * jobs);
}

void RunTaskGroup(benchmark::State& state, void (*job)(), int jobs)
{
    tbb::task_arena arena(static_cast<int>(kWorkers));
    for (auto _ : state) {
        arena.execute([&] {
            tbb::task_group group;
            for (int i = 0; i < jobs; ++i) group.run(job);
            group.wait();
        });
    }
    state.SetItemsProcessed(state.iterations() * jobs);
}

void RunInline(benchmark::State& state, void (*job)(), int jobs)
{
    for (auto _ : state) {
        for (int i = 0; i < jobs; ++i) job();
    }
    state.SetItemsProcessed(state.iterations() * jobs);
}

void BM_Pool_EmptyJobs(benchmark::State& state) { RunPool(state, &EmptyJob, kEmptyJobs); }
void BM_TaskGroup_EmptyJobs(benchmark::State& state) { RunTaskGroup(state, &EmptyJob, kEmptyJobs); }
void BM_Inline_EmptyJobs(benchmark::State& state) { RunInline(state, &EmptyJob, kEmptyJobs); }
void BM_Pool_MicroJobs(benchmark::State& state) { RunPool(state, &MicroJob, kMicroJobs); }
void BM_TaskGroup_MicroJobs(benchmark::State& state) { RunTaskGroup(state, &MicroJob, kMicroJobs); }
void BM_Inline_MicroJobs(benchmark::State& state) { RunInline(state, &MicroJob, kMicroJobs); }

BENCHMARK(BM_Pool_EmptyJobs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TaskGroup_EmptyJobs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Inline_EmptyJobs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Pool_MicroJobs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TaskGroup_MicroJobs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Inline_MicroJobs)->Unit(benchmark::kMillisecond)->UseRealTime();

class CountingObserver : public ZKMessagingObject {
public:
    void ReceiveNotify(ZKBaseMessage* /*message*/) override { benchmark::DoNotOptimize(++received); }
    unsigned long long received = 0;
};

// One Notify to `observers` observers of one id; items are deliveries.
void BM_Notify(benchmark::State& state)
{
    auto const count = static_cast<int>(state.range(0));
    ZKMessagingObject subject;
    std::vector<std::unique_ptr<CountingObserver>> observers;
    for (int i = 0; i < count; ++i) {
        observers.push_back(std::make_unique<CountingObserver>());
        subject.AttachObserver(1, observers.back().get());
        subject.AttachObserver(2, observers.back().get());  // another id in the table
    }
    ZKBaseMessage message{1};
    for (auto _ : state) subject.Notify(&message);
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_Notify)->Arg(1)->Arg(8)->Arg(64);

}  // namespace
