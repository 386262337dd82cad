// Fake backend of text conversion: record, then do what the test scripted.

#include "../Text.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

int WideCharToMultiByte(unsigned int codePage, DWORD flags, WCHAR const* wide, int wideCount, char* bytes,
                        int byteCount, char const* defaultChar, BOOL* usedDefaultChar)
{
    fake::Record("WideCharToMultiByte(codePage=" + fake::Dec(codePage) + ", flags=" + fake::Hex(flags) +
                 ", count=" + std::to_string(wideCount) + ", bytes=" + fake::Out(bytes) +
                 ", size=" + std::to_string(byteCount) + ", defaultChar=" + fake::Pointer(defaultChar) +
                 ", usedDefault=" + fake::Out(usedDefaultChar) + ")");
    return fake::Run<int>(fake::Text().WideCharToMultiByte, 0, codePage, flags, wide, wideCount, bytes, byteCount, defaultChar, usedDefaultChar);
}

}  // namespace zk64::platform
