// libFuzzer target: text to numbers and back, hexadecimal, Scan, and the
// UTF-8 and UTF-16 converters both ways on ill-formed input. The number
// conversions throw std::invalid_argument and std::out_of_range by contract,
// and only those are caught.

#include <zk64/zk64.h>

#include <cstring>
#include <stdexcept>
#include <vector>

#include "FuzzSupport.h"

namespace {

template <class Convert>
void Number(Convert convert)
{
    try {
        (void)convert();
    } catch (std::invalid_argument const&) {
    } catch (std::out_of_range const&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    ZKString const text(reinterpret_cast<char const*>(data), static_cast<int>(size));
    Number([&] { return ZKString::ToInt8(text); });
    Number([&] { return ZKString::ToInt16(text); });
    Number([&] { return ZKString::ToInt32(text); });
    Number([&] { return ZKString::ToInt64(text); });
    Number([&] { return ZKString::ToUInt8(text); });
    Number([&] { return ZKString::ToUInt16(text); });
    Number([&] { return ZKString::ToUInt32(text); });
    Number([&] { return ZKString::ToUInt64(text); });
    Number([&] { return ZKString::ToFloat(text); });
    Number([&] { return ZKString::ToDouble(text); });
    (void)FormatStrHexToValue(text);
    (void)FormatStrBytesToHex(text, static_cast<unsigned int>(size % 7));

    // Scan with bounded fields, one format per first byte.
    static char const* const formats[] = {"%d %x %63s", "%lld%n", "%63[^,],%u", "%c%c%c", "%f %lf", "%i %o"};
    int i1 = 0, i2 = 0;
    long long ll = 0;
    unsigned u = 0;
    char buffer[64] = {};
    char c[3] = {};
    float f = 0;
    double d = 0;
    switch (size == 0 ? 0 : data[0] % 6) {
    case 0: ZKString::Scan(text.GetString(), formats[0], &i1, &u, buffer); break;
    case 1: ZKString::Scan(text.GetString(), formats[1], &ll, &i1); break;
    case 2: ZKString::Scan(text.GetString(), formats[2], buffer, &u); break;
    case 3: ZKString::Scan(text.GetString(), formats[3], &c[0], &c[1], &c[2]); break;
    case 4: ZKString::Scan(text.GetString(), formats[4], &f, &d); break;
    default: ZKString::Scan(text.GetString(), formats[5], &i1, &i2); break;
    }

    // UTF-8 (up to the first zero) to UTF-16 and back.
    unsigned int length = 0, written = 0;
    ZKWideChar* wide = ZKString::GetWideString(text, &length, &written);
    ZK_FUZZ_REQUIRE(wide != nullptr && written >= 1 && written <= length && wide[written - 1] == 0);
    ZKString const back(wide);
    ZKString::CleanupWideString(&wide);
    ZK_FUZZ_REQUIRE(wide == nullptr);
    (void)back;

    // The same bytes read as UTF-16 units, unpaired surrogates and all.
    std::vector<ZKWideChar> units(size / 2 + 1, 0);
    std::memcpy(units.data(), data, size / 2 * 2);
    ZKString const narrow(units.data(), static_cast<int>(size / 2));
    ZKString const upToZero(units.data());
    (void)narrow;
    (void)upToZero;
    return 0;
}
