/* A DLL with three exports that imports two functions of kernel32. */
#include <windows.h>

__declspec(dllexport) DWORD alpha(void) { return GetLastError(); }
__declspec(dllexport) void beta(DWORD ms) { Sleep(ms); }
__declspec(dllexport) int gamma_(void) { return 3; }

BOOL WINAPI DllMainCRTStartup(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    (void)instance;
    (void)reason;
    (void)reserved;
    return TRUE;
}
