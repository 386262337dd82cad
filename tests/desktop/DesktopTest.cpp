// Message names through the library as a caller links it: natively on Linux,
// as zk64.dll under Wine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstdint>
#include <string>

TEST(MessageNames, NamesTheFirstRowAndNumbersTheRest)
{
    // The first row of a number names it (WM_KEYDOWN before WM_KEYFIRST), rows behind another of the same
    // number are found all the same (WM_MOUSEWHEEL), and there is no WM_USER row.
    std::string names;
    for (unsigned long number : {0x0ul, 0x4ul, 0x100ul, 0x20Aul, 0x20Eul, 0x400ul, 0x4C8ul, 0x4DEul, 0x1000ul, 0x8000ul,
                                 0xCCCDul, 0xCCCEul, 0xFFFFFFFFul})
        names += std::string(GetWindowsMessageIDStr(number).GetString()) + "|";
    EXPECT_EQ(names, "WM_NULL|Unknown Windows message: 4|WM_KEYDOWN|WM_MOUSEWHEEL|WM_MOUSELAST|"
                     "Unknown Windows message: 1024|CDM_LAST|EM_SETSCROLLPOS|LVM_FIRST|WM_APP|WM_RASDIALEVENT|"
                     "Unknown Windows message: 52430|Unknown Windows message: -1|");
}

TEST(MessageNames, EveryNumberIsANameOrItsSignedDecimal)
{
    // Every 16-bit number (the names lie there), each again with high bits set, which are never names, and
    // above 32 bits, which do not count. All 2^32 numbers would take a quarter of an hour.
    auto const unknown = [](std::uint32_t n) { return "Unknown Windows message: " + std::to_string(std::int32_t(n)); };
    int named = 0;
    for (std::uint32_t number = 0; number <= 0xFFFF; ++number) {
        std::string const text = GetWindowsMessageIDStr(number).GetString();
        bool const name = text != unknown(number);
        named += name;
        EXPECT_TRUE(!name || text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789") == std::string::npos) << text;
        for (std::uint32_t high : {0x10000u, 0x80000000u, 0xFFFF0000u})
            ASSERT_EQ(GetWindowsMessageIDStr(number | high).GetString(), unknown(number | high));
        auto const above = static_cast<unsigned long>(std::uint64_t{number} | std::uint64_t{0xABCD} << 32);
        ASSERT_EQ(GetWindowsMessageIDStr(above).GetString(), text);
    }
    EXPECT_EQ(named, 438) << "numbers with a name (450 rows, a few of them sharing a number)";
}
