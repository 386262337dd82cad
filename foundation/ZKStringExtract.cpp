// ZKString::FindStringsInBinaryData: the strings extractor.
//
// The machine, per byte c with p0 = printable(c), p1 and p2 the same for the
// two bytes before, b1 the byte before, and count the length of the current
// run:
//
//   p2 p1 p0  action
//   0  0  1   append c
//   0  0  0   nothing
//   0  1  0   nothing (the previous byte may be one wide unit)
//   0  1  1   two printables in a row end a wide run: if count < min + 1 the
//             run restarts as b1, c (count 2); otherwise a wide run of
//             count - 1 bytes is emitted (if wide strings are wanted) and
//             count becomes 0
//   1  1  1   append c
//   1  1  0   a plain run ended: count >= min emits count bytes and clears
//             count; otherwise c != 0 clears count and c == 0 restarts the
//             run as b1 alone (count 1), as it may begin a wide string
//   1  0  1   append c if b1 is zero (a wide run goes on)
//   1  0  0   a wide run ended: count >= min emits it if wide strings are
//             wanted; count becomes 0 either way
//
// Appending stores the byte while count < 8,191 and counts it in any case.
// Emitting n = min(length, 8,191) bytes pushes a string of the first 2n
// bytes of the run buffer with a zero at index n.
//
// The block-wise version below relies on three facts about this machine:
//   * Only three rows reset the run (0 1 1, 1 1 0, 1 0 0); between resets
//     count only grows, by one per appending row. Which row applies at a
//     byte depends on the printable and zero bits of the data alone.
//   * A reset with count < min emits nothing and sets count to a value fixed
//     by the data: 2 after 0 1 1, 1 after 1 1 0 on a zero byte, else 0.
//   * A run whose count stays below min writes only buffer positions below
//     min. No item ever shows those bytes of an earlier run: an item of n
//     bytes (n >= min, or n = 8,191 with every position from 8,191 on never
//     written) shows the current run's bytes below n, a zero at n, and the
//     buffer's bytes from n + 1 on.
// So a run needs the real machine only when its count reaches min at its
// reset; there the machine is replayed from the run's start.

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "ZKString.h"
#include "detail/ListFill.h"
#include "detail/StringExtractor.h"

#if defined(__x86_64__) || defined(_M_X64)
#  include <immintrin.h>
#  define ZK64_EXTRACT_X86 1
#endif

namespace zk64::detail {
namespace {

constexpr unsigned long long kRunLimit = 8191;
constexpr std::size_t kRunBufferSize = 16384;
// The run buffer's last byte: no item reaches it (an item shows at most
// 2 * 8,191 bytes), so writes that must not land go there.
constexpr std::size_t kScratchSlot = kRunBufferSize - 1;

constexpr auto const& kPrintable = kPrintableBytes;

class RunMachine {
public:
    // Pushes every item to `out`, or with `collected` appends them there
    // instead, as the texts the pushes would have given.
    RunMachine(unsigned int minimumLength, bool findWide, ZKContainer<ZKString>& out,
               std::vector<std::string>* collected = nullptr)
        : minimum(minimumLength), wide(findWide), items(out), texts(collected)
    {
    }

    unsigned long long Count() const { return count; }

    void Step(unsigned char c)
    {
        bool const p0 = kPrintable[c];
        switch ((printable2 ? 4 : 0) | (printable1 ? 2 : 0) | (p0 ? 1 : 0)) {
        case 0b001:
        case 0b111:
            Append(c);
            break;
        case 0b011:
            if (count < minimum + 1) {
                run[0] = previous;
                run[1] = c;
                count = 2;
            } else {
                if (wide) Emit(count - 1);
                count = 0;
            }
            break;
        case 0b110:
            if (count >= minimum) {
                Emit(count);
                count = 0;
            } else if (c != 0) {
                count = 0;
            } else {
                run[0] = previous;
                count = 1;
            }
            break;
        case 0b101:
            if (previous == 0) Append(c);
            break;
        case 0b100:
            if (count >= minimum && wide) Emit(count);
            count = 0;
            break;
        default:  // 000, 010: nothing
            break;
        }
        printable2 = printable1;
        printable1 = p0;
        previous = c;
    }

    // Puts the machine in the state it had right after the reset at
    // `resetAt` (-1: the start of the data), which left the count `base`,
    // then runs it through data[end], where the next reset lies. Between
    // the two resets the machine only appends or does nothing, so that
    // stretch is replayed without the state table: after a restart (base
    // 2) every byte up to the next reset is printable and appended, and
    // elsewhere the appending rows are told apart without branches.
    void Replay(unsigned char const* data, long long resetAt, unsigned long long base, std::size_t end)
    {
        auto const byteAt = [data](long long i) -> unsigned char { return i >= 0 ? data[i] : 0; };
        auto const printableAt = [data](long long i) { return i >= 0 && kPrintable[data[i]]; };
        count = base;
        if (base == 2) {  // restarted as b1, c
            run[0] = byteAt(resetAt - 1);
            run[1] = byteAt(resetAt);
        } else if (base == 1) {  // restarted as b1
            run[0] = byteAt(resetAt - 1);
        }
        auto const from = static_cast<std::size_t>(resetAt + 1);
        if (base == 2) {
            std::size_t const length = end - from;
            if (count < kRunLimit)
                std::memcpy(run.data() + count, data + from, std::min<std::size_t>(length, kRunLimit - count));
            count += length;
        } else {
            unsigned p2 = printableAt(resetAt - 1), p1 = printableAt(resetAt);
            unsigned char b1 = byteAt(resetAt);
            for (std::size_t i = from; i < end; ++i) {
                unsigned char const c = data[i];
                unsigned const p0 = kPrintable[c];
                unsigned const append = p0 & ((p1 & p2) | ((p1 ^ 1) & ((p2 ^ 1) | (b1 == 0))));
                run[append != 0 && count < kRunLimit ? count : kScratchSlot] = c;
                count += append;
                p2 = p1;
                p1 = p0;
                b1 = c;
            }
        }
        previous = byteAt(static_cast<long long>(end) - 1);
        printable1 = printableAt(static_cast<long long>(end) - 1);
        printable2 = printableAt(static_cast<long long>(end) - 2);
        Step(data[end]);
    }

private:
    void Append(unsigned char c)
    {
        if (count < kRunLimit) run[count] = c;
        ++count;
    }

    void Emit(unsigned long long length)
    {
        std::size_t const n = static_cast<std::size_t>(std::min(length, kRunLimit));
        if (texts != nullptr) {
            std::string& text = texts->emplace_back(reinterpret_cast<char const*>(run.data()), 2 * n);
            if (n > 0) text[n] = 0;
            return;
        }
        item.SetString(reinterpret_cast<char const*>(run.data()), static_cast<int>(2 * n));
        if (n > 0) item[static_cast<unsigned int>(n)] = 0;
        items.PushBack(item);
    }

    unsigned long long const minimum;
    bool const wide;
    ZKContainer<ZKString>& items;
    std::vector<std::string>* const texts;
    ZKString item;  // reused for every push
    unsigned long long count = 0;
    unsigned char previous = 0;
    bool printable1 = false;
    bool printable2 = false;
    std::array<unsigned char, kRunBufferSize> run{};
};

// Printable and zero bits of 64 bytes, bit i for byte i.
struct BlockBits {
    std::uint64_t printable;
    std::uint64_t zero;
};

#if defined(ZK64_EXTRACT_X86)
// 16 bytes: printable is 32..126 (one signed compare after a shift of the
// range) or 9, 10, 13.
inline void Classify16(__m128i v, unsigned shift, BlockBits& bits)
{
    __m128i const inRange = _mm_cmplt_epi8(_mm_add_epi8(v, _mm_set1_epi8(96)), _mm_set1_epi8(-33));
    __m128i const controls = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8(9)),
                                                       _mm_cmpeq_epi8(v, _mm_set1_epi8(10))),
                                          _mm_cmpeq_epi8(v, _mm_set1_epi8(13)));
    auto const printable = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(inRange, controls)));
    auto const zero = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_setzero_si128())));
    bits.printable |= static_cast<std::uint64_t>(printable) << shift;
    bits.zero |= static_cast<std::uint64_t>(zero) << shift;
}

struct Sse2Classifier {
    static BlockBits Classify(unsigned char const* p)
    {
        BlockBits bits{0, 0};
        for (unsigned k = 0; k < 4; ++k)
            Classify16(_mm_loadu_si128(reinterpret_cast<__m128i const*>(p + 16 * k)), 16 * k, bits);
        return bits;
    }
};

[[gnu::target("avx2")]] inline void Classify32(__m256i v, unsigned shift, BlockBits& bits)
{
    __m256i const inRange = _mm256_cmpgt_epi8(_mm256_set1_epi8(-33), _mm256_add_epi8(v, _mm256_set1_epi8(96)));
    __m256i const controls = _mm256_or_si256(_mm256_or_si256(_mm256_cmpeq_epi8(v, _mm256_set1_epi8(9)),
                                                             _mm256_cmpeq_epi8(v, _mm256_set1_epi8(10))),
                                             _mm256_cmpeq_epi8(v, _mm256_set1_epi8(13)));
    auto const printable = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_or_si256(inRange, controls)));
    auto const zero = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(v, _mm256_setzero_si256())));
    bits.printable |= static_cast<std::uint64_t>(printable) << shift;
    bits.zero |= static_cast<std::uint64_t>(zero) << shift;
}

struct Avx2Classifier {
    [[gnu::target("avx2")]] static BlockBits Classify(unsigned char const* p)
    {
        BlockBits bits{0, 0};
        Classify32(_mm256_loadu_si256(reinterpret_cast<__m256i const*>(p)), 0, bits);
        Classify32(_mm256_loadu_si256(reinterpret_cast<__m256i const*>(p + 32)), 32, bits);
        return bits;
    }
};
#endif

#if !defined(ZK64_EXTRACT_X86)
struct TableClassifier {
    static BlockBits Classify(unsigned char const* p)
    {
        BlockBits bits{0, 0};
        for (unsigned i = 0; i < 64; ++i) {
            bits.printable |= static_cast<std::uint64_t>(kPrintable[p[i]]) << i;
            bits.zero |= static_cast<std::uint64_t>(p[i] == 0) << i;
        }
        return bits;
    }
};
#endif

// Bits [from, to) of a word, for 0 <= from, to <= 64.
inline std::uint64_t BitRange(unsigned from, unsigned to)
{
    std::uint64_t const below = to >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << to) - 1;
    std::uint64_t const above = from >= 64 ? 0 : ~std::uint64_t{0} << from;
    return below & above;
}

// True when no reset of a block can see a count of `minimum` or more, given
// the count at the block's start; `resets` is not empty. The run that is
// open at the start is checked exactly. Every later run starts with a count
// of at most 2, so it is safe while it holds fewer than minimum - 2 appends.
// Those are counted along chains: from each append, a carry through the
// non-event positions lands on the next event, and a chain of appends that
// reaches minimum - 2 links without landing on a reset is a long run.
[[gnu::always_inline]] inline bool IsQuiet(unsigned long long count, std::uint64_t appends, std::uint64_t resets,
                                           unsigned long long minimum)
{
    auto const firstReset = static_cast<unsigned>(std::countr_zero(resets));
    auto const lastReset = static_cast<unsigned>(63 - std::countl_zero(resets));
    if (count + static_cast<unsigned long long>(std::popcount(appends & BitRange(0, firstReset))) >= minimum)
        return false;
    std::uint64_t chain = appends & BitRange(firstReset + 1, lastReset);  // appends of runs closed here
    if (minimum <= 2) return firstReset == lastReset;  // a run after a reset may start at 2
    std::uint64_t const gaps = ~(appends | resets);
    for (unsigned long long links = minimum - 3; links > 0 && chain != 0; --links) {
        if (links >= 64) return true;  // no block holds that many appends
        std::uint64_t const start = chain << 1;
        chain = ((start + gaps) & ~gaps) & appends;
    }
    return chain == 0;
}

template <class Classifier>
[[gnu::always_inline]] inline void ExtractBlocks(unsigned char const* data, std::size_t size, RunMachine& machine,
                                                 unsigned long long minimum)
{
    unsigned long long count = 0;    // the machine's count at the current position
    long long runStart = -1;         // the last reset (-1: none yet)
    unsigned long long runBase = 0;  // the count that reset left
    std::uint64_t previousPrintable = 0, previousZero = 0;
    alignas(64) unsigned char last[64];

    for (std::size_t offset = 0; offset < size; offset += 64) {
        std::size_t const length = std::min<std::size_t>(64, size - offset);
        unsigned char const* block = data + offset;
        if (length < 64) {  // the final partial block, zero-padded; the padding's rows are masked off
            std::memset(last, 0, sizeof last);
            std::memcpy(last, block, length);
            block = last;
        }
        BlockBits const bits = Classifier::Classify(block);
        std::uint64_t const valid = BitRange(0, static_cast<unsigned>(length));

        std::uint64_t const p0 = bits.printable;
        std::uint64_t const p1 = (p0 << 1) | (previousPrintable >> 63);
        std::uint64_t const p2 = (p0 << 2) | (previousPrintable >> 62);
        std::uint64_t const z1 = (bits.zero << 1) | (previousZero >> 63);
        previousPrintable = p0;
        previousZero = bits.zero;

        std::uint64_t const appends = ((p0 & ~p1 & (~p2 | z1)) | (p0 & p1 & p2)) & valid;
        std::uint64_t const restarts = p0 & p1 & ~p2;   // 0 1 1
        std::uint64_t const plainEnds = ~p0 & p1 & p2;  // 1 1 0
        std::uint64_t const wideEnds = ~p0 & ~p1 & p2;  // 1 0 0
        std::uint64_t resets = (restarts | plainEnds | wideEnds) & valid;

        if (resets == 0) {
            count += static_cast<unsigned long long>(std::popcount(appends));
            continue;
        }
        if (IsQuiet(count, appends, resets, minimum)) {
            // No reset here sees count >= minimum, so the run state after
            // the block follows from its last reset alone.
            auto const lastReset = static_cast<unsigned>(63 - std::countl_zero(resets));
            std::uint64_t const bit = std::uint64_t{1} << lastReset;
            runBase = (restarts & bit) ? 2 : (plainEnds & bits.zero & bit) ? 1 : 0;
            runStart = static_cast<long long>(offset + lastReset);
            count = runBase + static_cast<unsigned long long>(std::popcount(appends & BitRange(lastReset + 1, 64)));
            continue;
        }

        unsigned counted = 0;  // appends below this bit are in `count`
        while (resets != 0) {
            auto const i = static_cast<unsigned>(std::countr_zero(resets));
            resets &= resets - 1;
            count += static_cast<unsigned long long>(std::popcount(appends & BitRange(counted, i)));
            std::uint64_t const bit = std::uint64_t{1} << i;
            if (count >= minimum) {
                machine.Replay(data, runStart, runBase, offset + i);
                count = machine.Count();
            } else {
                count = (restarts & bit) ? 2 : (plainEnds & bits.zero & bit) ? 1 : 0;
            }
            runStart = static_cast<long long>(offset + i);
            runBase = count;
            counted = i + 1;
        }
        count += static_cast<unsigned long long>(std::popcount(appends & BitRange(counted, 64)));
    }
}

#if defined(ZK64_EXTRACT_X86)
[[gnu::target("avx2,popcnt,bmi,bmi2"), gnu::flatten]] void ExtractBlocksAvx2(unsigned char const* data,
                                                                             std::size_t size, RunMachine& machine,
                                                                             unsigned long long minimum)
{
    ExtractBlocks<Avx2Classifier>(data, size, machine, minimum);
}

[[gnu::flatten]] void ExtractBlocksSse2(unsigned char const* data, std::size_t size, RunMachine& machine,
                                        unsigned long long minimum)
{
    ExtractBlocks<Sse2Classifier>(data, size, machine, minimum);
}

bool HasAvx2()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt") && __builtin_cpu_supports("bmi") &&
           __builtin_cpu_supports("bmi2");
}
#endif

}  // namespace

void ExtractStrings(unsigned char const* data, std::size_t size, unsigned int minimumLength, bool findWide,
                    ZKContainer<ZKString>& out, bool allowWideVectors)
{
    // A new list the caller made for this call is filled in one go at the
    // end: no doubling of its storage on the way. A list that was used
    // before is pushed to, so that its strings' buffers are reused.
    std::vector<std::string> collected;
    bool const collect = IsUnusedList(out) && HoldsNoText(out);
    RunMachine machine(minimumLength, findWide, out, collect ? &collected : nullptr);
#if defined(ZK64_EXTRACT_X86)
    if (allowWideVectors && HasAvx2()) ExtractBlocksAvx2(data, size, machine, minimumLength);
    else ExtractBlocksSse2(data, size, machine, minimumLength);
#else
    (void)allowWideVectors;
    ExtractBlocks<TableClassifier>(data, size, machine, minimumLength);
#endif
    if (collect) FillUnusedList(out, collected);
}

void ExtractStringsByteByByte(unsigned char const* data, std::size_t size, unsigned int minimumLength,
                              bool findWide, ZKContainer<ZKString>& out)
{
    RunMachine machine(minimumLength, findWide, out);
    for (std::size_t i = 0; i < size; ++i) machine.Step(data[i]);
}

}  // namespace zk64::detail

bool ZKString::FindStringsInBinaryData(ZKString const& data, unsigned int const& minimumLength,
                                       bool const& findWide, ZKContainer<ZKString>& out)
{
    zk64::detail::ExtractStrings(reinterpret_cast<unsigned char const*>(data.stringData->data()),
                                 data.stringData->size(), minimumLength, findWide, out);
    return out.GetItemCount() > 0;
}

bool ZKString::FindStringsInBinaryData(unsigned int const& minimumLength, bool const& findWide,
                                       ZKContainer<ZKString>& out) const
{
    ZKString data;
    data = *this;  // the whole counted text; this string may be an item of `out`
    return FindStringsInBinaryData(data, minimumLength, findWide, out);
}
