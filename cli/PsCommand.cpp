// ps: the process list, one process's modules, memory map and counters, its
// priority class and affinity.

#include <algorithm>
#include <cctype>
#include <iterator>

#include "Commands.h"

namespace zk {

namespace {

char const* const kPriorityNames[] = {"realtime", "high", "above-normal", "normal", "below-normal", "idle", "unknown"};

ZKContainer<ProcessInfo> AllProcesses()
{
    ZKContainer<ProcessInfo> processes;
    if (!GetAllProcesses(processes)) throw Failure("ps: the process list cannot be read");
    return processes;
}

// The process's name; fails when no process has the id or it cannot be
// opened. The list is asked first, as some systems answer the name only
// through it; a process missing from the list may still be opened.
std::string CheckedProcess(unsigned long pid)
{
    ZKContainer<ProcessInfo> const processes = AllProcesses();
    for (unsigned long long i = 0; i < processes.GetItemCount(); ++i) {
        ProcessInfo const& p = processes.GetItem(i);
        if (p.processID != pid) continue;
        if (ZKString name; !GetProcessName(pid, name))
            throw Failure("ps: process " + std::to_string(pid) + " cannot be opened");
        return Std(p.processName);
    }
    ZKString name;
    if (!GetProcessName(pid, name)) throw Failure("ps: no process has the id " + std::to_string(pid));
    return Std(name);
}

std::string Protection(unsigned protect)
{
    struct Bit {
        char const* name;
        unsigned bit;
    };
    static constexpr Bit bits[] = {
#define ZK_PROTECTION_NAME(Name, bit) {#Name, bit},
        ZK_MEMORY_PROTECTION_BITS(ZK_PROTECTION_NAME)
#undef ZK_PROTECTION_NAME
    };
    std::string text;
    for (auto const& b : bits)
        if (protect & b.bit) text += (text.empty() ? "" : "+") + std::string(b.name);
    return text.empty() ? "-" : text;
}

Value List(std::string const& filter)
{
    ZKContainer<ProcessInfo> const processes = AllProcesses();
    Value table = Value::List();
    for (unsigned long long i = 0; i < processes.GetItemCount(); ++i) {
        ProcessInfo const& p = processes.GetItem(i);
        std::string const name = Std(p.processName);
        if (!filter.empty() && Lower(name).find(Lower(filter)) == std::string::npos) continue;
        Value row = Value::Record();
        row.Add("pid", Value::Unsigned(p.processID))
            .Add("session", Value::Unsigned(p.sessionID))
            .Add("name", Value::Text(name));
        table.Push(row);
    }
    if (!filter.empty() && table.Items().empty()) throw Failure("ps: no process name contains '" + filter + "'");
    return table;
}

Value Modules(unsigned long pid)
{
    Value report = Value::Record();
    report.Add("pid", Value::Unsigned(pid)).Add("name", Value::Text(CheckedProcess(pid)));
    ZKContainer<ZKString> names;
    if (!GetProcessModuleNames(pid, names))
        throw Failure("ps: the modules of process " + std::to_string(pid) + " cannot be read");
    Value modules = Value::List();
    for (unsigned long long i = 0; i < names.GetItemCount(); ++i) modules.Push(Value::Text(Std(names.GetItem(i))));
    return report.Add("modules", modules);
}

Value Memory(unsigned long pid)
{
    Value report = Value::Record();
    report.Add("pid", Value::Unsigned(pid)).Add("name", Value::Text(CheckedProcess(pid)));
#define ZK_COUNTER(Operation, Counter) report.Add(#Counter, Value::Unsigned(Operation(pid)));
    ZK_PROCESS_MEMORY_COUNTERS(ZK_COUNTER)
#undef ZK_COUNTER
    report.Add("Handles", Value::Unsigned(GetProcessNumOfHandles(pid)))
        .Add("GDIHandles", Value::Unsigned(GetProcessNumOfGDIHandles(pid)))
        .Add("WorkingSetMin", Value::Unsigned(GetProcessWorkingSetMinSizeBytes(pid)))
        .Add("WorkingSetMax", Value::Unsigned(GetProcessWorkingSetMaxSizeBytes(pid)));
    ZKContainer<VirtualMemoryAddressInfo> regions;
    GetProcessVirtualMemoryAddresses(pid, regions);
    Value map = Value::List();
    for (unsigned long long i = 0; i < regions.GetItemCount(); ++i) {
        VirtualMemoryAddressInfo const& r = regions.GetItem(i);
        Value row = Value::Record();
        row.Add("base", Value::Hex(r.BaseAddress, 12))
            .Add("size", Bytes(r.RegionSize))
            .Add("state", Value::Text(r.IsStateCommit()    ? "commit"
                                      : r.IsStateReserve() ? "reserve"
                                      : r.IsStateFree()    ? "free"
                                                           : "-"))
            .Add("type", Value::Text(r.IsTypeImage()     ? "image"
                                     : r.IsTypeMapped()  ? "mapped"
                                     : r.IsTypePrivate() ? "private"
                                                         : "-"))
            .Add("protection", Value::Text(Protection(r.Protect)));
        map.Push(row);
    }
    return report.Add("regions", map);
}

Value Priority(unsigned long pid, std::string const& newClass)
{
    std::string const name = CheckedProcess(pid);
    if (!newClass.empty()) {
        auto const* found = std::find(std::begin(kPriorityNames), std::end(kPriorityNames) - 1, Lower(newClass));
        if (found == std::end(kPriorityNames) - 1)
            throw Failure("ps: no priority class is named '" + newClass +
                          "' (realtime, high, above-normal, normal, below-normal, idle)");
        auto const priority = static_cast<ProcessPriorityClass>(found - std::begin(kPriorityNames));
        if (!SetProcessPriorityClass(pid, priority))
            throw Failure("ps: the priority class of process " + std::to_string(pid) + " cannot be set");
    }
    unsigned long long processMask = 0, systemMask = 0;
    GetProcessAffinity(pid, processMask);
    GetSystemAffinity(systemMask);
    Value report = Value::Record();
    return report.Add("pid", Value::Unsigned(pid))
        .Add("name", Value::Text(name))
        .Add("priority",
             Value::Text(kPriorityNames[std::min<int>(GetProcessPriorityClass(pid), ProcessPriorityUnknown)]))
        .Add("affinity", Value::Hex(processMask))
        .Add("system affinity", Value::Hex(systemMask));
}

}  // namespace

void AddPs(CLI::App& app, Options& options)
{
    auto* ps = app.add_subcommand("ps", "processes; one process's modules, memory and "
                                        "counters, priority and affinity");
    static std::string filter;
    static std::string modules, memory;
    static std::vector<std::string> priority;
    auto* name = ps->add_option("NAME", filter, "list the processes whose name contains it");
    auto* m = ps->add_option("--modules", modules, "the modules of process PID")->type_name("PID")->excludes(name);
    auto* r = ps->add_option("--memory", memory, "the memory counters and map of process PID")
                  ->type_name("PID")
                  ->excludes(name, m);
    ps->add_option("--priority", priority,
                   "the priority class and affinity of process PID; with CLASS, "
                   "set it first")
        ->type_name("PID [CLASS]")
        ->expected(1, 2)
        ->excludes(name, m, r);
    ps->callback([&options] {
        auto const pid = [](std::string const& text) {
            unsigned long long const value = ParseNumber(text, "process id");
            if (value > 0xFFFFFFFFull) throw Failure("ps: process id '" + text + "' is above 32 bits");
            return static_cast<unsigned long>(value);
        };
        if (!modules.empty()) return Emit(options, Modules(pid(modules)));
        if (!memory.empty()) return Emit(options, Memory(pid(memory)));
        if (!priority.empty()) return Emit(options, Priority(pid(priority[0]), priority.size() > 1 ? priority[1] : ""));
        Emit(options, List(filter));
    });
}

}  // namespace zk
