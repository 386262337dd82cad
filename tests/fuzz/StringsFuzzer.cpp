// libFuzzer target: the strings extractor, narrow and wide, at every minimum
// length. The first four bytes choose the minimum (little-endian), the fifth
// whether wide runs count; the rest is the data. Every item must read as
// printable text of at most 8,191 bytes while its size is twice that, and
// the member form must give what the static form gives.

#include <zk64/zk64.h>

#include <cstring>

#include "FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    if (size < 5) return 0;
    unsigned int minimum = 0;
    std::memcpy(&minimum, data, 4);
    bool const wide = (data[4] & 1) != 0;
    ZKString const bytes(reinterpret_cast<char const*>(data + 5), static_cast<int>(size - 5));

    ZKContainer<ZKString> found;
    found.PushBack("kept");  // old items stay
    bool const any = ZKString::FindStringsInBinaryData(bytes, minimum, wide, found);
    ZK_FUZZ_REQUIRE(any == (found.GetItemCount() > 0));
    ZK_FUZZ_REQUIRE(found.GetItemCount() >= 1 && std::strcmp(found.GetItem(0).GetString(), "kept") == 0);
    for (unsigned long long i = 1; i < found.GetItemCount(); ++i) {
        ZKString const& item = found.GetItem(i);
        std::size_t const length = std::strlen(item.GetString());
        ZK_FUZZ_REQUIRE(length <= 8191);
        ZK_FUZZ_REQUIRE(static_cast<std::size_t>(item.GetSize()) == 2 * length);
        for (std::size_t k = 0; k < length; ++k) ZK_FUZZ_REQUIRE(ZKString::IsBytePrintable(item[k]));
    }

    ZKContainer<ZKString> again;
    bytes.FindStringsInBinaryData(minimum, wide, again);
    ZK_FUZZ_REQUIRE(again.GetItemCount() + 1 == found.GetItemCount());
    for (unsigned long long i = 0; i < again.GetItemCount(); ++i)
        ZK_FUZZ_REQUIRE(std::strcmp(again.GetItem(i).GetString(), found.GetItem(i + 1).GetString()) == 0);
    return 0;
}
