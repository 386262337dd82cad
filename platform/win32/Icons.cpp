// Win32 backend of icons and dump files: the functions themselves.

#include <windows.h>

#include <dbghelp.h>
#include <shellapi.h>

#include "../DirectoryChanges.h"
#include "../Icons.h"

namespace zk64::platform {

static_assert(kImageIcon == IMAGE_ICON);
static_assert(kLrShared == LR_SHARED);
static_assert(kGenericWrite == GENERIC_WRITE);
static_assert(kCreateAlways == CREATE_ALWAYS);
static_assert(kFileAttributeNormal == FILE_ATTRIBUTE_NORMAL);

HICON LoadImageA(HINSTANCE__* instance, char const* name, unsigned int type, int width, int height,
                 unsigned int flags)
{
    return static_cast<HICON>(::LoadImageA(instance, name, type, width, height, flags));
}

unsigned int ExtractIconExA(char const* file, int index, HICON* large, HICON* small, unsigned int count)
{
    return ::ExtractIconExA(file, index, large, small, count);
}

BOOL DestroyIcon(HICON icon) { return ::DestroyIcon(icon); }

BOOL MiniDumpWriteDump(HANDLE process, DWORD processId, HANDLE file, DWORD dumpType, void const* exception,
                       void const* userStreams, void const* callback)
{
    return ::MiniDumpWriteDump(process, processId, file, static_cast<MINIDUMP_TYPE>(dumpType),
                               static_cast<PMINIDUMP_EXCEPTION_INFORMATION>(const_cast<void*>(exception)),
                               static_cast<PMINIDUMP_USER_STREAM_INFORMATION>(const_cast<void*>(userStreams)),
                               static_cast<PMINIDUMP_CALLBACK_INFORMATION>(const_cast<void*>(callback)));
}

BOOL DeleteFileA(char const* path) { return ::DeleteFileA(path); }

}  // namespace zk64::platform
