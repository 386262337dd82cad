#pragma once

// The library's process-wide objects, all in one struct so that the language
// fixes their order: members are constructed in declaration order when the
// library loads and destroyed in reverse when it unloads. The order is part
// of the library's behaviour; never reorder, and give a new global a new
// slot at the end.

#include <sstream>
#include <string>
#include <unordered_map>

#include "../../concurrency/ZKMutex.h"
#include "../../concurrency/ZKThread.h"
#include "../../files/ZKDirectoryWatch.h"
#include "../ZKContainer.h"
#include "../ZKString.h"

namespace zk64::detail {

struct LibraryGlobals {
    LibraryGlobals();
    // Stops directory watching's worker before any member is destroyed: it
    // walks the list, which is destroyed before the worker's ZKThread.
    ~LibraryGlobals();
    LibraryGlobals(LibraryGlobals const&) = delete;
    LibraryGlobals& operator=(LibraryGlobals const&) = delete;

    ZKMutex directoryWatchLock;           //  1 ZKMutex: directory watching's lock
    ZKThread directoryWatchWorker;        //  2 ZKThread: directory watching's worker
    ZKContainer<DirChangeStruct> watchedDirectories;  //  3 directory watching's list
    ZKString machineIdCache;              //  4 GenerateUniqueMachineID's cached result
    ZKContainer<void*> reservedPointers;  //  5 built and destroyed, never used
    std::unordered_map<std::string, std::string> programArgs;  //  6 LoadProgramArgs' table
    ZKContainer<ZKString> searchExclusions;  //  7 directories that searches skip
    std::stringstream logBuffer;             //  8 what __FOUT__ buffers
    ZKString logBaseName;                    //  9 "SYSLOG"
    ZKString logDirectory;                   // 10 "../logs/"
    ZKString logExtension;                   // 11 ".log"
};

extern LibraryGlobals globals;

}  // namespace zk64::detail
