// Message names, and the window operations on a window that does not exist,
// through the library as a caller links it: natively on Linux (no desktop at
// all), as zk64.dll under Wine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstdint>
#include <string>

TEST(MessageNames, NamesTheFirstRowAndNumbersTheRest)
{
    std::pair<unsigned long, char const*> const table[] = {
        {0x0000, "WM_NULL"},
        {0x0004, "Unknown Windows message: 4"},
        {0x0100, "WM_KEYDOWN"},     // before WM_KEYFIRST, of the same number
        {0x020A, "WM_MOUSEWHEEL"},  // behind WM_MOUSELAST's row, found all the same
        {0x020E, "WM_MOUSELAST"},
        {0x0400, "Unknown Windows message: 1024"},  // no WM_USER row
        {0x04C8, "CDM_LAST"},
        {0x04DE, "EM_SETSCROLLPOS"},
        {0x1000, "LVM_FIRST"},
        {0x8000, "WM_APP"},
        {0xCCCD, "WM_RASDIALEVENT"},
        {0xCCCE, "Unknown Windows message: 52430"},
        {0xFFFFFFFF, "Unknown Windows message: -1"},
    };
    for (auto const& [number, name] : table) EXPECT_EQ(std::string(GetWindowsMessageIDStr(number).GetString()), name);
}

TEST(Windows, AWindowThatDoesNotExistGivesFailureValues)
{
    HWND__* const none = reinterpret_cast<HWND__*>(std::uintptr_t{0x12345678});
    ZKContainer<HWND__*> out;
    EXPECT_FALSE(GetChildWindows(none, out) || GetProcessHWNDS(ProcessHandle{}, out) || GetProcessHWNDS(0ul, out) ||
                 GetProcessHWNDS(ZKString("no such process.exe"), out));
    EXPECT_EQ(GetProcessOwnerHWND(ZKString("no such process.exe")), nullptr);
    for (HWND__* got :
         {GetParentOrOwnerHWND(none), GetParentNotOwnerHWND(none), GetOwnerHWND(none), GetChildHWND(none),
          reinterpret_cast<HWND__*>(HwndToHInstance(none)), reinterpret_cast<HWND__*>(GetWindowIcon(none)),
          GetProcessOwnerHWND(ProcessHandle{}), GetProcessOwnerHWND(0ul)})
        EXPECT_EQ(got, nullptr);
    EXPECT_TRUE(out.IsContainerEmpty() && GetHWNDClassName(none) == "" && GetWindowTitleText(none) == "");
    EXPECT_FALSE(IsWindowMinimized(none) || IsWindowMaximized(none) || IsInvisibleWin10BackgroundAppWindow(none));
    EXPECT_TRUE(GetWindowPosSize(none) == __ZKRect<int>(0, 0, 0, 0));
    EXPECT_FALSE(SetWindowPosSize(none, {1, 2, 3, 4}) || SetWindowPosX(none, 1) || SetWindowHeight(none, 1));
    tagRECT const border = GetExtendedWindowsBorder(none);
    EXPECT_EQ(border.left | border.top | border.right | border.bottom, 0);
#if !defined(_WIN32)
    EXPECT_FALSE(IsAltTabWindow(none) || RegisterRawInput());
    EXPECT_TRUE(GetDesktopHWND() == nullptr && GetCurrentDesktopHWNDS(out) &&
                GetProcessHWNDS(GetCurrentProcessID(), out));
    EXPECT_TRUE(out.IsContainerEmpty()) << "no desktop, no window";
    SendMouseMoveMsg(1, -1);
    EXPECT_EQ(RegisterSystemWideMessageID("ZK64.LinuxMessage"), 0u);
    EXPECT_TRUE(GetTaskbarInterface() == nullptr && GetCustomJumpListInterface() == nullptr &&
                GetUserNotificationInterface() == nullptr);
    ReleaseTaskbarInterface();
#endif
}
