// libFuzzer target: SetColorFromString on the whole input, and BigInteger
// from the two texts either side of the first zero byte, added with +=.
// AddIntStrs throws std::invalid_argument for a byte that is not a digit,
// by contract, and only that is caught; on that error the value stays.

#include <zk64/zk64.h>

#include <algorithm>
#include <stdexcept>

#include "FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const whole(reinterpret_cast<char const*>(data), size);
    ZKColor color(1, 2, 3, 4);
    color.SetColorFromString(ZKString(whole.c_str()));
    ZKColor again;
    again.SetColorFromString(color.GetColorAsString());
    ZK_FUZZ_REQUIRE(again == color);  // its own text reads back

    std::size_t const cut = whole.find('\0');
    std::string const left = whole.substr(0, cut);
    std::string right = cut == std::string::npos ? "" : whole.substr(cut + 1);
    right = right.substr(0, right.find('\0'));  // the sum reads each text up to its first zero
    BigInteger sum{ZKString(left.c_str())};
    BigInteger const other{ZKString(right.c_str())};
    bool const digits = left.find_first_not_of("0123456789") == std::string::npos &&
                        right.find_first_not_of("0123456789") == std::string::npos;
    try {
        sum += other;
        ZK_FUZZ_REQUIRE(digits);
        std::size_t const longer = std::max(left.size(), right.size());
        std::size_t const length = static_cast<std::size_t>(sum.GetValue().GetSize());
        ZK_FUZZ_REQUIRE(length == longer || length == longer + 1);
    } catch (std::invalid_argument const&) {
        ZK_FUZZ_REQUIRE(!digits);
        ZK_FUZZ_REQUIRE(std::string(sum.GetValue().GetString()) == left);
    }
    return 0;
}
