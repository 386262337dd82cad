// POSIX backend (Linux) of the window operations.
//
// A Linux process has no desktop of windows that the library could reach,
// so every operation answers as Windows does for a window that does not
// exist: null handles, 0, FALSE, no text, and errno EINVAL (Windows'
// ERROR_INVALID_WINDOW_HANDLE). The enumerations call their callback for
// no window. GetCurrentThreadId is the thread's kernel id and
// DwmGetWindowAttribute gives E_NOTIMPL: there is no compositor to ask.

#include <unistd.h>

#include <cerrno>

#include "../Desktop.h"

namespace zk64::platform {
namespace {

template <class Result>
Result NoWindow(Result failure)
{
    errno = EINVAL;
    return failure;
}

}  // namespace

HWND GetDesktopWindow() { return nullptr; }
HWND GetParent(HWND) { return NoWindow<HWND>(nullptr); }
HWND GetAncestor(HWND, UINT) { return NoWindow<HWND>(nullptr); }
HWND GetWindow(HWND, UINT) { return NoWindow<HWND>(nullptr); }
LONG_PTR GetWindowLongPtrA(HWND, int) { return NoWindow<LONG_PTR>(0); }
ULONG_PTR GetClassLongPtrA(HWND, int) { return NoWindow<ULONG_PTR>(0); }

DWORD GetCurrentThreadId() { return static_cast<DWORD>(gettid()); }
HDESK GetThreadDesktop(DWORD) { return NoWindow<HDESK>(nullptr); }
BOOL EnumDesktopWindows(HDESK, WindowEnumProc, LPARAM) { return NoWindow<BOOL>(0); }
BOOL EnumChildWindows(HWND, WindowEnumProc, LPARAM) { return NoWindow<BOOL>(0); }

int GetClassNameA(HWND, char*, int) { return NoWindow(0); }
int GetWindowTextA(HWND, char*, int) { return NoWindow(0); }

LRESULT SendMessageTimeoutA(HWND, UINT, WPARAM, LPARAM, UINT, UINT, ULONG_PTR*) { return NoWindow<LRESULT>(0); }

BOOL SetForegroundWindow(HWND) { return NoWindow<BOOL>(0); }
BOOL IsIconic(HWND) { return NoWindow<BOOL>(0); }
BOOL IsZoomed(HWND) { return NoWindow<BOOL>(0); }
BOOL ShowWindow(HWND, int) { return NoWindow<BOOL>(0); }
BOOL SetWindowPos(HWND, HWND, int, int, int, int, UINT) { return NoWindow<BOOL>(0); }

BOOL GetWindowPlacement(HWND, WindowPlacement*) { return NoWindow<BOOL>(0); }
BOOL SetWindowPlacement(HWND, WindowPlacement const*) { return NoWindow<BOOL>(0); }
HMONITOR MonitorFromRect(Rect const*, DWORD) { return NoWindow<HMONITOR>(nullptr); }
BOOL GetMonitorInfoA(HMONITOR, MonitorInfo*) { return NoWindow<BOOL>(0); }

HRESULT DwmGetWindowAttribute(HWND, DWORD, void*, DWORD)
{
    return static_cast<HRESULT>(0x80004001u);  // E_NOTIMPL
}

}  // namespace zk64::platform
