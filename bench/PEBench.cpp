// Reading PE images the plain way a caller writes it, against
// x86_64-w64-mingw32-objdump -p -h over the same files.
// Run: build/linux/bin/zk64_bench_pe
//
// The corpus is the first 300 DLLs, by name, of Wine's x86_64-windows
// directory (ZK64_PE_CORPUS names another directory). The plain loop
// reports the time of each stage per pass over the corpus: reading the file,
// constructing and destroying the two default containers, the import walk
// and the export walk.

#include <benchmark/benchmark.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <type_traits>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kCorpusFiles = 300;

std::vector<std::string> const& Corpus()
{
    static std::vector<std::string> const files = [] {
        namespace fs = std::filesystem;
        char const* const configured = std::getenv("ZK64_PE_CORPUS");
        fs::path const dir = configured ? configured : "/usr/lib/x86_64-linux-gnu/wine/x86_64-windows";
        std::vector<std::string> found;
        std::error_code error;
        for (auto const& entry : fs::directory_iterator(dir, error))
            if (entry.is_regular_file() && entry.path().extension() == ".dll") found.push_back(entry.path().string());
        std::sort(found.begin(), found.end());
        if (found.size() > kCorpusFiles) found.resize(kCorpusFiles);
        return found;
    }();
    return files;
}

bool CorpusMissing(benchmark::State& state)
{
    if (!Corpus().empty()) return false;
    state.SkipWithError("no PE corpus (install wine64 or set ZK64_PE_CORPUS)");
    return true;
}

using Clock = std::chrono::steady_clock;

double Since(Clock::time_point& mark)
{
    Clock::time_point const now = Clock::now();
    double const seconds = std::chrono::duration<double>(now - mark).count();
    mark = now;
    return seconds;
}

// The loop as a new caller writes it, one parser and two default containers
// per file, with the time of each stage summed over the pass.
void BM_PECorpus_PlainLoop(benchmark::State& state)
{
    if (CorpusMissing(state)) return;
    double read = 0, containers = 0, imports = 0, exports = 0;
    unsigned long long records = 0;
    for (auto _ : state) {
        for (std::string const& path : Corpus()) {
            Clock::time_point mark = Clock::now();
            ZKPEParser parser;
            parser.ReadPEFile(ZKString(path.c_str()));
            read += Since(mark);
            {
                ZKContainer<ImportDirRecord> importList;
                ZKContainer<ExportDirRecord> exportList;
                containers += Since(mark);
                parser.GetAllImports(importList);
                imports += Since(mark);
                parser.GetAllExports(exportList);
                exports += Since(mark);
                records += importList.GetItemCount() + exportList.GetItemCount();
            }
            containers += Since(mark);  // their destruction
        }
    }
    auto const perPass = [&](double seconds) {
        return benchmark::Counter(seconds * 1e3 / static_cast<double>(state.iterations()));
    };
    state.counters["read_ms"] = perPass(read);
    state.counters["containers_ms"] = perPass(containers);
    state.counters["imports_ms"] = perPass(imports);
    state.counters["exports_ms"] = perPass(exports);
    state.counters["files"] = static_cast<double>(Corpus().size());
    benchmark::DoNotOptimize(records);
}
BENCHMARK(BM_PECorpus_PlainLoop)->Unit(benchmark::kMillisecond)->UseRealTime();

// The anchor: objdump printing the headers, imports and exports of the same
// files, run once over the whole list.
void BM_PECorpus_Objdump(benchmark::State& state)
{
    if (CorpusMissing(state)) return;
    std::string command = "x86_64-w64-mingw32-objdump -p -h";
    for (std::string const& path : Corpus()) {
        command += " '";
        command += path;
        command += "'";
    }
    command += " >/dev/null 2>&1";
    if (std::system("command -v x86_64-w64-mingw32-objdump >/dev/null 2>&1") != 0) {
        state.SkipWithError("x86_64-w64-mingw32-objdump not installed");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(std::system(command.c_str()));
}
BENCHMARK(BM_PECorpus_Objdump)->Unit(benchmark::kMillisecond)->UseRealTime();

// The cost the contract puts into every default container of import records:
// 512 records, each with its own 512 constructed sub-records.
void BM_DefaultImportContainer(benchmark::State& state)
{
    for (auto _ : state) {
        ZKContainer<ImportDirRecord> records;
        benchmark::DoNotOptimize(records.GetMaxItemCount());
    }
}
BENCHMARK(BM_DefaultImportContainer)->Unit(benchmark::kMicrosecond);

// The floor the contract sets for the same container: 512 arrays of 512
// records of the same size, each record with a string object of its own that
// is constructed and destroyed, the objects taken from a ready arena with no
// allocator at all.
void BM_DefaultImportContainer_Floor(benchmark::State& state)
{
    struct Record {
        unsigned short hint;
        void const* kind;
        std::string* text;
    };
    static_assert(sizeof(Record) == sizeof(ImportDirRecord::ImportDirSubRecord));
    constexpr std::size_t kSlots = 512;
    // Raw storage for the string objects, reused by every pass.
    std::vector<std::aligned_storage_t<sizeof(std::string), alignof(std::string)>> arena(kSlots * kSlots);
    auto* const objects = reinterpret_cast<std::string*>(arena.data());
    for (auto _ : state) {
        std::vector<std::vector<Record>> records(kSlots);
        std::size_t next = 0;
        for (auto& list : records) {
            list.resize(kSlots);
            for (Record& record : list) {
                record.kind = &arena;
                record.text = new (&objects[next++]) std::string();
            }
        }
        benchmark::DoNotOptimize(records.data());
        for (auto& list : records)
            for (Record& record : list) record.text->~basic_string();
        benchmark::ClobberMemory();
    }
}

BENCHMARK(BM_DefaultImportContainer_Floor)->Unit(benchmark::kMicrosecond);

void BM_DefaultExportContainer(benchmark::State& state)
{
    for (auto _ : state) {
        ZKContainer<ExportDirRecord> records;
        benchmark::DoNotOptimize(records.GetMaxItemCount());
    }
}
BENCHMARK(BM_DefaultExportContainer)->Unit(benchmark::kMicrosecond);

// One default string made and dropped.
void BM_DefaultZKString(benchmark::State& state)
{
    for (auto _ : state) {
        ZKString text;
        benchmark::DoNotOptimize(&text);
    }
}
BENCHMARK(BM_DefaultZKString);

}  // namespace
