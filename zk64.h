#pragma once

// zk64: everything a caller can use.

#include "foundation/ZKExport.h"
#include "foundation/ZKLibrary.h"
#include "foundation/ZKFlags.h"
#include "foundation/ZKContainer.h"
#include "foundation/ZKString.h"
#include "diagnostics/ZKDebug.h"
#include "diagnostics/ZKTraceContext.h"
#include "system/ZKSystem.h"
