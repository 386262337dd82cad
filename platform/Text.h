#pragma once

// Text conversion of the platform layer. See System.h for what the backends
// promise.

#include "PlatformTypes.h"

namespace zk64::platform {

constexpr unsigned int kCodePageUtf8 = 65001;

// UTF-16 to the code page. `wideCount` -1 converts up to and with the
// terminator; a `byteCount` of 0 asks for the size needed. Returns the bytes
// written (or needed), 0 on failure. The posix backend knows code page 65001
// only, where an unpaired surrogate becomes U+FFFD, and takes neither a
// default character nor its flag (null, as Windows requires for UTF-8).
int WideCharToMultiByte(unsigned int codePage, DWORD flags, WCHAR const* wide, int wideCount, char* bytes,
                        int byteCount, char const* defaultChar, BOOL* usedDefaultChar);

}  // namespace zk64::platform
