// The exact records behind the mouse senders, raw input and message
// registration, through the fake backend.

#include <string>
#include <vector>

#include "FakeDesktop.h"

using MouseSenders = FakeDesktopTest;
using RawInput = FakeDesktopTest;
using MessageRegistration = FakeDesktopTest;

TEST_F(MouseSenders, EachSendsOneRelativeMouseRecordOfFortyBytes)
{
    struct Row {
        void (*send)(long, long);
        char const* flags;
        char const* wheel;
    };
    std::vector<Row> const table = {
        {SendMouseMoveMsg, "0x1", "0"},           {SendMouseLeftDownMsg, "0x2", "0"},
        {SendMouseLeftUpMsg, "0x4", "0"},         {SendMouseRightDownMsg, "0x8", "0"},
        {SendMouseRightUpMsg, "0x10", "0"},       {SendMouseMiddleDownMsg, "0x20", "0"},
        {SendMouseMiddleUpMsg, "0x40", "0"},      {SendMouseWheelForwardMsg, "0x800", "120"},
        {SendMouseWheelBackwardMsg, "0x800", "-120"}, {SendMouseWheelLeftMsg, "0x1000", "-120"},
        {SendMouseWheelRightMsg, "0x1000", "120"},
    };
    // The answer is dropped: a refusing system changes nothing.
    int sent = 0;
    fake::InputOperations().SendInput = [&](platform::UINT, platform::Input const*, int) {
        return platform::UINT(sent++ % 2);
    };
    for (std::size_t index = 0; index < table.size(); ++index) {
        SCOPED_TRACE(index);
        table[index].send(-7, 2147483647L);
        table[index].send(0, -2147483647L - 1);
        std::string const tail = std::string(", mouseData=") + table[index].wheel + ", dwFlags=" +
                                 table[index].flags + ", time=0, dwExtraInfo=0})";
        EXPECT_EQ(fake::TakeCalls(), (Calls{"SendInput(count=1, size=40, {type=0, dx=-7, dy=2147483647" + tail,
                                            "SendInput(count=1, size=40, {type=0, dx=0, dy=-2147483648" + tail}));
    }
    EXPECT_EQ(sent, 22);
}

TEST_F(RawInput, RegistersTheKeyboardWithoutLegacyMessages)
{
    platform::BOOL answer = 0;
    fake::InputOperations().RegisterRawInputDevices = [&](platform::RawInputDevice const*, platform::UINT,
                                                          platform::UINT) { return answer; };
    for (platform::BOOL value : {0, 1, 2, -1}) {
        answer = value;
        EXPECT_EQ(RegisterRawInput(), value != 0) << value;
        EXPECT_EQ(fake::TakeCalls(), (Calls{"RegisterRawInputDevices(count=1, size=16, {usUsagePage=1, usUsage=6, "
                                            "dwFlags=0x30, hwndTarget=null})"}));
    }
}

TEST_F(MessageRegistration, PassesTheNameAndItsNumberThrough)
{
    fake::InputOperations().RegisterWindowMessageA = [](char const* name) {
        return std::string(name) == "ZK64.Ping" ? platform::UINT{0xC123} : platform::UINT{0};
    };
    unsigned int const id = RegisterSystemWideMessageID("ZK64.Ping");
    EXPECT_EQ(id, 0xC123u);
    EXPECT_EQ(RegisterSystemWideMessageID(ZKString("ZK64.Ping\0tail", 14)), 0xC123u) << "the text up to its zero";
    EXPECT_EQ(RegisterSystemWideMessageID(""), 0u);
    EXPECT_EQ(fake::TakeCalls(), (Calls{"RegisterWindowMessageA(\"ZK64.Ping\")", "RegisterWindowMessageA(\"ZK64.Ping\")",
                                        "RegisterWindowMessageA(\"\")"}));
    EXPECT_TRUE(GetWindowsMessageIDStr(id) == "Unknown Windows message: 49443") << "registered numbers stay unknown";
}
