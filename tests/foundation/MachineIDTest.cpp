// The machine identifier through the fake platform: which facts it asks
// for, how it joins them, and when it asks again. The cache is process-wide,
// so one scenario walks through it in order.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>

#include "foundation/Support.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
using zk64::platform::BOOL;
using zk64::platform::DWORD;
using zk64::test::Bytes;

namespace {

// cpuid leaf 0 of an Intel processor: highest leaf 13, "GenuineIntel".
// Halves: 0x000D + 0x0000 + 0x6547 + 0x756E + 0x6C65 + 0x4965 + 0x746E + 0x6E69
// = 160611, which wraps to 29539.
constexpr unsigned int kIntelLeaf0[4] = {0x0000000D, 0x756E6547, 0x6C65746E, 0x49656E69};

// Serial 0x12345678: 0x1234 + 0x5678 = 26796.
void ScriptMachine(char const* name)
{
    fake::Reset();
    fake::System().GetComputerNameA = [name](char* buffer, DWORD* size) {
        return fake::ReturnText(name, buffer, size, false);
    };
    fake::System().CpuId = [](unsigned int leaf, unsigned int registers[4]) {
        if (leaf == 0)
            for (int i = 0; i < 4; ++i) registers[i] = kIntelLeaf0[i];
    };
    fake::Files().GetVolumeInformationA = [](char const*, char*, DWORD, DWORD* serial, DWORD*, DWORD*, char*,
                                             DWORD) {
        *serial = 0x12345678;
        return BOOL{1};
    };
}

// What the identifier must be: the facts' text, repeated and cut to
// `length`, then digested (HashString of a text of exactly `length` bytes is
// its digest).
std::string Expected(std::string facts, unsigned short length)
{
    while (facts.size() < length) facts += facts;
    facts.resize(length);
    return Bytes(HashString(facts.c_str(), length, false));
}

}  // namespace

TEST(MachineID, FactsCacheAndFailures)
{
    ScriptMachine("HOST");
    ZKString const id = GenerateUniqueMachineID(40, false);
    EXPECT_EQ(Bytes(id), Expected("HOST2953926796", 40));
    EXPECT_EQ(fake::TakeCalls(),
              (fake::Calls{"GetComputerNameA(size=1024)", "CpuId(leaf=0)",
                           "GetVolumeInformationA(root=\"c:\\\", volumeName=null, serial=out, fileSystemName=null)"}));

    // Cached per length, whatever the flag; another length replaces the cache.
    EXPECT_TRUE(GenerateUniqueMachineID(40, true) == id);
    EXPECT_TRUE(fake::TakeCalls().empty()) << "the cached value costs no system call";
    ScriptMachine("CACHED");
    EXPECT_EQ(Bytes(GenerateUniqueMachineID(9, false)), Expected("CACHED2953926796", 9));
    GenerateUniqueMachineID(40, false);
    EXPECT_EQ(fake::TakeCalls().size(), 6u);
    EXPECT_TRUE(GenerateUniqueMachineID(0, false).IsEmpty() && GenerateUniqueMachineID(0, false).IsEmpty());
    EXPECT_EQ(fake::TakeCalls().size(), 6u) << "length 0 is never cached";

    fake::Reset();  // every fact now fails: no name, cpuid zeros, no serial
    EXPECT_EQ(Bytes(GenerateUniqueMachineID(12, false)), Expected("CACHED00", 12))
        << "the name buffer lives on, the sums are 0";
}
