#include "ZKLibrary.h"

#include <cstring>

#include "ZKFlags.h"

char const* GetZKName() { return "Zenkor"; }
char const* GetZKVersion() { return "0.0.20.5.16"; }
char const* GetZKAbout() { return "ZK Library. XY"; }

bool IsMachineBigEndian() { return false; }
bool IsMachineLittleEndian() { return true; }

void MemoryCopy(unsigned char* destination, unsigned char const* source,
                unsigned long long const& byteCount)
{
    if (destination == nullptr || source == nullptr || byteCount == 0) return;
    std::memcpy(destination, source, byteCount);
}

void MemorySet(unsigned char* destination, unsigned char const& value,
               unsigned long long const& byteCount)
{
    if (destination == nullptr || byteCount == 0) return;
    std::memset(destination, value, byteCount);
}

bool MemoryCompareEqual(unsigned char const* left, unsigned char const* right,
                        unsigned long long const& byteCount)
{
    if (left == nullptr || right == nullptr || byteCount == 0) return false;
    return std::memcmp(left, right, byteCount) == 0;
}

bool AreBitsSet(unsigned long long const& value, unsigned long long const& mask)
{
    return (value & mask) == mask;
}

void SetBitsOn(unsigned long long& value, unsigned long long const& mask) { value |= mask; }

void SetBitsOff(unsigned long long& value, unsigned long long const& mask)
{
    if (AreBitsSet(value, mask)) value &= ~mask;
}

void Split64BitInteger(unsigned long long const& value, unsigned int& low, unsigned int& high)
{
    low = static_cast<unsigned int>(value & 0xFFFFFFFFull);
    high = static_cast<unsigned int>(value >> 32);
}

void SplitFlagData(unsigned long long const& value, unsigned int& low, unsigned int& high)
{
    Split64BitInteger(value, low, high);
}

void Merge32BitIntegers(unsigned long long& value, unsigned int const& low, unsigned int const& high)
{
    value = (static_cast<unsigned long long>(high) << 32) | low;
}

void MergeFlagData(unsigned long long& value, unsigned int const& low, unsigned int const& high)
{
    Merge32BitIntegers(value, low, high);
}

unsigned long long Extract64BitInteger(unsigned long long const& value, unsigned int const& bitCount)
{
    if (bitCount == 0 || bitCount >= 64) return value;
    return value & ((1ull << bitCount) - 1);
}

unsigned long long ExtractFlagBitRange(unsigned long long const& value, unsigned int const& bitCount)
{
    return Extract64BitInteger(value, bitCount);
}

unsigned int Extract32BitInteger(unsigned int const& value, unsigned int const& bitCount)
{
    if (bitCount == 0 || bitCount >= 32) return value;
    return value & ((1u << bitCount) - 1);
}
