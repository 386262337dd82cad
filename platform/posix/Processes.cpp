// POSIX backend (Linux) of the process operations.
//
// How each Win32 meaning is met here:
//   handles                  see KernelObjects.h: a table entry holding a
//                            pidfd and a /proc/PID directory descriptor,
//                            with the rights it was opened with; the
//                            operations check those rights as Windows does.
//   WTSEnumerateProcessesA   one entry per directory of /proc (processes,
//                            not threads), from /proc/PID/stat: ProcessId
//                            the pid, SessionId the session id, the name
//                            the kernel's command name, or, when that name
//                            was cut at 15 characters, the file name of
//                            /proc/PID/exe that it begins with. pUserSid
//                            points at the process's real uid, kept in the
//                            block. One malloc'ed block, freed by
//                            WTSFreeMemory.
//   OpenProcess              pidfd_open and /proc/PID; pid 0 fails with
//                            EINVAL, a pid that does not exist with ESRCH.
//                            The rights are only recorded; inheritance is
//                            not supported (the descriptors are close-on-exec).
//   GetProcessId             the pid (query rights, as on Windows).
//   GetWindowThreadProcessId there are no windows of the library here: 0,
//                            and *processId is left alone.
//   GetModuleHandleA         null name: the executable's module (see below);
//                            a name: the module whose file name it is.
//   GetEnvironmentStrings    the environ array as a Windows-style block.
//   IsWow64Process           TRUE in *wow64 when /proc/PID/exe is a 32-bit
//                            ELF file on a 64-bit machine.
//   K32EnumProcessModulesEx  the mapped files of /proc/PID/maps, the
//                            executable first, then the others in address
//                            order; a module's handle is the lowest address
//                            it is mapped at. Query and read rights.
//   K32GetModuleFileNameExA  the module's mapped path, or /proc/PID/exe for
//                            null; truncated as Windows does.
//   ShellExecuteA            /bin/sh looks the file up (a program: PATH or a
//                            path) and starts it in the background with the
//                            parameters split at blanks; verb "runas" goes
//                            through `sudo -n` unless already root. 33 on
//                            success, 2 when the file is not found, 5 when
//                            elevation is refused, 31 for any other verb
//                            but "" and "open".

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <dirent.h>
#include <elf.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "../Processes.h"
#include "KernelObjects.h"
#include "ProcFiles.h"

extern char** environ;

namespace zk64::platform {
namespace {

using posix::Target;

// ------------------------------------------------------- the process list

struct ListEntry {
    DWORD session;
    DWORD pid;
    std::size_t nameOffset;
    DWORD uid;
};

// Reads /proc/PID/stat of `pid` (a directory name of /proc) into `entry`,
// its name into `names`.
bool ReadListEntry(int procfd, char const* pidText, ListEntry& entry, std::string& names)
{
    char path[64];
    std::size_t const pidLength = std::strlen(pidText);
    if (pidLength > 32) return false;
    std::memcpy(path, pidText, pidLength);
    std::memcpy(path + pidLength, "/stat", 6);
    char stat[1024];
    long const length = posix::ReadProcFileInto(procfd, path, stat, sizeof stat);
    if (length <= 0) return false;
    // "pid (comm) state ppid pgrp session ...": comm may hold blanks and ')'.
    char const* open = std::strchr(stat, '(');
    char const* close = std::strrchr(stat, ')');
    if (open == nullptr || close == nullptr || close < open) return false;
    char const* cursor = close + 1;
    int field = 2;  // comm was field 2
    unsigned long long session = 0;
    while (*cursor != '\0' && field < 6) {
        while (*cursor == ' ') ++cursor;
        ++field;
        if (field == 6) session = std::strtoull(cursor, nullptr, 10);
        while (*cursor != ' ' && *cursor != '\0') ++cursor;
    }
    entry.session = static_cast<DWORD>(session);
    entry.pid = static_cast<DWORD>(std::strtoul(pidText, nullptr, 10));
    entry.nameOffset = names.size();
    std::size_t const commLength = static_cast<std::size_t>(close - open - 1);
    bool named = false;
    if (commLength == 15) {
        // The kernel cut the name: take the executable's, when it begins
        // with the cut name.
        std::memcpy(path + pidLength, "/exe", 5);
        char target[4096];
        ssize_t const got = readlinkat(procfd, path, target, sizeof target - 1);
        if (got > 0) {
            target[got] = '\0';
            char const* base = std::strrchr(target, '/');
            base = base == nullptr ? target : base + 1;
            if (std::strncmp(base, open + 1, 15) == 0) {
                names.append(base);
                named = true;
            }
        }
    }
    if (!named) names.append(open + 1, commLength);
    names.push_back('\0');
    struct stat info {};
    path[pidLength] = '\0';
    entry.uid = fstatat(procfd, path, &info, 0) == 0 ? static_cast<DWORD>(info.st_uid) : ~DWORD{0};
    return true;
}

// ------------------------------------------------------------- modules

struct Module {
    unsigned long long base;
    std::string path;
};

// The mapped files of the target, the executable first.
bool ListModules(Target const& target, std::vector<Module>& modules)
{
    std::string maps;
    if (!posix::ReadProcFile(target.procfd, "maps", maps)) return false;
    std::string exe;
    posix::ReadProcLink(target.procfd, "exe", exe);
    posix::ForEachMapsLine(maps, [&](posix::MapsLine const& line) {
        if (line.pathLength == 0 || line.path[0] != '/') return true;
        std::string path(line.path, line.pathLength);
        auto const known = std::find_if(modules.begin(), modules.end(), [&](Module const& m) { return m.path == path; });
        if (known == modules.end()) modules.push_back(Module{line.start, std::move(path)});
        else known->base = std::min(known->base, line.start);
        return true;
    });
    std::stable_partition(modules.begin(), modules.end(), [&](Module const& m) { return m.path == exe; });
    return true;
}

DWORD CopyPath(std::string const& path, char* buffer, DWORD size)
{
    if (size == 0) {
        errno = ERANGE;
        return 0;
    }
    std::size_t const length = std::min<std::size_t>(path.size(), size - 1);
    std::memcpy(buffer, path.data(), length);
    buffer[length] = '\0';
    return static_cast<DWORD>(length);
}

constexpr DWORD kQueryAndRead = kProcessQueryInformation | kProcessVmRead;

}  // namespace

BOOL WTSEnumerateProcessesA(HANDLE server, DWORD reserved, DWORD version, WtsProcessInfoA** processes,
                            DWORD* count)
{
    if (server != nullptr || reserved != 0 || version != 1) {
        errno = EINVAL;
        return 0;
    }
    DIR* const proc = opendir("/proc");
    if (proc == nullptr) return 0;
    int const procfd = dirfd(proc);
    std::vector<ListEntry> entries;
    entries.reserve(1024);
    std::string names;
    names.reserve(32 * 1024);
    while (dirent* const item = readdir(proc)) {
        if (item->d_name[0] < '1' || item->d_name[0] > '9') continue;
        ListEntry entry{};
        if (ReadListEntry(procfd, item->d_name, entry, names)) entries.push_back(entry);
    }
    closedir(proc);
    std::size_t const arrayBytes = entries.size() * sizeof(WtsProcessInfoA);
    std::size_t const uidBytes = entries.size() * sizeof(DWORD);
    char* const block = static_cast<char*>(std::malloc(arrayBytes + uidBytes + names.size() + 1));
    if (block == nullptr) {
        errno = ENOMEM;
        return 0;
    }
    auto* const list = reinterpret_cast<WtsProcessInfoA*>(block);
    auto* const uids = reinterpret_cast<DWORD*>(block + arrayBytes);
    char* const text = block + arrayBytes + uidBytes;
    std::memcpy(text, names.data(), names.size());
    for (std::size_t index = 0; index < entries.size(); ++index) {
        uids[index] = entries[index].uid;
        list[index] = WtsProcessInfoA{entries[index].session, entries[index].pid, text + entries[index].nameOffset,
                                      &uids[index]};
    }
    *processes = list;
    *count = static_cast<DWORD>(entries.size());
    return 1;
}

void WTSFreeMemory(void* memory) { std::free(memory); }

HANDLE OpenProcess(DWORD access, BOOL, DWORD processId)
{
    if (processId == 0) {
        errno = EINVAL;
        return nullptr;
    }
    auto object = std::make_shared<posix::KernelObject>();
    object->pid = static_cast<pid_t>(processId);
    object->pidfd = static_cast<int>(syscall(SYS_pidfd_open, object->pid, 0));
    if (object->pidfd < 0) return nullptr;  // ESRCH, or EINVAL for a thread
    char path[32];
    std::snprintf(path, sizeof path, "/proc/%u", static_cast<unsigned>(processId));
    object->procfd = open(path, O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (object->procfd < 0 || !posix::Alive(object->pidfd)) {
        errno = ESRCH;
        return nullptr;
    }
    object->access = access;
    if ((access & kProcessQueryInformation) != 0) object->access |= kProcessQueryLimitedInformation;
    return posix::Insert(std::move(object));
}

DWORD GetProcessId(HANDLE process)
{
    Target target;
    return target.Open(process, kProcessQueryLimitedInformation) ? static_cast<DWORD>(target.pid) : 0;
}

DWORD GetWindowThreadProcessId(HWND, DWORD*)
{
    errno = EINVAL;
    return 0;
}

HANDLE GetCurrentProcess() { return posix::PseudoProcessHandle(); }
DWORD GetCurrentProcessId() { return static_cast<DWORD>(getpid()); }

HMODULE GetModuleHandleA(char const* moduleName)
{
    Target self;
    std::vector<Module> modules;
    if (!self.Open(GetCurrentProcess(), 0) || !ListModules(self, modules)) return nullptr;
    for (Module const& module : modules) {
        char const* base = std::strrchr(module.path.c_str(), '/');
        if (moduleName == nullptr || std::strcmp(base + 1, moduleName) == 0)
            return reinterpret_cast<HMODULE>(module.base);
    }
    errno = ENOENT;
    return nullptr;
}

char* GetEnvironmentStrings()
{
    std::size_t bytes = 1;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) bytes += std::strlen(*entry) + 1;
    char* const block = static_cast<char*>(std::malloc(bytes + 1));
    if (block == nullptr) return nullptr;
    char* cursor = block;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        std::size_t const length = std::strlen(*entry) + 1;
        std::memcpy(cursor, *entry, length);
        cursor += length;
    }
    cursor[0] = '\0';
    cursor[1] = '\0';
    return block;
}

BOOL FreeEnvironmentStringsA(char* block)
{
    std::free(block);
    return 1;
}

BOOL IsWow64Process(HANDLE process, BOOL* wow64)
{
    Target target;
    if (!target.Open(process, kProcessQueryLimitedInformation)) return 0;
    unsigned char ident[EI_NIDENT] = {};
    if (posix::ReadProcFileInto(target.procfd, "exe", reinterpret_cast<char*>(ident), sizeof ident) < EI_CLASS + 1)
        return 0;
    *wow64 = sizeof(void*) == 8 && ident[EI_CLASS] == ELFCLASS32 ? 1 : 0;
    return 1;
}

BOOL K32EnumProcessModulesEx(HANDLE process, HMODULE* modules, DWORD bytes, DWORD* needed, DWORD)
{
    Target target;
    std::vector<Module> list;
    if (!target.Open(process, kQueryAndRead) || !ListModules(target, list)) return 0;
    std::size_t const room = bytes / sizeof(HMODULE);
    for (std::size_t index = 0; index < list.size() && index < room; ++index)
        modules[index] = reinterpret_cast<HMODULE>(list[index].base);
    *needed = static_cast<DWORD>(list.size() * sizeof(HMODULE));
    return 1;
}

DWORD K32GetModuleFileNameExA(HANDLE process, HMODULE module, char* buffer, DWORD size)
{
    Target target;
    if (!target.Open(process, kQueryAndRead)) return 0;
    std::string path;
    if (module == nullptr) {
        if (!posix::ReadProcLink(target.procfd, "exe", path)) return 0;
        return CopyPath(path, buffer, size);
    }
    std::vector<Module> list;
    if (!ListModules(target, list)) return 0;
    for (Module const& entry : list) {
        if (reinterpret_cast<HMODULE>(entry.base) == module) return CopyPath(entry.path, buffer, size);
    }
    errno = EINVAL;
    return 0;
}

HINSTANCE__* ShellExecuteA(HWND, char const* verb, char const* file, char const* parameters, char const*, int)
{
    auto const result = [](std::intptr_t value) { return reinterpret_cast<HINSTANCE__*>(value); };
    bool const elevated = verb != nullptr && std::strcmp(verb, "runas") == 0;
    if (verb != nullptr && !elevated && verb[0] != '\0' && std::strcmp(verb, "open") != 0) return result(31);
    if (file == nullptr || file[0] == '\0') return result(2);
    static char const script[] =
        "set -f; command -v -- \"$1\" >/dev/null 2>&1 || exit 127; prefix=; "
        "if [ \"$2\" = runas ] && [ \"$(id -u)\" != 0 ]; then sudo -n true 2>/dev/null || exit 126; "
        "prefix='sudo -n'; fi; $prefix \"$1\" $3 </dev/null >/dev/null 2>&1 & exit 0";
    char const* const argv[] = {"sh", "-c", script, "sh", file, elevated ? "runas" : "", parameters != nullptr ? parameters : "", nullptr};
    pid_t shell = 0;
    if (posix_spawn(&shell, "/bin/sh", nullptr, nullptr, const_cast<char* const*>(argv), environ) != 0)
        return result(0);
    int status = 0;
    while (waitpid(shell, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status)) return result(0);
    switch (WEXITSTATUS(status)) {
    case 0: return result(33);
    case 127: errno = ENOENT; return result(2);
    default: errno = EACCES; return result(5);
    }
}

}  // namespace zk64::platform
