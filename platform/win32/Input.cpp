// Win32 backend of the input and window-message operations: the functions
// themselves.

#include <windows.h>

#include <cstddef>

#include "../Input.h"

namespace zk64::platform {

static_assert(sizeof(Input) == sizeof(INPUT));
static_assert(offsetof(Input, mi) == offsetof(INPUT, mi));
static_assert(sizeof(MouseInput) == sizeof(MOUSEINPUT));
static_assert(offsetof(MouseInput, mouseData) == offsetof(MOUSEINPUT, mouseData));
static_assert(offsetof(MouseInput, dwFlags) == offsetof(MOUSEINPUT, dwFlags));
static_assert(offsetof(MouseInput, time) == offsetof(MOUSEINPUT, time));
static_assert(offsetof(MouseInput, dwExtraInfo) == offsetof(MOUSEINPUT, dwExtraInfo));
static_assert(sizeof(RawInputDevice) == sizeof(RAWINPUTDEVICE));
static_assert(offsetof(RawInputDevice, dwFlags) == offsetof(RAWINPUTDEVICE, dwFlags));
static_assert(offsetof(RawInputDevice, hwndTarget) == offsetof(RAWINPUTDEVICE, hwndTarget));
static_assert(kInputMouse == INPUT_MOUSE);
static_assert(kMouseEventfMove == MOUSEEVENTF_MOVE);
static_assert(kMouseEventfLeftDown == MOUSEEVENTF_LEFTDOWN);
static_assert(kMouseEventfLeftUp == MOUSEEVENTF_LEFTUP);
static_assert(kMouseEventfRightDown == MOUSEEVENTF_RIGHTDOWN);
static_assert(kMouseEventfRightUp == MOUSEEVENTF_RIGHTUP);
static_assert(kMouseEventfMiddleDown == MOUSEEVENTF_MIDDLEDOWN);
static_assert(kMouseEventfMiddleUp == MOUSEEVENTF_MIDDLEUP);
static_assert(kMouseEventfWheel == MOUSEEVENTF_WHEEL);
static_assert(kMouseEventfHWheel == MOUSEEVENTF_HWHEEL);
static_assert(kWheelDelta == WHEEL_DELTA);
static_assert(kRidevNoLegacy == RIDEV_NOLEGACY);

UINT SendInput(UINT count, Input* inputs, int size) { return ::SendInput(count, reinterpret_cast<INPUT*>(inputs), size); }

BOOL RegisterRawInputDevices(RawInputDevice const* devices, UINT count, UINT size)
{
    return ::RegisterRawInputDevices(reinterpret_cast<RAWINPUTDEVICE const*>(devices), count, size);
}

UINT RegisterWindowMessageA(char const* name) { return ::RegisterWindowMessageA(name); }

}  // namespace zk64::platform
