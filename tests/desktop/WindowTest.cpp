// The window operations on a window that does not exist, against the real
// system: every one gives its failure value, and the stacking moves report
// their refusal to both sinks. On Linux there is no desktop at all.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstdint>
#include <string>

#include "diagnostics/LogTestSupport.h"

namespace {

// A handle value of no window.
HWND__* const kNoWindow = reinterpret_cast<HWND__*>(std::uintptr_t{0x12345678});

bool IsZero(__ZKRect<int> const& rect) { return rect == __ZKRect<int>(0, 0, 0, 0); }

}  // namespace

TEST(Windows, AWindowThatDoesNotExistGivesFailureValues)
{
    EXPECT_EQ(GetParentOrOwnerHWND(kNoWindow), nullptr);
    EXPECT_EQ(GetParentNotOwnerHWND(kNoWindow), nullptr);
    EXPECT_EQ(GetOwnerHWND(kNoWindow), nullptr);
    EXPECT_EQ(GetChildHWND(kNoWindow), nullptr);
    EXPECT_EQ(HwndToHInstance(kNoWindow), nullptr);
    ZKContainer<HWND__*> children;
    EXPECT_FALSE(GetChildWindows(kNoWindow, children));
    EXPECT_TRUE(children.IsContainerEmpty());

    EXPECT_TRUE(GetHWNDClassName(kNoWindow) == "");
    EXPECT_TRUE(GetWindowTitleText(kNoWindow) == "");
    EXPECT_EQ(GetWindowIcon(kNoWindow), nullptr);

#if defined(_WIN32)
    // Wine answers GetAncestor(GA_ROOTOWNER) of a window that does not exist
    // with the handle itself (Windows: null), so the rule sees an unowned
    // window without styles there. Windows' answer, false, is pinned through
    // the fake backend (WindowCalls.AltTabRuleOnExtendedStyleAndRootOwner).
    EXPECT_TRUE(IsAltTabWindow(kNoWindow));
#else
    EXPECT_FALSE(IsAltTabWindow(kNoWindow));
#endif
    EXPECT_FALSE(IsWindowMinimized(kNoWindow));
    EXPECT_FALSE(IsWindowMaximized(kNoWindow));
    EXPECT_FALSE(IsInvisibleWin10BackgroundAppWindow(kNoWindow));

    EXPECT_TRUE(IsZero(GetWindowPosSize(kNoWindow)));
    EXPECT_EQ(GetWindowPosX(kNoWindow) | GetWindowPosY(kNoWindow) | GetWindowWidth(kNoWindow) |
                  GetWindowHeight(kNoWindow),
              0);
    EXPECT_FALSE(SetWindowPosSize(kNoWindow, {1, 2, 3, 4}));
    EXPECT_FALSE(SetWindowPosX(kNoWindow, 1));
    EXPECT_FALSE(SetWindowPosY(kNoWindow, 1));
    EXPECT_FALSE(SetWindowWidth(kNoWindow, 1));
    EXPECT_FALSE(SetWindowHeight(kNoWindow, 1));
    tagRECT const border = GetExtendedWindowsBorder(kNoWindow);
    EXPECT_EQ(border.left | border.top | border.right | border.bottom, 0);
    static_assert(sizeof(tagRECT) == 16);

    // Nothing to do, nothing to fail.
    HideWindow(kNoWindow);
    MinimizeWindow(kNoWindow);
    MaximizeWindow(kNoWindow);
    RestoreWindow(kNoWindow);
    ShowWindow(kNoWindow);
}

TEST(Windows, ProcessFormsFailForNoProcess)
{
    ZKContainer<HWND__*> out;
    EXPECT_FALSE(GetProcessHWNDS(ProcessHandle{}, out));
    EXPECT_FALSE(GetProcessHWNDS(0ul, out));
    EXPECT_FALSE(GetProcessHWNDS(ZKString("no such process.exe"), out));
    EXPECT_TRUE(out.IsContainerEmpty());
    EXPECT_EQ(GetProcessOwnerHWND(ProcessHandle{}), nullptr);
    EXPECT_EQ(GetProcessOwnerHWND(0ul), nullptr);
    EXPECT_EQ(GetProcessOwnerHWND(ZKString("no such process.exe")), nullptr);
}

TEST(Windows, RefusedStackingMovesAreReportedToTheLogThenToOutput)
{
    LogDirectory log("window-stacking");
    std::string const before = log.History();
    std::string printed;
    {
        CapturedOutput out;
        MoveWindowToFront(kNoWindow);
        MoveWindowAlwaysOnTop(kNoWindow);
        RemoveWindowFromAlwaysOnTop(kNoWindow);
        printed = out.Text();
    }
    std::string const expected =
        "MoveWindowToFront-SetWindowPos() failed\n\n"
        "MoveWindowToFront-SetWindowPos() failed\n\nMoveWindowAlwaysOnTop() failed\n\n"
        "RemoveWindowFromAlwaysOnTop() failed\n\n";
    EXPECT_EQ(printed, expected);
    EXPECT_EQ(log.History(), before + OnDisk(expected));
}

#if !defined(_WIN32)
TEST(Windows, LinuxHasNoDesktop)
{
    EXPECT_EQ(GetDesktopHWND(), nullptr);
    ZKContainer<HWND__*> out;
    EXPECT_TRUE(GetCurrentDesktopHWNDS(out));
    EXPECT_TRUE(out.IsContainerEmpty());
    EXPECT_TRUE(GetProcessHWNDS(GetCurrentProcessHandle(), out)) << "a process with no window";
    EXPECT_TRUE(GetProcessHWNDS(GetCurrentProcessID(), out));
    EXPECT_TRUE(out.IsContainerEmpty());
    EXPECT_EQ(GetProcessOwnerHWND(GetCurrentProcessID()), nullptr);
}
#endif
