#pragma once

// Starts the test helper zk64_process_child (built next to the tests) and
// kills it at the end of the scope.

#include <string>

// Whether the test runs under Wine, which answers some queries unlike
// Windows.
bool RunningUnderWine();

class ChildProcess {
public:
    ChildProcess();
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    unsigned long Pid() const { return pid; }
    // Kills the child and waits until it is gone (and reaped).
    void Stop();

    // The helper's full path, file name and directory.
    static std::string Path();
    static std::string FileName();

private:
    unsigned long pid = 0;
    void* handle = nullptr;
};
