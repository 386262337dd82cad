/* A DLL whose exports (see ordlib.def) carry explicit ordinals that are not
   in the order of their names, two of them without a name, and one
   forwarder. */
#include <windows.h>

int ord_alpha(void) { return 1; }
int ord_beta(void) { return 2; }
int zeta(void) { return 3; }
int mid(void) { return 4; }
int able(void) { return 5; }

BOOL WINAPI DllMainCRTStartup(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    (void)instance;
    (void)reason;
    (void)reserved;
    return TRUE;
}
