// Fake backend of the input and window-message operations: record every
// field the caller filled in, then do what the test scripted.

#include <string>

#include "../Input.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

using fake::Dec;
using fake::Hex;
using fake::Pointer;

namespace {

std::string Signed(long long value) { return std::to_string(value); }

}  // namespace

UINT SendInput(UINT count, Input* inputs, int size)
{
    std::string call = "SendInput(count=" + Dec(count) + ", size=" + Signed(size);
    for (UINT index = 0; inputs != nullptr && index < count; ++index) {
        Input const& input = inputs[index];
        call += ", {type=" + Dec(input.type) + ", dx=" + Signed(input.mi.dx) + ", dy=" + Signed(input.mi.dy) +
                ", mouseData=" + Signed(static_cast<LONG>(input.mi.mouseData)) + ", dwFlags=" +
                Hex(input.mi.dwFlags) + ", time=" + Dec(input.mi.time) + ", dwExtraInfo=" +
                Dec(input.mi.dwExtraInfo) + "}";
    }
    fake::Record(call + ")");
    return fake::Run<UINT>(fake::InputOperations().SendInput, 0, count, inputs, size);
}

BOOL RegisterRawInputDevices(RawInputDevice const* devices, UINT count, UINT size)
{
    std::string call = "RegisterRawInputDevices(count=" + Dec(count) + ", size=" + Dec(size);
    for (UINT index = 0; devices != nullptr && index < count; ++index) {
        RawInputDevice const& device = devices[index];
        call += ", {usUsagePage=" + Dec(device.usUsagePage) + ", usUsage=" + Dec(device.usUsage) +
                ", dwFlags=" + Hex(device.dwFlags) + ", hwndTarget=" + Pointer(device.hwndTarget) + "}";
    }
    fake::Record(call + ")");
    return fake::Run<BOOL>(fake::InputOperations().RegisterRawInputDevices, 0, devices, count, size);
}

UINT RegisterWindowMessageA(char const* name)
{
    fake::Record("RegisterWindowMessageA(" + fake::Quoted(name) + ")");
    return fake::Run<UINT>(fake::InputOperations().RegisterWindowMessageA, 0, name);
}

}  // namespace zk64::platform
