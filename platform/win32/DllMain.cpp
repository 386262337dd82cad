// The DLL's entry point. The library needs no thread attach and detach
// notifications (its per-thread caches are retired through a fiber-local
// slot), so it turns them off. Its global objects are built by the C runtime
// before this runs and destroyed after the detach. When the DLL is unloaded
// while the process goes on, the per-thread slots go first.
//
// On Linux nothing replaces this: a shared object gets no per-thread
// notifications to turn off.

#include <windows.h>

namespace zk64::platform {
void ReleaseThreadSlots();
}

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr) zk64::platform::ReleaseThreadSlots();
    return TRUE;
}
