// The window operations on real windows (Windows only; under Wine with its
// null graphics driver). The test makes its windows with the system's own
// functions and asks zk64.dll about them through the public interface.
//
// Where Wine answers unlike Windows the test says so and asserts Wine's
// answer; the Windows behaviour is pinned through the fake backend
// (WindowCallsTest.cpp):
//   - DwmGetWindowAttribute is not implemented (E_NOTIMPL): no window is
//     cloaked and the extended frame bounds stay all zero.
//   - GetAncestor(GA_ROOTOWNER) of an owned WS_OVERLAPPED window is the
//     window itself; the owned windows here are WS_POPUP windows, whose root
//     owner is their owner as on Windows.

#include <windows.h>

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

static_assert(std::is_same_v<tagRECT, RECT>, "the library's rectangle is the system's");
static_assert(sizeof(tagRECT) == 16);

namespace {

char const kClass[] = "zk64-window-test";
char const kIconClass[] = "zk64-window-test-icons";

std::vector<HWND> Items(ZKContainer<HWND__*> const& list)
{
    std::vector<HWND> items;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) items.push_back(list[i]);
    return items;
}

bool Contains(std::vector<HWND> const& list, HWND window)
{
    return std::find(list.begin(), list.end(), window) != list.end();
}

// The windows of one scenario, destroyed at its end.
class WindowSystem : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        WNDCLASSA plain{};
        plain.lpfnWndProc = DefWindowProcA;
        plain.hInstance = GetModuleHandleA(nullptr);
        plain.lpszClassName = kClass;
        RegisterClassA(&plain);
        WNDCLASSA icons = plain;
        icons.lpszClassName = kIconClass;
        icons.hIcon = LoadIconA(nullptr, reinterpret_cast<char const*>(IDI_APPLICATION));
        RegisterClassA(&icons);
    }

    void TearDown() override
    {
        for (auto it = windows.rbegin(); it != windows.rend(); ++it) DestroyWindow(*it);
    }

    HWND Make(DWORD style, DWORD extended, HWND owner = nullptr, char const* title = "zk64 test window",
              char const* windowClass = kClass)
    {
        HWND const window = CreateWindowExA(extended, windowClass, title, style, 100, 120, 300, 200, owner, nullptr,
                                            GetModuleHandleA(nullptr), nullptr);
        EXPECT_NE(window, nullptr);
        windows.push_back(window);
        return window;
    }

    std::vector<HWND> windows;
};

}  // namespace

TEST_F(WindowSystem, FamilyListsAndAltTabRule)
{
    HWND const unowned = Make(WS_OVERLAPPEDWINDOW, 0);
    HWND const owned = Make(WS_POPUP, 0, unowned);
    HWND const ownedApp = Make(WS_POPUP, WS_EX_APPWINDOW, unowned);
    HWND const tool = Make(WS_OVERLAPPEDWINDOW, WS_EX_TOOLWINDOW);
    HWND const ownedBoth = Make(WS_POPUP, WS_EX_APPWINDOW | WS_EX_TOOLWINDOW, unowned);
    HWND const child = Make(WS_CHILD, 0, unowned);

    struct Row {
        HWND window;
        bool altTab;
    };
    for (Row const& row : {Row{unowned, true}, Row{owned, false}, Row{ownedApp, true}, Row{tool, false},
                           Row{ownedBoth, false}}) {
        EXPECT_EQ(IsAltTabWindow(row.window), row.altTab) << GetWindowLongPtrA(row.window, GWL_EXSTYLE);
    }

    EXPECT_EQ(GetDesktopHWND(), GetDesktopWindow());
    EXPECT_EQ(GetOwnerHWND(owned), unowned);
    EXPECT_EQ(GetOwnerHWND(unowned), nullptr);
    EXPECT_EQ(GetParentOrOwnerHWND(owned), unowned) << "a top-level window's owner";
    EXPECT_EQ(GetParentOrOwnerHWND(child), unowned) << "a child's parent";
    EXPECT_EQ(GetParentNotOwnerHWND(owned), GetDesktopWindow());
    EXPECT_EQ(GetParentNotOwnerHWND(child), unowned);
    EXPECT_EQ(GetChildHWND(unowned), child);
    EXPECT_EQ(HwndToHInstance(owned), reinterpret_cast<HINSTANCE__*>(GetModuleHandleA(nullptr)));

    ZKContainer<HWND__*> children;
    EXPECT_TRUE(GetChildWindows(unowned, children));
    EXPECT_EQ(Items(children), std::vector<HWND>{child});

    ZKContainer<HWND__*> desktop;
    EXPECT_TRUE(GetCurrentDesktopHWNDS(desktop));
    std::vector<HWND> const listed = Items(desktop);
    for (HWND window : {unowned, owned, ownedApp, tool, ownedBoth}) EXPECT_TRUE(Contains(listed, window));
    EXPECT_FALSE(Contains(listed, child)) << "top-level windows only";

    // This process's windows: ours among them, and only windows of ours.
    ZKContainer<HWND__*> mine;
    EXPECT_TRUE(GetProcessHWNDS(GetCurrentProcessID(), mine));
    EXPECT_TRUE(GetProcessHWNDS(GetCurrentProcessHandle(), mine));
    std::vector<HWND> const own = Items(mine);
    EXPECT_EQ(own.size() % 2, 0u);
    for (HWND window : {unowned, owned, ownedApp, tool, ownedBoth}) {
        EXPECT_EQ(std::count(own.begin(), own.end(), window), 2) << "listed once per call";
    }
    for (HWND window : own) {
        DWORD pid = 0;
        GetWindowThreadProcessId(window, &pid);
        EXPECT_EQ(pid, GetCurrentProcessId());
    }
    HWND const first = GetProcessOwnerHWND(GetCurrentProcessID());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(GetWindow(first, GW_OWNER), nullptr);
    EXPECT_EQ(first, *std::find_if(own.begin(), own.end(), [](HWND w) { return GetWindow(w, GW_OWNER) == nullptr; }));
}

TEST_F(WindowSystem, NamesTitlesAndIcons)
{
    std::string const longTitle(600, 't');
    HWND const window = Make(WS_OVERLAPPEDWINDOW, 0, nullptr, "Window title");
    HWND const titled = Make(WS_OVERLAPPEDWINDOW, 0, nullptr, longTitle.c_str());
    HWND const classIcon = Make(WS_OVERLAPPEDWINDOW, 0, nullptr, "", kIconClass);

    EXPECT_TRUE(GetHWNDClassName(window) == kClass);
    EXPECT_TRUE(GetHWNDClassName(classIcon) == kIconClass);
    EXPECT_TRUE(GetWindowTitleText(window) == "Window title");
    EXPECT_TRUE(GetWindowTitleText(titled) == ZKString(longTitle.substr(0, 511).c_str())) << "cut at 511";
    EXPECT_TRUE(GetWindowTitleText(classIcon) == "");

    EXPECT_EQ(GetWindowIcon(window), nullptr) << "no icon anywhere";
    EXPECT_EQ(GetWindowIcon(classIcon), reinterpret_cast<HICON__*>(GetClassLongPtrA(classIcon, GCLP_HICON)));
    EXPECT_NE(GetWindowIcon(classIcon), nullptr);

    BYTE andMask[32 * 4];
    BYTE xorMask[32 * 4];
    std::fill(std::begin(andMask), std::end(andMask), BYTE{0xFF});
    std::fill(std::begin(xorMask), std::end(xorMask), BYTE{0});
    HICON const big = CreateIcon(GetModuleHandleA(nullptr), 32, 32, 1, 1, andMask, xorMask);
    HICON const small = CreateIcon(GetModuleHandleA(nullptr), 32, 32, 1, 1, andMask, xorMask);
    ASSERT_TRUE(big != nullptr && small != nullptr);
    SendMessageA(window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(big));
    EXPECT_NE(GetWindowIcon(window), nullptr) << "the big icon, or one the system makes from it";
    SendMessageA(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small));
    EXPECT_EQ(GetWindowIcon(window), small) << "the small icon comes first";
    DestroyWindow(window);
    windows.erase(windows.begin());
    DestroyIcon(big);
    DestroyIcon(small);
}

TEST_F(WindowSystem, PlacementShowingAndStacking)
{
    HWND const window = Make(WS_OVERLAPPEDWINDOW, 0);
    ShowWindow(window);
    EXPECT_TRUE(IsWindowVisible(window));

    EXPECT_TRUE(SetWindowPosSize(window, {100, 120, 300, 200}));
    EXPECT_TRUE(GetWindowPosSize(window) == __ZKRect<int>(100, 120, 300, 200));
    struct Row {
        bool (*set)(HWND__*, int const&);
        int value;
        __ZKRect<int> expected;
    };
    Row const table[] = {
        {SetWindowPosX, 50, {50, 120, 300, 200}},
        {SetWindowPosY, 60, {50, 60, 300, 200}},
        {SetWindowWidth, 250, {50, 60, 250, 200}},
        {SetWindowHeight, 150, {50, 60, 250, 150}},
    };
    for (Row const& row : table) {
        EXPECT_TRUE(row.set(window, row.value));
        EXPECT_TRUE(GetWindowPosSize(window) == row.expected) << row.value;
    }
    EXPECT_EQ(GetWindowPosX(window), 50);
    EXPECT_EQ(GetWindowPosY(window), 60);
    EXPECT_EQ(GetWindowWidth(window), 250);
    EXPECT_EQ(GetWindowHeight(window), 150);

    MinimizeWindow(window);
    EXPECT_TRUE(IsWindowMinimized(window));
    EXPECT_TRUE(GetWindowPosSize(window) == __ZKRect<int>(50, 60, 250, 150)) << "the restored position";
    ShowWindow(window);
    EXPECT_FALSE(IsWindowMinimized(window)) << "restored before being shown";

    MaximizeWindow(window);
    EXPECT_TRUE(IsWindowMaximized(window));
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    ASSERT_TRUE(GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor));
    RECT const& work = monitor.rcWork;
    EXPECT_TRUE(GetWindowPosSize(window) ==
                __ZKRect<int>(work.left, work.top, work.right - work.left, work.bottom - work.top))
        << "a maximized window reports the work area";
    RestoreWindow(window);
    EXPECT_FALSE(IsWindowMaximized(window));
    EXPECT_TRUE(GetWindowPosSize(window) == __ZKRect<int>(50, 60, 250, 150));

    MinimizeWindow(window);
    MoveWindowToFront(window);
    EXPECT_FALSE(IsWindowMinimized(window)) << "moving to the front restores";
    MoveWindowAlwaysOnTop(window);
    EXPECT_NE(GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
    RemoveWindowFromAlwaysOnTop(window);
    EXPECT_EQ(GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);

    HideWindow(window);
    EXPECT_FALSE(IsWindowVisible(window));

    // Wine has no compositor attributes (E_NOTIMPL): never cloaked, and the
    // frame bounds stay the zero rectangle.
    EXPECT_FALSE(IsInvisibleWin10BackgroundAppWindow(window));
    EXPECT_FALSE(IsWindowUniversalWindowsPlatform(window)) << "this test program has no package";
    tagRECT const frame = GetExtendedWindowsBorder(window);
    EXPECT_EQ(frame.left | frame.top | frame.right | frame.bottom, 0);
}
