#include "ChildProcess.h"

#include <zk64/zk64.h>

#if defined(_WIN32)
#include <windows.h>
#else
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
extern char** environ;
#endif

bool RunningUnderWine()
{
#if defined(_WIN32)
    HMODULE const ntdll = GetModuleHandleA("ntdll.dll");
    return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
#else
    return false;
#endif
}

std::string ChildProcess::FileName()
{
#if defined(_WIN32)
    return "zk64_process_child.exe";
#else
    return "zk64_process_child";
#endif
}

std::string ChildProcess::Path()
{
#if defined(_WIN32)
    char const separator = '\\';
#else
    char const separator = '/';
#endif
    return std::string(GetCurrentProcessExeDirectory().GetString()) + separator + FileName();
}

ChildProcess::ChildProcess()
{
    std::string const path = Path();
#if defined(_WIN32)
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    std::string command = "\"" + path + "\"";
    if (CreateProcessA(path.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) {
        CloseHandle(info.hThread);
        handle = info.hProcess;
        pid = info.dwProcessId;
    }
#else
    char* const argv[] = {const_cast<char*>(path.c_str()), nullptr};
    pid_t child = 0;
    if (posix_spawn(&child, path.c_str(), nullptr, nullptr, argv, environ) == 0) pid = static_cast<unsigned long>(child);
#endif
}

void ChildProcess::Stop()
{
    if (pid == 0) return;
#if defined(_WIN32)
    TerminateProcess(handle, 1);
    WaitForSingleObject(handle, INFINITE);
    CloseHandle(handle);
#else
    kill(static_cast<pid_t>(pid), SIGKILL);
    waitpid(static_cast<pid_t>(pid), nullptr, 0);
#endif
    pid = 0;
}

ChildProcess::~ChildProcess() { Stop(); }
