// POSIX backend (Linux) of text conversion.
//
// WideCharToMultiByte: code page 65001 (UTF-8) only, flags 0, no default
// character; anything else fails with EINVAL. The conversion is the
// library's own (foundation/detail/Utf.h): an unpaired surrogate becomes
// U+FFFD, as Windows does. A buffer too small fails with ERANGE (Windows:
// ERROR_INSUFFICIENT_BUFFER).

#include <cerrno>
#include <cstring>
#include <string>

#include "../../foundation/detail/Utf.h"
#include "../Text.h"

namespace zk64::platform {

int WideCharToMultiByte(unsigned int codePage, DWORD flags, WCHAR const* wide, int wideCount, char* bytes,
                        int byteCount, char const* defaultChar, BOOL* usedDefaultChar)
{
    if (codePage != kCodePageUtf8 || flags != 0 || wide == nullptr || wideCount == 0 || wideCount < -1 ||
        byteCount < 0 || (byteCount > 0 && bytes == nullptr) || defaultChar != nullptr || usedDefaultChar != nullptr) {
        errno = EINVAL;
        return 0;
    }
    std::size_t count = static_cast<std::size_t>(wideCount);
    if (wideCount == -1) {
        count = 0;
        while (wide[count] != 0) ++count;
        ++count;  // the terminator is converted too
    }
    std::string text;
    detail::AppendUtf16AsUtf8(wide, count, text);
    if (byteCount == 0) return static_cast<int>(text.size());
    if (text.size() > static_cast<std::size_t>(byteCount)) {
        errno = ERANGE;
        return 0;
    }
    std::memcpy(bytes, text.data(), text.size());
    return static_cast<int>(text.size());
}

}  // namespace zk64::platform
