#pragma once

// For the library's own tests: forgets the shell objects' process-wide
// state (cached objects, without releasing them, and the component
// system's initialisation flags), as at load.

namespace zk64::detail {

void ResetShellInterfaces();

}  // namespace zk64::detail
