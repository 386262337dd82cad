#pragma once

// ZKThread: a restartable wrapper around one std::thread.
//
// The thread's body has the shape
//     void body(std::function<bool()> keepRunning)
// and calls keepRunning() whenever it wants to know whether to go on. The
// function reads this object's `running` flag; the body never sees the
// object or the flag itself. Nothing interrupts a body: stopping a thread
// means storing false and waiting for the body to notice and return.
//
// States (joinable / running):
//   idle                          no  / false   default construction, ShutdownThread
//   asked to run, nothing to run  no  / true    RunThread with no body
//   running                       yes / true    RunThread with a body
//   body finished, not joined     yes / true    the body returned by itself
//   stopped by join               no  / true    JoinThread
//   detached                      no  / true    DetachThread
// IsRunning tells what was asked of the thread, not whether its body is
// still active: it stays true after the body returned, until ShutdownThread.
//
// Moves. The stop function holds the address of the flag of the object the
// thread was started from, and a move does not carry the flag: a moved
// thread keeps reading its source's flag, so ShutdownThread on the target
// joins without stopping it, and the source must outlive the thread. Keep
// running threads where they are (ZKThreadPool reserves its storage so).
//
// The id is not the native thread's identity: every ZKThread reports 1.

#include <functional>
#include <thread>

#include "../foundation/ZKExport.h"
#include "ZKAtomic.h"

struct ThreadID {
    unsigned long long id;
};

class ZK_API ZKThread {
public:
    // Unattached, not running, no body. Starts nothing.
    ZKThread();
    // Takes the body and starts it at once through RunThread.
    explicit ZKThread(std::function<void(std::function<bool()>)> func);
    // Takes only the source's native thread, leaving the source unattached.
    // The new object has no body, running false, and the id 1.
    ZKThread(ZKThread&& other) noexcept;
    // Ends the process (std::terminate) if this object is joinable. Takes the
    // source's native thread and body (unless both are the same object); the
    // id becomes 1 if the source's is non-zero, else 0. Neither running flag
    // changes.
    ZKThread& operator=(ZKThread&& other) noexcept;
    ZKThread(ZKThread const&) = delete;
    ZKThread& operator=(ZKThread const&) = delete;
    // Stores false in running, then joins a joinable thread: destroying a
    // ZKThread blocks until its body returns. A thread destroying its own
    // ZKThread ends the process.
    virtual ~ZKThread();

    // Replaces the body; a thread already running keeps its own copy.
    void SetFuncToRun(std::function<void(std::function<bool()>)> func);
    // Stores true in running first, whatever follows. False, with running
    // left true, when there is no body. Otherwise starts a thread on a copy of
    // the body and returns true. A thread that was run must be joined or
    // detached before the next RunThread: running again while still joinable
    // ends the process. std::system_error when no thread can be created.
    bool RunThread();
    // Stores false in running, then joins if joinable (a non-joinable thread
    // is no error here).
    void ShutdownThread();
    // std::thread::join: std::system_error when not joinable (invalid
    // argument) or when a thread joins itself (resource deadlock would
    // occur). Running is not changed.
    void JoinThread();
    // std::thread::detach: std::system_error when not joinable. Running is not
    // changed.
    void DetachThread();
    bool IsRunning() const;
    bool IsJoinable() const;
    ThreadID GetID() const;

    // False for a null pointer, the flag's value otherwise.
    static bool IsRunZKThread(__ZKAtomic<bool>* flag);
    // Blocks the calling thread for at least `milliseconds` on the steady
    // clock.
    static void Sleep(unsigned int milliseconds);

protected:
    std::thread thread;
    ThreadID id;
    __ZKAtomic<bool> running;
    std::function<void(std::function<bool()>)> func;
};
