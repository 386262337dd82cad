// What Windows does with the library's input, message numbers and shell
// objects, checked through the system's own functions. Run under Wine
// (null graphics driver) in the project's tests; where Wine answers unlike
// Windows, the test says so and checks Wine's answer.

// The library's header first: its declarations of the shell interfaces
// must agree with the definitions that <shobjidl.h> brings afterwards.
#include <zk64/zk64.h>

#include <windows.h>

#include <objbase.h>
#include <shobjidl.h>

#include <gtest/gtest.h>

namespace {

bool UnderWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

POINT Cursor()
{
    POINT point{};
    GetCursorPos(&point);
    return point;
}

TEST(WindowsInput, SmallMovesArriveExactlyAndButtonsPressAndRelease)
{
    // Wine starts its desktop on the first window call; cursor moves made
    // before it is up are lost.
    ASSERT_NE(GetDesktopWindow(), nullptr);
    ASSERT_TRUE(SetCursorPos(200, 150));
    SendMouseMoveMsg(3, 2);
    EXPECT_EQ(Cursor().x, 203);
    EXPECT_EQ(Cursor().y, 152);
    SendMouseMoveMsg(-4, -1);
    EXPECT_EQ(Cursor().x, 199);
    EXPECT_EQ(Cursor().y, 151);

    // The button events carry their arguments but do not move.
    struct Button {
        void (*down)(long, long);
        void (*up)(long, long);
        int key;
    };
    for (Button const& button : {Button{SendMouseLeftDownMsg, SendMouseLeftUpMsg, VK_LBUTTON},
                                 Button{SendMouseRightDownMsg, SendMouseRightUpMsg, VK_RBUTTON},
                                 Button{SendMouseMiddleDownMsg, SendMouseMiddleUpMsg, VK_MBUTTON}}) {
        button.down(40, 40);
        EXPECT_NE(GetAsyncKeyState(button.key) & 0x8000, 0) << button.key;
        button.up(40, 40);
        EXPECT_EQ(GetAsyncKeyState(button.key) & 0x8000, 0) << button.key;
    }
    SendMouseWheelForwardMsg(40, 40);
    SendMouseWheelBackwardMsg(40, 40);
    SendMouseWheelLeftMsg(40, 40);
    SendMouseWheelRightMsg(40, 40);
    EXPECT_EQ(Cursor().x, 199);
    EXPECT_EQ(Cursor().y, 151);
}

TEST(WindowsInput, RawKeyboardInputIsRegistered)
{
    ASSERT_TRUE(RegisterRawInput());
    RAWINPUTDEVICE devices[4] = {};
    UINT count = 4;
    ASSERT_EQ(GetRegisteredRawInputDevices(devices, &count, sizeof(RAWINPUTDEVICE)), 1);
    EXPECT_EQ(devices[0].usUsagePage, 1);
    EXPECT_EQ(devices[0].usUsage, 6);
    EXPECT_EQ(devices[0].dwFlags, static_cast<DWORD>(RIDEV_NOLEGACY));
    EXPECT_EQ(devices[0].hwndTarget, nullptr);
}

TEST(WindowsMessages, RegisteredNumbersAreSharedAndUnnamed)
{
    unsigned int const id = RegisterSystemWideMessageID("ZK64.Test.Broadcast");
    EXPECT_GE(id, 0xC000u);
    EXPECT_LE(id, 0xFFFFu);
    EXPECT_EQ(RegisterSystemWideMessageID("zk64.TEST.broadcast"), id) << "names compare without case";
    EXPECT_EQ(RegisterWindowMessageA("ZK64.Test.Broadcast"), id);
    EXPECT_NE(RegisterSystemWideMessageID("ZK64.Test.Other"), id);
    ZKString const name = GetWindowsMessageIDStr(id);
    EXPECT_STREQ(name.GetString(), ZKString::FormatStr("Unknown Windows message: %d", static_cast<int>(id)).GetString());
}

// The taskbar list on a thread without the component system: the library
// initialises it, and its last Release undoes that.
TEST(WindowsShell, TheTaskbarListLivesInTheLibrarysInitialisation)
{
    ITaskbarList* const taskbar = GetTaskbarInterface();
    ASSERT_NE(taskbar, nullptr);
    EXPECT_EQ(GetTaskbarInterface(), taskbar);
    EXPECT_EQ(taskbar->HrInit(), S_OK);
    EXPECT_EQ(CoInitialize(nullptr), S_FALSE) << "the library's initialisation holds";
    CoUninitialize();
    ReleaseTaskbarInterface();
    EXPECT_EQ(CoInitialize(nullptr), S_OK) << "the last Release undid it";
    CoUninitialize();
}

// On a thread the application initialised, the library's Release leaves the
// component system up.
TEST(WindowsShell, AnApplicationsInitialisationIsLeftAlone)
{
    ASSERT_EQ(CoInitialize(nullptr), S_OK);
    ASSERT_NE(GetTaskbarInterface(), nullptr);
    ReleaseTaskbarInterface();
    EXPECT_EQ(CoInitialize(nullptr), S_FALSE) << "still initialised";
    CoUninitialize();
    CoUninitialize();
}

TEST(WindowsShell, JumpListAndNotificationObjects)
{
    ICustomDestinationList* const jumpList = GetCustomJumpListInterface();
    IUserNotification* const notification = GetUserNotificationInterface();
    ASSERT_NE(jumpList, nullptr);
    EXPECT_EQ(GetCustomJumpListInterface(), jumpList);
    UINT slots = 0;
    IObjectArray* removed = nullptr;
    HRESULT const begun = jumpList->BeginList(&slots, IID_IObjectArray, reinterpret_cast<void**>(&removed));
    if (UnderWine()) {
        // Wine 8 creates the destination list, but each of its methods
        // answers E_NOTIMPL; and it has no user notification class.
        EXPECT_EQ(begun, E_NOTIMPL);
        EXPECT_EQ(notification, nullptr);
        void* direct = nullptr;
        EXPECT_EQ(CoCreateInstance(CLSID_UserNotification, nullptr, CLSCTX_ALL, IID_IUserNotification, &direct),
                  REGDB_E_CLASSNOTREG);
    } else {
        EXPECT_EQ(begun, S_OK);
        if (removed != nullptr) removed->Release();
        EXPECT_EQ(jumpList->AbortList(), S_OK);
        EXPECT_NE(notification, nullptr);
    }
    ReleaseCustomJumpListInterface();
    ReleaseUserNotificationInterface();
    EXPECT_EQ(CoInitialize(nullptr), S_OK) << "nothing held: uninitialised again";
    CoUninitialize();
}

}  // namespace
