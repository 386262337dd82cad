#include "ZKMachineID.h"

#include <cstring>
#include <string>

#include "../platform/Files.h"
#include "../platform/System.h"
#include "detail/Digest.h"
#include "detail/Globals.h"

namespace platform = zk64::platform;

namespace {

// Kept for the library's lifetime: a later call whose name lookup fails
// reuses the name an earlier call read.
char computerName[1024];
unsigned short cachedLength = 0;

unsigned short HalvesSum(unsigned long long value) { return static_cast<unsigned short>((value & 0xFFFF) + (value >> 16)); }

}  // namespace

ZKString GenerateUniqueMachineID(unsigned short length, bool /*flag*/)
{
    ZKString& cached = zk64::detail::globals.machineIdCache;
    if (cached.IsNotEmpty() && cachedLength == length) return cached;

    platform::DWORD size = sizeof computerName;
    platform::GetComputerNameA(computerName, &size);
    std::string text(computerName, strnlen(computerName, sizeof computerName));

    unsigned int registers[4] = {};
    platform::CpuId(0, registers);
    unsigned short cpuSum = 0;
    for (unsigned int value : registers) cpuSum = static_cast<unsigned short>(cpuSum + HalvesSum(value));
    text += std::to_string(cpuSum);

    platform::DWORD serial = 0;
    platform::GetVolumeInformationA("c:\\", nullptr, 0, &serial, nullptr, nullptr, nullptr, 0);
    text += std::to_string(HalvesSum(serial));

    while (text.size() < length) text += text;
    text.resize(length);
    cached = zk64::detail::ComputeByteDigest(text.data(), text.size());
    cachedLength = length;
    return cached;
}
