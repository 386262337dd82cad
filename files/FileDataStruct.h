#pragma once

// FileDataStruct: one directory entry as a directory search reports it: the
// directory, the entry's name and whether it is a file.
//
// The three strings start as the text "NONE", a visible sentinel rather than
// an empty string, so an entry whose fields were never set reads as
// NONE\NONE through GetDirNamePath.
//
// Copying is deliberately uneven about the cached path:
//   * the copy constructor copies dir, name and the flag, and leaves the
//     copy's dirNamePath EMPTY (not "NONE", not the source's cache);
//   * operator= copies dir, name and the flag, and KEEPS the target's own
//     dirNamePath.
// Equality looks at dir, name and the flag only, byte for byte (case
// matters); the cache plays no part.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

class ZK_API FileDataStruct {
public:
    FileDataStruct();  // all three strings "NONE", not a file
    // dirNamePath stays "NONE"; the entry is not a file.
    FileDataStruct(char const* dir, char const* name);
    FileDataStruct(char const* dir, char const* name, bool isAFile);
    FileDataStruct(FileDataStruct const& other);             // cache becomes empty
    FileDataStruct& operator=(FileDataStruct const& other);  // cache stays
    ~FileDataStruct() = default;

    bool operator==(FileDataStruct const& other) const;

    char const* GetDir();
    void SetDir(char const* dir);
    char const* GetName();
    void SetName(char const* name);
    bool IsAFile() const;
    void SetIsAFile(bool isAFile);

    // Joins dir and name with a backslash, stores the result as dirNamePath
    // and returns it (valid until the next call or the end of the object).
    // Only the backslash counts as a separator:
    //   dir ending in "\*" (a search pattern, its last star is dropped)
    //                                          C:\dir\*  + a.txt -> C:\dir\a.txt
    //   dir ending in a backslash              C:\dir\   + a.txt -> C:\dir\a.txt
    //   any other dir gets one backslash       C:\dir    + a.txt -> C:\dir\a.txt
    //                                          c:/dir/   + a.txt -> c:/dir/\a.txt
    // dir and name are read up to their first zero byte.
    char const* GetDirNamePath();

private:
    ZKString dir;
    ZKString name;
    ZKString dirNamePath;  // the last result of GetDirNamePath
    bool isAFile;
};

#if !defined(_WIN32)
extern template class ZK_API ZKContainer<FileDataStruct>;
#endif
