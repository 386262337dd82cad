// Recursive directory search and counting over a large real tree, side by
// side with find, bfs and fd (fdfind -u), and with std::filesystem's
// recursive iterator. Entries per second; warm cache (each benchmark walks
// the tree once before it is timed).
// Run: build/linux/bin/zk64_bench_directory_search
// The tree is /usr unless ZK64_BENCH_TREE names another.

#include <benchmark/benchmark.h>

#include <zk64/zk64.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

std::string Tree()
{
    char const* tree = std::getenv("ZK64_BENCH_TREE");
    return tree != nullptr ? tree : "/usr";
}

// Runs a shell command and reads the number it prints; -1 on failure.
long long CountFromCommand(std::string const& command)
{
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return -1;
    long long count = -1;
    if (std::fscanf(pipe, "%lld", &count) != 1) count = -1;
    return pclose(pipe) == 0 ? count : -1;
}

void ExternalWalker(benchmark::State& state, std::string const& tool, std::string const& arguments)
{
    if (CountFromCommand("command -v " + tool + " >/dev/null && echo 1") != 1) {
        state.SkipWithError((tool + " is not installed").c_str());
        return;
    }
    std::string const command = tool + " " + arguments + " 2>/dev/null | wc -l";
    long long entries = CountFromCommand(command);  // warms the cache
    for (auto _ : state) {
        entries = CountFromCommand(command);
        benchmark::DoNotOptimize(entries);
    }
    state.SetItemsProcessed(state.iterations() * entries);
    state.counters["entries"] = static_cast<double>(entries);
}

void BM_Find(benchmark::State& state) { ExternalWalker(state, "find", Tree()); }
void BM_Bfs(benchmark::State& state) { ExternalWalker(state, "bfs", Tree()); }
void BM_FdFind(benchmark::State& state) { ExternalWalker(state, "fdfind", "-u . " + Tree()); }

void BM_StdFilesystem(benchmark::State& state)
{
    namespace fs = std::filesystem;
    unsigned long long entries = 0;
    for (auto _ : state) {
        entries = 0;
        std::error_code error;
        for (fs::recursive_directory_iterator it(Tree(), fs::directory_options::skip_permission_denied, error), end;
             it != end; it.increment(error)) {
            ++entries;
        }
        benchmark::DoNotOptimize(entries);
    }
    state.SetItemsProcessed(static_cast<long long>(state.iterations() * entries));
}

void BM_ZkCount(benchmark::State& state)
{
    ZKString const pattern = ConvertToSystemPath(Tree().c_str());
    unsigned long long files = 0, dirs = 0;
    GetNumberOfFilesAndDirs(pattern, files, dirs, true);
    for (auto _ : state) {
        GetNumberOfFilesAndDirs(pattern, files, dirs, true);
        benchmark::DoNotOptimize(files);
    }
    state.SetItemsProcessed(static_cast<long long>(state.iterations() * (files + dirs)));
    state.counters["entries"] = static_cast<double>(files + dirs);
}

void BM_ZkList(benchmark::State& state)
{
    ZKString const pattern = ConvertToSystemPath(Tree().c_str());
    unsigned long long entries = GetFilesAndDirectoriesInDir(pattern, true).GetItemCount();
    for (auto _ : state) {
        entries = GetFilesAndDirectoriesInDir(pattern, true).GetItemCount();
        benchmark::DoNotOptimize(entries);
    }
    state.SetItemsProcessed(static_cast<long long>(state.iterations() * entries));
    state.counters["entries"] = static_cast<double>(entries);
}

// The records alone: the listing's pushes without the file system, to tell
// the library's per-record cost from the system calls.
void BM_ZkRecordsOnly(benchmark::State& state)
{
    std::vector<FileDataStruct> entries;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(Tree())) {
        entries.emplace_back(entry.path().parent_path().c_str(), entry.path().filename().c_str(), true);
    }
    for (auto _ : state) {
        ZKContainer<FileDataStruct> results(512);
        for (FileDataStruct const& entry : entries) results.PushBack(entry);
        benchmark::DoNotOptimize(results.GetItemCount());
    }
    state.SetItemsProcessed(static_cast<long long>(state.iterations() * entries.size()));
}

}  // namespace

BENCHMARK(BM_ZkRecordsOnly)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Find)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Bfs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_FdFind)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_StdFilesystem)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ZkCount)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ZkList)->Unit(benchmark::kMillisecond)->UseRealTime();
