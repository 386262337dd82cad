#include "readers/PECorpusReports.h"

#include <sys/wait.h>

#include <cstdio>
#include <sstream>
#include <string_view>
#include <utility>

namespace corpus {

namespace {

std::string_view Trim(std::string_view text)
{
    auto const first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    auto const last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

std::vector<std::string> Tokens(std::string_view text)
{
    std::vector<std::string> out;
    std::size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
        std::size_t const start = i;
        while (i < text.size() && text[i] != ' ' && text[i] != '\t') ++i;
        if (i > start) out.emplace_back(text.substr(start, i - start));
    }
    return out;
}

bool StartsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

std::uint64_t Number(std::string const& text, bool hex) { return ParseNumber(text, hex).value_or(~0ull); }

std::vector<std::string> Lines(std::string const& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// The section named by "There is an import table in .idata at 0x...".
std::string TableSection(std::string_view line)
{
    auto const tokens = Tokens(line);
    return tokens.size() >= 7 && tokens[5] == "in" ? tokens[6] : std::string();
}

// One member of an import listing: "\t<rva>\t <hint>  <name>[\t<bound>]".
ObjdumpReport::ImportMember ParseImportMember(std::string_view line)
{
    ObjdumpReport::ImportMember member;
    line.remove_prefix(1);
    auto const tab = line.find('\t');
    std::string_view rest = tab == std::string_view::npos ? std::string_view() : line.substr(tab + 1);
    rest = rest.substr(std::min(rest.size(), rest.find_first_not_of(' ')));
    auto const space = rest.find(' ');
    std::string const number(rest.substr(0, space));
    std::string_view name = space == std::string_view::npos ? std::string_view() : rest.substr(space);
    name = name.substr(std::min(name.size(), name.find_first_not_of(' ')));
    name = name.substr(0, name.find('\t'));
    member.name = std::string(name);
    member.byOrdinal = member.name == "<none>";
    // 64-bit ordinals are printed in hexadecimal, everything else in decimal;
    // only hints are compared.
    member.hint = member.byOrdinal ? 0 : Number(number, false);
    return member;
}

}  // namespace

std::optional<std::uint64_t> ParseNumber(std::string const& text, bool hex)
{
    std::string_view digits = text;
    if (hex && (StartsWith(digits, "0x") || StartsWith(digits, "0X"))) digits.remove_prefix(2);
    if (digits.empty() || digits.size() > 16) return std::nullopt;
    std::uint64_t value = 0;
    for (char const c : digits) {
        unsigned digit = 0;
        if (c >= '0' && c <= '9') digit = static_cast<unsigned>(c - '0');
        else if (hex && c >= 'a' && c <= 'f') digit = static_cast<unsigned>(c - 'a' + 10);
        else if (hex && c >= 'A' && c <= 'F') digit = static_cast<unsigned>(c - 'A' + 10);
        else return std::nullopt;
        value = value * (hex ? 16 : 10) + digit;
    }
    return value;
}

namespace {

// The output of `command`, and whether it exited with success.
std::pair<std::string, bool> Run(std::string const& command)
{
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return {std::string(), false};
    std::string output;
    char chunk[65536];
    for (std::size_t got; (got = std::fread(chunk, 1, sizeof chunk, pipe)) > 0;) output.append(chunk, got);
    int const status = pclose(pipe);
    return {output, status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0};
}

// The text that starts a file's part of the tool's output.
std::string Heading(Tool tool, std::string const& file)
{
    return tool == Tool::Objdump ? "\n" + file + ":     file format " : "\nFile: " + file + "\n";
}

}  // namespace

std::optional<std::string> RunCommand(std::string const& command)
{
    auto [output, ok] = Run(command);
    if (!ok) return std::nullopt;
    return output;
}

std::vector<std::optional<std::string>> RunTool(Tool tool, std::string const& program,
                                                std::vector<std::string> const& files)
{
    std::string command = "LC_ALL=C TZ=UTC0 " + ShellQuote(program) +
                          (tool == Tool::Objdump ? " -p -h" : " --file-headers --sections");
    for (auto const& file : files) command.append(" ").append(ShellQuote(file));
    std::string const output = std::string("\n").append(Run(command + " 2>/dev/null").first);

    // The parts in the order of `files`; a file without a heading is skipped
    // over (objdump goes on after a file it cannot read, llvm-readobj stops).
    std::vector<std::size_t> starts(files.size(), std::string::npos);
    std::size_t from = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::size_t const at = output.find(Heading(tool, files[i]), from);
        if (at == std::string::npos) continue;
        starts[i] = at + 1;
        from = at + 1;
    }
    std::vector<std::optional<std::string>> parts(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (starts[i] == std::string::npos) continue;
        std::size_t end = output.size();
        for (std::size_t j = i + 1; j < files.size(); ++j)
            if (starts[j] != std::string::npos) {
                end = starts[j];
                break;
            }
        parts[i] = output.substr(starts[i], end - starts[i]);
    }
    return parts;
}

std::string ShellQuote(std::string const& text)
{
    std::string quoted = "'";
    for (char const c : text) {
        if (c == '\'') quoted += "'\\''";
        else quoted += c;
    }
    return quoted + "'";
}

ObjdumpReport ParseObjdump(std::string const& text)
{
    enum class Part { Header, Dirs, Imports, Exports, ExportFunctions, ExportNames, Sections, Other };
    enum class ExportBlock { Top, Counts, Addresses };
    ObjdumpReport report;
    Part part = Part::Header;
    ExportBlock block = ExportBlock::Top;

    for (std::string const& raw : Lines(text)) {
        std::string_view const line = raw;
        std::string_view const trimmed = Trim(line);
        if (trimmed.empty()) continue;
        bool const indented = line[0] == ' ' || line[0] == '\t';

        // Lists end at the first line that is not part of them.
        if (!indented && (part == Part::Imports || part == Part::ExportFunctions || part == Part::ExportNames))
            part = Part::Other;

        if (auto const at = line.find(":     file format "); at != std::string_view::npos) {
            report.format = std::string(Trim(line.substr(at + 18)));
        } else if (trimmed == "The Data Directory") {
            part = Part::Dirs;
        } else if (StartsWith(trimmed, "There is an import table")) {
            report.importSection = TableSection(trimmed);
        } else if (StartsWith(trimmed, "There is an export table")) {
            report.exportSection = TableSection(trimmed);
        } else if (StartsWith(trimmed, "The Import Tables")) {
            part = Part::Imports;
        } else if (StartsWith(trimmed, "The Export Tables")) {
            part = Part::Exports;
            report.hasExports = true;
        } else if (StartsWith(trimmed, "Export Address Table -- ")) {
            part = Part::ExportFunctions;
        } else if (StartsWith(trimmed, "[Ordinal/Name Pointer] Table")) {
            part = Part::ExportNames;
        } else if (trimmed == "Sections:") {
            part = Part::Sections;
        } else if (!indented && part != Part::Header && part != Part::Exports && part != Part::Sections &&
                   !(part == Part::Dirs && StartsWith(trimmed, "Entry "))) {
            part = Part::Other;  // a dump that is not compared
        } else if (part == Part::Header && !indented) {
            auto const tokens = Tokens(trimmed);
            if (tokens.size() < 2) continue;
            if (tokens[0] == "Time/Date") report.header[tokens[0]] = std::string(Trim(trimmed.substr(9)));
            else report.header[tokens[0]] = tokens[1];
        } else if (part == Part::Dirs && StartsWith(trimmed, "Entry ")) {
            auto const tokens = Tokens(trimmed);
            if (tokens.size() >= 4) report.dirs.push_back({Number(tokens[2], true), Number(tokens[3], true)});
        } else if (part == Part::Imports) {
            auto const tokens = Tokens(trimmed);
            if (line[0] == ' ' && tokens.size() == 6 && ParseNumber(tokens[0], true)) {
                ObjdumpReport::ImportModule module{Number(tokens[1], true), Number(tokens[2], true),
                                                   Number(tokens[3], true), Number(tokens[4], true),
                                                   Number(tokens[5], true), {}, {}};
                // The all-zero entry that ends the table is listed too.
                if (module.lookupTable || module.timeStamp || module.forwarderChain || module.nameRva ||
                    module.firstThunk)
                    report.imports.push_back(module);
            } else if (StartsWith(trimmed, "DLL Name: ") && !report.imports.empty()) {
                report.imports.back().name = std::string(trimmed.substr(10));
            } else if (line[0] == '\t' && !StartsWith(trimmed, "vma:") && !report.imports.empty()) {
                report.imports.back().members.push_back(ParseImportMember(line));
            }
        } else if (part == Part::Exports) {
            auto const tokens = Tokens(trimmed);
            auto& dir = report.exportDir;
            if (StartsWith(trimmed, "Number in:")) block = ExportBlock::Counts;
            else if (StartsWith(trimmed, "Table Addresses")) block = ExportBlock::Addresses;
            else if (tokens.size() < 2) continue;
            else if (StartsWith(trimmed, "Export Flags")) dir.flags = Number(tokens.back(), true);
            else if (StartsWith(trimmed, "Time/Date stamp")) dir.timeStamp = Number(tokens.back(), true);
            else if (StartsWith(trimmed, "Major/Minor")) {
                auto const slash = tokens.back().find('/');
                dir.major = Number(tokens.back().substr(0, slash), false);
                dir.minor = slash == std::string::npos ? ~0ull : Number(tokens.back().substr(slash + 1), false);
            } else if (!indented && tokens[0] == "Name") dir.nameRva = Number(tokens[1], true);
            else if (StartsWith(trimmed, "Ordinal Base")) dir.base = Number(tokens.back(), false);
            else if (block == ExportBlock::Counts && StartsWith(trimmed, "Export Address Table"))
                dir.functionCount = Number(tokens.back(), true);
            else if (block == ExportBlock::Counts && StartsWith(trimmed, "[Name Pointer/Ordinal] Table"))
                dir.nameCount = Number(tokens.back(), true);
            else if (block == ExportBlock::Addresses && StartsWith(trimmed, "Export Address Table"))
                dir.functionTable = Number(tokens.back(), true);
            else if (block == ExportBlock::Addresses && StartsWith(trimmed, "Name Pointer Table"))
                dir.nameTable = Number(tokens.back(), true);
            else if (block == ExportBlock::Addresses && StartsWith(trimmed, "Ordinal Table"))
                dir.ordinalTable = Number(tokens.back(), true);
        } else if (part == Part::ExportFunctions) {
            // "[   0] +base[   1] 4561f Export RVA"
            if (StartsWith(trimmed, "[")) {
                auto const close = trimmed.find(']');
                auto const baseClose = trimmed.find(']', close + 1);
                if (close == std::string_view::npos || baseClose == std::string_view::npos) continue;
                auto const tokens = Tokens(trimmed.substr(baseClose + 1));
                if (!tokens.empty())
                    report.functions[Number(std::string(Trim(trimmed.substr(1, close - 1))), false)] =
                        Number(tokens[0], true);
            }
        } else if (part == Part::ExportNames) {
            // "[ 201] AddCommasW" (later binutils add "+base[ 202] ")
            auto const close = trimmed.find(']');
            if (!StartsWith(trimmed, "[") || close == std::string_view::npos) continue;
            std::string_view name = trimmed.substr(close + 1);
            if (!name.empty() && name[0] == ' ') name.remove_prefix(1);
            if (StartsWith(name, "+base[") && name.find("] ") != std::string_view::npos)
                name.remove_prefix(name.find("] ") + 2);
            report.exportNames.push_back(
                {Number(std::string(Trim(trimmed.substr(1, close - 1))), false), std::string(name)});
        } else if (part == Part::Sections) {
            auto const tokens = Tokens(trimmed);
            if (tokens.size() == 7 && ParseNumber(tokens[0], false))
                report.sections.push_back(
                    {tokens[1], Number(tokens[2], true), Number(tokens[3], true), Number(tokens[5], true)});
        }
    }
    return report;
}

ReadobjReport ParseReadobj(std::string const& text)
{
    ReadobjReport report;
    std::vector<std::string> blocks;  // the open blocks, innermost last
    for (std::string const& raw : Lines(text)) {
        std::string_view const line = Trim(raw);
        if (line == "}" || line == "]") {
            if (!blocks.empty()) blocks.pop_back();
            continue;
        }
        std::string const current = blocks.empty() ? std::string() : blocks.back();
        std::map<std::string, std::string>* fields = nullptr;
        if (current == "ImageFileHeader") fields = &report.fileHeader;
        else if (current == "DOSHeader") fields = &report.dosHeader;
        else if (current == "Section" && !report.sections.empty()) fields = &report.sections.back().fields;

        if (line.size() > 2 && line.substr(line.size() - 2) == " {") {
            blocks.emplace_back(line.substr(0, line.size() - 2));
            if (blocks.back() == "Section") report.sections.emplace_back();
        } else if (auto const flags = line.find(" [ ("); flags != std::string_view::npos) {
            // "Characteristics [ (0x2026)": a flag set, its number in brackets
            auto const close = line.find(')', flags);
            if (fields && close != std::string_view::npos)
                (*fields)[std::string(line.substr(0, flags))] = std::string(line.substr(flags + 4, close - flags - 4));
            blocks.emplace_back(line.substr(0, flags));
        } else if (line.size() > 2 && line.substr(line.size() - 2) == " [") {
            blocks.emplace_back(line.substr(0, line.size() - 2));
        } else if (auto const colon = line.find(": "); colon != std::string_view::npos && fields) {
            std::string const key(line.substr(0, colon));
            std::string_view value = line.substr(colon + 2);
            if (current == "Section" && key == "Name") {
                // "Name: .text (2E 74 65 78 74 00 00 00)": the field's bytes
                auto const open = value.rfind('(');
                std::string bytes;
                if (open != std::string_view::npos)
                    for (auto const& byte : Tokens(value.substr(open + 1, value.size() - open - 2)))
                        bytes += static_cast<char>(Number(byte, true));
                report.sections.back().rawName = bytes;
                value = Trim(value.substr(0, open));
            }
            (*fields)[key] = std::string(value);
        }
    }
    return report;
}

}  // namespace corpus
