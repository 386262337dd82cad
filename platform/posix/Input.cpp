// POSIX backend (Linux) of the input and window-message operations. The
// library has no desktop session to inject into, register with or share
// message numbers through on Linux, so each operation gives its Win32
// failure value and changes nothing:
//   SendInput                0 records injected
//   RegisterRawInputDevices  FALSE
//   RegisterWindowMessageA   0

#include "../Input.h"

namespace zk64::platform {

UINT SendInput(UINT, Input*, int) { return 0; }

BOOL RegisterRawInputDevices(RawInputDevice const*, UINT, UINT) { return 0; }

UINT RegisterWindowMessageA(char const*) { return 0; }

}  // namespace zk64::platform
