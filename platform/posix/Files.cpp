// POSIX backend (Linux) of the file-system operations.
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
#include <string>

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

}  // namespace

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
