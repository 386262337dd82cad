// The window, input and shell operations on real windows and objects under
// Wine (null graphics driver), checked through the system's own functions.
// <windows.h> comes before the library here, and <shobjidl.h> after it: the
// library's declarations of the system rectangle and of the shell interfaces
// must agree with the system's definitions on either side.
//
// Wine answers unlike Windows in three places. DwmGetWindowAttribute is not
// implemented (never cloaked, no frame bounds) and the root owner of an owned
// WS_OVERLAPPED window is the window itself (the owned windows here are
// WS_POPUP windows): both are pinned through the fake backend instead. The
// destination list's methods answer E_NOTIMPL, and there is no user
// notification class: the shell test says so.

#include <windows.h>

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <objbase.h>
#include <shobjidl.h>

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

static_assert(std::is_same_v<tagRECT, RECT>);

namespace {

std::vector<HWND> Items(ZKContainer<HWND__*> const& list)
{
    std::vector<HWND> items;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) items.push_back(list[i]);
    return items;
}

// A window of the given styles, of a class with `icon` (or none); the process's exit destroys them.
HWND Make(DWORD style, DWORD extended, HWND owner = nullptr, char const* title = "", HICON icon = nullptr)
{
    WNDCLASSA kind{0,    DefWindowProcA, 0,       0,       GetModuleHandleA(nullptr),
                   icon, nullptr,        nullptr, nullptr, icon ? "zk64-icon" : "zk64-plain"};
    RegisterClassA(&kind);
    HWND const window = CreateWindowExA(extended, kind.lpszClassName, title, style, 100, 120, 300, 200, owner, nullptr,
                                        GetModuleHandleA(nullptr), nullptr);
    EXPECT_NE(window, nullptr);
    return window;
}

}  // namespace

TEST(WindowSystem, RealWindowsThroughEveryOperation)
{
    HWND const unowned = Make(WS_OVERLAPPEDWINDOW, 0, nullptr, std::string(600, 't').c_str());
    HWND const owned = Make(WS_POPUP, 0, unowned);
    HWND const ownedApp = Make(WS_POPUP, WS_EX_APPWINDOW, unowned);
    HWND const tool = Make(WS_OVERLAPPEDWINDOW, WS_EX_TOOLWINDOW, nullptr, "",
                           LoadIconA(nullptr, reinterpret_cast<char const*>(IDI_APPLICATION)));
    HWND const child = Make(WS_CHILD, 0, unowned);
    EXPECT_EQ((std::vector<bool>{IsAltTabWindow(unowned), IsAltTabWindow(owned), IsAltTabWindow(ownedApp),
                                 IsAltTabWindow(tool)}),
              (std::vector<bool>{true, false, true, false}));
    EXPECT_EQ((std::vector<void const*>{GetDesktopHWND(), GetOwnerHWND(owned), GetParentOrOwnerHWND(child),
                                        GetParentNotOwnerHWND(owned), GetChildHWND(unowned), HwndToHInstance(owned),
                                        GetWindowIcon(unowned)}),
              (std::vector<void const*>{GetDesktopWindow(), unowned, unowned, GetDesktopWindow(), child,
                                        GetModuleHandleA(nullptr), nullptr}));
    ZKContainer<HWND__*> children, desktop, mine;
    EXPECT_TRUE(GetChildWindows(unowned, children) && GetCurrentDesktopHWNDS(desktop) &&
                GetProcessHWNDS(GetCurrentProcessID(), mine) && GetProcessHWNDS(GetCurrentProcessHandle(), mine));
    EXPECT_EQ(Items(children), std::vector<HWND>{child});
    std::vector<HWND> const listed = Items(desktop), own = Items(mine);
    for (HWND window : {unowned, owned, tool, child}) {
        EXPECT_EQ(std::count(listed.begin(), listed.end(), window), window != child) << "top-level windows only";
        EXPECT_EQ(std::count(own.begin(), own.end(), window), 2 * (window != child)) << "once per call";
    }
    EXPECT_EQ(GetProcessOwnerHWND(GetCurrentProcessID()),
              *std::find_if(own.begin(), own.end(), [](HWND w) { return GetWindow(w, GW_OWNER) == nullptr; }));
    EXPECT_TRUE(GetHWNDClassName(unowned) == "zk64-plain" &&
                GetWindowTitleText(unowned) == ZKString(std::string(511, 't').c_str()));
    EXPECT_EQ(GetWindowIcon(tool), reinterpret_cast<HICON__*>(GetClassLongPtrA(tool, GCLP_HICON)));

    HWND const window = Make(WS_OVERLAPPEDWINDOW, 0);  // of its own: no owned or child windows
    MinimizeWindow(window);
    ShowWindow(window);
    EXPECT_TRUE(IsWindowVisible(window) && !IsWindowMinimized(window)) << "restored before being shown";
    EXPECT_TRUE(SetWindowPosX(window, 50) && SetWindowPosY(window, 60) && SetWindowWidth(window, 250) &&
                SetWindowHeight(window, 150));
    MaximizeWindow(window);
    MONITORINFO monitor{sizeof monitor, {}, {}, 0};
    GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    RECT const& work = monitor.rcWork;
    EXPECT_TRUE(IsWindowMaximized(window) &&
                GetWindowPosSize(window) ==
                    __ZKRect<int>(work.left, work.top, work.right - work.left, work.bottom - work.top));
    RestoreWindow(window);
    MinimizeWindow(window);
    EXPECT_TRUE(IsWindowMinimized(window) && GetWindowPosSize(window) == __ZKRect<int>(50, 60, 250, 150));
    MoveWindowAlwaysOnTop(window);
    EXPECT_TRUE(!IsWindowMinimized(window) && (GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0);
    RemoveWindowFromAlwaysOnTop(window);
    HideWindow(window);
    EXPECT_FALSE(IsWindowVisible(window) || (GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0 ||
                 IsWindowUniversalWindowsPlatform(window) || IsInvisibleWin10BackgroundAppWindow(window));
}

TEST(WindowsInput, MovesButtonsRawInputAndRegisteredMessages)
{
    ASSERT_TRUE(GetDesktopWindow() != nullptr && SetCursorPos(200, 150));  // cursor moves before the desktop are lost
    SendMouseMoveMsg(3, 2);
    SendMouseMoveMsg(-4, -1);
    SendMouseRightDownMsg(40, 40);
    EXPECT_NE(GetAsyncKeyState(VK_RBUTTON) & 0x8000, 0);
    SendMouseRightUpMsg(40, 40);
    SendMouseWheelForwardMsg(40, 40);
    POINT point{};
    EXPECT_TRUE(GetCursorPos(&point) && (GetAsyncKeyState(VK_RBUTTON) & 0x8000) == 0);
    EXPECT_EQ(point.x * 1000 + point.y, 199151) << "relative moves, exact; buttons and wheel do not move";

    RAWINPUTDEVICE devices[4] = {};
    UINT count = 4;
    ASSERT_TRUE(RegisterRawInput() && GetRegisteredRawInputDevices(devices, &count, sizeof(RAWINPUTDEVICE)) == 1);
    EXPECT_TRUE(devices[0].usUsagePage == 1 && devices[0].usUsage == 6 && devices[0].dwFlags == RIDEV_NOLEGACY);
    unsigned int const id = RegisterSystemWideMessageID("ZK64.Test.Broadcast");
    EXPECT_TRUE(id >= 0xC000u && id <= 0xFFFFu && RegisterWindowMessageA("zk64.TEST.broadcast") == id &&
                RegisterSystemWideMessageID("ZK64.Test.Other") != id);
}

// The library initialises the component system of a thread that has none,
// once per process, and each last Release undoes that. (Every test runs in a
// process of its own.)
TEST(WindowsShell, ObjectsLiveInTheLibrarysInitialisation)
{
    ITaskbarList* const taskbar = GetTaskbarInterface();
    ASSERT_NE(taskbar, nullptr);
    EXPECT_TRUE(GetTaskbarInterface() == taskbar && taskbar->HrInit() == S_OK);
    ASSERT_NE(GetCustomJumpListInterface(), nullptr);
    bool const wine = GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
    EXPECT_EQ(GetUserNotificationInterface() != nullptr, !wine);
    EXPECT_EQ(CoInitialize(nullptr), S_FALSE) << "the library's initialisation holds";
    CoUninitialize();
    ReleaseTaskbarInterface();
    ReleaseCustomJumpListInterface();
    ReleaseUserNotificationInterface();
    EXPECT_EQ(CoInitialize(nullptr), S_OK) << "the last Release undid it";
    CoUninitialize();
}
