// The region record's predicates, and the exact platform calls behind the
// memory walk, reads and writes, through the fake backend.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstring>
#include <string>
#include <vector>

#include "FakeProcess.h"

using Info = VirtualMemoryAddressInfo;
using MemoryCalls = FakeTest;

TEST_F(MemoryCalls, PredicatesTestTheirOwnBitOfTheirOwnField)
{
    Info info;
    info.Protect = 0x104;
    info.State = 0x1000;
    info.Type = 0x20000;
    EXPECT_TRUE(info.IsProtectReadWrite() && info.IsProtectModGuard() && info.IsStateCommit() && info.IsTypePrivate());
    EXPECT_FALSE(info.IsAllocProtectReadWrite() || info.IsProtectReadOnly() || info.IsStateFree() ||
                 info.IsTypeImage());
    info.AllocationProtect = 0x2;
    EXPECT_TRUE(info.IsAllocProtectReadOnly() && !info.IsProtectReadOnly());
}

TEST_F(MemoryCalls, WalkReadAndWrite)
{
    fake::System().GetNativeSystemInfo = [](platform::NativeSystemInfo* info) {
        info->lpMaximumApplicationAddress = reinterpret_cast<void*>(0x3FFF);
    };
    // Regions of 0x1000 bytes at 0, 0x1000 and 0x3000; a query of 0x2000 fails.
    fake::Memory().VirtualQueryEx = [](void const* address, platform::MemoryBasicInformation* info) {
        auto const at = reinterpret_cast<unsigned long long>(address);
        if (at == 0x2000 || at > 0x3000) return std::size_t{0};
        info->BaseAddress = const_cast<void*>(address);
        info->RegionSize = 0x1000;
        info->Type = 0x20000;
        return std::size_t{48};
    };
    ZKContainer<Info> out;
    out.PushBack(Info());
    ASSERT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, out));
    ASSERT_EQ(out.GetItemCount(), 5u) << "appended";
    EXPECT_TRUE(out[3] == out[2]) << "a failed query repeats the previous region and moves on by its size";
    EXPECT_TRUE(out[4].BaseAddress == 0x3000 && out[4].Type == 0x20000);
    EXPECT_EQ(fake::TakeCalls().at(1), "VirtualQueryEx(0x44, address=0x0, information=out, length=48)");
    fake::System().GetNativeSystemInfo = [](platform::NativeSystemInfo* info) {
        info->lpMaximumApplicationAddress = reinterpret_cast<void*>(~0ull);
    };
    ZKContainer<Info> failures;
    EXPECT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, failures));
    EXPECT_EQ(failures.GetItemCount(), 4u + 64u) << "64 failed queries in a row end the walk";
    EXPECT_FALSE(GetProcessVirtualMemoryAddresses(ZKString("nope.exe"), failures));

    fake::System().GlobalMemoryStatusEx = [](platform::MemoryStatusEx* status) {
        status->ullTotalPageFile = 1ull << 34;
        return 1;
    };
    fake::Memory().ReadProcessMemory = [&](void const*, void* buffer, std::size_t size) {
        std::memset(buffer, 'x', size / 2);
        return 0;  // partly read
    };
    Info region;
    region.BaseAddress = 0x5000;
    region.RegionSize = 8;
    ZKString text("old text that is long");
    EXPECT_FALSE(GetVirtualMemoryData(kProcess, region, text));
    EXPECT_EQ(std::string(text.GetString(), static_cast<std::size_t>(text.GetSize())), "xxxxtext");
    for (unsigned long long size : {(1ull << 34) + 1, ~0ull}) {
        region.RegionSize = size;
        EXPECT_FALSE(GetVirtualMemoryData(kProcess, region, text));
        EXPECT_EQ(text.GetSize(), 8) << "refused, untouched";
    }

    std::string written;
    fake::Memory().WriteProcessMemory = [&](void*, void const* buffer, std::size_t size) {
        written.assign(static_cast<char const*>(buffer), size);
        return 1;
    };
    region.RegionSize = 4;
    ZKString const data("ab\0cdef", 7);
    EXPECT_TRUE(SetVirtualMemoryData(kProcess, region, data));
    EXPECT_EQ(written, std::string("ab\0c", 4)) << "RegionSize bytes, zero bytes included";
    EXPECT_TRUE(SetVirtualMemoryData(kProcess, reinterpret_cast<unsigned char*>(0x9000), data, 7));
    EXPECT_FALSE(SetVirtualMemoryData(kProcess, reinterpret_cast<unsigned char*>(0x9000), data, 8));
    EXPECT_EQ(fake::TakeCalls().back(), "WriteProcessMemory(0x44, address=0x9000, buffer=out, size=7, done=null)")
        << "nothing is read past the string";
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    EXPECT_TRUE(SetVirtualMemoryData(9ul, region, data));
    EXPECT_EQ(fake::TakeCalls().front(), "OpenProcess(access=0x28, inherit=0, pid=9)");
}
