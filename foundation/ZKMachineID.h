#pragma once

// A machine identifier: the library's digest (see ZKHash.h) over three facts
// about the running machine, in this order and with no separators:
//   1. the computer name;
//   2. the decimal 16-bit sum of the eight 16-bit halves of the processor
//      identification registers (cpuid leaf 0: EAX, EBX, ECX, EDX), which
//      depends only on the highest leaf and the vendor text;
//   3. the decimal 16-bit sum of the two halves of the serial number of the
//      volume "c:\".
// The text is repeated until it holds `length` bytes, cut to exactly
// `length`, and digested, so the result has `length` digits.
//
// On Linux the computer name is the NetBIOS-style name (the host name up to
// its first dot, at most 15 characters, upper-cased) and the serial of
// "c:\" is the first 32 bits of /etc/machine-id. A fact the system cannot
// give counts as empty (the name) or 0 (the sums).
//
// The result is cached for the library's lifetime: a call with the length of
// the cached value returns it without asking the system again; a call with
// another length replaces it. A length of 0 gives the empty string, which is
// never cached. The flag has no effect. No lock: concurrent calls with
// different lengths race on the cache.

#include "ZKExport.h"
#include "ZKString.h"

ZK_API ZKString GenerateUniqueMachineID(unsigned short length, bool flag);
