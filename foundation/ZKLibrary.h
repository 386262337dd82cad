#pragma once

// Library identity, byte order and raw memory helpers.

#include "ZKExport.h"

// Identity strings: static storage, never freed by the caller.
ZK_API char const* GetZKName();     // "Zenkor"
ZK_API char const* GetZKVersion();  // "0.0.20.5.16"
ZK_API char const* GetZKAbout();    // "ZK Library. XY"

// Fixed when the library is built for its little-endian targets; nothing
// is probed at run time.
ZK_API bool IsMachineBigEndian();
ZK_API bool IsMachineLittleEndian();

// A null pointer or a byte count of 0 is never an error and never touches
// memory. MemoryCopy does not handle overlapping ranges.
ZK_API void MemoryCopy(unsigned char* destination, unsigned char const* source,
                       unsigned long long const& byteCount);
ZK_API void MemorySet(unsigned char* destination, unsigned char const& value,
                      unsigned long long const& byteCount);
// False for a null pointer and false for a byte count of 0: two empty
// ranges deliberately do not compare equal.
ZK_API bool MemoryCompareEqual(unsigned char const* left, unsigned char const* right,
                               unsigned long long const& byteCount);
