#pragma once

// What two independent readers of PE images say about a file: binutils'
// objdump (-p -h) and, when it is installed, llvm-readobj (--file-headers
// --sections). Each tool runs as a child process; its text is parsed into
// the records below, which keep the values as the tool printed them.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corpus {

// Runs `command` through the shell; nullopt when it could not be started or
// exited with a failure.
std::optional<std::string> RunCommand(std::string const& command);
// `text` quoted for the shell.
std::string ShellQuote(std::string const& text);

enum class Tool { Objdump, Readobj };
// Runs the tool (objdump -p -h, or llvm-readobj --file-headers --sections)
// once over all `files` and returns each file's part of the output, nullopt
// for a file the tool printed nothing about. One process for many files
// keeps the tools' start-up cost out of the run time.
std::vector<std::optional<std::string>> RunTool(Tool tool, std::string const& program,
                                                std::vector<std::string> const& files);

struct ObjdumpReport {
    std::string format;  // "pei-x86-64", "pei-i386", ...
    // The file and optional header fields, by the name objdump prints, with
    // the value text as printed ("Time/Date" keeps the whole date).
    std::map<std::string, std::string> header;

    struct Dir {
        std::uint64_t address = 0;
        std::uint64_t size = 0;
    };
    std::vector<Dir> dirs;  // "Entry 0" to "Entry f"

    // The section objdump names in "There is an import/export table in X".
    std::string importSection;
    std::string exportSection;

    struct ImportMember {
        bool byOrdinal = false;  // printed as "<none>"
        std::uint64_t hint = 0;  // the hint, or the ordinal
        std::string name;
    };
    struct ImportModule {
        std::uint64_t lookupTable = 0, timeStamp = 0, forwarderChain = 0, nameRva = 0, firstThunk = 0;
        std::string name;
        std::vector<ImportMember> members;
    };
    std::vector<ImportModule> imports;

    bool hasExports = false;
    struct ExportDir {
        std::uint64_t flags = 0, timeStamp = 0, major = 0, minor = 0, nameRva = 0, base = 0;
        std::uint64_t functionCount = 0, nameCount = 0;
        std::uint64_t functionTable = 0, nameTable = 0, ordinalTable = 0;
    } exportDir;
    // The function table by index; objdump lists only non-zero entries, so
    // an absent index means 0.
    std::map<std::uint64_t, std::uint64_t> functions;
    struct ExportName {
        std::uint64_t ordinalIndex = 0;  // the ordinal table's entry: ordinal minus Base
        std::string name;
    };
    std::vector<ExportName> exportNames;

    struct Section {
        std::string name;  // long names resolved through the string table
        std::uint64_t size = 0, vma = 0, fileOffset = 0;
    };
    std::vector<Section> sections;
};

// Parses the output of `objdump -p -h` for one file.
ObjdumpReport ParseObjdump(std::string const& text);

struct ReadobjReport {
    // "Key: value" fields of the blocks ImageFileHeader and DOSHeader; a
    // flag set "Characteristics [ (0x2106)" is stored as its number's text.
    std::map<std::string, std::string> fileHeader;
    std::map<std::string, std::string> dosHeader;
    struct Section {
        std::map<std::string, std::string> fields;
        std::string rawName;  // the 8 bytes of the Name field
    };
    std::vector<Section> sections;
};

// Parses the output of `llvm-readobj --file-headers --sections`.
ReadobjReport ParseReadobj(std::string const& text);

// A number as the tools print it: hexadecimal with or without 0x (`hex`), or
// decimal; nullopt for anything else.
std::optional<std::uint64_t> ParseNumber(std::string const& text, bool hex);

}  // namespace corpus
