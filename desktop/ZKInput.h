#pragma once

// Synthetic mouse input and raw keyboard input.
//
// Each mouse sender injects one mouse event into the system's input stream
// and reports nothing. The two arguments are stored in the event as its
// dx and dy (signed 32 bits); only SendMouseMoveMsg moves the pointer, by
// that relative amount (the system's pointer acceleration applies). The
// button and wheel events happen where the pointer is: move first to click
// somewhere. Wheel events turn by one notch (120); a press and a release are
// separate events.

#include "../foundation/ZKExport.h"

ZK_API void SendMouseMoveMsg(long dx, long dy);
ZK_API void SendMouseLeftDownMsg(long dx, long dy);
ZK_API void SendMouseLeftUpMsg(long dx, long dy);
ZK_API void SendMouseRightDownMsg(long dx, long dy);
ZK_API void SendMouseRightUpMsg(long dx, long dy);
ZK_API void SendMouseMiddleDownMsg(long dx, long dy);
ZK_API void SendMouseMiddleUpMsg(long dx, long dy);
ZK_API void SendMouseWheelForwardMsg(long dx, long dy);
ZK_API void SendMouseWheelBackwardMsg(long dx, long dy);
ZK_API void SendMouseWheelLeftMsg(long dx, long dy);
ZK_API void SendMouseWheelRightMsg(long dx, long dy);

// Registers the process for raw keyboard input (generic desktop page,
// keyboard usage) without legacy key messages, for the window with the
// keyboard focus. From then on the application gets WM_INPUT instead of the
// ordinary key messages; nothing undoes it. False when the system refuses.
ZK_API bool RegisterRawInput();
