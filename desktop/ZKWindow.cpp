#include "ZKWindow.h"

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <ostream>
#include <sstream>

#include "../diagnostics/ZKDebug.h"
#include "../platform/Desktop.h"
#include "../platform/Processes.h"
#include "../processes/ZKProcessPackages.h"
#include "../processes/detail/ProcessAccess.h"

namespace platform = zk64::platform;

namespace {

// ------------------------------------------------ helpers

// The one enumeration callback of every window list: appends the window to
// the container passed as data and goes on.
platform::BOOL AppendWindow(platform::HWND window, platform::LPARAM data)
{
    reinterpret_cast<ZKContainer<HWND__*>*>(data)->PushBack(window);
    return 1;
}

platform::LPARAM ListData(ZKContainer<HWND__*>& out) { return reinterpret_cast<platform::LPARAM>(&out); }

// The text a Get*A call leaves in a zeroed 512-byte buffer, asked with
// `limit`; read no further than the buffer, whatever the system wrote.
template <class Get>
ZKString BufferText(Get get, HWND__* window, int limit)
{
    char buffer[512] = {};
    get(window, buffer, limit);
    void const* end = std::memchr(buffer, 0, sizeof buffer);
    auto const length = end == nullptr ? sizeof buffer : static_cast<std::size_t>(static_cast<char const*>(end) - buffer);
    return ZKString(buffer, static_cast<int>(length));
}

// Reports a refused stacking move: the text and a line end go to the log
// buffer, then the same to immediate output.
void ReportRefusedMove(char const* text)
{
    for (void (*sink)(std::ostream&) : {static_cast<void (*)(std::ostream&)>(__FOUT__),
                                        static_cast<void (*)(std::ostream&)>(__DOUT__)}) {
        std::stringstream report;
        report << text << std::endl;
        sink(report);
    }
}

void MoveInStack(HWND__* window, platform::HWND insertAfter, platform::UINT flags, char const* failure)
{
    if (platform::SetWindowPos(window, insertAfter, 0, 0, 0, 0, flags) == 0) ReportRefusedMove(failure);
}

void RestoreIfMinimized(HWND__* window)
{
    if (platform::IsIconic(window) != 0) platform::ShowWindow(window, platform::kSwRestore);
}

// a + b and a - b with the system's 32-bit wrap-around instead of overflow.
std::int32_t Sum(long long a, long long b) { return static_cast<std::int32_t>(a + b); }
std::int32_t Difference(long long a, long long b) { return static_cast<std::int32_t>(a - b); }

// A record with only its length set: the members the call does not use are
// zero rather than undefined.
platform::WindowPlacement EmptyPlacement()
{
    platform::WindowPlacement placement{};
    placement.length = sizeof placement;
    return placement;
}

}  // namespace

// ------------------------------------------------ family

HWND__* GetDesktopHWND() { return platform::GetDesktopWindow(); }
HWND__* GetParentOrOwnerHWND(HWND__* const window) { return platform::GetParent(window); }
HWND__* GetParentNotOwnerHWND(HWND__* const window) { return platform::GetAncestor(window, platform::kGaParent); }
HWND__* GetOwnerHWND(HWND__* const window) { return platform::GetWindow(window, platform::kGwOwner); }
HWND__* GetChildHWND(HWND__* const window) { return platform::GetWindow(window, platform::kGwChild); }

HINSTANCE__* HwndToHInstance(HWND__* const window)
{
    return reinterpret_cast<HINSTANCE__*>(platform::GetWindowLongPtrA(window, platform::kGwlpHInstance));
}

// ------------------------------------------------ lists

bool GetCurrentDesktopHWNDS(ZKContainer<HWND__*>& out)
{
    platform::EnumDesktopWindows(platform::GetThreadDesktop(platform::GetCurrentThreadId()), AppendWindow,
                                 ListData(out));
    return true;
}

bool GetChildWindows(HWND__* const window, ZKContainer<HWND__*>& out)
{
    return platform::EnumChildWindows(window, AppendWindow, ListData(out)) != 0;
}

bool GetProcessHWNDS(ProcessHandle const& process, ZKContainer<HWND__*>& out)
{
    if (process.handle == nullptr) return false;
    ZKContainer<HWND__*> windows;
    GetCurrentDesktopHWNDS(windows);
    for (unsigned long long i = 0; i < windows.GetItemCount(); ++i) {
        HWND__* const window = windows[i];
        platform::DWORD const processId = platform::GetProcessId(process.handle);
        platform::DWORD windowProcessId = 0;
        platform::GetWindowThreadProcessId(window, &windowProcessId);
        if (processId == windowProcessId) out.PushBack(window);
    }
    return true;
}

HWND__* GetProcessOwnerHWND(ProcessHandle const& process)
{
    ZKContainer<HWND__*> windows;
    GetProcessHWNDS(process, windows);
    for (unsigned long long i = 0; i < windows.GetItemCount(); ++i) {
        if (platform::GetWindow(windows[i], platform::kGwOwner) == nullptr) return windows[i];
    }
    return nullptr;
}

ZK_PROCESS_ID_AND_NAME_FORMS(bool, GetProcessHWNDS, zk64::detail::kWordQueryAndRead, false,
                             (, ZKContainer<HWND__*>& out), (, out))
ZK_PROCESS_ID_AND_NAME_FORMS(HWND__*, GetProcessOwnerHWND, zk64::detail::kWordQuery, nullptr, (), ())

// ------------------------------------------------ text and icon

// The class name's limit is one below the title's: a class name is cut at
// 510 bytes, a title at 511.
ZKString GetHWNDClassName(HWND__* const window) { return BufferText(platform::GetClassNameA, window, 511); }
ZKString GetWindowTitleText(HWND__* const window) { return BufferText(platform::GetWindowTextA, window, 512); }

HICON__* GetWindowIcon(HWND__* const window)
{
    constexpr platform::UINT kTimeoutMilliseconds = 800;
    platform::ULONG_PTR icon = 0;
    for (platform::WPARAM kind : {platform::kIconSmall2, platform::kIconSmall, platform::kIconBig}) {
        platform::SendMessageTimeoutA(window, platform::kWmGetIcon, kind, 0, platform::kSmtoNormal,
                                      kTimeoutMilliseconds, &icon);
        if (icon != 0) return reinterpret_cast<HICON__*>(icon);
    }
    for (int index : {platform::kGclpHIcon, platform::kGclpHIconSm}) {
        icon = platform::GetClassLongPtrA(window, index);
        if (icon != 0) return reinterpret_cast<HICON__*>(icon);
    }
    return nullptr;
}

// ------------------------------------------------ stacking and showing

void MoveWindowToFront(HWND__* const window)
{
    platform::SetForegroundWindow(window);
    RestoreIfMinimized(window);
    MoveInStack(window, platform::kHwndTop, platform::kSwpNoSize | platform::kSwpNoMove,
                "MoveWindowToFront-SetWindowPos() failed\n");
}

void MoveWindowAlwaysOnTop(HWND__* const window)
{
    MoveWindowToFront(window);
    MoveInStack(window, platform::kHwndTopmost, platform::kSwpNoSize | platform::kSwpNoMove | platform::kSwpShowWindow,
                "MoveWindowAlwaysOnTop() failed\n");
}

void RemoveWindowFromAlwaysOnTop(HWND__* const window)
{
    MoveInStack(window, platform::kHwndNoTopmost, platform::kSwpNoSize | platform::kSwpNoMove,
                "RemoveWindowFromAlwaysOnTop() failed\n");
}

void ShowWindow(HWND__* const window)
{
    RestoreIfMinimized(window);
    platform::ShowWindow(window, platform::kSwShow);
}

void HideWindow(HWND__* const window) { platform::ShowWindow(window, platform::kSwHide); }
void MinimizeWindow(HWND__* const window) { platform::ShowWindow(window, platform::kSwMinimize); }
void MaximizeWindow(HWND__* const window) { platform::ShowWindow(window, platform::kSwShowMaximized); }
void RestoreWindow(HWND__* const window) { platform::ShowWindow(window, platform::kSwRestore); }

// ------------------------------------------------ classification

bool IsAltTabWindow(HWND__* const window)
{
    platform::LONG_PTR const style = platform::GetWindowLongPtrA(window, platform::kGwlExStyle);
    if ((style & platform::kWsExAppWindow) == 0 && platform::GetAncestor(window, platform::kGaRootOwner) != window) {
        return false;
    }
    return (style & platform::kWsExToolWindow) == 0;
}

bool IsWindowMinimized(HWND__* const window) { return platform::IsIconic(window) != 0; }
bool IsWindowMaximized(HWND__* const window) { return platform::IsZoomed(window) != 0; }

bool IsWindowUniversalWindowsPlatform(HWND__* const window)
{
    if (window == nullptr) return false;
    platform::DWORD pid = 0;
    platform::GetWindowThreadProcessId(window, &pid);
    return zk64::detail::WithProcess(static_cast<unsigned long>(pid), zk64::detail::kWordQuery, false,
                                     [](ProcessHandle process) { return IsProcessUniversalWindowsPlatform(process); });
}

bool IsInvisibleWin10BackgroundAppWindow(HWND__* const window)
{
    std::uint32_t cloaked = 0;
    return platform::DwmGetWindowAttribute(window, platform::kDwmwaCloaked, &cloaked, sizeof cloaked) == 0 &&
           cloaked != 0;
}

// ------------------------------------------------ placement

__ZKRect<int> GetWindowPosSize(HWND__* const window)
{
    platform::WindowPlacement placement = EmptyPlacement();
    platform::GetWindowPlacement(window, &placement);
    platform::Rect area = placement.rcNormalPosition;
    if (placement.showCmd == platform::kSwShowMaximized) {
        platform::HMONITOR const monitor =
            platform::MonitorFromRect(&placement.rcNormalPosition, platform::kMonitorDefaultToNearest);
        platform::MonitorInfo info{};
        info.cbSize = sizeof info;
        if (monitor != nullptr && platform::GetMonitorInfoA(monitor, &info) != 0) area = info.rcWork;
    }
    return __ZKRect<int>(area.left, area.top, Difference(area.right, area.left), Difference(area.bottom, area.top));
}

int GetWindowPosX(HWND__* const window) { return GetWindowPosSize(window).x; }
int GetWindowPosY(HWND__* const window) { return GetWindowPosSize(window).y; }
int GetWindowWidth(HWND__* const window) { return GetWindowPosSize(window).width; }
int GetWindowHeight(HWND__* const window) { return GetWindowPosSize(window).height; }

bool SetWindowPosSize(HWND__* const window, __ZKRect<int> const& rect)
{
    platform::WindowPlacement placement = EmptyPlacement();
    placement.rcNormalPosition = {rect.x, rect.y, Sum(rect.x, rect.width), Sum(rect.y, rect.height)};
    return platform::SetWindowPlacement(window, &placement) != 0;
}

namespace {

// The single setters: the current placement with one member replaced.
bool SetOne(HWND__* window, int __ZKRect<int>::*member, int value)
{
    __ZKRect<int> rect = GetWindowPosSize(window);
    rect.*member = value;
    return SetWindowPosSize(window, rect);
}

}  // namespace

bool SetWindowPosX(HWND__* const window, int const& x) { return SetOne(window, &__ZKRect<int>::x, x); }
bool SetWindowPosY(HWND__* const window, int const& y) { return SetOne(window, &__ZKRect<int>::y, y); }
bool SetWindowWidth(HWND__* const window, int const& width) { return SetOne(window, &__ZKRect<int>::width, width); }
bool SetWindowHeight(HWND__* const window, int const& height)
{
    return SetOne(window, &__ZKRect<int>::height, height);
}

tagRECT GetExtendedWindowsBorder(HWND__* const window)
{
    tagRECT frame{};
    platform::DwmGetWindowAttribute(window, platform::kDwmwaExtendedFrameBounds, &frame, sizeof frame);
    return frame;
}
