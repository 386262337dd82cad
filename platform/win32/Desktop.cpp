// Win32 backend of the window operations: the functions themselves.

#include <windows.h>

#include <dwmapi.h>

#include <cstddef>

#include "../Desktop.h"

namespace zk64::platform {

static_assert(sizeof(Rect) == sizeof(RECT));
static_assert(offsetof(Rect, bottom) == offsetof(RECT, bottom));
static_assert(sizeof(WindowPlacement) == sizeof(WINDOWPLACEMENT));
static_assert(offsetof(WindowPlacement, showCmd) == offsetof(WINDOWPLACEMENT, showCmd));
static_assert(offsetof(WindowPlacement, rcNormalPosition) == offsetof(WINDOWPLACEMENT, rcNormalPosition));
static_assert(sizeof(MonitorInfo) == sizeof(MONITORINFO));
static_assert(offsetof(MonitorInfo, rcWork) == offsetof(MONITORINFO, rcWork));
static_assert(kGaParent == GA_PARENT && kGaRootOwner == GA_ROOTOWNER);
static_assert(kGwOwner == GW_OWNER && kGwChild == GW_CHILD);
static_assert(kGwlpHInstance == GWLP_HINSTANCE && kGwlExStyle == GWL_EXSTYLE);
static_assert(kGclpHIcon == GCLP_HICON && kGclpHIconSm == GCLP_HICONSM);
static_assert(kWsExToolWindow == WS_EX_TOOLWINDOW && kWsExAppWindow == WS_EX_APPWINDOW);
static_assert(kSwHide == SW_HIDE && kSwShowMaximized == SW_SHOWMAXIMIZED && kSwShowMaximized == SW_MAXIMIZE);
static_assert(kSwShow == SW_SHOW && kSwMinimize == SW_MINIMIZE && kSwRestore == SW_RESTORE);
static_assert(kSwpNoSize == SWP_NOSIZE && kSwpNoMove == SWP_NOMOVE && kSwpShowWindow == SWP_SHOWWINDOW);
static_assert(kWmGetIcon == WM_GETICON && kSmtoNormal == SMTO_NORMAL);
static_assert(kIconSmall == ICON_SMALL && kIconBig == ICON_BIG && kIconSmall2 == ICON_SMALL2);
static_assert(kMonitorDefaultToNearest == MONITOR_DEFAULTTONEAREST);
static_assert(kDwmwaExtendedFrameBounds == DWMWA_EXTENDED_FRAME_BOUNDS && kDwmwaCloaked == DWMWA_CLOAKED);

namespace {

// The layer's callback and its data, handed through the system's LPARAM.
struct Enumeration {
    WindowEnumProc callback;
    LPARAM data;
};

BOOL CALLBACK Forward(::HWND window, ::LPARAM enumeration)
{
    auto const* target = reinterpret_cast<Enumeration const*>(enumeration);
    return target->callback(window, target->data);
}

}  // namespace

HWND GetDesktopWindow() { return ::GetDesktopWindow(); }
HWND GetParent(HWND window) { return ::GetParent(window); }
HWND GetAncestor(HWND window, UINT flags) { return ::GetAncestor(window, flags); }
HWND GetWindow(HWND window, UINT command) { return ::GetWindow(window, command); }
LONG_PTR GetWindowLongPtrA(HWND window, int index) { return ::GetWindowLongPtrA(window, index); }
ULONG_PTR GetClassLongPtrA(HWND window, int index) { return ::GetClassLongPtrA(window, index); }

DWORD GetCurrentThreadId() { return ::GetCurrentThreadId(); }
HDESK GetThreadDesktop(DWORD threadId) { return ::GetThreadDesktop(threadId); }

BOOL EnumDesktopWindows(HDESK desktop, WindowEnumProc callback, LPARAM data)
{
    Enumeration enumeration{callback, data};
    return ::EnumDesktopWindows(static_cast<::HDESK>(desktop), Forward, reinterpret_cast<::LPARAM>(&enumeration));
}

BOOL EnumChildWindows(HWND parent, WindowEnumProc callback, LPARAM data)
{
    Enumeration enumeration{callback, data};
    return ::EnumChildWindows(parent, Forward, reinterpret_cast<::LPARAM>(&enumeration));
}

int GetClassNameA(HWND window, char* buffer, int size) { return ::GetClassNameA(window, buffer, size); }
int GetWindowTextA(HWND window, char* buffer, int size) { return ::GetWindowTextA(window, buffer, size); }

LRESULT SendMessageTimeoutA(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT flags, UINT timeout,
                            ULONG_PTR* result)
{
    DWORD_PTR answer = *result;
    LRESULT const done = ::SendMessageTimeoutA(window, message, wParam, lParam, flags, timeout, &answer);
    *result = answer;
    return done;
}

BOOL SetForegroundWindow(HWND window) { return ::SetForegroundWindow(window); }
BOOL IsIconic(HWND window) { return ::IsIconic(window); }
BOOL IsZoomed(HWND window) { return ::IsZoomed(window); }
BOOL ShowWindow(HWND window, int command) { return ::ShowWindow(window, command); }

BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int cx, int cy, UINT flags)
{
    return ::SetWindowPos(window, insertAfter, x, y, cx, cy, flags);
}

BOOL GetWindowPlacement(HWND window, WindowPlacement* placement)
{
    return ::GetWindowPlacement(window, reinterpret_cast<WINDOWPLACEMENT*>(placement));
}

BOOL SetWindowPlacement(HWND window, WindowPlacement const* placement)
{
    return ::SetWindowPlacement(window, reinterpret_cast<WINDOWPLACEMENT const*>(placement));
}

HMONITOR MonitorFromRect(Rect const* rect, DWORD flags)
{
    return ::MonitorFromRect(reinterpret_cast<RECT const*>(rect), flags);
}

BOOL GetMonitorInfoA(HMONITOR monitor, MonitorInfo* info)
{
    return ::GetMonitorInfoA(static_cast<::HMONITOR>(monitor), reinterpret_cast<MONITORINFO*>(info));
}

HRESULT DwmGetWindowAttribute(HWND window, DWORD attribute, void* value, DWORD size)
{
    return ::DwmGetWindowAttribute(window, attribute, value, size);
}

}  // namespace zk64::platform
