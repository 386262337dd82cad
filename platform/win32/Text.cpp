// Win32 backend of text conversion: the function itself.

#include <windows.h>

#include "../Text.h"

namespace zk64::platform {

static_assert(kCodePageUtf8 == CP_UTF8);

int WideCharToMultiByte(unsigned int codePage, DWORD flags, WCHAR const* wide, int wideCount, char* bytes,
                        int byteCount, char const* defaultChar, BOOL* usedDefaultChar)
{
    return ::WideCharToMultiByte(codePage, flags, wide, wideCount, bytes, byteCount, defaultChar, usedDefaultChar);
}

}  // namespace zk64::platform
