#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <vector>

TEST(BitHelpers, FlagWordsAndHalves)
{
    // SetBitsOff is all or nothing: only a mask whose bits are all set clears.
    struct Row {
        unsigned long long value, mask, off, on;
        bool set;
    } const rows[] = {
        {0b0110, 0b0011, 0b0110, 0b0111, false}, {0b0110, 0, 0b0110, 0b0110, true},
        {0b0110, 0b0110, 0, 0b0110, true},       {~0ull, 0x8000000000000001ull, 0x7FFFFFFFFFFFFFFEull, ~0ull, true},
        {0b1010, 0b1001, 0b1010, 0b1011, false},
    };
    for (Row const& r : rows) {
        unsigned long long off = r.value, on = r.value;
        SetBitsOff(off, r.mask);
        SetBitsOn(on, r.mask);
        EXPECT_EQ(std::vector({off, on}), std::vector({r.off, r.on})) << r.value << " " << r.mask;
        EXPECT_EQ(AreBitsSet(r.value, r.mask), r.set) << r.value << " " << r.mask;
    }

    unsigned int low = 1, high = 2, low2 = 3, high2 = 4;
    Split64BitInteger(0x0123456789ABCDEFull, low, high);
    SplitFlagData(0xFFFFFFFF00000001ull, low2, high2);
    EXPECT_TRUE(low == 0x89ABCDEFu && high == 0x01234567u && low2 == 1u && high2 == ~0u);
    unsigned long long value = ~0ull, value2 = 0;
    Merge32BitIntegers(value, 0x5u, 0x0u);
    MergeFlagData(value2, 0x89ABCDEFu, 0x01234567u);
    EXPECT_TRUE(value == 5 && value2 == 0x0123456789ABCDEFull) << "the old content is ignored";

    // Counts of 0 or at least the width keep the whole value.
    EXPECT_EQ(std::vector({Extract64BitInteger(~0ull, 63), Extract64BitInteger(~0ull, 0),
                           Extract64BitInteger(~0ull, 64), Extract64BitInteger(~0ull, 200),
                           Extract64BitInteger(0xABCDull, 8), ExtractFlagBitRange(0xABCDull, 4)}),
              std::vector({0x7FFFFFFFFFFFFFFFull, ~0ull, ~0ull, ~0ull, 0xCDull, 0xDull}));
    EXPECT_EQ(std::vector({Extract32BitInteger(~0u, 31), Extract32BitInteger(~0u, 0), Extract32BitInteger(~0u, 32),
                           Extract32BitInteger(0xF0F0u, 12)}),
              std::vector({0x7FFFFFFFu, ~0u, ~0u, 0x0F0u}));
}

TEST(MemoryHelpers, NullAndZeroLengthNeverTouchMemory)
{
    unsigned char buffer[4] = {1, 2, 3, 4};
    unsigned char const source[4] = {9, 9, 9, 9};
    MemoryCopy(nullptr, source, 4);
    MemoryCopy(buffer, nullptr, 4);
    MemoryCopy(buffer, source, 0);
    MemorySet(nullptr, 7, 4);
    MemorySet(buffer, 7, 0);
    MemoryCopy(buffer, source, 2);
    MemorySet(buffer + 3, 0xAB, 1);
    EXPECT_EQ(std::vector<int>(buffer, buffer + 4), (std::vector<int>{9, 9, 3, 0xAB}));
    EXPECT_FALSE(MemoryCompareEqual(buffer, buffer, 0)) << "two empty ranges are not equal";
    EXPECT_FALSE(MemoryCompareEqual(nullptr, buffer, 3) || MemoryCompareEqual(buffer, nullptr, 3));
    EXPECT_TRUE(MemoryCompareEqual(buffer, source, 2) && !MemoryCompareEqual(buffer, source, 3));
}

TEST(FlagsMembers, ActOnTheContainerGrowthBit)
{
    ZKContainer<int> c(1);
    c.SetBitsOn(0b1100);
    c.SetBitsOff(0b0110);
    EXPECT_EQ(c.GetFlagsData(), 0b1101u) << "all or nothing, as the free SetBitsOff";
    EXPECT_TRUE(c.AreBitsSet(0b0101));
    c.SetFlagsData(0xF0);
    EXPECT_FALSE(c.IsContainerAutoResize()) << "SetFlagsData replaces bit 0 too";
    c.SetFlagsData(0x1);
    c.PushBack(1);
    c.ClearFlagsData();
    EXPECT_EQ(c.PushBack(2), ~0ull);
    c.SetBitsOn(1);
    EXPECT_EQ(c.PushBack(2), 0u) << "linearised to slot 1, so the next back slot wraps to 0";
    EXPECT_EQ(c.GetMaxItemCount(), 2u);
}
