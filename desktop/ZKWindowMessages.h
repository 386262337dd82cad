#pragma once

// Window message names for debug output, and system-wide message numbers.

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

// The symbolic name of a window message ("WM_PAINT" for 0x000F), from a
// fixed table of the general window messages and those of edit, rich-edit,
// list-view, scroll-bar, button, media-window and common-dialog controls.
// Where several names share a number the table's first one is given
// (0x0100 is "WM_KEYDOWN", 0x04C8 "CDM_LAST"). Any other number, among them
// WM_USER (0x0400) and every registered message, gives
// "Unknown Windows message: N" with N the number as a signed 32-bit decimal.
// The message number is the argument's low 32 bits.
ZK_API ZKString GetWindowsMessageIDStr(unsigned long message);

// The system-wide message number of `name` (0xC000 to 0xFFFF), the same for
// every process that registers a name equal to it but for case; 0 on
// failure.
ZK_API unsigned int RegisterSystemWideMessageID(ZKString const& name);
