/* A program that imports three functions of kernel32. */
#include <windows.h>

void start(void) __asm__("start");
void start(void)
{
    SetLastError(0);
    ExitProcess(GetLastError());
}
