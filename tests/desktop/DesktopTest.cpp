// Input, message names and shell objects through the library as a caller
// links it: natively on Linux, as zk64.dll under Wine. The Windows-only
// checks of what the system does with them are in WindowsDesktopTest.cpp.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <vector>

namespace {

TEST(MessageNames, NamesTheFirstRowAndNumbersTheRest)
{
    struct Row {
        unsigned long number;
        char const* name;
    };
    std::vector<Row> const table = {
        {0x0000, "WM_NULL"},
        {0x0001, "WM_CREATE"},
        {0x0004, "Unknown Windows message: 4"},
        {0x0100, "WM_KEYDOWN"},
        {0x020A, "WM_MOUSEWHEEL"},  // behind WM_MOUSELAST's row, found all the same
        {0x020E, "WM_MOUSELAST"},
        {0x0400, "Unknown Windows message: 1024"},  // no WM_USER row
        {0x04C8, "CDM_LAST"},
        {0x1000, "LVM_FIRST"},
        {0x8000, "WM_APP"},
        {0xCCCD, "WM_RASDIALEVENT"},
        {0xCCCE, "Unknown Windows message: 52430"},
        {0x80000000, "Unknown Windows message: -2147483648"},
        {0xFFFFFFFF, "Unknown Windows message: -1"},
    };
    for (Row const& row : table) {
        ZKString const name = GetWindowsMessageIDStr(row.number);
        EXPECT_EQ(std::string(name.GetString()), row.name) << row.number;
    }
}

#if !defined(_WIN32)
// No desktop on Linux: every operation gives its failure value.
TEST(DesktopOnLinux, EveryOperationFails)
{
    for (auto send : {SendMouseMoveMsg, SendMouseLeftDownMsg, SendMouseLeftUpMsg, SendMouseRightDownMsg,
                      SendMouseRightUpMsg, SendMouseMiddleDownMsg, SendMouseMiddleUpMsg, SendMouseWheelForwardMsg,
                      SendMouseWheelBackwardMsg, SendMouseWheelLeftMsg, SendMouseWheelRightMsg})
        send(1, -1);
    EXPECT_FALSE(RegisterRawInput());
    EXPECT_EQ(RegisterSystemWideMessageID("ZK64.LinuxMessage"), 0u);
    EXPECT_EQ(GetTaskbarInterface(), nullptr);
    EXPECT_EQ(GetCustomJumpListInterface(), nullptr);
    EXPECT_EQ(GetUserNotificationInterface(), nullptr);
    ReleaseTaskbarInterface();
    ReleaseCustomJumpListInterface();
    ReleaseUserNotificationInterface();
    EXPECT_EQ(GetTaskbarInterface(), nullptr);
}
#endif

}  // namespace
