// The DLL's entry point. The library keeps no per-thread state, so it turns
// off thread attach and detach notifications. Its global objects are built
// by the C runtime before this runs and destroyed after the detach.
//
// On Linux nothing replaces this: a shared object gets no per-thread
// notifications to turn off.

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
    return TRUE;
}
