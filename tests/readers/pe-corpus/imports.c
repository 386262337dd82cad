/* A program that imports many functions from several system DLLs: the
   table of their addresses keeps every import alive. */
#include <windows.h>
#include <shellapi.h>

static void const* const imported[] = {
    (void const*)&GetTickCount,     (void const*)&GetCurrentProcessId, (void const*)&GetCurrentThreadId,
    (void const*)&CreateFileA,      (void const*)&CloseHandle,         (void const*)&ReadFile,
    (void const*)&WriteFile,        (void const*)&VirtualAlloc,        (void const*)&VirtualFree,
    (void const*)&GetModuleHandleA, (void const*)&GetProcAddress,      (void const*)&LoadLibraryA,
    (void const*)&MessageBoxA,      (void const*)&GetDesktopWindow,    (void const*)&FindWindowA,
    (void const*)&GetWindowTextA,   (void const*)&SendMessageA,        (void const*)&GetSystemMetrics,
    (void const*)&CreateSolidBrush, (void const*)&DeleteObject,        (void const*)&GetStockObject,
    (void const*)&RegOpenKeyExA,    (void const*)&RegCloseKey,         (void const*)&GetUserNameA,
    (void const*)&ShellExecuteA,    (void const*)&CoInitialize,        (void const*)&CoUninitialize,
};

void start(void) __asm__("start");
void start(void)
{
    ExitProcess((UINT)(sizeof imported / sizeof imported[0]));
}
