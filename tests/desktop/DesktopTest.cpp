// Message names, and the window operations on a window that does not exist,
// through the library as a caller links it: natively on Linux (no desktop at
// all), as zk64.dll under Wine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <initializer_list>
#include <string>

TEST(MessageNames, NamesTheFirstRowAndNumbersTheRest)
{
    // The first row of a number names it (WM_KEYDOWN before WM_KEYFIRST), rows behind another of the same
    // number are found all the same (WM_MOUSEWHEEL), and there is no WM_USER row.
    std::string names;
    for (unsigned long number : {0x0ul, 0x4ul, 0x100ul, 0x20Aul, 0x20Eul, 0x400ul, 0x4C8ul, 0x4DEul, 0x1000ul, 0x8000ul,
                                 0xCCCDul, 0xCCCEul, 0xFFFFFFFFul})
        names += std::string(GetWindowsMessageIDStr(number).GetString()) + "|";
    EXPECT_EQ(names, "WM_NULL|Unknown Windows message: 4|WM_KEYDOWN|WM_MOUSEWHEEL|WM_MOUSELAST|"
                     "Unknown Windows message: 1024|CDM_LAST|EM_SETSCROLLPOS|LVM_FIRST|WM_APP|WM_RASDIALEVENT|"
                     "Unknown Windows message: 52430|Unknown Windows message: -1|");
}

TEST(Windows, AWindowThatDoesNotExistGivesFailureValues)
{
    HWND__* const none = reinterpret_cast<HWND__*>(0x12345678ull);
    ZKContainer<HWND__*> out;
    EXPECT_FALSE(GetChildWindows(none, out) || GetProcessHWNDS(ProcessHandle{}, out) || GetProcessHWNDS(0ul, out) ||
                 GetProcessHWNDS(ZKString("no such process.exe"), out) || IsWindowMinimized(none) ||
                 IsWindowMaximized(none) || IsInvisibleWin10BackgroundAppWindow(none) ||
                 SetWindowPosSize(none, {1, 2, 3, 4}) || SetWindowPosX(none, 1) || SetWindowHeight(none, 1));
    for (void const* got : std::initializer_list<void const*>{
             GetParentOrOwnerHWND(none), GetParentNotOwnerHWND(none), GetOwnerHWND(none), GetChildHWND(none),
             HwndToHInstance(none), GetWindowIcon(none), GetProcessOwnerHWND(ProcessHandle{}), GetProcessOwnerHWND(0ul),
             GetProcessOwnerHWND(ZKString("no such process.exe"))})
        EXPECT_EQ(got, nullptr);
    tagRECT const border = GetExtendedWindowsBorder(none);
    EXPECT_TRUE(out.IsContainerEmpty() && GetHWNDClassName(none) == "" && GetWindowTitleText(none) == "" &&
                GetWindowPosSize(none) == __ZKRect<int>(0, 0, 0, 0) &&
                (border.left | border.top | border.right | border.bottom) == 0);
#if !defined(_WIN32)
    SendMouseMoveMsg(1, -1);
    EXPECT_FALSE(IsAltTabWindow(none) || RegisterRawInput() || RegisterSystemWideMessageID("ZK64.LinuxMessage") != 0);
    EXPECT_TRUE(GetDesktopHWND() == nullptr && GetCurrentDesktopHWNDS(out) &&
                GetProcessHWNDS(GetCurrentProcessID(), out) && out.IsContainerEmpty())
        << "no desktop, no window";
    EXPECT_TRUE(GetTaskbarInterface() == nullptr && GetCustomJumpListInterface() == nullptr &&
                GetUserNotificationInterface() == nullptr);
#endif
}
