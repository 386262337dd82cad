// The memory walk, reads and writes on the real backend: the test's own
// process and a child, natively on Linux and for the DLL under Wine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstring>
#include <string>
#include <vector>

#include "ChildProcess.h"

namespace {

unsigned long long Address(void const* pointer) { return reinterpret_cast<unsigned long long>(pointer); }

// Checks that a walk tiles [0, the top of the application range) in
// ascending order, and gives the record holding `address`, if any.
VirtualMemoryAddressInfo CheckTiling(ZKContainer<VirtualMemoryAddressInfo> const& walk, unsigned long long address)
{
    VirtualMemoryAddressInfo holding;
    unsigned long long next = 0;
    for (unsigned long long index = 0; index < walk.GetItemCount(); ++index) {
        VirtualMemoryAddressInfo const region = walk[index];
        EXPECT_EQ(region.BaseAddress, next) << "record " << index;
        EXPECT_GT(region.RegionSize, 0u);
        next = region.BaseAddress + region.RegionSize;
        if (address >= region.BaseAddress && address < next) holding = region;
    }
    EXPECT_GT(next, GetSystemMaxApplicationAddress());
    return holding;
}

}  // namespace

TEST(ProcessMemory, WalkReadAndWriteInTheOwnProcess)
{
    std::vector<char> buffer(3 * 4096, 'a');
    std::memcpy(buffer.data() + 100, "zk64\0marker", 11);
    ZKContainer<VirtualMemoryAddressInfo> walk;
    walk.PushBack(VirtualMemoryAddressInfo());
    unsigned long const pid = GetCurrentProcessID();
    ASSERT_TRUE(GetProcessVirtualMemoryAddresses(pid, walk));
    ASSERT_GT(walk.GetItemCount(), 20u);
    EXPECT_TRUE(walk[0] == VirtualMemoryAddressInfo()) << "appends";
    walk.PopFront();
    VirtualMemoryAddressInfo const heap = CheckTiling(walk, Address(buffer.data()));
    EXPECT_TRUE(walk[0].IsStateFree()) << "the walk starts at 0, below the first mapping";
    EXPECT_TRUE(heap.IsStateCommit());
    EXPECT_TRUE(heap.IsProtectReadWrite());
    EXPECT_FALSE(heap.IsStateFree());

    VirtualMemoryAddressInfo part;
    part.BaseAddress = Address(buffer.data());
    part.RegionSize = buffer.size();
    ZKString bytes;
    ASSERT_TRUE(GetVirtualMemoryData(GetCurrentProcessHandle(), part, bytes));
    ASSERT_EQ(bytes.GetSize(), static_cast<int>(buffer.size()));
    EXPECT_EQ(std::memcmp(bytes.GetString(), buffer.data(), buffer.size()), 0) << "zero bytes are data";

    ZKString const pattern("0123456789", 10);
    EXPECT_TRUE(SetVirtualMemoryData(pid, reinterpret_cast<unsigned char*>(buffer.data() + 4096), pattern, 10));
    EXPECT_EQ(std::string(buffer.data() + 4096, 10), "0123456789");
    EXPECT_EQ(buffer[4096 + 10], 'a');
    part.RegionSize = 4;
    EXPECT_TRUE(SetVirtualMemoryData(pid, part, pattern));
    EXPECT_EQ(std::string(buffer.data(), 5), "0123a");

    // The executable's first page is read-only; its own bytes are written
    // back. Linux refuses the write; Windows (and Wine) lift the protection
    // for the time of the write.
    HINSTANCE__* const exe = GetCurrentProcessExeHINSTANCE();
    VirtualMemoryAddressInfo const image = CheckTiling(walk, Address(exe));
    EXPECT_TRUE(image.IsTypeImage());
    EXPECT_TRUE(image.IsProtectReadOnly());
    part.BaseAddress = Address(exe);
    part.RegionSize = 64;
    ZKString header;
    ASSERT_TRUE(GetVirtualMemoryData(pid, part, header));
#if defined(_WIN32)
    EXPECT_TRUE(SetVirtualMemoryData(pid, part, header));
#else
    EXPECT_FALSE(SetVirtualMemoryData(pid, part, header));
#endif
}

TEST(ProcessMemory, ChildProcessWalkAndReads)
{
    ChildProcess child;
    ASSERT_NE(child.Pid(), 0u);
    ZKContainer<ZKString> modules;
    for (int attempt = 0; attempt < 200 && modules.GetItemCount() < 2; ++attempt) GetProcessModuleNames(child.Pid(), modules);
    ZKContainer<VirtualMemoryAddressInfo> walk;
    ASSERT_TRUE(GetProcessVirtualMemoryAddresses(child.Pid(), walk));
    CheckTiling(walk, 0);
    // Every committed, readable, unguarded private region reads whole, and
    // writing the bytes back leaves the child as it was.
    int read = 0;
    for (unsigned long long index = 0; index < walk.GetItemCount(); ++index) {
        VirtualMemoryAddressInfo const region = walk[index];
        if (!region.IsStateCommit() || !region.IsProtectReadWrite() || region.IsProtectModGuard() ||
            !region.IsTypePrivate() || region.RegionSize > (1u << 20))
            continue;
        ZKString bytes;
        EXPECT_TRUE(GetVirtualMemoryData(child.Pid(), region, bytes)) << std::hex << region.BaseAddress;
        EXPECT_EQ(static_cast<unsigned long long>(bytes.GetSize()), region.RegionSize);
        if (read++ == 0) {
            EXPECT_TRUE(SetVirtualMemoryData(child.Pid(), region, bytes));
        }
    }
    EXPECT_GT(read, 0);

    // Free address space reads nothing; `out` takes the size all the same.
    // Wine reads free regions as if they held bytes.
    VirtualMemoryAddressInfo free;
    for (unsigned long long index = 1; index < walk.GetItemCount(); ++index) {
        if (walk[index].IsStateFree()) free = walk[index];
    }
    free.RegionSize = free.RegionSize < (1u << 20) ? free.RegionSize : (1u << 20);
    ZKString nothing;
    EXPECT_EQ(GetVirtualMemoryData(child.Pid(), free, nothing), RunningUnderWine()) << std::hex << free.BaseAddress;
    EXPECT_EQ(static_cast<unsigned long long>(nothing.GetSize()), free.RegionSize);

    ProcessHandle const queryOnly = OpenProcessHandle(child.Pid(), 0x8);
    ZKString denied("kept");
    VirtualMemoryAddressInfo first = walk[0];
    EXPECT_FALSE(SetVirtualMemoryData(queryOnly, first, denied));
    CloseProcessHandle(queryOnly);
}

TEST(ProcessMemory, BadRegionsAndIdentifiers)
{
    std::vector<char> buffer(64, 'b');
    VirtualMemoryAddressInfo region;
    ZKString out("kept");
    unsigned long const pid = GetCurrentProcessID();
    EXPECT_TRUE(GetVirtualMemoryData(pid, region, out)) << "size 0 at address 0 copies nothing";
    EXPECT_TRUE(out.IsEmpty());
    region.RegionSize = 16;
    EXPECT_FALSE(GetVirtualMemoryData(pid, region, out)) << "address 0";
    region.BaseAddress = Address(buffer.data());
    region.RegionSize = 1ull << 40;
    out = "kept";
    EXPECT_FALSE(GetVirtualMemoryData(pid, region, out)) << "more than the machine has";
    EXPECT_TRUE(out == "kept");
    region.BaseAddress = Address(buffer.data());
    region.RegionSize = 65;
    EXPECT_FALSE(SetVirtualMemoryData(pid, region, ZKString("short")));
    EXPECT_FALSE(SetVirtualMemoryData(pid, nullptr, ZKString("abc"), 3));

    ZKContainer<VirtualMemoryAddressInfo> walk;
    for (unsigned long bad : {0ul, 0x7FFFFFF0ul}) {
        EXPECT_FALSE(GetProcessVirtualMemoryAddresses(bad, walk));
        EXPECT_FALSE(GetVirtualMemoryData(bad, region, out));
    }
    EXPECT_EQ(walk.GetItemCount(), 0u);
    EXPECT_FALSE(GetProcessVirtualMemoryAddresses(ZKString("zk64 no such process"), walk));
}
