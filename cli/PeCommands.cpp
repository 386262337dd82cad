// pe and strings: the PE reader and the strings extractor on files.

#include <cstring>
#include <filesystem>
#include <iostream>

#include "Commands.h"

namespace zk {

namespace {

char const* const kDirectoryNames[] = {
#define ZK_DIRECTORY_NAME(Name, Index) #Name,
    ZK_PE_DATA_DIRECTORIES(ZK_DIRECTORY_NAME)
#undef ZK_DIRECTORY_NAME
};

std::string SectionName(SectionHeader const& section)
{
    return std::string(section.Name, strnlen(section.Name, sizeof section.Name));
}

// The fields both kinds of optional header share.
template <class Header>
void AddOptionalHeader(Value& report, Header const& header)
{
    report.Add("image base", Value::Hex(header.ImageBase))
        .Add("section alignment", Value::Hex(header.SectionAlignment))
        .Add("file alignment", Value::Hex(header.FileAlignment))
        .Add("os version", Value::Text(std::to_string(header.MajorOperatingSystemVersion) + "." +
                                       std::to_string(header.MinorOperatingSystemVersion)))
        .Add("subsystem", Value::Unsigned(header.Subsystem))
        .Add("dll characteristics", Value::Hex(header.DllCharacteristics, 4))
        .Add("size of image", Value::Hex(header.SizeOfImage))
        .Add("size of headers", Value::Hex(header.SizeOfHeaders))
        .Add("checksum", Value::Hex(header.CheckSum, 8))
        .Add("stack reserve", Value::Hex(header.SizeOfStackReserve))
        .Add("heap reserve", Value::Hex(header.SizeOfHeapReserve));
}

Value Sections(ZKPEParser& parser)
{
    ZKContainer<SectionHeader> sections;
    parser.GetAllSectionHeaders(sections);
    Value table = Value::List();
    for (unsigned long long i = 0; i < sections.GetItemCount(); ++i) {
        SectionHeader const& s = sections.GetItem(i);
        Value row = Value::Record();
        row.Add("name", Value::Text(SectionName(s)))
            .Add("virtual size", Value::Hex(s.VirtualSize, 8))
            .Add("virtual address", Value::Hex(s.VirtualAddress, 8))
            .Add("raw size", Value::Hex(s.SizeOfRawData, 8))
            .Add("raw offset", Value::Hex(s.PointerToRawData, 8))
            .Add("flags", Value::Hex(s.Characteristics, 8));
        table.Push(row);
    }
    return table;
}

Value Directories(ZKPEParser& parser)
{
    ZKContainer<IMAGE_DATA_DIR> directories;
    parser.GetAllOptionalHeaderDataDirs(directories);
    Value table = Value::List();
    for (unsigned long long i = 0; i < directories.GetItemCount(); ++i) {
        IMAGE_DATA_DIR const& d = directories.GetItem(i);
        Value row = Value::Record();
        row.Add("index", Value::Unsigned(i))
            .Add("name", Value::Text(i < std::size(kDirectoryNames) ? kDirectoryNames[i] : "Reserved"))
            .Add("rva", Value::Hex(d.VirtualAddress, 8))
            .Add("size", Value::Hex(d.Size, 8));
        table.Push(row);
    }
    return table;
}

Value Imports(ZKPEParser& parser)
{
    ZKContainer<ImportDirRecord> modules;
    parser.GetAllImports(modules);
    Value list = Value::List();
    for (unsigned long long i = 0; i < modules.GetItemCount(); ++i) {
        ImportDirRecord& module = modules.GetItem(i);
        Value functions = Value::List();
        for (unsigned long long f = 0; f < module.subRecords.GetItemCount(); ++f)
            functions.Push(Value::Text(Std(module.subRecords.GetItem(f).name)));
        Value record = Value::Record();
        record.Add("module", Value::Text(Std(module.name)))
            .Add("thunks", Value::Unsigned(module.thunkCount))
            .Add("functions", functions);
        list.Push(record);
    }
    return list;
}

Value Exports(ZKPEParser& parser)
{
    ZKContainer<ExportDirRecord> exports;
    parser.GetAllExports(exports);  // false on every path; a record shows success
    Value list = Value::List();
    if (exports.GetItemCount() == 0) return list;
    ExportDirRecord& record = exports.GetItem(0);
    for (unsigned long long i = 0; i < record.subRecords.GetItemCount(); ++i) {
        auto& entry = record.subRecords.GetItem(i);
        Value row = Value::Record();
        row.Add("ordinal", Value::Unsigned(entry.ordinal))
            .Add("name rva", Value::Hex(entry.nameRVA, 8))
            .Add("name", Value::Text(Std(entry.name)));
        list.Push(row);
    }
    return list;
}

}  // namespace

Value PeReport(std::string const& path, bool summary)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) throw Failure(path + ": no such file");
    ZKPEParser parser;
    if (!parser.ReadPEFile(ZKString(path.c_str()))) {
        bool const named = path.ends_with(".exe") || path.ends_with(".dll");
        throw Failure(path + (named ? ": not a PE image the reader accepts"
                                    : ": the PE reader takes only files named *.exe or *.dll"));
    }
    COFFHeader const& coff = *parser.GetCOFFHeaderPtr();
    std::string const format = parser.IsPE64Bit() ? "PE32+" : parser.IsPE32Bit() ? "PE32" : "other";
    Value report = Value::Record();
    report.Add("file", Value::Text(path))
        .Add("format", Value::Text(format))
        .Add("machine", Value::Text(Std(parser.GetMachineTypeString())));
    Value imports = Imports(parser);
    Value exports = Exports(parser);
    if (summary) {
        report.Add("sections", Value::Unsigned(coff.NumberOfSections))
            .Add("imports", Value::Unsigned(imports.Items().size()))
            .Add("exports", Value::Unsigned(exports.Items().size()));
        return report;
    }
    OptionalHeaderStandard const& standard = *parser.GetOptionalHeaderStandardPtr();
    report.Add("machine number", Value::Hex(coff.Machine, 4))
        .Add("time stamp", Value::Hex(coff.TimeDateStamp, 8))
        .Add("characteristics", Value::Hex(coff.Characteristics, 4))
        .Add("linker version", Value::Text(std::to_string(standard.MajorLinkerVersion) + "." +
                                           std::to_string(standard.MinorLinkerVersion)))
        .Add("size of code", Value::Hex(standard.SizeOfCode))
        .Add("entry point", Value::Hex(standard.AddressOfEntryPoint, 8));
    if (auto const* header = parser.GetOptionalHeaderPtr64())
        AddOptionalHeader(report, *header);
    else if (auto const* header32 = parser.GetOptionalHeaderPtr32())
        AddOptionalHeader(report, *header32);
    report.Add("sections", Sections(parser))
        .Add("data directories", Directories(parser))
        .Add("imports", imports)
        .Add("exports", exports);
    return report;
}

void AddPe(CLI::App& app, Options& options)
{
    auto* pe = app.add_subcommand("pe", "headers, sections, data directories, imports and exports of PE images");
    static std::vector<std::string> files;
    static bool summary = false;
    pe->add_option("FILE", files, "PE images (*.exe, *.dll)")->required();
    pe->add_flag("--summary,-s", summary, "one line per file");
    pe->callback([&options] {
        bool const progress = files.size() > 1 && IsTerminal(stderr);
        Value all = Value::List();
        for (size_t i = 0; i < files.size(); ++i) {
            if (progress) {
                size_t const done = 30 * i / files.size();
                std::cerr << "\r[" << std::string(done, '#') << std::string(30 - done, '.') << "] " << i << '/'
                          << files.size() << "\x1b[K" << std::flush;
            }
            try {
                all.Push(PeReport(files[i], summary));
            } catch (Failure const& failure) {
                if (progress) std::cerr << "\r\x1b[K";
                Warn(options, failure.what());
            }
        }
        if (progress) std::cerr << "\r\x1b[K" << std::flush;
        if (all.Items().size() == 1 && !summary)
            Emit(options, all.Items().front());
        else if (!all.Items().empty())
            Emit(options, all);
    });
}

void AddStrings(CLI::App& app, Options& options)
{
    auto* strings = app.add_subcommand("strings", "printable strings in a file, like GNU strings");
    static std::string file;
    static unsigned minimum = 4;
    static bool wide = false;
    strings->add_option("FILE", file, "any file")->required();
    strings->add_option("-n,--bytes", minimum, "the shortest string to report")->check(CLI::Range(1u, 8191u));
    strings->add_flag("--wide,-w", wide, "also UTF-16LE strings");
    strings->callback([&options] {
        ZKContainer<ZKString> found = FindStrings(file, minimum, wide);
        Value list = Value::List();
        for (unsigned long long i = 0; i < found.GetItemCount(); ++i)
            list.Push(Value::Text(found.GetItem(i).GetString()));  // each reads up to its zero byte
        Emit(options, list);
    });
}

}  // namespace zk
