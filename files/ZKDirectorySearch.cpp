#include "ZKDirectorySearch.h"

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "../foundation/detail/Globals.h"
#include "../foundation/detail/ListFill.h"
#include "../platform/Files.h"
#include "detail/DirectorySearch.h"

namespace platform = zk64::platform;
using zk64::detail::globals;

namespace zk64::detail {
namespace {

constexpr int kLongestPattern = 257;

bool Has(unsigned long long flags, unsigned long long flag) { return (flags & flag) != 0; }

bool IsExcluded(ZKString const& subpattern)
{
    ZKContainer<ZKString> const& excluded = globals.searchExclusions;
    for (unsigned long long i = 0; i < excluded.GetItemCount(); ++i) {
        if (excluded[i] == subpattern) return true;
    }
    return false;
}

// An entry found for a list that is filled at the end.
struct FoundEntry {
    std::string dir;
    std::string name;
    bool isAFile;
};

// One directory level. `directory` is the pattern with its last two
// characters cut; `record` is scratch space reused for every push. With
// `found`, the entries are kept there instead of pushed.
class DirectoryWalk {
public:
    DirectoryWalk(ZKString const& nameSequence, ZKContainer<FileDataStruct>* out, unsigned long long* dirCounter,
                  unsigned long long* fileCounter, unsigned long long searchFlags,
                  std::vector<FoundEntry>* foundEntries)
        : sequence(nameSequence),
          results(out),
          found(foundEntries),
          dirCount(dirCounter),
          fileCount(fileCounter),
          flags(searchFlags)
    {
    }

    void Search(ZKString const& pattern)
    {
        ZKString directory(pattern);
        if (directory.GetSize() > kLongestPattern) return;

        // Only the opening call runs without file-system redirection.
        void* redirection = nullptr;
        platform::FindDataA entry;
        platform::Wow64DisableWow64FsRedirection(&redirection);
        platform::HANDLE const find = platform::FindFirstFileA(directory.GetString(), &entry);
        platform::Wow64RevertWow64FsRedirection(redirection);
        if (find == platform::kInvalidHandleValue) return;

        int const size = directory.GetSize();
        if (size < 2) {
            platform::FindClose(find);
            throw std::out_of_range("invalid string position");
        }
        directory.Resize(static_cast<unsigned long long>(size - 2));

        do {
            Visit(directory, entry);
        } while (platform::FindNextFileA(find, &entry));
        platform::FindClose(find);
    }

private:
    void Visit(ZKString const& directory, platform::FindDataA const& entry)
    {
        char const* name = entry.cFileName;
        bool const isDirectory = (entry.dwFileAttributes & (platform::kFileAttributeDirectory |
                                                            platform::kFileAttributeReparsePoint)) ==
                                 platform::kFileAttributeDirectory;
        if (isDirectory && (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)) return;

        bool const passes = !Has(flags, SEARCH_SEQUENCE) || Matches(name);
        if (isDirectory) {
            if (Has(flags, SEARCH_COUNT_DIRS)) ++*dirCount;
            if (passes && Has(flags, SEARCH_FILES_AND_DIRS | SEARCH_DIRS)) Push(directory, name, false);
            if (Has(flags, SEARCH_RECURSIVE)) {
                ZKString subpattern(directory);
                subpattern += platform::kPathSeparator;
                subpattern += name;
                subpattern += platform::kPathSeparator;
                subpattern += '*';
                if (!IsExcluded(subpattern)) Search(subpattern);
            }
        } else {
            if (Has(flags, SEARCH_COUNT_FILES)) ++*fileCount;
            if (passes && Has(flags, SEARCH_FILES_AND_DIRS | SEARCH_FILES)) Push(directory, name, true);
        }
    }

    bool Matches(char const* name) const
    {
        return ZKString::FindSubsequence(0, 0, name, static_cast<int>(std::strlen(name)), sequence.GetString(),
                                         sequence.GetSize(), Has(flags, SEARCH_IGNORE_CASE));
    }

    void Push(ZKString const& directory, char const* name, bool isAFile)
    {
        if (results == nullptr) return;
        if (found != nullptr) {
            found->push_back({directory.GetString(), name, isAFile});
            return;
        }
        record.SetDir(directory.GetString());
        record.SetName(name);
        record.SetIsAFile(isAFile);
        results->PushBack(record);
    }

    ZKString const& sequence;
    ZKContainer<FileDataStruct>* results;
    std::vector<FoundEntry>* found;
    unsigned long long* dirCount;
    unsigned long long* fileCount;
    unsigned long long flags;
    FileDataStruct record;
};

}  // namespace

void SearchDirectoryEntries(ZKString const& pattern, ZKString const& sequence, ZKContainer<FileDataStruct>* results,
                            unsigned long long* dirCount, unsigned long long* fileCount, unsigned long long flags)
{
    if (Has(flags, SEARCH_COUNT_DIRS) && dirCount == nullptr) return;
    if (Has(flags, SEARCH_COUNT_FILES) && fileCount == nullptr) return;
    if (results == nullptr || !IsUnusedList(*results)) {
        DirectoryWalk(sequence, results, dirCount, fileCount, flags, nullptr).Search(pattern);
        return;
    }
    // A list nobody has used yet is filled at the end, grown once; also
    // when the walk stops with an exception, with what it found so far.
    std::vector<FoundEntry> found;
    FileDataStruct record;
    auto const fill = [&] {
        FillUnusedList(*results, found, [&record](ZKContainer<FileDataStruct>& list, FoundEntry const& entry) {
            record.SetDir(entry.dir.c_str());
            record.SetName(entry.name.c_str());
            record.SetIsAFile(entry.isAFile);
            list.PushBack(record);
        });
    };
    try {
        DirectoryWalk(sequence, results, dirCount, fileCount, flags, &found).Search(pattern);
    } catch (...) {
        fill();
        throw;
    }
    fill();
}

}  // namespace zk64::detail

namespace {

using zk64::detail::SearchDirectoryEntries;

ZKContainer<FileDataStruct> Search(ZKString const& dir, ZKString const& sequence, bool recursive,
                                   unsigned long long flags)
{
    ZKContainer<FileDataStruct> results(512);
    results.SetContainerAutoResize(true);
    if (recursive) flags |= zk64::detail::SEARCH_RECURSIVE;
    SearchDirectoryEntries(dir, sequence, &results, nullptr, nullptr, flags);
    return results;
}

ZKContainer<FileDataStruct> SearchWithSequence(ZKString const& dir, ZKString const& sequence, bool recursive,
                                               bool ignoreCase, unsigned long long flags)
{
    flags |= zk64::detail::SEARCH_SEQUENCE;
    if (ignoreCase) flags |= zk64::detail::SEARCH_IGNORE_CASE;
    return Search(dir, sequence, recursive, flags);
}

unsigned long long RecursiveFlag(bool recursive) { return recursive ? zk64::detail::SEARCH_RECURSIVE : 0; }

}  // namespace

using namespace zk64::detail;

ZKContainer<FileDataStruct> GetFilesInDir(char const* dir, bool recursive)
{
    return GetFilesInDir(ZKString(dir), recursive);
}

ZKContainer<FileDataStruct> GetFilesInDir(ZKString const& dir, bool recursive)
{
    return Search(dir, ZKString(), recursive, SEARCH_FILES);
}

ZKContainer<FileDataStruct> GetDirectoriesInDir(char const* dir, bool recursive)
{
    return GetDirectoriesInDir(ZKString(dir), recursive);
}

ZKContainer<FileDataStruct> GetDirectoriesInDir(ZKString const& dir, bool recursive)
{
    return Search(dir, ZKString(), recursive, SEARCH_DIRS);
}

ZKContainer<FileDataStruct> GetFilesAndDirectoriesInDir(char const* dir, bool recursive)
{
    return GetFilesAndDirectoriesInDir(ZKString(dir), recursive);
}

ZKContainer<FileDataStruct> GetFilesAndDirectoriesInDir(ZKString const& dir, bool recursive)
{
    return Search(dir, ZKString(), recursive, SEARCH_FILES_AND_DIRS);
}

ZKContainer<FileDataStruct> GetFilesWithSequence(ZKString const& dir, ZKString const& sequence, bool recursive,
                                                 bool ignoreCase)
{
    return SearchWithSequence(dir, sequence, recursive, ignoreCase, SEARCH_FILES);
}

ZKContainer<FileDataStruct> GetDirsWithSequence(ZKString const& dir, ZKString const& sequence, bool recursive,
                                                bool ignoreCase)
{
    return SearchWithSequence(dir, sequence, recursive, ignoreCase, SEARCH_DIRS);
}

ZKContainer<FileDataStruct> GetFilesAndDirsWithSequence(ZKString const& dir, ZKString const& sequence,
                                                        bool recursive, bool ignoreCase)
{
    return SearchWithSequence(dir, sequence, recursive, ignoreCase, SEARCH_FILES_AND_DIRS);
}

unsigned long long GetNumberOfDirs(ZKString const& dir, bool recursive)
{
    unsigned long long dirs = 0;
    SearchDirectoryEntries(dir, ZKString(), nullptr, &dirs, nullptr, SEARCH_COUNT_DIRS | RecursiveFlag(recursive));
    return dirs;
}

unsigned long long GetNumberOfFiles(ZKString const& dir, bool recursive)
{
    unsigned long long files = 0;
    SearchDirectoryEntries(dir, ZKString(), nullptr, nullptr, &files, SEARCH_COUNT_FILES | RecursiveFlag(recursive));
    return files;
}

void GetNumberOfFilesAndDirs(ZKString const& dir, unsigned long long& files, unsigned long long& dirs,
                             bool recursive)
{
    files = 0;
    dirs = 0;
    SearchDirectoryEntries(dir, ZKString(), nullptr, &dirs, &files,
                           SEARCH_COUNT_DIRS | SEARCH_COUNT_FILES | RecursiveFlag(recursive));
}

void SetDirsToExcludeFromSearch(ZKContainer<ZKString> const& dirs) { globals.searchExclusions = dirs; }

ZKContainer<ZKString> GetDirsToExcludeFromSearch() { return globals.searchExclusions; }

void RemoveDirToExcludeFromSearch(ZKString const& dir)
{
    ZKContainer<ZKString>& excluded = globals.searchExclusions;
    for (unsigned long long i = 0; i < excluded.GetItemCount(); ++i) {
        if (excluded[i] == dir) {
            excluded.Remove(i);
            return;
        }
    }
}

void ClearDirsToExcludeFromSearch() { globals.searchExclusions.Clear(); }

ZKString ConvertToSystemPath(char const* path) { return ConvertToSystemPath(ZKString(path)); }

ZKString ConvertToSystemPath(ZKString const& path)
{
    if (path.IsEmpty()) return ZKString();
    ZKString loose(path);
    loose.ReplaceAll(platform::kForeignPathSeparator, platform::kPathSeparator);

    ZKContainer<ZKString> parts;
    ZKString::Split(loose, platform::kPathSeparator, true, &parts);
    ZKString result;
    bool sawDot = false;
    for (unsigned long long i = 0; i < parts.GetItemCount(); ++i) {
        ZKString const& part = parts[i];
        result += part;
        if (part == "*") break;
        if (part.Find('.', 0) >= 0) {
            sawDot = true;
        } else {
            result += platform::kPathSeparator;
        }
    }
    if (result.IsEmpty()) result = path + platform::kPathSeparator;
    if (platform::kLeadingSeparatorIsRoot && loose[0] == platform::kPathSeparator &&
        result[0] != platform::kPathSeparator) {
        result.Insert(platform::kPathSeparator);
    }
    if (result[static_cast<unsigned int>(result.GetSize() - 1)] != '*' && !sawDot) result += '*';
    return result;
}
