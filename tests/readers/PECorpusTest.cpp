// Reads real PE images that this project did not write with ZKPEParser and
// compares the header fields, data directories, sections, imported modules
// and functions, and exported names with what binutils' objdump -p -h prints
// for the same file. Both sides are written out as the same lines of facts,
// so any difference shows as the first line that differs. The reader's
// contract is built into the reader's side: directories as many as declared,
// export ordinals as Base plus position and every functionRVA the first
// table entry, imports by ordinal counted without a sub-record, long section
// names resolved through the COFF string table, and nothing read from a
// directory that starts where an earlier section's virtual size ends.
//
// Usage: zk64_pe_corpus_test --objdump PATH [--wine-package NAME]
//            [--mingw-root DIR]... [--built-dir DIR] [--every K]
// Exit status 0 when every file matched, 1 when one differed, 77 (skipped)
// when objdump is missing or the corpus is empty.

#include <zk64/zk64.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Facts = std::vector<std::string>;
namespace fs = std::filesystem;

std::string Run(std::string const& command)
{
    std::string out;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[65536];
        for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
        if (pclose(pipe) != 0) out.clear();
    }
    return out;
}

std::string Hex(unsigned long long value)
{
    char text[24];
    std::snprintf(text, sizeof text, "%llx", value);
    return text;
}
unsigned long long Num(std::string const& text, int base = 16) { return std::strtoull(text.c_str(), nullptr, base); }
std::string Text(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

// The header fields compared, with objdump's name and its base.
struct Field {
    char const* name;
    int base;
};
constexpr Field kFields[] = {{"Characteristics", 16},     {"Magic", 16},       {"MajorLinkerVersion", 10},
                             {"SizeOfCode", 16},          {"AddressOfEntryPoint", 16}, {"BaseOfCode", 16},
                             {"ImageBase", 16},           {"SectionAlignment", 16},    {"FileAlignment", 16},
                             {"MajorSubsystemVersion", 10}, {"SizeOfImage", 16}, {"SizeOfHeaders", 16},
                             {"CheckSum", 16},            {"Subsystem", 16},   {"DllCharacteristics", 16},
                             {"SizeOfStackReserve", 16},  {"SizeOfHeapCommit", 16}, {"NumberOfRvaAndSizes", 16}};

template <class H>
std::vector<unsigned long long> Values(COFFHeader const& c, OptionalHeaderStandard const& s, H const& h)
{
    return {c.Characteristics, s.Magic,          s.MajorLinkerVersion,  s.SizeOfCode,        s.AddressOfEntryPoint,
            s.BaseOfCode,      h.ImageBase,      h.SectionAlignment,    h.FileAlignment,     h.MajorSubsystemVersion,
            h.SizeOfImage,     h.SizeOfHeaders,  h.CheckSum,            h.Subsystem,         h.DllCharacteristics,
            h.SizeOfStackReserve, h.SizeOfHeapCommit, h.NumberOfRvaAndSizes};
}

Facts Objdump(std::string const& text)
{
    Facts facts, exports;
    struct Module {
        std::string name;
        Facts named;
        int thunks;
    };
    std::vector<Module> modules;
    std::map<std::string, std::string> header;
    std::vector<std::pair<std::string, std::string>> dirs;
    std::string part, base, firstFunction = "0";
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream in(line);
        std::vector<std::string> t;
        for (std::string token; in >> token;) t.push_back(token);
        if (t.empty()) continue;
        if (line.find("file format pei-x86-64") != std::string::npos) facts.push_back("machine 8664 x64");
        else if (line.find("file format pei-i386") != std::string::npos)
            facts.push_back("machine 14c Intel 386 or later processors and compatible processors");
        else if (line.starts_with("There is an import table")) part = "imports", modules.push_back({"", {}, -1});
        else if (line.starts_with("There is an export table")) part = "exports";
        else if (line.starts_with("[Ordinal/Name Pointer] Table")) part = "names";
        else if (line.starts_with("Sections:")) part = "sections";
        else if ((part == "imports" || part == "names") && line[0] != '\t' && line[0] != ' ' && !line.starts_with("The Import"))
            part = "other";
        else if (part.empty() && t[0] == "Entry" && t.size() >= 4) dirs.push_back({t[2], t[3]});
        else if (part.empty() && line[0] != '\t' && t.size() >= 2) header.emplace(t[0], t[1]);
        else if (part == "imports" && line.starts_with("\tDLL Name: ")) modules.push_back({t[2], {}, 0});
        else if (part == "imports" && line[0] == '\t' && t.size() >= 3 && t[0] != "vma:" && !modules.empty()) {
            ++modules.back().thunks;
            if (t[2] != "<none>") modules.back().named.push_back("  " + std::to_string(Num(t[1], 10)) + " " + t[2]);
        } else if (part == "exports" && t[0] == "Ordinal" && t[1] == "Base") base = t[2];
        else if (part == "exports" && t[0] == "[" && t[1] == "0]")
            firstFunction = Hex(Num(line.substr(line.find(']', line.find("+base[")) + 1)));
        else if (part == "names" && line[0] == '\t' && t[0][0] == '[')
            exports.push_back("export " + t.back() + " " + std::to_string(Num(base, 10) + exports.size()) + " " + firstFunction);
        else if (part == "sections" && t.size() >= 6 && std::isdigit(static_cast<unsigned char>(t[0][0])))
            facts.push_back("section " + t[1] + " " + Hex(Num(t[3])) + " " + Hex(Num(t[5])));
    }
    for (Field const& field : kFields) facts.push_back(std::string(field.name) + " " + Hex(Num(header[field.name], field.base)));
    for (std::size_t i = 0; i < dirs.size() && i < Num(header["NumberOfRvaAndSizes"]); ++i)
        facts.push_back("dir " + std::to_string(i) + " " + Hex(Num(dirs[i].first)) + " " + Hex(Num(dirs[i].second)));
    std::sort(facts.begin(), facts.end());  // objdump lists sections last
    for (Module const& module : modules) {
        facts.push_back(module.thunks < 0 ? "imports" : "import " + module.name + " thunks " + std::to_string(module.thunks));
        facts.insert(facts.end(), module.named.begin(), module.named.end());
    }
    if (!base.empty()) facts.push_back("exports");
    facts.insert(facts.end(), exports.begin(), exports.end());
    return facts;
}

// True when the directory's section is one that ends exactly at the
// directory, ahead of any that holds it.
bool BehindSection(ZKContainer<SectionHeader>& sections, IMAGE_DATA_DIR const& dir)
{
    for (unsigned long long i = 0; i < sections.GetItemCount(); ++i) {
        SectionHeader const& s = sections[i];
        if (s.VirtualAddress <= dir.VirtualAddress && dir.VirtualAddress < s.VirtualAddress + s.VirtualSize) return false;
        if (s.VirtualAddress + s.VirtualSize == dir.VirtualAddress && dir.Size != 0) return true;
    }
    return false;
}

// Drops the tool's lines of a directory the reader must not walk.
void DropTool(Facts& tool, char const* prefix, char const* sub)
{
    std::erase_if(tool, [&](std::string const& line) { return line.starts_with(prefix) || line.starts_with(sub); });
}

Facts Reader(std::string const& path, Facts& tool)
{
    ZKPEParser parser;
    if (!parser.ReadPEFile(ZKString(path.c_str()))) return {"ReadPEFile failed"};
    COFFHeader const& coff = *parser.GetCOFFHeaderPtr();
    auto const& standard = *parser.GetOptionalHeaderStandardPtr();
    auto const values = parser.IsPE32Bit() ? Values(coff, standard, *parser.GetOptionalHeaderPtr32())
                                           : Values(coff, standard, *parser.GetOptionalHeaderPtr64());
    unsigned long long const imageBase = values[6];
    Facts facts{"machine " + Hex(coff.Machine) + " " + Text(parser.GetMachineTypeString())};
    for (std::size_t i = 0; i < values.size(); ++i) facts.push_back(std::string(kFields[i].name) + " " + Hex(values[i]));
    ZKContainer<IMAGE_DATA_DIR> dirs;
    parser.GetAllOptionalHeaderDataDirs(dirs);
    for (unsigned long long i = 0; i < dirs.GetItemCount() && i < 16; ++i)
        facts.push_back("dir " + std::to_string(i) + " " + Hex(dirs[i].VirtualAddress) + " " + Hex(dirs[i].Size));
    ZKContainer<SectionHeader> sections;
    parser.GetAllSectionHeaders(sections);
    for (unsigned long long i = 0; i < sections.GetItemCount(); ++i) {
        SectionHeader const& s = sections[i];
        std::string name(s.Name, strnlen(s.Name, 8));
        ZKString const& bytes = parser.GetPEFileBufferStr();
        unsigned long long const at = coff.PointerToSymbolTable + coff.NumberOfSymbols * 18ull + Num(name.substr(1), 10);
        if (name[0] == '/' && coff.PointerToSymbolTable != 0 && at < static_cast<unsigned long long>(bytes.GetSize()))
            name = bytes.GetString() + at;
        facts.push_back("section " + name + " " + Hex(imageBase + s.VirtualAddress) + " " + Hex(s.PointerToRawData));
    }
    std::sort(facts.begin(), facts.end());
    IMAGE_DATA_DIR importDir{}, exportDir{};
    parser.GetImportDir(importDir);
    parser.GetExportDir(exportDir);
    ZKContainer<ImportDirRecord> imports;
    bool const imported = parser.GetAllImports(imports);
    if (BehindSection(sections, importDir)) {
        DropTool(tool, "import", "  ");
        if (imported || imports.GetItemCount() != 0) facts.push_back("imports read behind a section");
    } else {
        if (imported) facts.push_back("imports");
        for (unsigned long long i = 0; i < imports.GetItemCount(); ++i) {
            facts.push_back("import " + Text(imports[i].name) + " thunks " + std::to_string(imports[i].thunkCount));
            for (unsigned long long j = 0; j < imports[i].subRecords.GetItemCount(); ++j)
                facts.push_back("  " + std::to_string(imports[i].subRecords[j].hint) + " " + Text(imports[i].subRecords[j].name));
        }
    }
    ZKContainer<ExportDirRecord> exports;
    if (parser.GetAllExports(exports)) facts.push_back("GetAllExports gave true");
    if (BehindSection(sections, exportDir)) {
        DropTool(tool, "export", "export");
        if (exports.GetItemCount() != 0) facts.push_back("exports read behind a section");
    } else if (exports.GetItemCount() == 1) {
        facts.push_back("exports");
        for (unsigned long long i = 0; i < exports[0].subRecords.GetItemCount(); ++i) {
            auto const& sub = exports[0].subRecords[i];
            facts.push_back("export " + Text(sub.name) + " " + std::to_string(sub.ordinal) + " " + Hex(sub.functionRVA));
        }
    }
    return facts;
}

}  // namespace

int main(int argc, char** argv)
{
    std::string objdump = "x86_64-w64-mingw32-objdump";
    std::string listing;
    unsigned long long every = 1;
    for (int i = 1; i + 1 < argc; i += 2) {
        std::string const arg = argv[i];
        std::string const value = argv[i + 1];
        if (arg == "--objdump") objdump = value;
        else if (arg == "--every") every = std::max(1ull, std::stoull(value));
        else if (arg == "--wine-package")
            listing += Run("dpkg -L '" + value + "' 2>/dev/null | grep /x86_64-windows/");
        else
            listing +=
                Run("find '" + value + "'" + (arg == "--built-dir" ? " -maxdepth 1" : "") + " 2>/dev/null || true");
    }
    // --mingw-root trees are searched whole, --built-dir only at its top.
    std::vector<std::string> files;
    std::istringstream lines(listing);
    for (std::string line; std::getline(lines, line);) {
        if ((line.ends_with(".dll") || line.ends_with(".exe")) && fs::is_regular_file(line)) files.push_back(line);
    }
    if (Run("'" + objdump + "' --version").empty() || files.empty()) {
        std::printf("SKIPPED: no objdump or no PE images; the PE corpus is not compared\n");
        return 77;
    }
    std::sort(files.begin(), files.end());
    files.erase(std::unique(files.begin(), files.end()), files.end());
    unsigned matched = 0, total = 0;
    for (std::size_t i = 0; i < files.size(); i += every, ++total) {
        Facts tool = Objdump(Run("'" + objdump + "' -p -h '" + files[i] + "' 2>/dev/null"));
        Facts const reader = Reader(files[i], tool);
        auto const [a, b] = std::mismatch(reader.begin(), reader.end(), tool.begin(), tool.end());
        if (a == reader.end() && b == tool.end()) ++matched;
        else
            std::printf("DIFF %s: reader \"%s\", objdump \"%s\"\n", files[i].c_str(), a == reader.end() ? "" : a->c_str(),
                        b == tool.end() ? "" : b->c_str());
    }
    std::printf("%u of %u files matched fully\n", matched, total);
    return matched == total ? 0 : 1;
}
