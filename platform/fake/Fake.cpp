#include "Fake.h"

#include "DesktopScript.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <set>
#include <string_view>

namespace zk64::platform::fake {
namespace {

struct State {
    std::mutex lock;
    Calls calls;
    SystemScript system;
    FilesScript files;
    HandlesScript handles;
    DirectoryChangesScript directoryChanges;
    TextScript text;
    ProcessesScript processes;
    SecurityScript security;
    MemoryScript memory;
    PackagesScript packages;
    IconsScript icons;
    InputScript input;
    ShellScript shell;
    DesktopScript desktop;
    std::multiset<void const*> open;  // the handle ledger
    std::size_t strayCloses = 0;
};

// The call being made on this thread (its name), and the fault counters.
thread_local std::string currentCall;
thread_local unsigned long fallibleCalls = 0;
thread_local unsigned long failingCall = 0;
thread_local std::string failedCall;

// The last error each call sets for its usual failure; others set
// ERROR_ACCESS_DENIED (5).
struct FaultError {
    std::string_view call;
    DWORD error;
};
constexpr FaultError kFaultErrors[] = {
    {"OpenProcess", 87},  // ERROR_INVALID_PARAMETER: no such process
    {"CreateFileA", 2},   // ERROR_FILE_NOT_FOUND
    {"FindFirstFileA", 2},
    {"FindNextFileA", 18},             // ERROR_NO_MORE_FILES
    {"GetModuleHandleA", 126},         // ERROR_MOD_NOT_FOUND
    {"K32EnumProcessModulesEx", 299},  // ERROR_PARTIAL_COPY
    {"K32GetModuleFileNameExA", 299},
    {"ReadProcessMemory", 299},
    {"WriteProcessMemory", 998},  // ERROR_NOACCESS
    {"VirtualQueryEx", 87},
    {"CloseHandle", 6},  // ERROR_INVALID_HANDLE
    {"FindClose", 6},
    {"WaitForSingleObject", 6},
    {"LookupPrivilegeValueA", 1313},  // ERROR_NO_SUCH_PRIVILEGE
    {"GetComputerNameA", 111},        // ERROR_BUFFER_OVERFLOW
    {"GetUserNameA", 122},            // ERROR_INSUFFICIENT_BUFFER
    {"RegisterRawInputDevices", 87},
};

bool Uncounted(void const* handle)
{
    return handle == nullptr || handle == reinterpret_cast<void const*>(~std::uintptr_t{0});
}

// Built on first use: the fake has no start-up order to respect.
State& Shared()
{
    static State state;
    return state;
}

}  // namespace

Calls TakeCalls()
{
    std::lock_guard<std::mutex> guard(Shared().lock);
    Calls taken;
    taken.swap(Shared().calls);
    return taken;
}

SystemScript& System() { return Shared().system; }
FilesScript& Files() { return Shared().files; }
HandlesScript& Handles() { return Shared().handles; }
DirectoryChangesScript& DirectoryChanges() { return Shared().directoryChanges; }
TextScript& Text() { return Shared().text; }
ProcessesScript& Processes() { return Shared().processes; }
SecurityScript& Security() { return Shared().security; }
MemoryScript& Memory() { return Shared().memory; }
PackagesScript& Packages() { return Shared().packages; }
IconsScript& Icons() { return Shared().icons; }
InputScript& InputOperations() { return Shared().input; }
ShellScript& Shell() { return Shared().shell; }
DesktopScript& Desktop() { return Shared().desktop; }

void Reset()
{
    {
        std::lock_guard<std::mutex> guard(Shared().lock);
        Shared().calls.clear();
    }
    Shared().system = SystemScript{};
    Shared().files = FilesScript{};
    Shared().handles = HandlesScript{};
    Shared().directoryChanges = DirectoryChangesScript{};
    Shared().text = TextScript{};
    Shared().processes = ProcessesScript{};
    Shared().security = SecurityScript{};
    Shared().memory = MemoryScript{};
    Shared().packages = PackagesScript{};
    Shared().icons = IconsScript{};
    Shared().input = InputScript{};
    Shared().shell = ShellScript{};
    Shared().desktop = DesktopScript{};
    {
        std::lock_guard<std::mutex> guard(Shared().lock);
        Shared().open.clear();
        Shared().strayCloses = 0;
    }
    fallibleCalls = 0;
    failingCall = 0;
    failedCall.clear();
    SetLastErrorValue(0);
}

void FailCall(unsigned long n) { failingCall = n; }

unsigned long FallibleCalls() { return fallibleCalls; }

std::string FailedCall() { return failedCall; }

bool FaultHere()
{
    if (++fallibleCalls != failingCall) return false;
    failedCall = currentCall;
    std::string_view const name = currentCall;
    DWORD error = 5;
    for (FaultError const& entry : kFaultErrors) {
        if (entry.call == name) error = entry.error;
    }
    SetLastErrorValue(error);
    return true;
}

void Opened(void const* handle)
{
    if (Uncounted(handle)) return;
    std::lock_guard<std::mutex> guard(Shared().lock);
    Shared().open.insert(handle);
}

void Closed(void const* handle)
{
    if (Uncounted(handle)) return;
    std::lock_guard<std::mutex> guard(Shared().lock);
    auto const found = Shared().open.find(handle);
    if (found == Shared().open.end()) {
        ++Shared().strayCloses;
    } else {
        Shared().open.erase(found);
    }
}

std::size_t OpenHandles()
{
    std::lock_guard<std::mutex> guard(Shared().lock);
    return Shared().open.size();
}

std::size_t StrayCloses()
{
    std::lock_guard<std::mutex> guard(Shared().lock);
    return Shared().strayCloses;
}

BOOL ReturnText(char const* text, char* buffer, DWORD* size, bool countTerminator)
{
    auto const needed = static_cast<DWORD>(std::strlen(text) + 1);
    if (*size < needed) {
        *size = needed;
        return 0;
    }
    std::memcpy(buffer, text, needed);
    *size = countTerminator ? needed : needed - 1;
    return 1;
}

std::string Hex(unsigned long long value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%llx", value);
    return text;
}

std::string Dec(unsigned long long value) { return std::to_string(value); }

std::string Pointer(void const* value)
{
    return value == nullptr ? "null" : Hex(reinterpret_cast<unsigned long long>(value));
}

std::string Out(void const* value) { return value == nullptr ? "null" : "out"; }

std::string Quoted(char const* text)
{
    if (text == nullptr) return "null";
    // Built by appending into one reserved string: the chained operator+ form
    // has GCC's -Wrestrict misjudge the inlined copies at -O3.
    std::size_t const length = std::strlen(text);
    std::string quoted;
    quoted.reserve(length + 2);
    quoted.push_back('"');
    quoted.append(text, length);
    quoted.push_back('"');
    return quoted;
}

void Record(std::string call)
{
    currentCall.assign(call, 0, call.find('('));
    std::lock_guard<std::mutex> guard(Shared().lock);
    Shared().calls.push_back(std::move(call));
}

}  // namespace zk64::platform::fake
