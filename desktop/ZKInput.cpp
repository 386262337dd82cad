#include "ZKInput.h"

#include <cstdint>

#include "../platform/Input.h"

namespace platform = zk64::platform;

namespace {

// One relative mouse event, with no time stamp and no extra information.
void SendMouseEvent(long dx, long dy, platform::DWORD flags, int wheel)
{
    platform::Input input;
    input.type = platform::kInputMouse;
    input.mi.dx = static_cast<platform::LONG>(dx);
    input.mi.dy = static_cast<platform::LONG>(dy);
    input.mi.mouseData = static_cast<platform::DWORD>(wheel);
    input.mi.dwFlags = flags;
    platform::SendInput(1, &input, static_cast<int>(sizeof input));
}

constexpr int kNotch = platform::kWheelDelta;

}  // namespace

// The senders: X(operation, event flags, wheel amount).
#define ZK_MOUSE_SENDERS(X)                                       \
    X(SendMouseMoveMsg, platform::kMouseEventfMove, 0)            \
    X(SendMouseLeftDownMsg, platform::kMouseEventfLeftDown, 0)    \
    X(SendMouseLeftUpMsg, platform::kMouseEventfLeftUp, 0)        \
    X(SendMouseRightDownMsg, platform::kMouseEventfRightDown, 0)  \
    X(SendMouseRightUpMsg, platform::kMouseEventfRightUp, 0)      \
    X(SendMouseMiddleDownMsg, platform::kMouseEventfMiddleDown, 0) \
    X(SendMouseMiddleUpMsg, platform::kMouseEventfMiddleUp, 0)    \
    X(SendMouseWheelForwardMsg, platform::kMouseEventfWheel, kNotch) \
    X(SendMouseWheelBackwardMsg, platform::kMouseEventfWheel, -kNotch) \
    X(SendMouseWheelLeftMsg, platform::kMouseEventfHWheel, -kNotch) \
    X(SendMouseWheelRightMsg, platform::kMouseEventfHWheel, kNotch)

#define ZK_DEFINE_MOUSE_SENDER(Operation, flags, wheel) \
    void Operation(long dx, long dy) { SendMouseEvent(dx, dy, flags, wheel); }
ZK_MOUSE_SENDERS(ZK_DEFINE_MOUSE_SENDER)
#undef ZK_DEFINE_MOUSE_SENDER

bool RegisterRawInput()
{
    platform::RawInputDevice keyboard;
    keyboard.usUsagePage = 1;  // generic desktop controls
    keyboard.usUsage = 6;      // keyboard
    keyboard.dwFlags = platform::kRidevNoLegacy;
    keyboard.hwndTarget = nullptr;  // follow the keyboard focus
    return platform::RegisterRawInputDevices(&keyboard, 1, sizeof keyboard) != 0;
}
