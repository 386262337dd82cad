#pragma once

// Three shell objects, each created once and shared by every caller: the
// taskbar list, the custom jump list (destination list) and the user
// notification. The library holds the single reference to each and never
// calls their methods; include <shobjidl.h> to use them.
//
// A Get creates its object on the first call and hands the same pointer to
// every later one, adding no reference; it gives null when the object
// cannot be created, and the next Get tries again. The first Get of any of
// the three initialises the component system on its thread (once per
// process; a thread that had it initialised already keeps its own count).
// A Release drops the object; the Release that leaves none of the three
// undoes the library's initialisation, each time that happens. A Release
// of an object not held does nothing. Nothing here is synchronised: callers
// keep the Gets and Releases of different threads apart.

#include "../foundation/ZKExport.h"

// The interfaces as <shobjidl.h> declares them. mingw-w64 writes
// `typedef interface ITaskbarList ITaskbarList;` with `interface` defined
// as `struct`, and the Windows SDK declares them as structs as well, so a
// plain struct declaration names the same type: it may come before or after
// that header, and the header's definition completes it.
struct ITaskbarList;
struct ICustomDestinationList;
struct IUserNotification;

ZK_API ITaskbarList* GetTaskbarInterface();
ZK_API ICustomDestinationList* GetCustomJumpListInterface();
ZK_API IUserNotification* GetUserNotificationInterface();
ZK_API void ReleaseTaskbarInterface();
ZK_API void ReleaseCustomJumpListInterface();
ZK_API void ReleaseUserNotificationInterface();
