// Reads real PE images that this project did not write with ZKPEParser and
// compares every header field, data directory, section, imported module and
// function, and exported name with what binutils' objdump reports for the
// same file (llvm-readobj, when installed, adds the fields objdump does not
// print: the DOS header, the COFF symbol table fields and the exact section
// sizes). Differences that follow from the reader's contract are allowed one
// by one, each named below; any other difference fails the test.
//
// Usage: zk64_pe_corpus_test --objdump PATH [--readobj PATH]
//            [--wine-package NAME] [--mingw-root DIR]... [--built-dir DIR]
//            [--every K]
// Prints one line per file that differs, with its first difference, then
// "N of M files matched fully". Exit status 0 when every file matched, 1 when
// one differed, 77 (skipped) when objdump is missing or the corpus is empty.

#include <zk64/zk64.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "readers/PECorpusReports.h"

namespace {

using corpus::ObjdumpReport;
using corpus::ReadobjReport;

constexpr int kSkipped = 77;
// Files per run of each tool.
constexpr std::size_t kBatch = 48;

// The differences the reader's contract causes. A file that shows only these
// counts as matched; the summary says how many files showed each.
namespace allowed {
// Export ordinals are Base plus the name's position in the name table; the
// ordinal table is not consulted.
constexpr char const* kOrdinalByPosition = "export ordinal is Base plus the name's position";
// functionRVA is the first entry of the function table for every name.
constexpr char const* kFirstFunction = "every functionRVA is the first function table entry";
// GetAllExports returns false even when it appended the image's record.
constexpr char const* kExportsFalse = "GetAllExports returns false after appending the record";
// Imports by ordinal count in thunkCount but make no sub-record.
constexpr char const* kOrdinalImports = "imports by ordinal are counted but have no sub-record";
// Delay-load imports are not walked (objdump 2.40 does not list them either;
// only the directory entry is compared).
constexpr char const* kDelayImports = "delay-load import directory present but not walked";
// Section names longer than 8 bytes stay "/offset" in the record, as the file
// holds them; the test resolves them through the COFF string table.
constexpr char const* kLongSectionNames = "long section names stay /offset in the record";
// A name that fills all 8 bytes has no NUL, so the name lookup reads on into
// the record and does not find the section under its 8-byte name.
constexpr char const* kFullSectionNames = "8-byte section names are not found by name";
// The machine word is classified bitwise: a number holding all bits of an
// earlier candidate is reported as that candidate.
constexpr char const* kMachineBitwise = "machine type classified bitwise";
// A directory's section is the first whose virtual range holds the
// directory's address, end included: a directory that starts exactly where
// an earlier section's virtual size ends (behind a .bss, say) is looked for in
// that section, whose raw data does not hold it, so the walk finds nothing.
constexpr char const* kBoundarySection = "directory attributed to the section ending at its address";
// Only NumberOfRvaAndSizes directories are read; objdump shows 16 and zeros
// past the declared count, and shows no more than 16.
constexpr char const* kDirectoryCount = "directories read as NumberOfRvaAndSizes declares";
}  // namespace allowed

std::string Text(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

std::string Hex(std::uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
    return text;
}

// The first mismatch of one file, and the allowed differences it showed.
class Comparison {
public:
    bool Failed() const { return !first.empty(); }
    std::string const& First() const { return first; }
    std::set<std::string> const& Allowed() const { return allowedSeen; }

    void Check(bool ok, std::string const& what)
    {
        if (!ok && first.empty()) first = what;
    }
    void Equal(std::string const& what, std::uint64_t reader, std::uint64_t tool)
    {
        Check(reader == tool, what + ": reader " + Hex(reader) + ", tool " + Hex(tool));
    }
    void Equal(std::string const& what, std::string const& reader, std::string const& tool)
    {
        Check(reader == tool, what + ": reader \"" + reader + "\", tool \"" + tool + "\"");
    }
    void Allow(char const* quirk) { allowedSeen.insert(quirk); }

    // How much of the file was compared.
    struct Counts {
        unsigned long long sections = 0, modules = 0, namedImports = 0, ordinalImports = 0, exportedNames = 0;
    } counts;

private:
    std::string first;
    std::set<std::string> allowedSeen;
};

// ---------------------------------------------------------------- helpers

// A field printed by llvm-readobj: "0x194000", "20870", or a value with its
// number in brackets, "IMAGE_FILE_MACHINE_AMD64 (0x8664)".
std::uint64_t ReadobjNumber(std::string text)
{
    if (text.empty()) return ~0ull;
    if (auto const open = text.rfind('('); open != std::string::npos && text.back() == ')')
        text = text.substr(open + 1, text.size() - open - 2);
    bool const hex = text.rfind("0x", 0) == 0;
    return corpus::ParseNumber(text, hex).value_or(~0ull);
}

void ReadobjField(Comparison& cmp, std::map<std::string, std::string> const& fields, std::string const& context,
                  char const* key, std::uint64_t reader)
{
    auto const found = fields.find(key);
    if (found == fields.end()) return cmp.Check(false, context + key + ": not printed by llvm-readobj");
    cmp.Equal(context + key + " (llvm-readobj)", reader, ReadobjNumber(found->second));
}

// The header fields objdump prints as hexadecimal or decimal text.
void ObjdumpField(Comparison& cmp, ObjdumpReport const& report, char const* key, bool hex, std::uint64_t reader)
{
    auto const found = report.header.find(key);
    if (found == report.header.end()) return cmp.Check(false, std::string(key) + ": not printed by objdump");
    cmp.Equal(key, reader, corpus::ParseNumber(found->second, hex).value_or(~0ull));
}

// A time stamp as objdump prints it (ctime, here in UTC).
std::string CTime(std::uint32_t stamp)
{
    std::time_t const time = stamp;
    std::tm parts{};
    gmtime_r(&time, &parts);
    char text[64];
    std::strftime(text, sizeof text, "%a %b %e %H:%M:%S %Y", &parts);
    return text;
}

std::string SectionName(SectionHeader const& section) { return std::string(section.Name, strnlen(section.Name, 8)); }

// The section's name with a "/offset" long name looked up in the COFF string
// table, which follows the symbol table (18 bytes per symbol).
std::string ResolvedName(ZKPEParser const& parser, SectionHeader const& section, Comparison& cmp)
{
    std::string const name = SectionName(section);
    if (name.size() < 2 || name[0] != '/') return name;
    auto const offset = corpus::ParseNumber(name.substr(1), false);
    COFFHeader const& coff = *parser.GetCOFFHeaderPtr();
    ZKString const& buffer = parser.GetPEFileBufferStr();
    auto const size = static_cast<std::uint64_t>(buffer.GetSize());
    std::uint64_t const at = coff.PointerToSymbolTable + std::uint64_t{coff.NumberOfSymbols} * 18 + offset.value_or(0);
    if (!offset || coff.PointerToSymbolTable == 0 || at >= size) return name;
    cmp.Allow(allowed::kLongSectionNames);
    char const* text = buffer.GetString() + at;
    return std::string(text, strnlen(text, size - at));
}

// The size objdump -h gives a section of an image: the virtual size when the
// raw data is padded past it, or when the section holds uninitialised data
// only and has no raw data; the raw size otherwise.
std::uint64_t ObjdumpSectionSize(SectionHeader const& section)
{
    bool const uninitialised = (section.Characteristics & 0x80) != 0;
    if (section.VirtualSize > 0 && ((uninitialised && section.SizeOfRawData == 0) ||
                                    section.SizeOfRawData > section.VirtualSize))
        return section.VirtualSize;
    return section.SizeOfRawData;
}

// ------------------------------------------------------------ comparisons

void CompareFileHeader(ZKPEParser const& parser, ObjdumpReport const& objdump, ReadobjReport const* readobj,
                       Comparison& cmp)
{
    COFFHeader const& coff = *parser.GetCOFFHeaderPtr();
    struct Format {
        char const* name;
        unsigned int machine;
        char const* text;
    };
    static constexpr Format kFormats[] = {
        {"pei-x86-64", 0x8664, "x64"},
        {"pei-i386", 0x14C, "Intel 386 or later processors and compatible processors"},
    };
    auto const format = std::find_if(std::begin(kFormats), std::end(kFormats),
                                     [&](Format const& f) { return objdump.format == f.name; });
    bool const known = format != std::end(kFormats);
    // Machine itself is checked against the format here, or against
    // llvm-readobj below.
    cmp.Check(known || readobj, "file format \"" + objdump.format + "\" unknown to the test");
    if (known) {
        cmp.Equal("Machine", coff.Machine, format->machine);
        cmp.Equal("GetMachineTypeString", Text(parser.GetMachineTypeString()), format->text);
    }
    if (parser.GetMachineType() != coff.Machine) {
        bool const subset = parser.GetMachineType() != 0 &&
                            (coff.Machine & parser.GetMachineType()) == parser.GetMachineType();
        cmp.Check(subset, "GetMachineType " + Hex(parser.GetMachineType()) + " for Machine " + Hex(coff.Machine));
        cmp.Allow(allowed::kMachineBitwise);
    }
    // objdump reads these files as PE images, which needs both signatures.
    cmp.Equal("e_magic", parser.GetDOSHeaderPtr()->e_magic, 0x5A4D);
    cmp.Equal("GetImageSignature", parser.GetImageSignature(), 0x4550);
    cmp.Equal("NumberOfSections (sections listed)", coff.NumberOfSections, objdump.sections.size());
    ObjdumpField(cmp, objdump, "Characteristics", true, coff.Characteristics);
    auto const stamp = objdump.header.find("Time/Date");
    cmp.Equal("TimeDateStamp", CTime(coff.TimeDateStamp), stamp == objdump.header.end() ? "" : stamp->second);

    if (readobj == nullptr) return;
    auto const& fields = readobj->fileHeader;
    ReadobjField(cmp, fields, "COFF ", "Machine", coff.Machine);
    ReadobjField(cmp, fields, "COFF ", "SectionCount", coff.NumberOfSections);
    ReadobjField(cmp, fields, "COFF ", "TimeDateStamp", coff.TimeDateStamp);
    ReadobjField(cmp, fields, "COFF ", "PointerToSymbolTable", coff.PointerToSymbolTable);
    ReadobjField(cmp, fields, "COFF ", "SymbolCount", coff.NumberOfSymbols);
    ReadobjField(cmp, fields, "COFF ", "OptionalHeaderSize", coff.SizeOfOptionalHeader);
    ReadobjField(cmp, fields, "COFF ", "Characteristics", coff.Characteristics);

    DOSHeader const& dos = *parser.GetDOSHeaderPtr();
    auto const magic = readobj->dosHeader.find("Magic");
    cmp.Check(magic != readobj->dosHeader.end() && magic->second == "MZ", "DOS Magic not MZ in llvm-readobj");
    struct {
        char const* key;
        std::uint64_t value;
    } const dosFields[] = {
        {"UsedBytesInTheLastPage", dos.e_cblp},   {"FileSizeInPages", dos.e_cp},
        {"NumberOfRelocationItems", dos.e_crlc},  {"HeaderSizeInParagraphs", dos.e_cparhdr},
        {"MinimumExtraParagraphs", dos.e_minalloc}, {"MaximumExtraParagraphs", dos.e_maxalloc},
        {"InitialRelativeSS", dos.e_ss},          {"InitialSP", dos.e_sp},
        {"Checksum", dos.e_csum},                 {"InitialIP", dos.e_ip},
        {"InitialRelativeCS", dos.e_cs},          {"AddressOfRelocationTable", dos.e_lfarlc},
        {"OverlayNumber", dos.e_ovno},            {"OEMid", dos.e_oemid},
        {"OEMinfo", dos.e_oeminfo},               {"AddressOfNewExeHeader", dos.e_lfanew},
    };
    for (auto const& field : dosFields) ReadobjField(cmp, readobj->dosHeader, "DOS ", field.key, field.value);
}

// The fields both optional header kinds share, under objdump's names.
template <class Header>
void CompareWindowsFields(Header const& h, ObjdumpReport const& objdump, Comparison& cmp)
{
    ObjdumpField(cmp, objdump, "ImageBase", true, h.ImageBase);
    ObjdumpField(cmp, objdump, "SectionAlignment", true, h.SectionAlignment);
    ObjdumpField(cmp, objdump, "FileAlignment", true, h.FileAlignment);
    ObjdumpField(cmp, objdump, "MajorOSystemVersion", false, h.MajorOperatingSystemVersion);
    ObjdumpField(cmp, objdump, "MinorOSystemVersion", false, h.MinorOperatingSystemVersion);
    ObjdumpField(cmp, objdump, "MajorImageVersion", false, h.MajorImageVersion);
    ObjdumpField(cmp, objdump, "MinorImageVersion", false, h.MinorImageVersion);
    ObjdumpField(cmp, objdump, "MajorSubsystemVersion", false, h.MajorSubsystemVersion);
    ObjdumpField(cmp, objdump, "MinorSubsystemVersion", false, h.MinorSubsystemVersion);
    ObjdumpField(cmp, objdump, "Win32Version", true, h.Win32VersionValue);
    ObjdumpField(cmp, objdump, "SizeOfImage", true, h.SizeOfImage);
    ObjdumpField(cmp, objdump, "SizeOfHeaders", true, h.SizeOfHeaders);
    ObjdumpField(cmp, objdump, "CheckSum", true, h.CheckSum);
    ObjdumpField(cmp, objdump, "Subsystem", true, h.Subsystem);
    ObjdumpField(cmp, objdump, "DllCharacteristics", true, h.DllCharacteristics);
    ObjdumpField(cmp, objdump, "SizeOfStackReserve", true, h.SizeOfStackReserve);
    ObjdumpField(cmp, objdump, "SizeOfStackCommit", true, h.SizeOfStackCommit);
    ObjdumpField(cmp, objdump, "SizeOfHeapReserve", true, h.SizeOfHeapReserve);
    ObjdumpField(cmp, objdump, "SizeOfHeapCommit", true, h.SizeOfHeapCommit);
    ObjdumpField(cmp, objdump, "LoaderFlags", true, h.LoaderFlags);
    ObjdumpField(cmp, objdump, "NumberOfRvaAndSizes", true, h.NumberOfRvaAndSizes);
}

// Returns NumberOfRvaAndSizes.
unsigned int CompareOptionalHeader(ZKPEParser const& parser, ObjdumpReport const& objdump, Comparison& cmp)
{
    OptionalHeaderStandard const& standard = *parser.GetOptionalHeaderStandardPtr();
    ObjdumpField(cmp, objdump, "Magic", true, standard.Magic);
    ObjdumpField(cmp, objdump, "MajorLinkerVersion", false, standard.MajorLinkerVersion);
    ObjdumpField(cmp, objdump, "MinorLinkerVersion", false, standard.MinorLinkerVersion);
    ObjdumpField(cmp, objdump, "SizeOfCode", true, standard.SizeOfCode);
    ObjdumpField(cmp, objdump, "SizeOfInitializedData", true, standard.SizeOfInitializedData);
    ObjdumpField(cmp, objdump, "SizeOfUninitializedData", true, standard.SizeOfUninitializedData);
    ObjdumpField(cmp, objdump, "AddressOfEntryPoint", true, standard.AddressOfEntryPoint);
    ObjdumpField(cmp, objdump, "BaseOfCode", true, standard.BaseOfCode);

    auto const magic = objdump.header.find("Magic");
    bool const pe32 = magic != objdump.header.end() && corpus::ParseNumber(magic->second, true) == 0x10B;
    cmp.Check(parser.IsPE32Bit() == pe32 && parser.IsPE64Bit() == !pe32, "IsPE32Bit/IsPE64Bit against Magic");
    if (OptionalHeader32 const* h = parser.GetOptionalHeaderPtr32()) {
        cmp.Check(parser.GetOptionalHeaderPtr64() == nullptr, "both optional header pointers set");
        ObjdumpField(cmp, objdump, "BaseOfData", true, h->BaseOfData);
        CompareWindowsFields(*h, objdump, cmp);
        return h->NumberOfRvaAndSizes;
    }
    if (OptionalHeader64 const* h = parser.GetOptionalHeaderPtr64()) {
        cmp.Check(objdump.header.count("BaseOfData") == 0, "objdump shows BaseOfData for a 64-bit image");
        CompareWindowsFields(*h, objdump, cmp);
        return h->NumberOfRvaAndSizes;
    }
    cmp.Check(false, "no optional header pointer");
    return 0;
}

// The fifteen getters Get<Name>Dir and Get<Name>DirSection in the order of
// the PE format's directory table, listed here rather than taken from the
// reader's header so that a wrong index there shows.
#define ZK_CORPUS_DIRECTORIES(X)                                                                          \
    X(Export) X(Import) X(Resource) X(Exception) X(Certificate) X(Relocation) X(Debug) X(Architecture) \
    X(Global) X(TLS) X(LoadConfig) X(BoundImport) X(IAT) X(DelayImport) X(CLR)

using DirGetter = bool (*)(ZKPEParser&, IMAGE_DATA_DIR&);
using DirSectionGetter = bool (*)(ZKPEParser&, SectionHeader&);
#define ZK_CORPUS_DIR_GETTER(Name) [](ZKPEParser& p, IMAGE_DATA_DIR& out) { return p.Get##Name##Dir(out); },
#define ZK_CORPUS_DIR_SECTION_GETTER(Name) \
    [](ZKPEParser& p, SectionHeader& out) { return p.Get##Name##DirSection(out); },
constexpr DirGetter kDirGetters[] = {ZK_CORPUS_DIRECTORIES(ZK_CORPUS_DIR_GETTER)};
constexpr DirSectionGetter kDirSectionGetters[] = {ZK_CORPUS_DIRECTORIES(ZK_CORPUS_DIR_SECTION_GETTER)};
#undef ZK_CORPUS_DIR_GETTER
#undef ZK_CORPUS_DIR_SECTION_GETTER
#undef ZK_CORPUS_DIRECTORIES
static_assert(std::size(kDirGetters) == 15 && std::size(kDirSectionGetters) == 15);

void CompareDataDirs(ZKPEParser& parser, ObjdumpReport const& objdump, unsigned int declared, Comparison& cmp)
{
    ZKContainer<IMAGE_DATA_DIR> dirs;
    bool const any = parser.GetAllOptionalHeaderDataDirs(dirs);
    auto const expected = static_cast<int>(declared) > 0 ? declared : 0u;
    cmp.Equal("data directories read", dirs.GetItemCount(), expected);
    cmp.Check(any == (expected > 0), "GetAllOptionalHeaderDataDirs result");
    cmp.Equal("data directories listed by objdump", objdump.dirs.size(), 16);
    if (expected != 16) cmp.Allow(allowed::kDirectoryCount);
    for (unsigned int i = 0; i < objdump.dirs.size() && i < dirs.GetItemCount(); ++i) {
        IMAGE_DATA_DIR const& dir = dirs.GetItem(i);
        cmp.Equal("directory " + std::to_string(i) + " VirtualAddress", dir.VirtualAddress, objdump.dirs[i].address);
        cmp.Equal("directory " + std::to_string(i) + " Size", dir.Size, objdump.dirs[i].size);
    }
    // The getters by name answer the same entries; past the declared count
    // they answer the zeros of a fresh parser's slots, as objdump does.
    for (unsigned int i = 0; i < std::size(kDirGetters) && i < objdump.dirs.size(); ++i) {
        IMAGE_DATA_DIR dir{};
        cmp.Check(kDirGetters[i](parser, dir), "directory getter " + std::to_string(i) + " gave false");
        cmp.Equal("directory getter " + std::to_string(i) + " VirtualAddress", dir.VirtualAddress,
                  objdump.dirs[i].address);
        cmp.Equal("directory getter " + std::to_string(i) + " Size", dir.Size, objdump.dirs[i].size);
    }
    if (objdump.dirs.size() > 13 && objdump.dirs[13].size != 0) cmp.Allow(allowed::kDelayImports);
}

void CompareSections(ZKPEParser& parser, ObjdumpReport const& objdump, ReadobjReport const* readobj,
                     std::uint64_t imageBase, Comparison& cmp)
{
    ZKContainer<SectionHeader> sections;
    bool const any = parser.GetAllSectionHeaders(sections);
    cmp.Check(any == (sections.GetItemCount() > 0), "GetAllSectionHeaders result");
    cmp.Equal("sections read", sections.GetItemCount(), objdump.sections.size());
    cmp.counts.sections += objdump.sections.size();
    if (readobj) cmp.Equal("sections listed by llvm-readobj", sections.GetItemCount(), readobj->sections.size());
    std::set<std::string> seen;
    for (unsigned long long i = 0; i < sections.GetItemCount() && i < objdump.sections.size(); ++i) {
        SectionHeader const& section = sections.GetItem(i);
        auto const& tool = objdump.sections[i];
        std::string const at = "section " + std::to_string(i) + " ";
        cmp.Equal(at + "name", ResolvedName(parser, section, cmp), tool.name);
        cmp.Equal(at + tool.name + " VirtualAddress", imageBase + section.VirtualAddress, tool.vma);
        cmp.Equal(at + tool.name + " PointerToRawData", section.PointerToRawData, tool.fileOffset);
        cmp.Equal(at + tool.name + " size shown by objdump", ObjdumpSectionSize(section), tool.size);
        if (readobj && i < readobj->sections.size()) {
            auto const& fields = readobj->sections[i].fields;
            cmp.Equal(at + "Name bytes (llvm-readobj)", std::string(section.Name, 8), readobj->sections[i].rawName);
            ReadobjField(cmp, fields, at, "VirtualSize", section.VirtualSize);
            ReadobjField(cmp, fields, at, "VirtualAddress", section.VirtualAddress);
            ReadobjField(cmp, fields, at, "RawDataSize", section.SizeOfRawData);
            ReadobjField(cmp, fields, at, "PointerToRawData", section.PointerToRawData);
            ReadobjField(cmp, fields, at, "PointerToRelocations", section.PointerToRelocations);
            ReadobjField(cmp, fields, at, "PointerToLineNumbers", section.PointerToLinenumbers);
            ReadobjField(cmp, fields, at, "RelocationCount", section.NumberOfRelocations);
            ReadobjField(cmp, fields, at, "LineNumberCount", section.NumberOfLinenumbers);
            ReadobjField(cmp, fields, at, "Characteristics", section.Characteristics);
        }
        // The lookup by name finds the first section of that name.
        std::string const name = SectionName(section);
        if (!seen.insert(name).second) continue;
        SectionHeader found{};
        bool hit = parser.GetSectionHeaderByName(ZKString(name.c_str()), found);
        // An 8-byte name is found only under the text that runs on to the
        // record's first NUL (the name itself when the next byte is 0).
        auto const* bytes = reinterpret_cast<char const*>(&section);
        auto const* nul = static_cast<char const*>(std::memchr(bytes, 0, sizeof section));
        std::string const runOn(bytes, nul ? static_cast<std::size_t>(nul - bytes) : sizeof section);
        if (runOn != name) {
            cmp.Check(!hit, "GetSectionHeaderByName finds the 8-byte name " + name);
            cmp.Allow(allowed::kFullSectionNames);
            hit = parser.GetSectionHeaderByName(ZKString(runOn.data(), static_cast<int>(runOn.size())), found);
        }
        cmp.Check(hit && std::memcmp(&found, &section, sizeof found) == 0,
                  "GetSectionHeaderByName(\"" + name + "\") misses section " + std::to_string(i));
    }
}

// The section a directory getter finds, against the one objdump names, or,
// in the allowed boundary case, against the earlier section whose virtual end
// is the directory's address. Returns true in that case, after checking that
// the section's raw data does not reach the directory, so that the walk is
// expected to find nothing.
bool CompareDirSection(ZKPEParser& parser, unsigned int index, std::string const& toolSection, Comparison& cmp)
{
    SectionHeader section{};
    bool const found = kDirSectionGetters[index](parser, section);
    std::string const what = "section of directory " + std::to_string(index);
    if (toolSection.empty()) {
        cmp.Check(!found, what + ": reader finds \"" + SectionName(section) + "\"");
        return false;
    }
    cmp.Check(found, what + ": reader finds none, objdump \"" + toolSection + "\"");
    if (!found) return false;

    IMAGE_DATA_DIR dir{};
    kDirGetters[index](parser, dir);
    ZKContainer<SectionHeader> sections;
    parser.GetAllSectionHeaders(sections);
    for (unsigned long long i = 0; i < sections.GetItemCount(); ++i) {
        SectionHeader const& candidate = sections.GetItem(i);
        if (candidate.VirtualAddress <= dir.VirtualAddress &&
            dir.VirtualAddress < candidate.VirtualAddress + candidate.VirtualSize)
            break;  // a section holding the address comes first
        if (candidate.VirtualAddress + candidate.VirtualSize != dir.VirtualAddress) continue;
        cmp.Allow(allowed::kBoundarySection);
        cmp.Check(std::memcmp(&candidate, &section, sizeof section) == 0,
                  what + ": reader does not take section " + std::to_string(i) + ", which ends at the directory");
        cmp.Check(dir.VirtualAddress - candidate.VirtualAddress > candidate.SizeOfRawData,
                  what + ": the raw data of section " + std::to_string(i) + " reaches past its virtual end");
        return true;
    }
    cmp.Equal(what, ResolvedName(parser, section, cmp), toolSection);
    return false;
}

void CompareImports(ZKPEParser& parser, ObjdumpReport const& objdump, Comparison& cmp)
{
    bool const boundary = CompareDirSection(parser, 1, objdump.importSection, cmp);
    // Every record carries a container of 512 sub-records; a small ring
    // (which doubles as needed) saves building 512 of them per file.
    ZKContainer<ImportDirRecord> imports(8);
    bool const read = parser.GetAllImports(imports);
    if (boundary) {
        cmp.Check(!read && imports.GetItemCount() == 0, "imports read through the section before the directory");
        return;
    }
    cmp.Check(read == !objdump.importSection.empty(), std::string("GetAllImports gave ") + (read ? "true" : "false"));
    cmp.Equal("imported modules", imports.GetItemCount(), objdump.imports.size());
    cmp.counts.modules += objdump.imports.size();
    for (unsigned long long i = 0; i < imports.GetItemCount() && i < objdump.imports.size(); ++i) {
        ImportDirRecord& record = imports.GetItem(i);
        auto const& tool = objdump.imports[i];
        std::string const at = "import " + tool.name + " ";
        cmp.Equal("import " + std::to_string(i) + " name", Text(record.name), tool.name);
        cmp.Equal(at + "ImportLookupTableRVA", record.importLookupTableRVA, tool.lookupTable);
        cmp.Equal(at + "TimeDateStamp", record.timeDateStamp, tool.timeStamp);
        cmp.Equal(at + "ForwarderChain", record.forwarderChain, tool.forwarderChain);
        cmp.Equal(at + "thunkCount", record.thunkCount, tool.members.size());
        unsigned long long named = 0;
        for (auto const& member : tool.members) {
            if (member.byOrdinal) {
                ++cmp.counts.ordinalImports;
                cmp.Allow(allowed::kOrdinalImports);
                continue;
            }
            if (named >= record.subRecords.GetItemCount()) {
                cmp.Check(false, at + "has no sub-record for " + member.name);
                break;
            }
            auto& sub = record.subRecords.GetItem(named++);
            ++cmp.counts.namedImports;
            cmp.Equal(at + "function " + std::to_string(named - 1) + " name", Text(sub.name), member.name);
            cmp.Equal(at + member.name + " hint", sub.hint, member.hint);
        }
        cmp.Equal(at + "named functions", record.subRecords.GetItemCount(), named);
    }
}

void CompareExports(ZKPEParser& parser, ObjdumpReport const& objdump, Comparison& cmp)
{
    bool const boundary = CompareDirSection(parser, 0, objdump.exportSection, cmp);
    ZKContainer<ExportDirRecord> exports(2);  // one record at most
    cmp.Check(!parser.GetAllExports(exports), "GetAllExports gave true");
    if (boundary) {
        cmp.Equal("exports read through the section before the directory", exports.GetItemCount(), 0);
        return;
    }
    cmp.Equal("export records", exports.GetItemCount(), objdump.hasExports ? 1 : 0);
    if (exports.GetItemCount() != 1 || !objdump.hasExports) return;
    cmp.Allow(allowed::kExportsFalse);

    ExportDirRecord& record = exports.GetItem(0);
    auto const& dir = objdump.exportDir;
    cmp.Equal("export Characteristics", record.Characteristics, dir.flags);
    cmp.Equal("export TimeDateStamp", record.TimeDateStamp, dir.timeStamp);
    cmp.Equal("export MajorVersion", record.MajorVersion, dir.major);
    cmp.Equal("export MinorVersion", record.MinorVersion, dir.minor);
    cmp.Equal("export Name", record.Name, dir.nameRva);
    cmp.Equal("export Base", record.Base, dir.base);
    cmp.Equal("export NumberOfFunctions", record.NumberOfFunctions, dir.functionCount);
    cmp.Equal("export NumberOfNames", record.NumberOfNames, dir.nameCount);
    cmp.Equal("export AddressOfFunctions", record.AddressOfFunctions, dir.functionTable);
    cmp.Equal("export AddressOfNames", record.AddressOfNames, dir.nameTable);
    cmp.Equal("export AddressOfNameOrdinals", record.AddressOfNameOrdinals, dir.ordinalTable);

    auto const functionAt = [&](std::uint64_t index) {
        auto const found = objdump.functions.find(index);
        return found == objdump.functions.end() ? 0 : found->second;
    };
    cmp.Equal("exported names", record.subRecords.GetItemCount(), objdump.exportNames.size());
    cmp.counts.exportedNames += objdump.exportNames.size();
    for (unsigned long long i = 0; i < record.subRecords.GetItemCount() && i < objdump.exportNames.size(); ++i) {
        auto& sub = record.subRecords.GetItem(i);
        auto const& tool = objdump.exportNames[i];
        std::string const at = "export " + std::to_string(i) + " ";
        cmp.Equal(at + "name", Text(sub.name), tool.name);
        cmp.Equal(at + tool.name + " ordinal (Base plus position)", sub.ordinal,
                  static_cast<std::uint32_t>(record.Base + i));
        cmp.Equal(at + tool.name + " index", sub.index, i & 0xFFFF);
        cmp.Equal(at + tool.name + " functionRVA (first table entry)", sub.functionRVA, functionAt(0));
        if (tool.ordinalIndex != i) cmp.Allow(allowed::kOrdinalByPosition);
        if (functionAt(tool.ordinalIndex) != sub.functionRVA) cmp.Allow(allowed::kFirstFunction);
    }
}

// Compares one file with the tools' reports on it; the result holds the
// first difference, if any. `useReadobj` says whether llvm-readobj ran.
Comparison CompareFile(std::string const& path, std::optional<std::string> const& objdumpText, bool useReadobj,
                       std::optional<std::string> const& readobjText)
{
    Comparison cmp;
    if (!objdumpText) {
        cmp.Check(false, "objdump printed nothing about the file");
        return cmp;
    }
    if (useReadobj && !readobjText) {
        cmp.Check(false, "llvm-readobj printed nothing about the file");
        return cmp;
    }
    ObjdumpReport const objdump = corpus::ParseObjdump(*objdumpText);
    std::optional<ReadobjReport> readobj;
    if (useReadobj) readobj = corpus::ParseReadobj(*readobjText);

    ZKPEParser parser;
    if (!parser.ReadPEFile(ZKString(path.c_str()))) {
        cmp.Check(false, "ReadPEFile gave false");
        return cmp;
    }
    cmp.Equal("GetExeFileName", Text(parser.GetExeFileName()), std::filesystem::path(path).filename().string());
    ReadobjReport const* extra = readobj ? &*readobj : nullptr;
    CompareFileHeader(parser, objdump, extra, cmp);
    unsigned int const declared = CompareOptionalHeader(parser, objdump, cmp);
    std::uint64_t const imageBase = parser.IsPE32Bit() ? parser.GetOptionalHeaderPtr32()->ImageBase
                                    : parser.IsPE64Bit() ? parser.GetOptionalHeaderPtr64()->ImageBase
                                                         : 0;
    CompareDataDirs(parser, objdump, declared, cmp);
    CompareSections(parser, objdump, extra, imageBase, cmp);
    CompareImports(parser, objdump, cmp);
    CompareExports(parser, objdump, cmp);
    return cmp;
}

// ------------------------------------------------------------------ corpus

struct Options {
    std::string objdump = "x86_64-w64-mingw32-objdump";
    std::string readobj;
    std::string winePackage;
    std::vector<std::string> mingwRoots;
    std::string builtDir;
    unsigned long long every = 1;
};

struct Group {
    std::string name;
    std::vector<std::string> files;
};

// The reader takes only these endings, in lower case.
bool IsImageName(std::string const& path)
{
    auto const ends = [&](char const* ending) {
        std::size_t const n = std::strlen(ending);
        return path.size() >= n && path.compare(path.size() - n, n, ending) == 0;
    };
    return ends(".dll") || ends(".exe");
}

// The package's Windows images: the .dll and .exe files it installs under an
// x86_64-windows directory.
std::vector<std::string> PackageImages(std::string const& package)
{
    std::vector<std::string> files;
    auto const listing = corpus::RunCommand("dpkg -L " + corpus::ShellQuote(package) + " 2>/dev/null");
    if (!listing) return files;
    std::size_t start = 0;
    while (start < listing->size()) {
        std::size_t end = listing->find('\n', start);
        if (end == std::string::npos) end = listing->size();
        std::string const line = listing->substr(start, end - start);
        start = end + 1;
        std::error_code error;
        if (line.find("/x86_64-windows/") != std::string::npos && IsImageName(line) &&
            std::filesystem::is_regular_file(line, error))
            files.push_back(line);
    }
    return files;
}

std::vector<std::string> ImagesUnder(std::string const& root, bool recursive)
{
    namespace fs = std::filesystem;
    std::vector<std::string> files;
    std::error_code error;
    auto const take = [&](fs::directory_entry const& entry) {
        std::error_code ignored;
        if (entry.is_regular_file(ignored) && IsImageName(entry.path().string())) files.push_back(entry.path().string());
    };
    if (recursive) {
        for (fs::recursive_directory_iterator it(root, fs::directory_options::skip_permission_denied, error), end;
             !error && it != end; it.increment(error))
            take(*it);
    } else {
        for (fs::directory_iterator it(root, error), end; !error && it != end; it.increment(error)) take(*it);
    }
    return files;
}

bool ParseOptions(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i) {
        std::string const arg = argv[i];
        if (i + 1 >= argc) return false;
        std::string const value = argv[++i];
        if (arg == "--objdump") options.objdump = value;
        else if (arg == "--readobj") options.readobj = value;
        else if (arg == "--wine-package") options.winePackage = value;
        else if (arg == "--mingw-root") options.mingwRoots.push_back(value);
        else if (arg == "--built-dir") options.builtDir = value;
        else if (arg == "--every") options.every = std::max(1ull, std::stoull(value));
        else return false;
    }
    return true;
}

std::vector<Group> Gather(Options const& options)
{
    std::vector<Group> groups;
    if (!options.winePackage.empty()) groups.push_back({options.winePackage, PackageImages(options.winePackage)});
    Group mingw{"mingw-w64 runtime", {}};
    for (auto const& root : options.mingwRoots) {
        auto const found = ImagesUnder(root, true);
        mingw.files.insert(mingw.files.end(), found.begin(), found.end());
    }
    if (!options.mingwRoots.empty()) groups.push_back(mingw);
    if (!options.builtDir.empty()) groups.push_back({"built here", ImagesUnder(options.builtDir, false)});
    for (auto& group : groups) {
        std::sort(group.files.begin(), group.files.end());
        group.files.erase(std::unique(group.files.begin(), group.files.end()), group.files.end());
    }
    return groups;
}

}  // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!ParseOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: %s --objdump PATH [--readobj PATH] [--wine-package NAME] [--mingw-root DIR]... "
                             "[--built-dir DIR] [--every K]\n", argv[0]);
        return 2;
    }
    if (!corpus::RunCommand(corpus::ShellQuote(options.objdump) + " --version >/dev/null 2>&1")) {
        std::printf("SKIPPED: %s cannot be run; the PE corpus is not compared\n", options.objdump.c_str());
        return kSkipped;
    }
    if (!options.readobj.empty() &&
        !corpus::RunCommand(corpus::ShellQuote(options.readobj) + " --version >/dev/null 2>&1"))
        options.readobj.clear();
    if (options.readobj.empty())
        std::printf("note: llvm-readobj not available: DOS header, COFF symbol fields and exact section sizes "
                    "are not compared\n");

    auto const started = std::chrono::steady_clock::now();
    std::vector<Group> groups = Gather(options);
    std::map<std::string, unsigned> allowedFiles;
    Comparison::Counts counts;
    unsigned total = 0;
    unsigned matched = 0;
    std::vector<std::string> summary;
    for (Group const& group : groups) {
        std::vector<std::string> files;
        for (std::size_t i = 0; i < group.files.size(); i += options.every) files.push_back(group.files[i]);
        if (options.every > 1 && group.files.size() > 1)
            std::printf("%s: every %llu-th of %zu files by sorted name (%zu files)\n", group.name.c_str(),
                        options.every, group.files.size(), files.size());
        unsigned groupMatched = 0;
        bool const useReadobj = !options.readobj.empty();
        for (std::size_t first = 0; first < files.size(); first += kBatch) {
            std::vector<std::string> const batch(files.begin() + static_cast<std::ptrdiff_t>(first),
                                                 files.begin() + static_cast<std::ptrdiff_t>(
                                                                     std::min(files.size(), first + kBatch)));
            auto const objdumpParts = corpus::RunTool(corpus::Tool::Objdump, options.objdump, batch);
            std::vector<std::optional<std::string>> readobjParts(batch.size());
            if (useReadobj) readobjParts = corpus::RunTool(corpus::Tool::Readobj, options.readobj, batch);
            for (std::size_t i = 0; i < batch.size(); ++i) {
                // llvm-readobj stops at a file it cannot read: ask again alone.
                if (useReadobj && !readobjParts[i])
                    readobjParts[i] = corpus::RunTool(corpus::Tool::Readobj, options.readobj, {batch[i]})[0];
                Comparison const cmp = CompareFile(batch[i], objdumpParts[i], useReadobj, readobjParts[i]);
                if (cmp.Failed()) std::printf("DIFF %s: %s\n", batch[i].c_str(), cmp.First().c_str());
                else ++groupMatched;
                for (auto const& quirk : cmp.Allowed()) ++allowedFiles[quirk];
                counts.sections += cmp.counts.sections;
                counts.modules += cmp.counts.modules;
                counts.namedImports += cmp.counts.namedImports;
                counts.ordinalImports += cmp.counts.ordinalImports;
                counts.exportedNames += cmp.counts.exportedNames;
            }
        }
        summary.push_back(group.name + ": " + std::to_string(groupMatched) + " of " + std::to_string(files.size()) +
                          " files matched fully");
        total += static_cast<unsigned>(files.size());
        matched += groupMatched;
    }
    double const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();

    for (auto const& line : summary) std::printf("%s\n", line.c_str());
    for (auto const& [quirk, files] : allowedFiles) std::printf("allowed: %s (%u files)\n", quirk.c_str(), files);
    std::printf("compared: %llu sections, %llu imported modules with %llu functions by name and %llu by ordinal, "
                "%llu exported names\n",
                counts.sections, counts.modules, counts.namedImports, counts.ordinalImports, counts.exportedNames);
    std::printf("%u of %u files matched fully (%.1f s)\n", matched, total, seconds);
    if (total == 0) {
        std::printf("SKIPPED: no PE images found\n");
        return kSkipped;
    }
    return matched == total ? 0 : 1;
}
