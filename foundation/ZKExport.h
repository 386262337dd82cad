#pragma once

// ZK_API marks every name that zk64 exports.
//
// Windows: the DLL is built with ZK64_BUILDING (dllexport); callers get
// dllimport. ZK64_STATIC is for code that links the library's objects
// directly (the library's own white-box tests), where neither applies.
// Linux: the library is compiled with -fvisibility=hidden, so only names
// carrying ZK_API leave libzk64.so.
#if defined(_WIN32)
#  if defined(ZK64_STATIC)
#    define ZK_API
#  elif defined(ZK64_BUILDING)
#    define ZK_API __declspec(dllexport)
#  else
#    define ZK_API __declspec(dllimport)
#  endif
#else
#  define ZK_API __attribute__((visibility("default")))
#endif

// The library's wide character: UTF-16 code units. On Windows that is
// wchar_t itself; elsewhere wchar_t is 32 bits, so the wide forms take
// char16_t instead.
#if defined(_WIN32)
using ZKWideChar = wchar_t;
#else
using ZKWideChar = char16_t;
#endif
static_assert(sizeof(ZKWideChar) == 2, "zk64 wide text is UTF-16");
