#pragma once

// Flag words: 64-bit values whose bits mean whatever their owner says.
// Every helper takes the word and the mask by reference.

#include "ZKExport.h"

// True when every bit of mask is set in value; a mask of 0 is always set.
ZK_API bool AreBitsSet(unsigned long long const& value, unsigned long long const& mask);
ZK_API void SetBitsOn(unsigned long long& value, unsigned long long const& mask);
// All or nothing: the bits are cleared only when every bit of mask is set.
// A mask of which only some bits are set clears nothing.
ZK_API void SetBitsOff(unsigned long long& value, unsigned long long const& mask);

// low takes bits 0-31, high bits 32-63. SplitFlagData is a second name.
ZK_API void Split64BitInteger(unsigned long long const& value, unsigned int& low, unsigned int& high);
ZK_API void SplitFlagData(unsigned long long const& value, unsigned int& low, unsigned int& high);
// value becomes (high << 32) | low; its old content is ignored.
ZK_API void Merge32BitIntegers(unsigned long long& value, unsigned int const& low, unsigned int const& high);
ZK_API void MergeFlagData(unsigned long long& value, unsigned int const& low, unsigned int const& high);
// Keep the bitCount lowest bits. A bitCount of 0, or of the word's width or
// more, returns the value whole.
ZK_API unsigned long long Extract64BitInteger(unsigned long long const& value, unsigned int const& bitCount);
ZK_API unsigned long long ExtractFlagBitRange(unsigned long long const& value, unsigned int const& bitCount);
ZK_API unsigned int Extract32BitInteger(unsigned int const& value, unsigned int const& bitCount);

// The member set of a flags field. ZKContainer, ZKThreadPool and
// ZKMessagingObject each declare an `unsigned long long flagsData` as their
// first member and expand this macro; they share no base class, so no
// mixin type appears in the exported interface. The members are plain
// reads and writes and take no lock.
#define ZK_FLAGS_MEMBERS                                                                   \
    void ClearFlagsData() { flagsData = 0; }                                               \
    void SetFlagsData(unsigned long long const& value) { flagsData = value; }              \
    unsigned long long GetFlagsData() const { return flagsData; }                          \
    void SetBitsOn(unsigned long long const& mask) { ::SetBitsOn(flagsData, mask); }       \
    void SetBitsOff(unsigned long long const& mask) { ::SetBitsOff(flagsData, mask); }     \
    bool AreBitsSet(unsigned long long const& mask) const { return ::AreBitsSet(flagsData, mask); }
