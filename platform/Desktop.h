#pragma once

// Window operations of the platform layer: family relations, enumeration,
// names, icons, stacking, showing, placement and the compositor's window
// attributes. See System.h for what the backends promise. Linux has no
// desktop the library could reach: platform/posix/Desktop.cpp gives every
// operation its Win32 failure value.

#include <cstdint>

#include "PlatformTypes.h"

// Window, module and icon handles, as <windows.h> declares them.
struct HWND__;
struct HINSTANCE__;
struct HICON__;

namespace zk64::platform {

using HWND = HWND__*;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using HDESK = void*;
using HMONITOR = void*;

// RECT, POINT, WINDOWPLACEMENT (44 bytes) and MONITORINFO (40 bytes), field
// for field.
struct Rect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
};
static_assert(sizeof(Rect) == 16);

struct Point {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

struct WindowPlacement {
    UINT length = 0;
    UINT flags = 0;
    UINT showCmd = 0;
    Point ptMinPosition;
    Point ptMaxPosition;
    Rect rcNormalPosition;
};
static_assert(sizeof(WindowPlacement) == 44);

struct MonitorInfo {
    std::uint32_t cbSize = 0;
    Rect rcMonitor;
    Rect rcWork;
    std::uint32_t dwFlags = 0;
};
static_assert(sizeof(MonitorInfo) == 40);

// WNDENUMPROC: called once per window with the caller's data; returning 0
// stops the enumeration.
using WindowEnumProc = BOOL (*)(HWND window, LPARAM data);

// Constants the window logic passes (the Win32 values).
constexpr UINT kGaParent = 1;
constexpr UINT kGaRootOwner = 3;
constexpr UINT kGwOwner = 4;
constexpr UINT kGwChild = 5;
constexpr int kGwlpHInstance = -6;
constexpr int kGwlExStyle = -20;
constexpr int kGclpHIcon = -14;
constexpr int kGclpHIconSm = -34;
constexpr LONG_PTR kWsExToolWindow = 0x80;
constexpr LONG_PTR kWsExAppWindow = 0x40000;

constexpr int kSwHide = 0;
constexpr int kSwShowMaximized = 3;  // also SW_MAXIMIZE
constexpr int kSwShow = 5;
constexpr int kSwMinimize = 6;
constexpr int kSwRestore = 9;

// SetWindowPos: the insert-after pseudo windows and flags.
inline HWND const kHwndTop = nullptr;
inline HWND const kHwndTopmost = reinterpret_cast<HWND>(LONG_PTR{-1});
inline HWND const kHwndNoTopmost = reinterpret_cast<HWND>(LONG_PTR{-2});
constexpr UINT kSwpNoSize = 0x1;
constexpr UINT kSwpNoMove = 0x2;
constexpr UINT kSwpShowWindow = 0x40;

constexpr UINT kWmGetIcon = 0x7F;
constexpr WPARAM kIconSmall = 0;
constexpr WPARAM kIconBig = 1;
constexpr WPARAM kIconSmall2 = 2;
constexpr UINT kSmtoNormal = 0;

constexpr DWORD kMonitorDefaultToNearest = 2;
constexpr DWORD kDwmwaExtendedFrameBounds = 9;
constexpr DWORD kDwmwaCloaked = 14;

// ------------------------------------------------ family

HWND GetDesktopWindow();
HWND GetParent(HWND window);
HWND GetAncestor(HWND window, UINT flags);
HWND GetWindow(HWND window, UINT command);
LONG_PTR GetWindowLongPtrA(HWND window, int index);
ULONG_PTR GetClassLongPtrA(HWND window, int index);

// ------------------------------------------------ enumeration

DWORD GetCurrentThreadId();
// The desktop the thread's windows live on; null when there is none.
HDESK GetThreadDesktop(DWORD threadId);
// The desktop's top-level windows, hidden ones included.
BOOL EnumDesktopWindows(HDESK desktop, WindowEnumProc callback, LPARAM data);
BOOL EnumChildWindows(HWND parent, WindowEnumProc callback, LPARAM data);

// ------------------------------------------------ text and icons

// Copy at most size - 1 characters and a terminator; the count copied, 0 on
// failure.
int GetClassNameA(HWND window, char* buffer, int size);
int GetWindowTextA(HWND window, char* buffer, int size);
// Non-zero when the window answered within `timeout` milliseconds; its
// answer goes to *result.
LRESULT SendMessageTimeoutA(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT flags, UINT timeout,
                            ULONG_PTR* result);

// ------------------------------------------------ stacking and showing

BOOL SetForegroundWindow(HWND window);
BOOL IsIconic(HWND window);
BOOL IsZoomed(HWND window);
BOOL ShowWindow(HWND window, int command);
BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int cx, int cy, UINT flags);

// ------------------------------------------------ placement

// Both need placement->length 44.
BOOL GetWindowPlacement(HWND window, WindowPlacement* placement);
BOOL SetWindowPlacement(HWND window, WindowPlacement const* placement);
HMONITOR MonitorFromRect(Rect const* rect, DWORD flags);
// Needs info->cbSize 40.
BOOL GetMonitorInfoA(HMONITOR monitor, MonitorInfo* info);
// 0 (S_OK) on success; `value` receives `size` bytes.
HRESULT DwmGetWindowAttribute(HWND window, DWORD attribute, void* value, DWORD size);

}  // namespace zk64::platform
