#include "FileDataStruct.h"

#include <utility>

// See foundation/ZKString.cpp: mingw callers instantiate exported
// containers themselves, so ZK_API sits on the definition there.
#if defined(_WIN32)
template class ZK_API ZKContainer<FileDataStruct>;
#else
template class ZKContainer<FileDataStruct>;  // ZK_API comes with the extern declaration
#endif

namespace {

constexpr char kUnset[] = "NONE";

}  // namespace

FileDataStruct::FileDataStruct() : dir(kUnset), name(kUnset), dirNamePath(kUnset), isAFile(false) {}

FileDataStruct::FileDataStruct(char const* entryDir, char const* entryName)
    : FileDataStruct(entryDir, entryName, false)
{
}

FileDataStruct::FileDataStruct(char const* entryDir, char const* entryName, bool entryIsAFile)
    : dir(entryDir), name(entryName), dirNamePath(kUnset), isAFile(entryIsAFile)
{
}

// The copy's cache starts empty: it is a fresh string, not the source's.
FileDataStruct::FileDataStruct(FileDataStruct const& other)
    : dir(other.dir), name(other.name), isAFile(other.isAFile)
{
}

FileDataStruct& FileDataStruct::operator=(FileDataStruct const& other)
{
    dir = other.dir;
    name = other.name;
    isAFile = other.isAFile;
    return *this;
}

bool FileDataStruct::operator==(FileDataStruct const& other) const
{
    return dir == other.dir && name == other.name && isAFile == other.isAFile;
}

char const* FileDataStruct::GetDir() { return dir.GetString(); }
void FileDataStruct::SetDir(char const* entryDir) { dir = entryDir; }
char const* FileDataStruct::GetName() { return name.GetString(); }
void FileDataStruct::SetName(char const* entryName) { name = entryName; }
bool FileDataStruct::IsAFile() const { return isAFile; }
void FileDataStruct::SetIsAFile(bool entryIsAFile) { isAFile = entryIsAFile; }

char const* FileDataStruct::GetDirNamePath()
{
    ZKString path(dir.GetString());  // up to the first zero byte
    long long const lastBackslash = path.RFind('\\', -1);
    if (lastBackslash < 0) {
        path += '\\';
    } else if (path.RFind("\\*", -1) >= 0) {
        // A search pattern such as C:\dir\*: dropping its last star leaves
        // the directory with its backslash.
        long long const lastStar = path.RFind('*', -1);
        path = path.GetString(static_cast<unsigned long long>(lastStar)) +
               path.GetString(static_cast<unsigned long long>(lastStar) + 1, ~0u);
    } else if (lastBackslash != path.GetSize() - 1) {
        path += '\\';
    }
    path += name;
    dirNamePath = std::move(path);
    return dirNamePath.GetString();
}
