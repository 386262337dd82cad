#pragma once

// The one walk behind every directory search and count, with the flags word
// that steers it. Internal: the public functions in ZKDirectorySearch.h are
// thin calls of it.

#include "../../foundation/ZKContainer.h"
#include "../../foundation/ZKString.h"
#include "../FileDataStruct.h"

namespace zk64::detail {

constexpr unsigned long long SEARCH_FILES_AND_DIRS = 1;  // push files and directories
constexpr unsigned long long SEARCH_FILES = 2;           // push files
constexpr unsigned long long SEARCH_DIRS = 4;            // push directories
constexpr unsigned long long SEARCH_RECURSIVE = 8;       // go down into subdirectories
constexpr unsigned long long SEARCH_SEQUENCE = 16;       // keep only names holding the sequence
constexpr unsigned long long SEARCH_IGNORE_CASE = 32;    // the sequence test ignores case
constexpr unsigned long long SEARCH_COUNT_DIRS = 64;     // count directories into *dirCount
constexpr unsigned long long SEARCH_COUNT_FILES = 128;   // count files into *fileCount

// Walks `pattern` (a directory, a separator and a name pattern) as
// ZKDirectorySearch.h describes. `results` may be null (counting only); a
// count flag whose counter is null makes the call do nothing.
void SearchDirectoryEntries(ZKString const& pattern, ZKString const& sequence, ZKContainer<FileDataStruct>* results,
                            unsigned long long* dirCount, unsigned long long* fileCount, unsigned long long flags);

}  // namespace zk64::detail
