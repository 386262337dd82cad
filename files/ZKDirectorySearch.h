#pragma once

// Directory search: list or count what lies in a directory, optionally going
// down into subdirectories and keeping only names that contain a sequence of
// bytes, with a process-wide list of directories that recursion skips.
//
// Every directory argument is a search PATTERN: a directory, a separator
// and a star ("C:\dir\*" on Windows, "/usr/share/*" on Linux);
// ConvertToSystemPath turns a loose path into that form. A pattern that does
// not end in the separator and a star still searches, but its last two
// characters are cut off to make the records' directory: GetFilesInDir of
// "C:\dir" finds the entry named dir and reports its directory as "C:\d".
//
// The walk, shared by every function here:
//   * a pattern longer than 257 characters gives nothing, at every level, so
//     a subtree deeper than that ends silently;
//   * a pattern shorter than two characters that matched something throws
//     std::out_of_range("invalid string position");
//   * an entry is a directory only when it has the directory attribute and
//     not the reparse-point one; junctions, directory symbolic links and every
//     other reparse point count as files, are reported with isAFile true and
//     are never entered (link cycles cannot make the walk loop);
//   * "." and ".." are skipped; hidden and system entries are reported like
//     any other;
//   * order is the system's enumeration order, depth first: a directory's
//     record comes before everything beneath it;
//   * with a sequence, a name passes when it holds the sequence as adjacent
//     bytes (ZKString::FindSubsequence from the start of both); the empty
//     sequence matches nothing. Counts count every entry, whatever the
//     sequence test gave;
//   * before entering a subdirectory the walk compares its subpattern
//     (directory, separator, name, separator, star) with each excluded item,
//     whole and byte for byte: an item must be written exactly as the search
//     forms it, trailing star, case and root form included. An excluded
//     directory is still listed and counted; only the descent is skipped.
//     The top-level pattern is never compared.
// A directory that cannot be opened gives an empty result or zero, as an
// empty one does; inside a subtree it only leaves that subtree out.
//
// Records (FileDataStruct): dir is the searched directory without the
// trailing separator and star, name the entry's name, isAFile as above;
// dirNamePath keeps its default. Results are a fresh container of capacity
// 512 with automatic growth.
//
// Linux. The separator is '/', and the same rules hold with it: each
// record's dir is a real directory path and dir + "/" + name names the
// entry; a symbolic link, to a directory or to anything else, counts as a
// file and is never entered; name patterns match case-sensitively, like
// Linux names.
//
// No locks: the exclusion list is read by the searches and written by the
// functions below without synchronisation; callers keep them apart.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"
#include "FileDataStruct.h"

ZK_API ZKContainer<FileDataStruct> GetFilesInDir(char const* dir, bool recursive);
ZK_API ZKContainer<FileDataStruct> GetFilesInDir(ZKString const& dir, bool recursive);
ZK_API ZKContainer<FileDataStruct> GetDirectoriesInDir(char const* dir, bool recursive);
ZK_API ZKContainer<FileDataStruct> GetDirectoriesInDir(ZKString const& dir, bool recursive);
ZK_API ZKContainer<FileDataStruct> GetFilesAndDirectoriesInDir(char const* dir, bool recursive);
ZK_API ZKContainer<FileDataStruct> GetFilesAndDirectoriesInDir(ZKString const& dir, bool recursive);

// ignoreCase true: the sequence test ignores case.
ZK_API ZKContainer<FileDataStruct> GetFilesWithSequence(ZKString const& dir, ZKString const& sequence,
                                                        bool recursive, bool ignoreCase);
ZK_API ZKContainer<FileDataStruct> GetDirsWithSequence(ZKString const& dir, ZKString const& sequence,
                                                       bool recursive, bool ignoreCase);
ZK_API ZKContainer<FileDataStruct> GetFilesAndDirsWithSequence(ZKString const& dir, ZKString const& sequence,
                                                               bool recursive, bool ignoreCase);

// The counts start from zero. Note the order: files first, then directories.
ZK_API unsigned long long GetNumberOfDirs(ZKString const& dir, bool recursive);
ZK_API unsigned long long GetNumberOfFiles(ZKString const& dir, bool recursive);
ZK_API void GetNumberOfFilesAndDirs(ZKString const& dir, unsigned long long& files, unsigned long long& dirs,
                                    bool recursive);

// The exclusion list. There is no function that adds one item: callers set
// the whole list. Set replaces the contents and takes the source's
// automatic-growth flag; Remove drops the first item equal in length and
// bytes (nothing when there is none); Clear empties it as
// ZKContainer::Clear does. Get returns a copy.
ZK_API void SetDirsToExcludeFromSearch(ZKContainer<ZKString> const& dirs);
ZK_API ZKContainer<ZKString> GetDirsToExcludeFromSearch();
ZK_API void RemoveDirToExcludeFromSearch(ZKString const& dir);
ZK_API void ClearDirsToExcludeFromSearch();

// Turns a loose path into a search pattern, without looking at the file
// system. The foreign separator becomes the system's ('/' -> '\' on
// Windows, '\' -> '/' on Linux); the path is split at separators (runs
// collapse, a leading empty part is dropped, a trailing empty part is kept)
// and joined again:
//   * a part that is exactly "*" ends the walk;
//   * a part that contains a dot is taken for a file name: no separator
//     follows it, and no star is added at the end. This also strikes
//     directories with a dot in their name, "." and "..";
//   * every other part is followed by a separator;
//   * a result still empty becomes the path and a separator; a result that
//     does not end in "*" gets one, unless a dotted part was seen.
// An empty path gives an empty string.
//   Windows:  C:/dir -> C:\dir\*      C:\dir\ -> C:\dir\\*     C:\dir\a.txt -> C:\dir\a.txt
//             C:\dir.d\sub -> C:\dir.dsub\    ..\dir -> ..dir\    foo -> foo\*
// On Linux a leading '/' is kept, so rooted paths stay rooted:
//   Linux:    /usr/share -> /usr/share/*   /tmp/a.txt -> /tmp/a.txt   rel/dir -> rel/dir/*
ZK_API ZKString ConvertToSystemPath(char const* path);
ZK_API ZKString ConvertToSystemPath(ZKString const& path);
