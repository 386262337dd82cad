// ZKString search, edit, extraction and hashing against their plain
// counterparts: std::string code, memchr, and GNU strings.
// Run: build/linux/bin/zk64_bench_strings
//
// The extractor's corpus is 64 MiB of real binary content: the library and
// the programs next to this benchmark, concatenated and repeated.

#include <benchmark/benchmark.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#  include <malloc.h>
#endif

namespace {

#if defined(__GLIBC__)
// glibc hands blocks of a MiB to mmap and trims the heap's top after large
// frees, so a benchmark that allocates and frees a few MiB per iteration
// pays page faults on a schedule set by its neighbours. Keeping every block
// on the heap makes the std::string and ZKString figures comparable.
[[maybe_unused]] int const kMallocSettings = [] {
    mallopt(M_MMAP_THRESHOLD, 256 << 20);
    mallopt(M_TRIM_THRESHOLD, 512 << 20);
    return 0;
}();
#endif

constexpr std::size_t kCorpusSize = std::size_t{64} << 20;
constexpr std::size_t kTextSize = std::size_t{1} << 20;

std::string ReadFile(std::filesystem::path const& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string const& BinaryCorpus()
{
    static std::string const corpus = [] {
        namespace fs = std::filesystem;
        fs::path const bin = fs::read_symlink("/proc/self/exe").parent_path();
        std::vector<fs::path> files;
        for (fs::path const& dir : {bin, bin.parent_path()})
            for (auto const& entry : fs::directory_iterator(dir))
                if (entry.is_regular_file() && entry.file_size() > 4096) files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        std::string data;
        while (data.size() < kCorpusSize && !files.empty())
            for (auto const& file : files) data += ReadFile(file);
        data.resize(kCorpusSize);
        return data;
    }();
    return corpus;
}

// The corpus as a file, for GNU strings.
std::string const& CorpusFile()
{
    static std::string const path = [] {
        std::string name = (std::filesystem::temp_directory_path() / "zk64_bench_corpus.bin").string();
        std::ofstream(name, std::ios::binary) << BinaryCorpus();
        return name;
    }();
    return path;
}

void Extract(benchmark::State& state, std::string const& bytes)
{
    ZKString const data(bytes.data(), static_cast<int>(bytes.size()));
    bool const wide = state.range(0) != 0;
    unsigned long long items = 0;
    for (auto _ : state) {
        ZKContainer<ZKString> out;
        ZKString::FindStringsInBinaryData(data, 4, wide, out);
        items = out.GetItemCount();
        benchmark::DoNotOptimize(items);
    }
    state.counters["items"] = static_cast<double>(items);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

void BM_Extract_Binary(benchmark::State& state) { Extract(state, BinaryCorpus()); }
BENCHMARK(BM_Extract_Binary)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// The same with one output list that the caller clears and reuses: its
// slots keep their strings' buffers, so this shows the extraction itself
// without the list's growth and the allocations of its new slots.
void BM_Extract_BinaryReusedList(benchmark::State& state)
{
    std::string const& bytes = BinaryCorpus();
    ZKString const data(bytes.data(), static_cast<int>(bytes.size()));
    bool const wide = state.range(0) != 0;
    ZKContainer<ZKString> out;
    for (auto _ : state) {
        out.Clear();
        ZKString::FindStringsInBinaryData(data, 4, wide, out);
        benchmark::DoNotOptimize(out.GetItemCount());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(BM_Extract_BinaryReusedList)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Extract_AllA(benchmark::State& state) { Extract(state, std::string(kCorpusSize, 'A')); }
BENCHMARK(BM_Extract_AllA)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Extract_AllZero(benchmark::State& state) { Extract(state, std::string(kCorpusSize, '\0')); }
BENCHMARK(BM_Extract_AllZero)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// GNU strings on the same bytes, output discarded: -a -n 4, and -e l for
// UTF-16LE.
void BM_GnuStrings_Binary(benchmark::State& state)
{
    std::string const command = std::string("strings -a -n 4 ") + (state.range(0) ? "-e l " : "") + CorpusFile() +
                                " > /dev/null";
    for (auto _ : state)
        if (std::system(command.c_str()) != 0) state.SkipWithError("strings failed");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kCorpusSize));
}
BENCHMARK(BM_GnuStrings_Binary)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

// A plain memchr scan over the corpus: counting its line feeds.
void BM_Memchr_Binary(benchmark::State& state)
{
    std::string const& bytes = BinaryCorpus();
    for (auto _ : state) {
        std::size_t count = 0;
        char const* end = bytes.data() + bytes.size();
        for (char const* p = bytes.data(); (p = static_cast<char const*>(std::memchr(p, '\n', end - p))); ++p)
            ++count;
        benchmark::DoNotOptimize(count);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(BM_Memchr_Binary)->Unit(benchmark::kMillisecond)->UseRealTime();

// ---- 1 MiB texts ---------------------------------------------------------------------

// Comma-separated fields of 1 to 12 letters and digits.
std::string const& CsvText()
{
    static std::string const text = [] {
        std::mt19937 rng(1);
        std::string out;
        while (out.size() < kTextSize) {
            for (int n = static_cast<int>(rng() % 12) + 1; n > 0; --n) out += "abcdefghij0123456789"[rng() % 20];
            out += ',';
        }
        out.resize(kTextSize);
        return out;
    }();
    return text;
}

// English-like text with a "the" every few words.
std::string const& ProseText()
{
    static std::string const text = [] {
        static char const* const words[] = {"the", "quick", "brown", "fox", "jumps", "over", "lazy", "dog", "and",
                                            "then"};
        std::mt19937 rng(2);
        std::string out;
        while (out.size() < kTextSize) {
            out += words[rng() % 10];
            out += ' ';
        }
        out.resize(kTextSize);
        return out;
    }();
    return text;
}

void BM_ZKString_Split(benchmark::State& state)
{
    ZKString const text(CsvText().c_str());
    for (auto _ : state) {
        ZKContainer<ZKString> items = ZKString::Split(text, ',', false);
        benchmark::DoNotOptimize(items.GetItemCount());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kTextSize));
}
BENCHMARK(BM_ZKString_Split)->Unit(benchmark::kMicrosecond);

void BM_StdString_Split(benchmark::State& state)
{
    std::string const& text = CsvText();
    for (auto _ : state) {
        std::vector<std::string> items;
        std::size_t start = 0;
        for (std::size_t hit = text.find(','); hit != std::string::npos; hit = text.find(',', start)) {
            items.push_back(text.substr(start, hit - start));
            start = hit + 1;
        }
        items.push_back(text.substr(start));
        benchmark::DoNotOptimize(items.size());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kTextSize));
}
BENCHMARK(BM_StdString_Split)->Unit(benchmark::kMicrosecond);

// One byte replaced there and back per iteration.
void BM_ZKString_ReplaceByte(benchmark::State& state)
{
    ZKString text(ProseText().c_str());
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.ReplaceAll('e', '#'));
        benchmark::DoNotOptimize(text.ReplaceAll('#', 'e'));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * 2 * kTextSize));
}
BENCHMARK(BM_ZKString_ReplaceByte)->Unit(benchmark::kMicrosecond);

void BM_StdString_ReplaceByte(benchmark::State& state)
{
    std::string text = ProseText();
    for (auto _ : state) {
        std::replace(text.begin(), text.end(), 'e', '#');
        std::replace(text.begin(), text.end(), '#', 'e');
        benchmark::DoNotOptimize(text.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * 2 * kTextSize));
}
BENCHMARK(BM_StdString_ReplaceByte)->Unit(benchmark::kMicrosecond);

// Text replacement on a fresh copy per iteration: "the" by a text of the
// same length (arg 0) and by a shorter one (arg 1).
char const* ReplacementFor(benchmark::State const& state) { return state.range(0) ? "a" : "THE"; }

void BM_ZKString_ReplaceText(benchmark::State& state)
{
    ZKString const original(ProseText().c_str());
    for (auto _ : state) {
        ZKString text;
        text = original;
        benchmark::DoNotOptimize(text.ReplaceAll("the", ReplacementFor(state)));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kTextSize));
}
BENCHMARK(BM_ZKString_ReplaceText)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_StdString_ReplaceText(benchmark::State& state)
{
    std::string const from = "the";
    std::string const to = ReplacementFor(state);
    for (auto _ : state) {
        std::string text = ProseText();
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
            text.replace(at, from.size(), to);
        benchmark::DoNotOptimize(text.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kTextSize));
}
BENCHMARK(BM_StdString_ReplaceText)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond)->Iterations(3);

// The same text built in one pass, the way a careful std::string user
// writes a replace-all that changes the length.
void BM_StdString_ReplaceTextOnePass(benchmark::State& state)
{
    std::string const from = "the";
    std::string const to = ReplacementFor(state);
    std::string const& text = ProseText();
    for (auto _ : state) {
        std::string out;
        out.reserve(text.size());
        std::size_t start = 0;
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, start)) {
            out.append(text, start, at - start);
            out += to;
            start = at + from.size();
        }
        out.append(text, start);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kTextSize));
}
BENCHMARK(BM_StdString_ReplaceTextOnePass)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// Searches for something that sits only at the far end.
std::string TextWithTarget()
{
    std::string text = ProseText();
    text.replace(text.size() - 20, 8, "needle!!");
    text.replace(10, 8, "needle!!");
    return text;
}

void BM_ZKString_Find(benchmark::State& state)
{
    std::string const raw = TextWithTarget();
    ZKString const text(raw.c_str());
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.Find("needle!!", 100));
        benchmark::DoNotOptimize(text.Find('!', 100));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * 2 * kTextSize));
}
BENCHMARK(BM_ZKString_Find)->Unit(benchmark::kMicrosecond);

void BM_StdString_Find(benchmark::State& state)
{
    std::string const text = TextWithTarget();
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.find("needle!!", 100));
        benchmark::DoNotOptimize(text.find('!', 100));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * 2 * kTextSize));
}
BENCHMARK(BM_StdString_Find)->Unit(benchmark::kMicrosecond);

void BM_ZKString_RFind(benchmark::State& state)
{
    std::string const raw = TextWithTarget();
    ZKString const text(raw.c_str());
    int const before = static_cast<int>(raw.size()) - 100;
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.RFind("needle!!", before));
        benchmark::DoNotOptimize(text.RFind('!', before));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * 2 * kTextSize));
}
BENCHMARK(BM_ZKString_RFind)->Unit(benchmark::kMicrosecond);

void BM_StdString_RFind(benchmark::State& state)
{
    std::string const text = TextWithTarget();
    std::size_t const before = text.size() - 100;
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.rfind("needle!!", before));
        benchmark::DoNotOptimize(text.rfind('!', before));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * 2 * kTextSize));
}
BENCHMARK(BM_StdString_RFind)->Unit(benchmark::kMicrosecond);

// HashString over a 1 MiB text: the text is measured whole, and the
// longest result (65,535 digits) needs half of the digest's positions.
void BM_HashString_1MiB(benchmark::State& state)
{
    ZKString const data(ProseText().c_str());
    for (auto _ : state) {
        ZKString digest = HashString(data, 65535, false);
        benchmark::DoNotOptimize(digest.GetString());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kTextSize));
}
BENCHMARK(BM_HashString_1MiB)->Unit(benchmark::kMicrosecond);

// A 64 KiB text hashed to its own length: the whole digest.
void BM_HashString_64KiBWhole(benchmark::State& state)
{
    ZKString const data(ProseText().substr(0, 65535).c_str());
    for (auto _ : state) {
        ZKString digest = HashString(data, 0, true);
        benchmark::DoNotOptimize(digest.GetString());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * 65535));
}
BENCHMARK(BM_HashString_64KiBWhole)->Unit(benchmark::kMicrosecond);

}  // namespace
