#pragma once

// Windows: family relations, window lists, names and icons, the task
// switcher's rule, stacking, showing and placement.
//
// A window is named by its system handle. Nothing is cached: every call asks
// the system, and a window that does not exist gives the empty string, null,
// false or the zero rectangle. Rectangles are x, y, width, height. Operations
// that fill a container append to it and never clear it. Icons handed out
// here belong to the window or its class: never destroy them. On Linux there
// is no desktop: every operation gives its failure value, and
// GetCurrentDesktopHWNDS is true with nothing added.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"
#include "../numerics/ZKRect.h"
#include "../processes/ZKProcessHandles.h"

// tagRECT, the system's rectangle record (left, top, right, bottom: four
// 32-bit signed members, 16 bytes). On Windows it is taken from the system's
// own <windef.h>, so that it is the very type <windows.h> declares and a
// caller may include <windows.h> before or after this header: a second
// definition of our own would clash with the system's in one order or the
// other, whatever guard it had. NOMINMAX keeps windef.h's min and max macros
// out of C++ code; as <windef.h> is included once, a caller who includes
// <windows.h> afterwards does not get them either. Elsewhere the record is
// declared here with the same layout.
#if defined(_WIN32)
#if defined(NOMINMAX)
#include <windef.h>
#else
#define NOMINMAX
#include <windef.h>
#undef NOMINMAX
#endif
#else
#include <cstdint>
struct tagRECT {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
};
#endif
static_assert(sizeof(tagRECT) == 16);

// Family relations: the system's answer, null when there is none.
ZK_API HWND__* GetDesktopHWND();
// The parent of a child window, or the owner of a top-level one.
ZK_API HWND__* GetParentOrOwnerHWND(HWND__* const window);
// The parent only (the desktop for a top-level window), never the owner.
ZK_API HWND__* GetParentNotOwnerHWND(HWND__* const window);
ZK_API HWND__* GetOwnerHWND(HWND__* const window);
// The child on top of the window's children.
ZK_API HWND__* GetChildHWND(HWND__* const window);
ZK_API HINSTANCE__* HwndToHInstance(HWND__* const window);

// The top-level windows of the calling thread's desktop, hidden ones
// included. Always true.
ZK_API bool GetCurrentDesktopHWNDS(ZKContainer<HWND__*>& out);
// All descendants of `window`; true when the system enumerated them.
ZK_API bool GetChildWindows(HWND__* const window, ZKContainer<HWND__*>& out);

// The calling thread desktop's top-level windows that belong to the process,
// in list order (word 0x408). The handle form is false only for a null
// handle: no window is a success.
ZK_API bool GetProcessHWNDS(unsigned long pid, ZKContainer<HWND__*>& out);
ZK_API bool GetProcessHWNDS(ProcessHandle const& process, ZKContainer<HWND__*>& out);
ZK_API bool GetProcessHWNDS(ZKString const& name, ZKContainer<HWND__*>& out);
// The first of those windows that has no owner, visible or not; null when
// there is none (word 0x8).
ZK_API HWND__* GetProcessOwnerHWND(unsigned long pid);
ZK_API HWND__* GetProcessOwnerHWND(ProcessHandle const& process);
ZK_API HWND__* GetProcessOwnerHWND(ZKString const& name);

// At most 510 bytes of class name and 511 of title.
ZK_API ZKString GetHWNDClassName(HWND__* const window);
ZK_API ZKString GetWindowTitleText(HWND__* const window);
// The window's small, then big icon (each asked with an 800 ms timeout, so a
// hung window costs up to 2.4 s), then its class's big, then small icon;
// null when none is set.
ZK_API HICON__* GetWindowIcon(HWND__* const window);

// Stacking. A refused move is reported to __FOUT__ and then __DOUT__, each
// text ending in two line ends. MoveWindowAlwaysOnTop first moves the window
// to the front, which may report on its own.
ZK_API void MoveWindowToFront(HWND__* const window);
ZK_API void MoveWindowAlwaysOnTop(HWND__* const window);
ZK_API void RemoveWindowFromAlwaysOnTop(HWND__* const window);

// Showing. ShowWindow restores a minimized window before showing it.
ZK_API void ShowWindow(HWND__* const window);
ZK_API void HideWindow(HWND__* const window);
ZK_API void MinimizeWindow(HWND__* const window);
ZK_API void MaximizeWindow(HWND__* const window);
ZK_API void RestoreWindow(HWND__* const window);

// The task switcher's rule: a window with WS_EX_TOOLWINDOW never counts; an
// owned window counts only with WS_EX_APPWINDOW; an unowned one counts.
// Visibility, title and cloaking are not looked at.
ZK_API bool IsAltTabWindow(HWND__* const window);
ZK_API bool IsWindowMinimized(HWND__* const window);
ZK_API bool IsWindowMaximized(HWND__* const window);
// Whether the window's process is a packaged application (opened with word
// 0x8 for the time of the call); false for a null window.
ZK_API bool IsWindowUniversalWindowsPlatform(HWND__* const window);
// Cloaked by the compositor, for whatever reason (a suspended packaged
// application's window, a window on another virtual desktop, ...).
ZK_API bool IsInvisibleWin10BackgroundAppWindow(HWND__* const window);

// The restored position and size, or, for a maximized window, its monitor's
// work area (the restored rectangle when the monitor cannot be told). The
// window's actual outer rectangle is never asked for.
ZK_API __ZKRect<int> GetWindowPosSize(HWND__* const window);
ZK_API int GetWindowPosX(HWND__* const window);
ZK_API int GetWindowPosY(HWND__* const window);
ZK_API int GetWindowWidth(HWND__* const window);
ZK_API int GetWindowHeight(HWND__* const window);
// Sets the restored position and size; true when the system took it. The
// single setters start from GetWindowPosSize (so from the work area on a
// maximized window) and keep the other three values.
ZK_API bool SetWindowPosSize(HWND__* const window, __ZKRect<int> const& rect);
ZK_API bool SetWindowPosX(HWND__* const window, int const& x);
ZK_API bool SetWindowPosY(HWND__* const window, int const& y);
ZK_API bool SetWindowWidth(HWND__* const window, int const& width);
ZK_API bool SetWindowHeight(HWND__* const window, int const& height);
// The frame's bounds in screen coordinates as the compositor draws them
// (not the widths of a border, in spite of the name); all zero when the
// compositor cannot tell.
ZK_API tagRECT GetExtendedWindowsBorder(HWND__* const window);
