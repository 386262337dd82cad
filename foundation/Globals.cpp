#include "detail/Globals.h"

namespace zk64::detail {

LibraryGlobals::LibraryGlobals()
    : programArgs(8), logBaseName("SYSLOG"), logDirectory("../logs/"), logExtension(".log")
{
    programArgs.max_load_factor(1.0f);
}

LibraryGlobals::~LibraryGlobals() { directoryWatchWorker.ShutdownThread(); }

// The only definition of the library's global state; nothing else in the
// library has static objects with constructors.
LibraryGlobals globals;

}  // namespace zk64::detail
