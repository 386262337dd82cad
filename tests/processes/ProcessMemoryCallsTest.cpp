// The region record's predicates, and the exact platform calls behind the
// memory walk, reads and writes, through the fake backend.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstring>
#include <string>
#include <vector>

#include "FakeProcess.h"

namespace {

using Info = VirtualMemoryAddressInfo;

struct Predicate {
    char const* name;
    bool (Info::*test)() const;
    unsigned int Info::*field;
    unsigned int bit;
};

// Every predicate, with the field and bit it is meant to test.
std::vector<Predicate> const& Predicates()
{
    static std::vector<Predicate> const table = [] {
        std::vector<Predicate> rows;
#define ZK_PROTECTION_ROWS(Name, bit)                                                                                  \
    rows.push_back({"IsAllocProtect" #Name, &Info::IsAllocProtect##Name, &Info::AllocationProtect, bit});              \
    rows.push_back({"IsProtect" #Name, &Info::IsProtect##Name, &Info::Protect, bit});
        ZK_MEMORY_PROTECTION_BITS(ZK_PROTECTION_ROWS)
#undef ZK_PROTECTION_ROWS
#define ZK_STATE_ROWS(Name, field, bit) rows.push_back({#Name, &Info::Name, &Info::field, bit});
        ZK_MEMORY_STATE_AND_TYPE_BITS(ZK_STATE_ROWS)
#undef ZK_STATE_ROWS
        return rows;
    }();
    return table;
}

class MemoryCalls : public FakeTest {
protected:
    void SetUp() override
    {
        FakeTest::SetUp();
        fake::System().GetNativeSystemInfo = [this](platform::NativeSystemInfo* info) {
            info->lpMaximumApplicationAddress = reinterpret_cast<void*>(limit);
        };
        fake::System().GlobalMemoryStatusEx = [](platform::MemoryStatusEx* status) {
            status->ullTotalPageFile = 1ull << 34;
            return 1;
        };
    }

    unsigned long long limit = 0x7FFFFFFEFFFF;
    // The regions the fake describes: {start, size, state}; a query of an
    // address listed in `failing` fails without touching the record.
    std::vector<std::pair<unsigned long long, unsigned long long>> regions;
    std::vector<unsigned long long> failing;
    void ScriptRegions()
    {
        fake::Memory().VirtualQueryEx = [this](void const* address, platform::MemoryBasicInformation* info) {
            auto const at = reinterpret_cast<unsigned long long>(address);
            for (unsigned long long fail : failing)
                if (fail == at) return std::size_t{0};
            for (auto const& region : regions) {
                if (at >= region.first && at - region.first < region.second) {
                    info->BaseAddress = reinterpret_cast<void*>(at);
                    info->AllocationBase = reinterpret_cast<void*>(region.first);
                    info->RegionSize = region.first + region.second - at;
                    info->State = 0x1000;
                    info->Protect = 0x4;
                    info->AllocationProtect = 0x40;
                    info->Type = 0x20000;
                    info->PartitionId = 3;
                    return std::size_t{48};
                }
            }
            return std::size_t{0};
        };
    }
};

}  // namespace

TEST_F(MemoryCalls, EachPredicateTestsOneBitOfOneField)
{
    ASSERT_EQ(Predicates().size(), 28u);
    Info const empty;
    for (Predicate const& row : Predicates()) EXPECT_FALSE((empty.*row.test)()) << row.name;
    for (Predicate const& row : Predicates()) {
        SCOPED_TRACE(row.name);
        Info one;
        one.*row.field = row.bit;
        Info allBut;
        allBut.AllocationProtect = allBut.Protect = allBut.State = allBut.Type = ~0u;
        allBut.*row.field = ~row.bit;
        for (Predicate const& other : Predicates()) {
            EXPECT_EQ((one.*other.test)(), &other == &row) << other.name;
            EXPECT_EQ((allBut.*other.test)(), &other != &row) << other.name;
        }
    }
    Info guarded;
    guarded.Protect = 0x104;
    int trueCount = 0;
    for (Predicate const& row : Predicates()) trueCount += (guarded.*row.test)() ? 1 : 0;
    EXPECT_TRUE(guarded.IsProtectReadWrite() && guarded.IsProtectModGuard());
    EXPECT_EQ(trueCount, 2);
}

TEST_F(MemoryCalls, RecordEquality)
{
    Info record;
    record.BaseAddress = 0x10000;
    for (auto change :
         {+[](Info& r) { r.BaseAddress += 1; }, +[](Info& r) { r.AllocationBase += 1; },
          +[](Info& r) { r.AllocationProtect += 1; }, +[](Info& r) { r.RegionSize += 1; },
          +[](Info& r) { r.State += 1; }, +[](Info& r) { r.Protect += 1; }, +[](Info& r) { r.Type += 1; }}) {
        Info other = record;
        change(other);
        EXPECT_TRUE(Info(record) == record && !(other == record));
    }
    EXPECT_EQ(record.GetBaseAddr(), reinterpret_cast<unsigned char*>(0x10000));
}

TEST_F(MemoryCalls, WalkTilesFromZeroAndAppends)
{
    limit = 0x9FFF;
    regions = {{0, 0x1000}, {0x1000, 0x4000}, {0x5000, 0x5000}, {0xA000, 0x1000}};
    ScriptRegions();
    ZKContainer<Info> out;
    out.PushBack(Info());
    ASSERT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, out));
    ASSERT_EQ(out.GetItemCount(), 4u);
    EXPECT_TRUE(out[1].BaseAddress == 0 && out[2].BaseAddress == 0x1000 && out[3].BaseAddress == 0x5000);
    EXPECT_TRUE(out[3].RegionSize == 0x5000 && out[3].AllocationProtect == 0x40 && out[3].Type == 0x20000);
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetNativeSystemInfo()", "VirtualQueryEx(0x44, address=0x0, information=out, length=48)",
                     "VirtualQueryEx(0x44, address=0x1000, information=out, length=48)",
                     "VirtualQueryEx(0x44, address=0x5000, information=out, length=48)"}));
    limit = 0;
    EXPECT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, out));
    EXPECT_EQ(out.GetItemCount(), 4u);
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetNativeSystemInfo()"}));
}

TEST_F(MemoryCalls, WalkRepeatsTheLastRecordOnAFailedQueryAndIsBounded)
{
    regions = {{0, 0x1000}, {0x1000, 0x1000}, {0x3000, 0x1000}};
    limit = 0x3FFF;
    failing = {0x2000};
    ScriptRegions();
    ZKContainer<Info> out;
    ASSERT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, out));
    ASSERT_EQ(out.GetItemCount(), 4u);
    EXPECT_TRUE(out[2] == out[1]) << "the failed query repeats the previous region";
    EXPECT_EQ(out[3].BaseAddress, 0x3000u) << "and moves on by its size";

    failing = {0};  // the very first query fails: one zeroed record
    ZKContainer<Info> first;
    EXPECT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, first));
    ASSERT_EQ(first.GetItemCount(), 1u);
    EXPECT_TRUE(first[0] == Info());

    fake::Memory().VirtualQueryEx = [](void const*, platform::MemoryBasicInformation* info) {
        info->RegionSize = 0;  // an answer that would never move on
        return std::size_t{48};
    };
    ZKContainer<Info> stuck;
    EXPECT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, stuck));
    EXPECT_EQ(stuck.GetItemCount(), 1u);

    limit = ~0ull;
    regions = {{0, 0x1000}};
    failing.clear();
    ScriptRegions();  // every query past the first region fails
    ZKContainer<Info> failures;
    EXPECT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, failures));
    EXPECT_EQ(failures.GetItemCount(), 1u + 64u) << "64 failed queries in a row end the walk";
}

TEST_F(MemoryCalls, ReadResizesIntoTheStringItself)
{
    fake::Memory().ReadProcessMemory = [&](void const*, void* buffer, std::size_t size) {
        std::memset(buffer, 'x', size / 2);
        return 0;  // partly read
    };
    Info region;
    region.BaseAddress = 0x5000;
    region.RegionSize = 8;
    ZKString out("old text that is long");
    EXPECT_FALSE(GetVirtualMemoryData(kProcess, region, out));
    ASSERT_EQ(out.GetSize(), 8);
    EXPECT_EQ(std::string(out.GetString(), 8), std::string("xxxx") + std::string("text"));
    fake::TakeCalls();
    fake::Memory().ReadProcessMemory = [](void const*, void*, std::size_t) { return 1; };
    region.RegionSize = 0;
    EXPECT_TRUE(GetVirtualMemoryData(kProcess, region, out));
    EXPECT_TRUE(out.IsEmpty());
    EXPECT_EQ(fake::TakeCalls().back(), "ReadProcessMemory(0x44, address=0x5000, buffer=out, size=0, done=null)");

    // Regions that cannot hold that many bytes: refused, `out` untouched.
    ZKString kept("kept");
    for (auto [base, size] : std::vector<std::pair<unsigned long long, unsigned long long>>{
             {0x5000, (1ull << 34) + 1}, {limit - 0xFFF, 0x1001}, {0, ~0ull}, {~0ull - 1, 4}}) {
        region.BaseAddress = base;
        region.RegionSize = size;
        EXPECT_FALSE(GetVirtualMemoryData(kProcess, region, kept)) << base << "+" << size;
        EXPECT_TRUE(kept == "kept");
    }
    region.BaseAddress = limit - 0xFFF;
    region.RegionSize = 0x1000;
    EXPECT_TRUE(GetVirtualMemoryData(kProcess, region, kept)) << "the last page is readable";

    fake::TakeCalls();
    EXPECT_FALSE(GetVirtualMemoryData(9ul, region, kept));
    EXPECT_EQ(kept.GetSize(), 0x1000);
    EXPECT_EQ(fake::TakeCalls(), (Calls{"OpenProcess(access=0x410, inherit=0, pid=9)", "GetLastError()"}));
}

TEST_F(MemoryCalls, WritesTakeTheirByteCountAndRefuseShortData)
{
    std::string written;
    fake::Memory().WriteProcessMemory = [&](void*, void const* buffer, std::size_t size) {
        written.assign(static_cast<char const*>(buffer), size);
        return 1;
    };
    Info region;
    region.BaseAddress = 0x7000;
    region.RegionSize = 4;
    ZKString const data("ab\0cdef", 7);
    EXPECT_TRUE(SetVirtualMemoryData(kProcess, region, data));
    EXPECT_EQ(written, std::string("ab\0c", 4)) << "RegionSize bytes, zero bytes included";
    auto* const address = reinterpret_cast<unsigned char*>(0x9000);
    EXPECT_TRUE(SetVirtualMemoryData(kProcess, address, data, 7));
    EXPECT_EQ(written, std::string("ab\0cdef", 7));
    EXPECT_TRUE(SetVirtualMemoryData(kProcess, address, data, 0));
    EXPECT_EQ(fake::TakeCalls(), (Calls{"WriteProcessMemory(0x44, address=0x7000, buffer=out, size=4, done=null)",
                                        "WriteProcessMemory(0x44, address=0x9000, buffer=out, size=7, done=null)",
                                        "WriteProcessMemory(0x44, address=0x9000, buffer=out, size=0, done=null)"}));
    region.RegionSize = 8;
    EXPECT_FALSE(SetVirtualMemoryData(kProcess, region, data));
    EXPECT_FALSE(SetVirtualMemoryData(kProcess, address, data, 8));
    EXPECT_TRUE(fake::TakeCalls().empty()) << "nothing is read past the string";

    region.RegionSize = 2;
    EXPECT_FALSE(SetVirtualMemoryData(9ul, region, data) || SetVirtualMemoryData(9ul, address, data, 1) ||
                 SetVirtualMemoryData(ZKString("nope.exe"), region, data) ||
                 SetVirtualMemoryData(ZKString("nope.exe"), address, data, 1));
    fake::TakeCalls();
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    EXPECT_TRUE(SetVirtualMemoryData(9ul, region, data));
    EXPECT_TRUE(SetVirtualMemoryData(9ul, address, data, 1));
    Calls const calls = fake::TakeCalls();
    ASSERT_EQ(calls.size(), 6u);
    EXPECT_EQ(calls[0] + calls[3],
              "OpenProcess(access=0x28, inherit=0, pid=9)OpenProcess(access=0x28, inherit=0, pid=9)");
    ZKContainer<Info> walk;
    EXPECT_FALSE(GetProcessVirtualMemoryAddresses(ZKString("nope.exe"), walk));
    EXPECT_EQ(walk.GetItemCount(), 0u);
}
