#pragma once

// The attribute for an explicit instantiation definition of an exported
// ZKContainer<T>. On Linux the extern declaration in the public header
// carries ZK_API and the definition must not repeat it; on Windows there is
// no extern declaration (callers instantiate the container themselves), so
// the definition carries it.

#include "../../foundation/ZKExport.h"

#if defined(_WIN32)
#  define ZK_EXPORTED_CONTAINER_INSTANCE ZK_API
#else
#  define ZK_EXPORTED_CONTAINER_INSTANCE
#endif
