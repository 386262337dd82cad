// Processes: the process list with ~500 processes running, side by side with
// `ps -e -o pid=,comm=`; the memory walk of a process with ~1,000 regions;
// a 64 MiB region read, side by side with memcpy of the same size.
// Run: build/linux/bin/zk64_bench_processes
// The benchmark starts the processes it lists (sleep 600, killed at exit)
// and maps the regions it walks in its own process.

#include <benchmark/benchmark.h>

#include <zk64/zk64.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <vector>

#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

// ~500 sleeping processes for the list, alive for the whole run.
class Sleepers {
public:
    explicit Sleepers(int count)
    {
        char const* const argv[] = {"sleep", "600", nullptr};
        for (int index = 0; index < count; ++index) {
            pid_t pid = 0;
            if (posix_spawnp(&pid, "sleep", nullptr, nullptr, const_cast<char* const*>(argv), environ) == 0)
                pids.push_back(pid);
        }
    }
    ~Sleepers()
    {
        for (pid_t pid : pids) kill(pid, SIGKILL);
        for (pid_t pid : pids) waitpid(pid, nullptr, 0);
    }
    Sleepers(Sleepers const&) = delete;
    Sleepers& operator=(Sleepers const&) = delete;

private:
    std::vector<pid_t> pids;
};

Sleepers& EnsureSleepers()
{
    static Sleepers sleepers(500);
    return sleepers;
}

void BM_GetAllProcesses(benchmark::State& state)
{
    EnsureSleepers();
    unsigned long long count = 0;
    for (auto _ : state) {
        ZKContainer<ProcessInfo> list;
        GetAllProcesses(list);
        count = list.GetItemCount();
        benchmark::DoNotOptimize(count);
    }
    state.counters["processes"] = static_cast<double>(count);
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(count));
}

void BM_Ps(benchmark::State& state)
{
    EnsureSleepers();
    long long lines = 0;
    for (auto _ : state) {
        FILE* const pipe = popen("ps -e -o pid=,comm=", "r");
        if (pipe == nullptr) {
            state.SkipWithError("ps cannot be started");
            return;
        }
        char line[512];
        lines = 0;
        while (std::fgets(line, sizeof line, pipe) != nullptr) ++lines;
        pclose(pipe);
    }
    state.counters["processes"] = static_cast<double>(lines);
    state.SetItemsProcessed(state.iterations() * lines);
}

// ~1,000 regions in this process: small mappings whose protections
// alternate, so that the kernel cannot merge neighbours.
void BM_MemoryWalk(benchmark::State& state)
{
    static std::vector<void*> const regions = [] {
        std::vector<void*> mapped;
        long const page = sysconf(_SC_PAGESIZE);
        char* const block = static_cast<char*>(mmap(nullptr, static_cast<std::size_t>(page) * 1000, PROT_READ,
                                                    MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        for (int index = 0; index < 1000; index += 2) mprotect(block + index * page, static_cast<std::size_t>(page), PROT_READ | PROT_WRITE);
        mapped.push_back(block);
        return mapped;
    }();
    unsigned long long count = 0;
    unsigned long const pid = GetCurrentProcessID();
    for (auto _ : state) {
        ZKContainer<VirtualMemoryAddressInfo> walk;
        GetProcessVirtualMemoryAddresses(pid, walk);
        count = walk.GetItemCount();
        benchmark::DoNotOptimize(count);
    }
    state.counters["regions"] = static_cast<double>(count);
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(count));
}

constexpr std::size_t kReadBytes = 64u << 20;

std::vector<char>& Source()
{
    static std::vector<char> source(kReadBytes, 'z');
    return source;
}

void BM_RegionRead64MiB(benchmark::State& state)
{
    VirtualMemoryAddressInfo region;
    region.BaseAddress = reinterpret_cast<unsigned long long>(Source().data());
    region.RegionSize = kReadBytes;
    ProcessHandle const self = OpenProcessHandle(GetCurrentProcessID(), 0x408);
    ZKString out;
    GetVirtualMemoryData(self, region, out);  // the string's buffer, touched once
    for (auto _ : state) {
        bool const ok = GetVirtualMemoryData(self, region, out);
        benchmark::DoNotOptimize(ok);
    }
    CloseProcessHandle(self);
    state.SetBytesProcessed(state.iterations() * static_cast<long long>(kReadBytes));
}

void BM_Memcpy64MiB(benchmark::State& state)
{
    std::vector<char> target(kReadBytes, 0);
    for (auto _ : state) {
        std::memcpy(target.data(), Source().data(), kReadBytes);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<long long>(kReadBytes));
}

}  // namespace

BENCHMARK(BM_GetAllProcesses)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ps)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MemoryWalk)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RegionRead64MiB)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Memcpy64MiB)->Unit(benchmark::kMillisecond);
