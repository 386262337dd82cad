// Message names through the library as a caller links it: natively on Linux,
// as zk64.dll under Wine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

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
