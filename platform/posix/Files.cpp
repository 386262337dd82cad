// POSIX backend (Linux) of the file-system operations.
//
// FindFirstFileA/FindNextFileA/FindClose: the handle is a heap-held
// enumeration over opendir/readdir of the pattern's directory (everything
// before its last '/', "." when there is none, "/" for "/name"). The last
// component is matched with fnmatch, without escapes and with '*' matching a
// leading dot, as Windows' '*' does; unlike Windows the match is
// case-sensitive, as Linux names are. Attributes come from the directory
// stream's entry type (an fstatat without following links only where the
// file system does not report it): FILE_ATTRIBUTE_DIRECTORY for directories,
// FILE_ATTRIBUTE_REPARSE_POINT alone for symbolic links (to anything, so
// callers never enter them), FILE_ATTRIBUTE_NORMAL otherwise, plus
// FILE_ATTRIBUTE_HIDDEN for names that start with a dot. Sizes and times are
// left zero. A name of 260 bytes or more cannot be reported in the record
// and is skipped. Last errors: opendir's errno, ENOENT when nothing matches,
// ENODATA at the end of the enumeration, EBADF for a bad handle.
//
// Wow64DisableWow64FsRedirection/Wow64RevertWow64FsRedirection: Linux has
// no redirection. Both fail with EINVAL, as the Windows calls do in a
// 64-bit process; Disable stores null.
//
// GetVolumeInformationA: a drive root ("c:\", "D:/") stands for the root
// file system "/". The serial number of the system drive "c:\" is the first
// 32 bits of /etc/machine-id, the one identifier a Linux installation keeps
// stable the way Windows keeps its system volume's serial; every other
// volume's serial comes from its file-system id. No volume name or
// file-system name is reported (empty texts).

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include "../Files.h"

namespace zk64::platform {
namespace {

bool IsDriveRoot(char const* path)
{
    return std::isalpha(static_cast<unsigned char>(path[0])) && path[1] == ':' &&
           (path[2] == '\\' || path[2] == '/') && path[3] == '\0';
}

bool MachineIdSerial(DWORD& serial)
{
    std::ifstream file("/etc/machine-id");
    std::string id;
    if (!(file >> id) || id.size() < 8) return false;
    char* end = nullptr;
    std::string const head = id.substr(0, 8);
    unsigned long const value = std::strtoul(head.c_str(), &end, 16);
    if (*end != '\0') return false;
    serial = static_cast<DWORD>(value);
    return true;
}

void EmptyText(char* buffer, DWORD size)
{
    if (buffer != nullptr && size > 0) buffer[0] = '\0';
}

// One enumeration: the open directory and the name pattern.
struct FindState {
    DIR* directory = nullptr;
    std::string namePattern;
    bool matchAll = false;  // "*": every name, without asking fnmatch
};

DWORD AttributesOf(DIR* directory, dirent const& entry)
{
    unsigned char type = entry.d_type;
    if (type == DT_UNKNOWN) {
        struct stat info{};
        if (fstatat(dirfd(directory), entry.d_name, &info, AT_SYMLINK_NOFOLLOW) == 0) {
            type = S_ISDIR(info.st_mode) ? DT_DIR : S_ISLNK(info.st_mode) ? DT_LNK : DT_REG;
        }
    }
    DWORD attributes = type == DT_DIR   ? kFileAttributeDirectory
                       : type == DT_LNK ? kFileAttributeReparsePoint
                                        : kFileAttributeNormal;
    bool const dotName = entry.d_name[0] == '.' && std::strcmp(entry.d_name, ".") != 0 &&
                         std::strcmp(entry.d_name, "..") != 0;
    if (dotName) attributes |= kFileAttributeHidden;
    return attributes;
}

// The next entry whose name matches, into `data`; false at the end.
bool NextMatch(FindState& state, FindDataA* data)
{
    while (dirent const* entry = readdir(state.directory)) {
        std::size_t const length = std::strlen(entry->d_name);
        if (length >= sizeof data->cFileName) continue;
        if (!state.matchAll && fnmatch(state.namePattern.c_str(), entry->d_name, FNM_NOESCAPE) != 0) continue;
        *data = FindDataA{};
        data->dwFileAttributes = AttributesOf(state.directory, *entry);
        std::memcpy(data->cFileName, entry->d_name, length + 1);
        return true;
    }
    return false;
}

}  // namespace

HANDLE FindFirstFileA(char const* pattern, FindDataA* data)
{
    if (pattern == nullptr || data == nullptr) {
        errno = EINVAL;
        return kInvalidHandleValue;
    }
    char const* slash = std::strrchr(pattern, '/');
    std::string const directory = slash == nullptr ? std::string(".")
                                  : slash == pattern ? std::string("/")
                                                     : std::string(pattern, slash);
    auto state = std::make_unique<FindState>();
    state->namePattern = slash == nullptr ? pattern : slash + 1;
    state->matchAll = state->namePattern == "*";
    if (state->namePattern.empty()) {
        errno = ENOENT;
        return kInvalidHandleValue;
    }
    state->directory = opendir(directory.c_str());
    if (state->directory == nullptr) return kInvalidHandleValue;
    if (!NextMatch(*state, data)) {
        closedir(state->directory);
        errno = ENOENT;
        return kInvalidHandleValue;
    }
    return state.release();
}

BOOL FindNextFileA(HANDLE find, FindDataA* data)
{
    if (find == nullptr || find == kInvalidHandleValue || data == nullptr) {
        errno = EBADF;
        return 0;
    }
    if (NextMatch(*static_cast<FindState*>(find), data)) return 1;
    errno = ENODATA;
    return 0;
}

BOOL FindClose(HANDLE find)
{
    if (find == nullptr || find == kInvalidHandleValue) {
        errno = EBADF;
        return 0;
    }
    auto* state = static_cast<FindState*>(find);
    closedir(state->directory);
    delete state;
    return 1;
}

BOOL Wow64DisableWow64FsRedirection(void** oldValue)
{
    if (oldValue != nullptr) *oldValue = nullptr;
    errno = EINVAL;
    return 0;
}

BOOL Wow64RevertWow64FsRedirection(void*)
{
    errno = EINVAL;
    return 0;
}

BOOL GetVolumeInformationA(char const* rootPath, char* volumeName, DWORD volumeNameSize, DWORD* serialNumber,
                           DWORD* maximumComponentLength, DWORD* fileSystemFlags, char* fileSystemName,
                           DWORD fileSystemNameSize)
{
    bool const drive = rootPath != nullptr && IsDriveRoot(rootPath);
    char const* path = rootPath == nullptr || drive ? "/" : rootPath;
    struct statvfs info{};
    if (statvfs(path, &info) != 0) return 0;
    if (serialNumber != nullptr) {
        DWORD serial = 0;
        bool const systemDrive = drive && std::tolower(static_cast<unsigned char>(rootPath[0])) == 'c';
        if (!systemDrive || !MachineIdSerial(serial)) {
            unsigned long long const fsid = info.f_fsid;
            serial = static_cast<DWORD>(fsid ^ (fsid >> 32));
        }
        *serialNumber = serial;
    }
    if (maximumComponentLength != nullptr) *maximumComponentLength = static_cast<DWORD>(info.f_namemax);
    if (fileSystemFlags != nullptr) *fileSystemFlags = 0;
    EmptyText(volumeName, volumeNameSize);
    EmptyText(fileSystemName, fileSystemNameSize);
    return 1;
}

}  // namespace zk64::platform
