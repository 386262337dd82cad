#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstring>

TEST(Identity, StringsAndByteOrder)
{
    EXPECT_STREQ(GetZKName(), "Zenkor");
    EXPECT_STREQ(GetZKVersion(), "0.0.20.5.16");
    EXPECT_STREQ(GetZKAbout(), "ZK Library. XY");
    EXPECT_EQ(GetZKName(), GetZKName()) << "static storage, the same text each call";
    EXPECT_FALSE(IsMachineBigEndian());
    EXPECT_TRUE(IsMachineLittleEndian());
}

TEST(BitHelpers, SetBitsOffIsAllOrNothing)
{
    unsigned long long value = 0b0110;
    SetBitsOff(value, 0b0011);
    EXPECT_EQ(value, 0b0110u) << "bit 0 of the mask is clear in value: nothing changes";
    SetBitsOff(value, 0);
    EXPECT_EQ(value, 0b0110u);
    SetBitsOff(value, 0b0110);
    EXPECT_EQ(value, 0u);
    value = ~0ull;
    SetBitsOff(value, 0x8000000000000001ull);
    EXPECT_EQ(value, 0x7FFFFFFFFFFFFFFEull);
}

TEST(BitHelpers, AreBitsSetAndSetBitsOn)
{
    unsigned long long value = 0;
    EXPECT_TRUE(AreBitsSet(value, 0)) << "a mask of 0 is always set";
    SetBitsOn(value, 0b1010);
    SetBitsOn(value, 0b0010);
    EXPECT_EQ(value, 0b1010u);
    EXPECT_TRUE(AreBitsSet(value, 0b1000));
    EXPECT_FALSE(AreBitsSet(value, 0b1001)) << "every bit of the mask must be set";
}

TEST(BitHelpers, SplitAndMergeUnderBothNames)
{
    unsigned int low = 1, high = 2;
    Split64BitInteger(0x0123456789ABCDEFull, low, high);
    EXPECT_EQ(low, 0x89ABCDEFu);
    EXPECT_EQ(high, 0x01234567u);
    SplitFlagData(0xFFFFFFFF00000001ull, low, high);
    EXPECT_EQ(low, 1u);
    EXPECT_EQ(high, 0xFFFFFFFFu);

    unsigned long long value = ~0ull;
    Merge32BitIntegers(value, 0x5u, 0x0u);
    EXPECT_EQ(value, 0x5ull) << "the old content is ignored";
    MergeFlagData(value, 0x89ABCDEFu, 0x01234567u);
    EXPECT_EQ(value, 0x0123456789ABCDEFull);
}

TEST(BitHelpers, ExtractKeepsLowBitsAndTreatsOutOfRangeCountsAsWhole)
{
    unsigned long long const all = ~0ull;
    EXPECT_EQ(Extract64BitInteger(all, 63), 0x7FFFFFFFFFFFFFFFull);
    EXPECT_EQ(Extract64BitInteger(all, 64), all);
    EXPECT_EQ(Extract64BitInteger(all, 0), all);
    EXPECT_EQ(Extract64BitInteger(all, 200), all);
    EXPECT_EQ(Extract64BitInteger(0xABCDull, 8), 0xCDull);
    EXPECT_EQ(ExtractFlagBitRange(0xABCDull, 4), 0xDull);
    EXPECT_EQ(ExtractFlagBitRange(all, 1), 1ull);

    unsigned int const all32 = ~0u;
    EXPECT_EQ(Extract32BitInteger(all32, 31), 0x7FFFFFFFu);
    EXPECT_EQ(Extract32BitInteger(all32, 32), all32);
    EXPECT_EQ(Extract32BitInteger(all32, 0), all32);
    EXPECT_EQ(Extract32BitInteger(0xF0F0u, 12), 0x0F0u);
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
    EXPECT_EQ(buffer[0], 1);
    EXPECT_EQ(buffer[3], 4);

    MemoryCopy(buffer, source, 2);
    EXPECT_EQ(buffer[1], 9);
    EXPECT_EQ(buffer[2], 3);
    MemorySet(buffer + 2, 0xAB, 2);
    EXPECT_EQ(buffer[2], 0xAB);
    EXPECT_EQ(buffer[3], 0xAB);
}

TEST(MemoryHelpers, CompareEqualRejectsEmptyAndNullRanges)
{
    unsigned char const a[3] = {1, 2, 3};
    unsigned char const b[3] = {1, 2, 4};
    EXPECT_FALSE(MemoryCompareEqual(a, a, 0)) << "two empty ranges are not equal";
    EXPECT_FALSE(MemoryCompareEqual(nullptr, a, 3));
    EXPECT_FALSE(MemoryCompareEqual(a, nullptr, 3));
    EXPECT_TRUE(MemoryCompareEqual(a, b, 2));
    EXPECT_FALSE(MemoryCompareEqual(a, b, 3));
}

TEST(FlagsMembers, BehaveLikeTheFreeHelpersOnTheContainerField)
{
    ZKContainer<int> c(2);
    EXPECT_EQ(c.GetFlagsData(), 1u) << "a new container has growth on, nothing else";
    c.SetBitsOn(0b1100);
    EXPECT_EQ(c.GetFlagsData(), 0b1101u);
    c.SetBitsOff(0b0110);
    EXPECT_EQ(c.GetFlagsData(), 0b1101u) << "all-or-nothing, as the free SetBitsOff";
    EXPECT_TRUE(c.AreBitsSet(0b0101));
    EXPECT_FALSE(c.AreBitsSet(0b0010));
    c.SetFlagsData(0xF0);
    EXPECT_FALSE(c.IsContainerAutoResize()) << "SetFlagsData replaces bit 0 too";
    c.SetFlagsData(0x1);
    EXPECT_TRUE(c.IsContainerAutoResize());
}

TEST(FlagsMembers, ClearFlagsDataTurnsContainerGrowthOff)
{
    ZKContainer<int> c(1);
    c.PushBack(1);
    c.ClearFlagsData();
    EXPECT_EQ(c.GetFlagsData(), 0u);
    EXPECT_EQ(c.PushBack(2), ~0ull);
    EXPECT_EQ(c.GetMaxItemCount(), 1u);
    c.SetBitsOn(1);
    EXPECT_EQ(c.PushBack(2), 0u) << "linearised to slot 1, so the next back slot wraps to 0";
    EXPECT_EQ(c.GetMaxItemCount(), 2u);
}
