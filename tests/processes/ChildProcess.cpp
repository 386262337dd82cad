#include "ChildProcess.h"

#include <zk64/zk64.h>

#if defined(_WIN32)
#include <windows.h>
constexpr char const* kSuffixAndSeparator[] = {".exe", "\\"};
#else
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
extern char** environ;
constexpr char const* kSuffixAndSeparator[] = {"", "/"};
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

std::string ChildProcess::FileName() { return std::string("zk64_process_child") + kSuffixAndSeparator[0]; }

std::string ChildProcess::Path()
{
    return GetCurrentProcessExeDirectory().GetString() + (kSuffixAndSeparator[1] + FileName());
}

ChildProcess::ChildProcess()
{
    std::string path = Path();
#if defined(_WIN32)
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    std::string command = "\"" + path + "\"";
    if (!CreateProcessA(path.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info))
        return;
    CloseHandle(info.hThread);
    handle = info.hProcess;
    pid = info.dwProcessId;
#else
    char* const argv[] = {path.data(), nullptr};
    pid_t child = 0;
    if (posix_spawn(&child, path.c_str(), nullptr, nullptr, argv, environ) == 0)
        pid = static_cast<unsigned long>(child);
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
