#pragma once

// Input and window-message operations of the platform layer: synthetic
// mouse input, raw-input registration and system-wide message numbers. See
// System.h for what the backends promise. Linux has no desktop for the
// library to reach: there each operation gives its Win32 failure value.

#include <cstdint>

#include "PlatformTypes.h"
#include "Processes.h"

namespace zk64::platform {


// MOUSEINPUT, field for field.
struct MouseInput {
    LONG dx = 0;
    LONG dy = 0;
    DWORD mouseData = 0;
    DWORD dwFlags = 0;
    DWORD time = 0;
    ULONG_PTR dwExtraInfo = 0;
};

// INPUT of type INPUT_MOUSE. The Win32 record's union also holds keyboard
// and hardware events; the mouse one is its largest member, so the record
// keeps the Win32 size and layout (40 bytes on x64).
struct Input {
    DWORD type = 0;
    MouseInput mi;
};

// RAWINPUTDEVICE, field for field (16 bytes on x64).
struct RawInputDevice {
    WORD usUsagePage = 0;
    WORD usUsage = 0;
    DWORD dwFlags = 0;
    HWND hwndTarget = nullptr;
};

#if UINTPTR_MAX == 0xFFFFFFFFFFFFFFFFu
static_assert(sizeof(MouseInput) == 32);
static_assert(sizeof(Input) == 40);
static_assert(sizeof(RawInputDevice) == 16);
#endif

constexpr DWORD kInputMouse = 0;
constexpr DWORD kMouseEventfMove = 0x0001;
constexpr DWORD kMouseEventfLeftDown = 0x0002;
constexpr DWORD kMouseEventfLeftUp = 0x0004;
constexpr DWORD kMouseEventfRightDown = 0x0008;
constexpr DWORD kMouseEventfRightUp = 0x0010;
constexpr DWORD kMouseEventfMiddleDown = 0x0020;
constexpr DWORD kMouseEventfMiddleUp = 0x0040;
constexpr DWORD kMouseEventfWheel = 0x0800;
constexpr DWORD kMouseEventfHWheel = 0x1000;
constexpr int kWheelDelta = 120;
constexpr DWORD kRidevNoLegacy = 0x30;

// Injects `count` records of `size` bytes each; returns how many were
// injected (0 on Linux).
UINT SendInput(UINT count, Input* inputs, int size);
// Registers the devices for raw input; FALSE on Linux.
BOOL RegisterRawInputDevices(RawInputDevice const* devices, UINT count, UINT size);
// The system-wide number of the message `name` (0xC000 to 0xFFFF), the same
// for every process and for names that differ only in case; 0 on failure
// and on Linux.
UINT RegisterWindowMessageA(char const* name);

}  // namespace zk64::platform
