#pragma once

// The fake window operations' script (see Fake.h). Unset, every operation
// fails as for a window that does not exist, and the enumerations list no
// window.

#include <functional>
#include <initializer_list>

#include "../Desktop.h"

namespace zk64::platform::fake {

struct DesktopScript {
    std::function<HWND()> GetDesktopWindow;
    std::function<HWND(HWND window)> GetParent;
    std::function<HWND(HWND window, UINT flags)> GetAncestor;
    std::function<HWND(HWND window, UINT command)> GetWindow;
    std::function<LONG_PTR(HWND window, int index)> GetWindowLongPtrA;
    std::function<ULONG_PTR(HWND window, int index)> GetClassLongPtrA;
    std::function<DWORD()> GetCurrentThreadId;
    std::function<HDESK(DWORD threadId)> GetThreadDesktop;
    std::function<BOOL(HDESK desktop, WindowEnumProc callback, LPARAM data)> EnumDesktopWindows;
    std::function<BOOL(HWND parent, WindowEnumProc callback, LPARAM data)> EnumChildWindows;
    std::function<int(HWND window, char* buffer, int size)> GetClassNameA;
    std::function<int(HWND window, char* buffer, int size)> GetWindowTextA;
    std::function<LRESULT(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT flags, UINT timeout,
                          ULONG_PTR* result)>
        SendMessageTimeoutA;
    std::function<BOOL(HWND window)> SetForegroundWindow;
    std::function<BOOL(HWND window)> IsIconic;
    std::function<BOOL(HWND window)> IsZoomed;
    std::function<BOOL(HWND window, int command)> ShowWindow;
    std::function<BOOL(HWND window, HWND insertAfter, int x, int y, int cx, int cy, UINT flags)> SetWindowPos;
    std::function<BOOL(HWND window, WindowPlacement* placement)> GetWindowPlacement;
    std::function<BOOL(HWND window, WindowPlacement const* placement)> SetWindowPlacement;
    std::function<HMONITOR(Rect const* rect, DWORD flags)> MonitorFromRect;
    std::function<BOOL(HMONITOR monitor, MonitorInfo* info)> GetMonitorInfoA;
    std::function<HRESULT(HWND window, DWORD attribute, void* value, DWORD size)> DwmGetWindowAttribute;
};

DesktopScript& Desktop();

// Answers an enumeration as the system does: `callback` for each window in
// turn until it returns 0; TRUE.
BOOL ListWindows(std::initializer_list<HWND> windows, WindowEnumProc callback, LPARAM data);

}  // namespace zk64::platform::fake
