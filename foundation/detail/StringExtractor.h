#pragma once

// The strings extractor behind ZKString::FindStringsInBinaryData.
//
// The extractor is defined as a byte-at-a-time machine over a three-byte
// state (the previous byte, and whether the previous two were printable)
// plus a run counter and a 16 KiB run buffer. ExtractStringsByteByByte is
// that machine, step for step. ExtractStrings gives exactly the same output,
// including the bytes behind each item's terminating zero, but works on
// 64-byte blocks: it classifies a block with vector compares, derives from
// the printable bits where the machine appends and where it resets its run,
// and counts appends with popcounts. Only where a run is long enough to be
// emitted, or to leave bytes in the run buffer that a later item can show,
// does it replay the machine byte by byte over that run.

#include <array>
#include <cstddef>

#include "../ZKContainer.h"
#include "../ZKString.h"

namespace zk64::detail {

// The printable bytes, one entry of 0 or 1 per byte value: tab, line feed,
// carriage return and 32..126.
inline constexpr std::array<unsigned char, 256> kPrintableBytes = [] {
    std::array<unsigned char, 256> table{};
    for (int c = 32; c <= 126; ++c) table[static_cast<std::size_t>(c)] = 1;
    table[9] = table[10] = table[13] = 1;
    return table;
}();

// allowWideVectors false keeps to the baseline instruction set (SSE2 on
// x86-64) even where AVX2 is available, so that both paths can be tested.
void ExtractStrings(unsigned char const* data, std::size_t size, unsigned int minimumLength, bool findWide,
                    ZKContainer<ZKString>& out, bool allowWideVectors = true);

void ExtractStringsByteByByte(unsigned char const* data, std::size_t size, unsigned int minimumLength,
                              bool findWide, ZKContainer<ZKString>& out);

}  // namespace zk64::detail
