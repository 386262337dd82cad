#pragma once

// One pointer per thread for the library's own bookkeeping (the string
// pool's thread caches), with a function called when the thread ends.
//
// This is infrastructure, not an operating-system operation the library
// exposes: no behaviour a caller sees depends on it, so it has no fake. The
// white-box test library links the real one of its host.
//   win32  a Win32 TLS slot for the value, and a fiber-local slot holding the
//          same value whose callback runs at thread exit. The compiler's own
//          thread_local storage is not used: with mingw it may already be
//          released when other per-thread clean-up runs.
//   posix  a thread_local pointer, and a pthread key whose destructor runs at
//          thread exit, after the thread's C++ thread_local objects are gone.

namespace zk64::platform {

using ThreadSlotRetire = void (*)(void* value);

// The calling thread's value; null until it sets one.
void* GetThreadSlot();

// Sets the calling thread's value. When the thread ends with a value that is
// not null, `retire` is called with it, on that thread. Every call of the
// process must pass the same function. A retire function that sets another
// value may be called again with that one.
void SetThreadSlot(void* value, ThreadSlotRetire retire);

}  // namespace zk64::platform
