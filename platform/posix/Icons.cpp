// POSIX backend (Linux) of icons and dump files. Linux has no icon
// resources and no minidump format: LoadImageA and ExtractIconExA find
// nothing, DestroyIcon and MiniDumpWriteDump fail, all with ENOSYS.
// DeleteFileA is unlink(2). (CreateFileA refuses CREATE_ALWAYS, see
// DirectoryChanges.cpp, so no dump file is ever made.)

#include <cerrno>

#include <unistd.h>

#include "../Icons.h"

namespace zk64::platform {

HICON LoadImageA(HINSTANCE__*, char const*, unsigned int, int, int, unsigned int)
{
    errno = ENOSYS;
    return nullptr;
}

unsigned int ExtractIconExA(char const*, int, HICON*, HICON*, unsigned int)
{
    errno = ENOSYS;
    return 0;
}

BOOL DestroyIcon(HICON)
{
    errno = ENOSYS;
    return 0;
}

BOOL MiniDumpWriteDump(HANDLE, DWORD, HANDLE, DWORD, void const*, void const*, void const*)
{
    errno = ENOSYS;
    return 0;
}

BOOL DeleteFileA(char const* path) { return path != nullptr && ::unlink(path) == 0 ? 1 : 0; }

}  // namespace zk64::platform
