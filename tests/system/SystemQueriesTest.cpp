// The system queries on the real backend (natively, and the DLL under Wine):
// relations that hold on any machine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

TEST(SystemQueries, RealMachine)
{
    unsigned long long const total = GetSystemPhysicalMemoryTotalBytes(), top = GetSystemMaxApplicationAddress();
    EXPECT_TRUE(total > (64ull << 20) && GetSystemPhysicalMemoryTotalKB() == total >> 10 &&
                GetSystemPageFileSizeBytes() >= total && top > GetSystemMinApplicationAddress() && top < 1ull << 48);
    EXPECT_TRUE(GetComputerNameLocal().GetSize() - 1u < 15u && GetCurrentUserName().IsNotEmpty() &&
                !IsDebuggerAttached());
}
