#include "Fake.h"

#include "DesktopScript.h"

#include <cstdio>
#include <cstring>
#include <mutex>

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
};

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
    SetLastErrorValue(0);
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
    std::lock_guard<std::mutex> guard(Shared().lock);
    Shared().calls.push_back(std::move(call));
}

}  // namespace zk64::platform::fake
