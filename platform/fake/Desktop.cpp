// Fake backend of the window operations: each call recorded, each answer
// scripted (DesktopScript.h).

#include <string>

#include "../Desktop.h"
#include "DesktopScript.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

using fake::Dec;
using fake::Desktop;
using fake::Hex;
using fake::Out;
using fake::Pointer;
using fake::Record;
using fake::Run;

namespace {

std::string Int(long long value) { return std::to_string(value); }

// "Name(window=...": the common head of the calls on one window.
std::string On(char const* name, HWND window)
{
    std::string call = name;
    call += "(window=";
    call += Pointer(window);
    return call;
}

}  // namespace

namespace fake {

BOOL ListWindows(std::initializer_list<HWND> windows, WindowEnumProc callback, LPARAM data)
{
    for (HWND window : windows) {
        if (callback(window, data) == 0) break;
    }
    return 1;
}

}  // namespace fake

HWND GetDesktopWindow()
{
    Record("GetDesktopWindow()");
    return Run<HWND>(Desktop().GetDesktopWindow, nullptr);
}

HWND GetParent(HWND window)
{
    Record(On("GetParent", window) + ")");
    return Run<HWND>(Desktop().GetParent, nullptr, window);
}

HWND GetAncestor(HWND window, UINT flags)
{
    Record(On("GetAncestor", window) + ", flags=" + Dec(flags) + ")");
    return Run<HWND>(Desktop().GetAncestor, nullptr, window, flags);
}

HWND GetWindow(HWND window, UINT command)
{
    Record(On("GetWindow", window) + ", command=" + Dec(command) + ")");
    return Run<HWND>(Desktop().GetWindow, nullptr, window, command);
}

LONG_PTR GetWindowLongPtrA(HWND window, int index)
{
    Record(On("GetWindowLongPtrA", window) + ", index=" + Int(index) + ")");
    return Run<LONG_PTR>(Desktop().GetWindowLongPtrA, 0, window, index);
}

ULONG_PTR GetClassLongPtrA(HWND window, int index)
{
    Record(On("GetClassLongPtrA", window) + ", index=" + Int(index) + ")");
    return Run<ULONG_PTR>(Desktop().GetClassLongPtrA, 0, window, index);
}

DWORD GetCurrentThreadId()
{
    Record("GetCurrentThreadId()");
    return Run<DWORD>(Desktop().GetCurrentThreadId, 0);
}

HDESK GetThreadDesktop(DWORD threadId)
{
    Record("GetThreadDesktop(" + Dec(threadId) + ")");
    return Run<HDESK>(Desktop().GetThreadDesktop, nullptr, threadId);
}

BOOL EnumDesktopWindows(HDESK desktop, WindowEnumProc callback, LPARAM data)
{
    Record("EnumDesktopWindows(desktop=" + Pointer(desktop) + ")");
    return Run<BOOL>(Desktop().EnumDesktopWindows, 0, desktop, callback, data);
}

BOOL EnumChildWindows(HWND parent, WindowEnumProc callback, LPARAM data)
{
    Record(On("EnumChildWindows", parent) + ")");
    return Run<BOOL>(Desktop().EnumChildWindows, 0, parent, callback, data);
}

int GetClassNameA(HWND window, char* buffer, int size)
{
    Record(On("GetClassNameA", window) + ", size=" + Int(size) + ")");
    return Run<int>(Desktop().GetClassNameA, 0, window, buffer, size);
}

int GetWindowTextA(HWND window, char* buffer, int size)
{
    Record(On("GetWindowTextA", window) + ", size=" + Int(size) + ")");
    return Run<int>(Desktop().GetWindowTextA, 0, window, buffer, size);
}

LRESULT SendMessageTimeoutA(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT flags, UINT timeout,
                            ULONG_PTR* result)
{
    Record(On("SendMessageTimeoutA", window) + ", message=" + Dec(message) + ", wParam=" + Dec(wParam) +
           ", lParam=" + Int(lParam) + ", flags=" + Hex(flags) + ", timeout=" + Dec(timeout) +
           ", result=" + (result == nullptr ? std::string("null") : Dec(*result)) + ")");
    return Run<LRESULT>(Desktop().SendMessageTimeoutA, 0, window, message, wParam, lParam, flags, timeout, result);
}

BOOL SetForegroundWindow(HWND window)
{
    Record(On("SetForegroundWindow", window) + ")");
    return Run<BOOL>(Desktop().SetForegroundWindow, 0, window);
}

BOOL IsIconic(HWND window)
{
    Record(On("IsIconic", window) + ")");
    return Run<BOOL>(Desktop().IsIconic, 0, window);
}

BOOL IsZoomed(HWND window)
{
    Record(On("IsZoomed", window) + ")");
    return Run<BOOL>(Desktop().IsZoomed, 0, window);
}

BOOL ShowWindow(HWND window, int command)
{
    Record(On("ShowWindow", window) + ", command=" + Int(command) + ")");
    return Run<BOOL>(Desktop().ShowWindow, 0, window, command);
}

BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int cx, int cy, UINT flags)
{
    Record(On("SetWindowPos", window) + ", after=" + Int(reinterpret_cast<LONG_PTR>(insertAfter)) + ", x=" + Int(x) +
           ", y=" + Int(y) + ", cx=" + Int(cx) + ", cy=" + Int(cy) + ", flags=" + Dec(flags) + ")");
    return Run<BOOL>(Desktop().SetWindowPos, 0, window, insertAfter, x, y, cx, cy, flags);
}

namespace {

std::string Text(Rect const& rect)
{
    return "{" + Int(rect.left) + "," + Int(rect.top) + "," + Int(rect.right) + "," + Int(rect.bottom) + "}";
}

std::string Text(WindowPlacement const& placement)
{
    return "length=" + Dec(placement.length) + ", flags=" + Dec(placement.flags) + ", show=" +
           Dec(placement.showCmd) + ", min={" + Int(placement.ptMinPosition.x) + "," + Int(placement.ptMinPosition.y) +
           "}, max={" + Int(placement.ptMaxPosition.x) + "," + Int(placement.ptMaxPosition.y) +
           "}, normal=" + Text(placement.rcNormalPosition);
}

}  // namespace

// The placement records are written out as they arrive, so that a test sees
// what the logic prepared.
BOOL GetWindowPlacement(HWND window, WindowPlacement* placement)
{
    Record(On("GetWindowPlacement", window) + ", " + Text(*placement) + ")");
    return Run<BOOL>(Desktop().GetWindowPlacement, 0, window, placement);
}

BOOL SetWindowPlacement(HWND window, WindowPlacement const* placement)
{
    Record(On("SetWindowPlacement", window) + ", " + Text(*placement) + ")");
    return Run<BOOL>(Desktop().SetWindowPlacement, 0, window, placement);
}

HMONITOR MonitorFromRect(Rect const* rect, DWORD flags)
{
    Record("MonitorFromRect(rect=" + Text(*rect) + ", flags=" + Dec(flags) + ")");
    return Run<HMONITOR>(Desktop().MonitorFromRect, nullptr, rect, flags);
}

BOOL GetMonitorInfoA(HMONITOR monitor, MonitorInfo* info)
{
    Record("GetMonitorInfoA(monitor=" + Pointer(monitor) + ", size=" + Dec(info->cbSize) + ")");
    return Run<BOOL>(Desktop().GetMonitorInfoA, 0, monitor, info);
}

HRESULT DwmGetWindowAttribute(HWND window, DWORD attribute, void* value, DWORD size)
{
    Record(On("DwmGetWindowAttribute", window) + ", attribute=" + Dec(attribute) + ", value=" + Out(value) +
           ", size=" + Dec(size) + ")");
    return Run<HRESULT>(Desktop().DwmGetWindowAttribute, static_cast<HRESULT>(0x80004005u), window, attribute,
                        value, size);  // unset: E_FAIL
}

}  // namespace zk64::platform
