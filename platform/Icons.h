#pragma once

// Icons and dump files of the platform layer: stock icons, icons extracted
// from executables, and the minidump writer with the file operations around
// it (CreateFileA is in DirectoryChanges.h, kFileAttributeNormal in
// Files.h). See System.h for what the backends promise. Linux has neither
// icons nor minidumps: the posix backend fails LoadImageA, ExtractIconExA,
// DestroyIcon and MiniDumpWriteDump (ENOSYS); DeleteFileA removes the file.

#include "Files.h"
#include "PlatformTypes.h"

struct HICON__;
struct HINSTANCE__;

namespace zk64::platform {

using HICON = HICON__*;

constexpr unsigned int kImageIcon = 1;
constexpr unsigned int kLrShared = 0x8000;

constexpr DWORD kGenericWrite = 0x40000000;
constexpr DWORD kCreateAlways = 2;

// `name` is a resource name or, below 0x10000, a resource number. A shared
// image is the system's and is never destroyed.
HICON LoadImageA(HINSTANCE__* instance, char const* name, unsigned int type, int width, int height,
                 unsigned int flags);
// With index -1 and no outputs: the number of icons in `file`. Otherwise
// extracts `count` icons from `index` on into `large` and `small` (either
// may be null) and returns how many it extracted.
unsigned int ExtractIconExA(char const* file, int index, HICON* large, HICON* small, unsigned int count);
BOOL DestroyIcon(HICON icon);

// Writes a minidump of `process` (identifier `processId`) of kind `dumpType`
// (the MINIDUMP_TYPE flags) into `file`; exception, user-stream and callback
// information are given as null here. Non-zero on success.
BOOL MiniDumpWriteDump(HANDLE process, DWORD processId, HANDLE file, DWORD dumpType, void const* exception,
                       void const* userStreams, void const* callback);
BOOL DeleteFileA(char const* path);

}  // namespace zk64::platform
