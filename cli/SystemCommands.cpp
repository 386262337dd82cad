// info, hash, msg, color and windows: the system, the digest, message names,
// colours and the desktop.

#include <algorithm>
#include <cctype>
#include <iterator>
#include <vector>

#include "Commands.h"

namespace zk {

namespace {

std::string ArchitectureName(ProcessorArchitecture architecture)
{
    switch (architecture) {
    case ProcessorArchitectureX64:
        return "x64";
    case ProcessorArchitectureARM:
        return "ARM";
    case ProcessorArchitectureItanium:
        return "Itanium";
    case ProcessorArchitectureX86:
        return "x86";
    default:
        return "other";
    }
}

// The named colours, in the library's own order.
struct NamedColor {
    char const* name;
    ZKColor (*make)();
};
constexpr NamedColor kNamedColors[] = {
#define ZK_COLOR(name, red, green, blue) {#name, &ZKColor::name},
#include <zk64/numerics/ZKColorTable.h>
#undef ZK_COLOR
};

// Exact spelling first (names that differ in case are different colours),
// then the first name equal but for case.
NamedColor const* FindColor(std::string const& name)
{
    auto const exact = std::find_if(std::begin(kNamedColors), std::end(kNamedColors),
                                    [&](NamedColor const& c) { return name == c.name; });
    if (exact != std::end(kNamedColors)) return exact;
    auto const loose = std::find_if(std::begin(kNamedColors), std::end(kNamedColors),
                                    [&](NamedColor const& c) { return Lower(name) == Lower(c.name); });
    return loose != std::end(kNamedColors) ? loose : nullptr;
}

}  // namespace

ZKColor ColorFromText(std::string const& text)
{
    if (NamedColor const* named = FindColor(text)) return named->make();
    // r,g,b or r,g,b,a, each 0..255; three components are opaque.
    std::vector<std::string> parts(1);
    for (char c : text) {
        if (c == ',')
            parts.emplace_back();
        else if (c != ' ')
            parts.back() += c;
    }
    if (parts.size() != 3 && parts.size() != 4)
        throw Failure("'" + text +
                      "' is neither a colour name nor r,g,b[,a] (zk color --list "
                      "shows the names)");
    std::string joined;
    for (auto const& part : parts) {
        if (ParseNumber(part, "colour component") > 255) throw Failure("colour component '" + part + "' is above 255");
        joined += part + ",";
    }
    ZKColor color;
    color.SetColorFromString(ZKString((joined + (parts.size() == 3 ? "255" : "")).c_str()));
    return color;
}

Value InfoReport()
{
    Value report = Value::Record();
    report.Add("library", Value::Text(GetZKName()))
        .Add("version", Value::Text(GetZKVersion()))
        .Add("about", Value::Text(GetZKAbout()))
        .Add("architecture", Value::Text(ArchitectureName(GetProcessorArchitecture())))
        .Add("byte order", Value::Text(IsMachineLittleEndian() ? "little-endian" : "big-endian"))
        .Add("memory", Bytes(GetSystemPhysicalMemoryTotalBytes()))
        .Add("memory available", Bytes(GetSystemPhysicalMemoryAvailableBytes()))
        .Add("memory load %", Value::Unsigned(GetMemoryLoadPercent()))
        .Add("page file", Bytes(GetSystemPageFileSizeBytes()))
        .Add("computer", Value::Text(Std(GetComputerNameLocal())))
        .Add("user", Value::Text(Std(GetCurrentUserName())))
        .Add("machine id", Value::Text(Std(GenerateUniqueMachineID(16, false))))
        .Add("debugger attached", Value::Bool(IsDebuggerAttached()))
        .Add("process id", Value::Unsigned(GetCurrentProcessID()))
        .Add("executable", Value::Text(Std(GetCurrentProcessExePath())));
    return report;
}

void AddInfo(CLI::App& app, Options& options)
{
    auto* info = app.add_subcommand("info", "the library's identity and version, and facts about this system");
    info->callback([&options] { Emit(options, InfoReport()); });
}

void AddHash(CLI::App& app, Options& options)
{
    auto* hash = app.add_subcommand("hash", "the library's digest of a text or a file (a "
                                            "scrambler, not a cryptographic hash)");
    static std::string text, file;
    static unsigned length = 16;
    auto* textOption = hash->add_option("TEXT", text, "the text to digest");
    hash->add_option("--file,-f", file, "digest a file's bytes (up to its first zero byte)")->excludes(textOption);
    hash->add_option("--length,-l", length, "digits in the result (1 to 65535)")->check(CLI::Range(1, 65535));
    hash->callback([&options] {
        if (file.empty() && text.empty()) throw Failure("hash: give a TEXT or --file FILE");
        std::string const input = file.empty() ? text : ReadWholeFile(file);
        ZKString digest = HashString(ZKString(input.c_str()), static_cast<unsigned short>(length), false);
        Value report = Value::Record();
        report.Add("digest", Value::Text(Std(digest))).Add("length", Value::Unsigned(length));
        Emit(options, report);
    });
}

void AddMsg(CLI::App& app, Options& options)
{
    auto* msg = app.add_subcommand("msg", "the name of a window message number, or the number of a name");
    static std::string what;
    msg->add_option("NUMBER", what, "a message number (decimal or 0x hex), or a name such as WM_PAINT")->required();
    msg->callback([&options] {
        Value report = Value::Record();
        if (!what.empty() && std::isdigit(static_cast<unsigned char>(what[0]))) {
            unsigned long long const number = ParseNumber(what, "message number");
            if (number > 0xFFFFFFFFull) throw Failure("message number '" + what + "' is above 32 bits");
            report.Add("number", Value::Hex(number, 4))
                .Add("name", Value::Text(Std(GetWindowsMessageIDStr(static_cast<unsigned long>(number)))));
        } else {
            // The table's names all lie below 0x10000.
            Value numbers = Value::List();
            for (unsigned long n = 0; n < 0x10000; ++n)
                if (Std(GetWindowsMessageIDStr(n)) == what) numbers.Push(Value::Hex(n, 4));
            if (numbers.Items().empty()) throw Failure("no window message is named '" + what + "'");
            report.Add("name", Value::Text(what)).Add("number", numbers.Items().front());
        }
        Emit(options, report);
    });
}

void AddColor(CLI::App& app, Options& options)
{
    auto* color = app.add_subcommand("color", "a named colour or r,g,b[,a] as components, hex and names");
    static std::string what;
    static bool list = false;
    auto* whatOption = color->add_option("COLOR", what, "a colour name (e.g. Crimson) or r,g,b[,a]");
    color->add_flag("--list", list, "list every named colour")->excludes(whatOption);
    color->callback([&options] {
        auto const describe = [](ZKColor const& c) {
            char hex[16];
            std::snprintf(hex, sizeof hex, "#%02X%02X%02X%02X", c.r, c.g, c.b, c.a);
            Value names = Value::List();
            for (auto const& named : kNamedColors)
                if (named.make() == c) names.Push(Value::Text(named.name));
            Value record = Value::Record();
            record.Add("rgba", Value::Text(Std(c.GetColorAsString()))).Add("hex", Value::Text(hex));
            return std::make_pair(record, names);
        };
        if (list) {
            Value all = Value::List();
            for (auto const& named : kNamedColors) {
                Value row = Value::Record();
                row.Add("name", Value::Text(named.name));
                auto const described = describe(named.make());
                for (auto const& field : described.first.Fields()) row.Add(field.first, field.second);
                all.Push(row);
            }
            return Emit(options, all);
        }
        if (what.empty()) throw Failure("color: give a COLOR or --list");
        auto [record, names] = describe(ColorFromText(what));
        record.Add("names", names);
        Emit(options, record);
    });
}

void AddWindows(CLI::App& app, Options& options)
{
    auto* windows = app.add_subcommand("windows", "top-level windows: class, title, process, placement, task switcher");
    static bool all = false;
    windows->add_flag("--all", all, "also windows the task switcher leaves out");
    windows->callback([&options] {
        ZKContainer<HWND__*> handles;
        if (GetDesktopHWND() == nullptr || !GetCurrentDesktopHWNDS(handles))
            throw Failure("windows: the desktop is not available on this system");
        Value list = Value::List();
        for (unsigned long long i = 0; i < handles.GetItemCount(); ++i) {
            HWND__* const window = handles.GetItem(i);
            bool const altTab = IsAltTabWindow(window);
            if (!altTab && !all) continue;
            ZKString process;
            GetProcessName(window, process);
            __ZKRect<int> const place = GetWindowPosSize(window);
            Value row = Value::Record();
            row.Add("window", Value::Hex(reinterpret_cast<unsigned long long>(window)))
                .Add("pid", Value::Unsigned(GetProcessID(window)))
                .Add("process", Value::Text(Std(process)))
                .Add("x", Value::Number(place.x))
                .Add("y", Value::Number(place.y))
                .Add("width", Value::Number(place.width))
                .Add("height", Value::Number(place.height))
                .Add("state", Value::Text(IsWindowMinimized(window)   ? "minimized"
                                          : IsWindowMaximized(window) ? "maximized"
                                                                      : "normal"))
                .Add("alt-tab", Value::Bool(altTab))
                .Add("class", Value::Text(Std(GetHWNDClassName(window))))
                .Add("title", Value::Text(Std(GetWindowTitleText(window))));
            list.Push(row);
        }
        Emit(options, list);
    });
}

}  // namespace zk
