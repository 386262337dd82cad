// What Windows does with the library's input, message numbers and shell
// objects, checked through the system's own functions under Wine (null
// graphics driver); where Wine answers unlike Windows, the test says so.

// The library's header first: its declarations of the shell interfaces must
// agree with the definitions <shobjidl.h> brings afterwards.
#include <zk64/zk64.h>

#include <windows.h>

#include <objbase.h>
#include <shobjidl.h>

#include <gtest/gtest.h>

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
    EXPECT_TRUE(id >= 0xC000u && id <= 0xFFFFu && RegisterWindowMessageA("zk64.TEST.broadcast") == id);
    EXPECT_NE(RegisterSystemWideMessageID("ZK64.Test.Other"), id);
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
    // Wine 8 creates the destination list, but its methods answer E_NOTIMPL,
    // and it has no user notification class.
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

TEST(WindowsShell, AnApplicationsInitialisationIsLeftAlone)
{
    ASSERT_EQ(CoInitialize(nullptr), S_OK);
    ASSERT_NE(GetTaskbarInterface(), nullptr);
    ReleaseTaskbarInterface();
    EXPECT_EQ(CoInitialize(nullptr), S_FALSE) << "still initialised";
    CoUninitialize();
    CoUninitialize();
}
