// The PE reader on images built in memory: every header field and table is
// under the test's control, hostile ones included.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "files/TempFiles.h"

namespace {

using U = std::vector<unsigned long long>;

template <class T>
void Put(std::string& bytes, std::size_t offset, T value)
{
    if (bytes.size() < offset + sizeof(T)) bytes.resize(offset + sizeof(T));
    std::memcpy(bytes.data() + offset, &value, sizeof(T));
}

// Appends `text` and its NUL; returns where it starts when `bytes` start at `rva`.
std::uint32_t AppendText(std::string& bytes, std::string const& text, std::size_t rva)
{
    auto const at = static_cast<std::uint32_t>(rva + bytes.size());
    bytes += text;
    bytes += '\0';
    return at;
}

std::size_t Align(std::size_t n) { return (n + 0x1FF) & ~std::size_t{0x1FF}; }

struct Section {
    std::string name;
    std::uint32_t virtualAddress = 0;
    std::string raw;
    std::uint32_t virtualSize = 0;  // 0: the raw size
};

// An image with its signature at 0x40, the headers that follow it, and each
// section's raw bytes at the next 0x200 boundary; the last one ends the file.
struct Image {
    bool is64 = true;
    std::uint16_t machine = 0x8664;
    std::uint16_t magic = 0;  // 0: 0x20B or 0x10B after is64
    std::string signature = std::string("PE\0\0", 4);
    std::uint32_t rvaCount = 16;
    std::vector<IMAGE_DATA_DIR> dirs = std::vector<IMAGE_DATA_DIR>(16);
    std::vector<Section> sections;
    std::uint16_t sectionCount = 0;  // nonzero: the NumberOfSections claimed

    std::size_t SectionTable() const { return 0x40 + signature.size() + 44 + (is64 ? 88 : 72) + dirs.size() * 8; }

    std::string Build() const
    {
        std::string bytes = "MZ";
        Put<std::uint32_t>(bytes, 60, 0x40);
        bytes += signature;
        std::size_t const coff = bytes.size();
        Put(bytes, coff, machine);
        Put(bytes, coff + 2, sectionCount ? sectionCount : static_cast<std::uint16_t>(sections.size()));
        Put<std::uint32_t>(bytes, coff + 4, 0x5F5E0FF);  // time stamp
        Put<std::uint16_t>(bytes, coff + 20, magic ? magic : is64 ? 0x20B : 0x10B);
        Put<std::uint32_t>(bytes, coff + 36, 0x1000);  // entry point
        // The 64-bit image base, or the 32-bit base of data (0) and image base.
        Put<std::uint64_t>(bytes, coff + 44, is64 ? 0x140000000ull : 0x400000ull << 32);
        Put<std::uint32_t>(bytes, coff + (is64 ? 128 : 112), rvaCount);
        for (IMAGE_DATA_DIR const& dir : dirs) Put(bytes, bytes.size(), dir);
        std::size_t raw = Align(SectionTable() + sections.size() * 40);
        for (std::size_t i = 0; i < sections.size(); ++i) {
            SectionHeader header{};
            std::memcpy(header.Name, sections[i].name.data(), std::min<std::size_t>(sections[i].name.size(), 8));
            header.SizeOfRawData = static_cast<std::uint32_t>(sections[i].raw.size());
            header.VirtualSize = sections[i].virtualSize ? sections[i].virtualSize : header.SizeOfRawData;
            header.VirtualAddress = sections[i].virtualAddress;
            header.PointerToRawData = static_cast<std::uint32_t>(raw);
            Put(bytes, SectionTable() + i * 40, header);
            bytes.resize(raw);
            bytes += sections[i].raw;
            raw += Align(sections[i].raw.size());
        }
        return bytes;
    }
};

// An imported function: a hint and a name, or an ordinal and "".
using Function = std::pair<std::uint16_t, std::string>;
using Module = std::pair<std::string, std::vector<Function>>;

// An import section at `rva` as a linker lays it out: descriptors, each
// module's lookup table, then the names. Sets data directory 1.
Section ImportSection(Image& image, std::uint32_t rva, std::vector<Module> const& modules)
{
    std::size_t const thunk = image.is64 ? 8 : 4;
    std::size_t table = (modules.size() + 1) * 20;
    std::size_t texts = table;
    for (Module const& module : modules) texts += (module.second.size() + 1) * thunk;
    std::string raw(texts, '\0');
    for (std::size_t m = 0; m < modules.size(); ++m, table += thunk) {
        Put<std::uint32_t>(raw, m * 20, static_cast<std::uint32_t>(rva + table));       // lookup table
        Put<std::uint32_t>(raw, m * 20 + 16, static_cast<std::uint32_t>(rva + table));  // address table
        Put<std::uint32_t>(raw, m * 20 + 12, AppendText(raw, modules[m].first, rva));
        for (auto const& [number, name] : modules[m].second) {
            std::uint64_t value = number | (image.is64 ? 1ull << 63 : 1ull << 31);
            if (!name.empty()) {
                raw.resize(raw.size() + raw.size() % 2);
                value = rva + raw.size();
                Put(raw, raw.size(), number);
                AppendText(raw, name, rva);
            }
            // A 32-bit thunk's upper half lands in the next slot, written after.
            Put(raw, table, value);
            table += thunk;
        }
    }
    image.dirs[1] = IMAGE_DATA_DIR{rva, static_cast<std::uint32_t>((modules.size() + 1) * 20)};
    return Section{".idata", rva, raw, 0};
}

// An export section at `rva` for `names`, function i at 0x1000 + 0x10 * i and
// the ordinal table reversed. Sets data directory 0.
Section ExportSection(Image& image, std::uint32_t rva, std::string const& dll, std::uint32_t base,
                      std::vector<std::string> const& names, std::uint32_t functions)
{
    auto const count = static_cast<std::uint32_t>(names.size());
    std::uint32_t const nameTable = 40 + 4 * functions;
    std::uint32_t const ordinals = nameTable + 4 * count;
    std::string raw(ordinals + 2 * count, '\0');
    std::uint32_t const directory[10] = {0,         0,     0,        AppendText(raw, dll, rva), base,
                                         functions, count, rva + 40, rva + nameTable,           rva + ordinals};
    std::memcpy(raw.data(), directory, sizeof directory);
    for (std::uint32_t i = 0; i < functions; ++i) Put<std::uint32_t>(raw, 40 + 4 * i, 0x1000 + 0x10 * i);
    for (std::uint32_t i = 0; i < count; ++i) {
        Put<std::uint32_t>(raw, nameTable + 4 * i, AppendText(raw, names[i], rva));
        Put<std::uint16_t>(raw, ordinals + 2 * i, static_cast<std::uint16_t>(count - 1 - i));
    }
    image.dirs[0] = IMAGE_DATA_DIR{rva, static_cast<std::uint32_t>(raw.size())};
    return Section{".edata", rva, raw, 0};
}

// Writes `bytes` as `name` in a fresh scratch directory and reads it.
bool Read(ZKPEParser& parser, std::string const& bytes, char const* name = "image.dll")
{
    zk64::test::TempDir dir("pe");
    return parser.ReadPEFile(ZKString(dir.Write(name, bytes).c_str()));
}

std::string Text(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

// A 64-bit image with a code section and a data section.
Image TwoSections()
{
    Image image;
    image.sections = {{".text", 0x1000, std::string(0x300, '\xC3')}, {".data", 0x2000, std::string(0x80, '\1'), 0x100}};
    return image;
}

std::vector<Module> const kModules = {
    {"KERNEL32.dll", {{0x1A3, "GetLastError"}, {7, ""}, {0x2F0, "Sleep"}, {9, ""}, {0x10, "ExitProcess"}}},
    {"empty.dll", {}},
    {"msvcrt.dll", {{0x44, "printf"}}}};

// A code section, imports at 0x3000, exports at 0x5000.
Image WithTables(bool is64 = true, std::vector<Module> const& modules = kModules)
{
    Image image;
    image.is64 = is64;
    image.machine = is64 ? 0x8664 : 0x14C;
    image.sections = {Section{".text", 0x1000, std::string(0x40, '\xC3')}};
    image.sections.push_back(ImportSection(image, 0x3000, modules));
    image.sections.push_back(ExportSection(image, 0x5000, "x.dll", 5, {"Alpha", "Beta", "Gamma"}, 4));
    return image;
}

// "name thunks: hint name ..." per module.
std::vector<std::string> Imports(ZKContainer<ImportDirRecord> const& records)
{
    std::vector<std::string> out;
    for (unsigned long long i = 0; i < records.GetItemCount(); ++i) {
        ImportDirRecord const record = records.GetItem(i);
        out.push_back(Text(record.name) + " " + std::to_string(record.thunkCount) + ":");
        for (unsigned long long j = 0; j < record.subRecords.GetItemCount(); ++j)
            out.back() +=
                " " + std::to_string(record.subRecords.GetItem(j).hint) + " " + Text(record.subRecords.GetItem(j).name);
    }
    return out;
}

double Milliseconds(auto&& work)
{
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

TEST(PEParser, HeadersSectionsAndDirectoriesOfBothKinds)
{
    ZKPEParser unread;
    IMAGE_DATA_DIR dir{1, 1};
    SectionHeader section{};
    EXPECT_FALSE(unread.GetExportDir(dir) || unread.GetCLRDir(dir) || unread.GetImportDirSection(section) ||
                 unread.IsPE32Bit() || unread.IsPE64Bit() || unread.IsValid() ||
                 unread.GetSectionHeaderByName(".text", section));
    EXPECT_TRUE(unread.GetOptionalHeaderPtr32() == nullptr && unread.GetOptionalHeaderPtr64() == nullptr);
    EXPECT_EQ(Text(unread.GetMachineTypeString()),
              "The contents of this field are assumed to be applicable to any machine type");
    EXPECT_EQ(unread.GetImageSignature(), ZK_IMAGE_SIGNATURE_NONE);

    ZKPEParser parser;
    ASSERT_TRUE(Read(parser, TwoSections().Build()));
    EXPECT_TRUE(parser.IsValid() && parser.IsPE64Bit() && !parser.IsPE32Bit() &&
                parser.GetOptionalHeaderPtr32() == nullptr);
    ZKContainer<SectionHeader> sections;
    ZKContainer<IMAGE_DATA_DIR> dirs;
    EXPECT_TRUE(parser.GetAllSectionHeaders(sections) && parser.GetAllOptionalHeaderDataDirs(dirs));
    COFFHeader const& coff = *parser.GetCOFFHeaderPtr();
    EXPECT_EQ(U({parser.GetOptionalHeaderPtr64()->ImageBase, parser.GetOptionalHeaderPtr64()->NumberOfRvaAndSizes,
                 parser.GetDOSHeaderPtr()->e_lfanew, coff.NumberOfSections, coff.TimeDateStamp,
                 parser.GetOptionalHeaderStandardPtr()->AddressOfEntryPoint, parser.GetPEFileBufferPtr()[0],
                 sections.GetItemCount(), sections[1].VirtualSize, sections[0].PointerToRawData, dirs.GetItemCount()}),
              U({0x140000000, 16, 0x40, 2, 0x5F5E0FF, 0x1000, 'M', 2, 0x100, 0x200, 16}));
    EXPECT_STREQ(sections[1].Name, ".data");
    EXPECT_EQ(Text(parser.GetMachineTypeString()), "x64");

    Image image = TwoSections();
    image.is64 = false;
    image.machine = 0x14C;
    // The import directory of size 0, then directories at, at the end of and past .data.
    image.dirs = {{}, {0x2010, 0}, {0x2000, 8}, {0x2100, 8}, {0x2101, 8}};
    image.rvaCount = 5;
    ZKPEParser small;
    ASSERT_TRUE(Read(small, image.Build()));
    EXPECT_TRUE(small.IsPE32Bit() && small.GetOptionalHeaderPtr64() == nullptr);
    EXPECT_EQ(small.GetOptionalHeaderPtr32()->ImageBase, 0x400000u);
    EXPECT_EQ(Text(small.GetMachineTypeString()), "Intel 386 or later processors and compatible processors");
    EXPECT_TRUE(small.GetImportDir(dir) && dir.VirtualAddress == 0x2010);
    EXPECT_FALSE(small.GetImportDirSection(section)) << "size 0";
    EXPECT_TRUE(small.GetResourceDirSection(section) && std::string(section.Name) == ".data");
    EXPECT_TRUE(small.GetExceptionDirSection(section)) << "the upper end is inclusive";
    EXPECT_FALSE(small.GetCertificateDirSection(section));
    EXPECT_TRUE(small.GetCLRDir(dir) && dir.VirtualAddress == 0 && dir.Size == 0) << "index 14 of an image declaring 5";

    image.rvaCount = 600;
    image.dirs.resize(600, IMAGE_DATA_DIR{0x1000, 4});
    image.sections.push_back(Section{"ABCDEFGH", 0x3000, std::string(0x10, '\0'), 0x41});
    ZKPEParser many;
    ASSERT_TRUE(Read(many, image.Build()));
    many.GetAllOptionalHeaderDataDirs(dirs);
    EXPECT_EQ(U({dirs.GetItemCount(), dirs.GetMaxItemCount()}), U({600, 1024})) << "grown as pushes would grow it";
    EXPECT_TRUE(many.GetSectionHeaderByName(".data", section)) << "the section table follows the directories";
    EXPECT_FALSE(many.GetSectionHeaderByName(".TEXT", section) || many.GetSectionHeaderByName(".tex", section) ||
                 many.GetSectionHeaderByName("ABCDEFGH", section));
    EXPECT_TRUE(many.GetSectionHeaderByName("ABCDEFGHA", section)) << "runs on into VirtualSize 0x41";
    EXPECT_EQ(section.VirtualAddress, 0x3000u);
}

TEST(PEParser, SignaturesAndMachinesInTheirSearchOrder)
{
    // Each row: signature, machine, then the signature, machine and text read.
    struct Case {
        std::string signature;
        unsigned short machine;
        IMAGE_SIGNATURES read;
        MACHINE_TYPES stored;
        char const* text;
    };
    std::string const nt("PE\0\0", 4);
    for (Case const& c : {Case{"NE", 0x1C4, ZK_IMAGE_SIGNATURE_OS2, ZK_MACHINE_ARM, "ARM little endian"},
                          Case{"ZZ", 0x1F1, ZK_IMAGE_SIGNATURE_DOS, ZK_MACHINE_ARM, "ARM little endian"},
                          Case{nt, 0x266, ZK_IMAGE_SIGNATURE_NT, ZK_MACHINE_IA64, "Intel Itanium processor family"},
                          Case{nt, 0x1A6, ZK_IMAGE_SIGNATURE_NT, ZK_MACHINE_SH3, "Hitachi SH3"},
                          Case{nt, 0xAA64, ZK_IMAGE_SIGNATURE_NT, ZK_MACHINE_ARM64, "ARM64 little endian"},
                          Case{nt, 0xFFFF, ZK_IMAGE_SIGNATURE_NT, ZK_MACHINE_AM33, "Matsushita AM33"},
                          Case{nt, 0x5128, ZK_IMAGE_SIGNATURE_NT, ZK_MACHINE_RISCV128, "RISC-V 128-bit address space"},
                          Case{nt, 0x5064, ZK_IMAGE_SIGNATURE_NT, ZK_MACHINE_RISCV64, "RISC-V 64-bit address space"},
                          Case{nt, 0x0001, ZK_IMAGE_SIGNATURE_NT, ZK_MACHINE_UNKNOWN, ""}}) {
        Image image = TwoSections();
        image.signature = c.signature;
        image.machine = c.machine;
        ZKPEParser parser;
        ASSERT_TRUE(Read(parser, image.Build()));
        EXPECT_EQ(parser.GetImageSignature(), c.read) << c.signature;
        EXPECT_EQ(parser.GetCOFFHeaderPtr()->NumberOfSections, 2) << "headers follow the signature";
        EXPECT_EQ(parser.GetMachineType(), c.stored) << std::hex << c.machine;
        EXPECT_TRUE(!*c.text || Text(parser.GetMachineTypeString()) == c.text) << c.text;
    }
}

TEST(PEParser, FilesPathsCopiesAndOneReadPerParser)
{
    zk64::test::TempDir dir("pe-files");
    std::string const bytes = TwoSections().Build();
    for (char const* name : {"image.EXE", "image.sys", "image.Dll", "x.ex"}) {
        ZKPEParser parser;
        ZKFile stream;
        EXPECT_FALSE(parser.ReadPEFile(stream, ZKString(dir.Write(name, bytes).c_str()))) << name;
        EXPECT_FALSE(stream.IsFileOpen()) << "refused before opening: " << name;
    }
    ZKPEParser parser;
    ZKPEParser other;
    EXPECT_FALSE(parser.ReadPEFile(ZKString("exe")) || parser.ReadPEFile(ZKString(dir.Path("missing.exe").c_str())));
    ZKString const path(dir.Write("open.dll", bytes).c_str());
    ZKFile busy;
    ASSERT_TRUE(busy.OpenFile(path, FILE_STREAM_BINARY_READ));
    EXPECT_FALSE(other.ReadPEFile(busy, path)) << "a file already open in the stream";
    busy.CloseFile();
    ASSERT_TRUE(parser.ReadPEFile(busy, path));
    EXPECT_TRUE(busy.IsFileOpen());
    busy.CloseFile();
    EXPECT_FALSE(parser.ReadPEFile(busy, path) || parser.ReadPEFile(path)) << "a read parser refuses";
    EXPECT_EQ(Text(parser.GetExeFileName()) + "|" + Text(parser.GetExeFilePath()), "open.dll|" + dir.Dir());

    // Copies and moves leave the path; equality does not look at it.
    ASSERT_TRUE(other.ReadPEFile(ZKString(dir.Write("second.exe", bytes).c_str())));
    ZKPEParser copy(parser);
    EXPECT_TRUE(other == parser && copy == parser && copy.IsValid() && copy.GetExeFileName().IsEmpty());
    ZKPEParser moved(std::move(copy));
    EXPECT_TRUE(moved == parser && moved.GetExeFilePath().IsEmpty());
    EXPECT_FALSE(ZKPEParser() == parser);

#if !defined(_WIN32)
    // A backslash splits the path even when a slash comes later.
    std::filesystem::create_directories(dir.Path("C:\\a"));
    ZKPEParser split;
    ASSERT_TRUE(split.ReadPEFile(ZKString(dir.Write("C:\\a/b.exe", bytes).c_str())));
    EXPECT_EQ(Text(split.GetExeFileName()) + "|" + Text(split.GetExeFilePath()), "a/b.exe|" + dir.Dir() + "/C:");
#endif

    SectionHeader section{};
    section.VirtualAddress = 0x2000;
    section.SizeOfRawData = 0x100;
    section.PointerToRawData = 0x600;
    auto const* base = reinterpret_cast<unsigned char const*>(0x10000);
    EXPECT_EQ(ImgDataDirRVAToFileOffset(base, 0x2010, section), base + 0x610);
    EXPECT_EQ(ImgDataDirRVAToFileOffset(base, 0x2100, section), base + 0x700) << "the raw end is accepted";
    EXPECT_EQ(ImgDataDirRVAToFileOffset(base, 0x2101, section), nullptr);
    EXPECT_EQ(ImgDataDirRVAToFileOffset(base, 0x1FFF, section), nullptr) << "below the section wraps";
}

TEST(PEImports, BothTablesOfBothKindsAppendOnEachCall)
{
    std::vector<std::string> const once = {"KERNEL32.dll 5: 419 GetLastError 752 Sleep 16 ExitProcess",
                                           "empty.dll 0:", "msvcrt.dll 1: 68 printf"};
    std::vector<std::string> twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    for (bool is64 : {true, false}) {
        ZKPEParser parser;
        ASSERT_TRUE(Read(parser, WithTables(is64).Build()));
        ZKContainer<ImportDirRecord> imports;
        EXPECT_TRUE(parser.GetAllImports(imports) && parser.GetAllImports(imports));
        EXPECT_EQ(Imports(imports), twice) << is64;
        EXPECT_EQ(U({imports.GetItem(0).importLookupTableRVA, imports.GetItem(0).subRecords.GetMaxItemCount()}),
                  U({0x3000 + 4 * 20, 512}));
        ZKContainer<ExportDirRecord> exports;
        EXPECT_FALSE(parser.GetAllExports(exports) || parser.GetAllExports(exports)) << "false on success too";
        ASSERT_EQ(exports.GetItemCount(), 2u);
        ExportDirRecord const record = exports.GetItem(1);
        EXPECT_EQ(U({record.Base, record.NumberOfFunctions, record.NumberOfNames, record.AddressOfFunctions}),
                  U({5, 4, 3, 0x5000 + 40}));
        // Ordinals are Base plus the position, not the ordinal table's entry,
        // and every name gets the first function.
        std::vector<std::string> subs;
        for (unsigned long long i = 0; i < record.subRecords.GetItemCount(); ++i) {
            auto const sub = record.subRecords.GetItem(i);
            subs.push_back(Text(sub.name) + " " + std::to_string(sub.ordinal) + " " + std::to_string(sub.index) + " " +
                           std::to_string(sub.functionRVA) + " " + std::to_string(sub.nameRVA - 0x5000));
        }
        EXPECT_EQ(subs, std::vector<std::string>({"Alpha 5 0 4096 80", "Beta 6 1 4096 86", "Gamma 7 2 4096 91"}));
    }

    // Empty tables: no import descriptor and no exported name.
    Image bare;
    bare.sections = {ImportSection(bare, 0x3000, {}), ExportSection(bare, 0x5000, "none.dll", 1, {}, 2)};
    // No export directory, and an import directory of size 0 at an address.
    Image absent = TwoSections();
    absent.dirs[1] = IMAGE_DATA_DIR{0x1000, 0};
    ZKPEParser empty;
    ZKPEParser none;
    ASSERT_TRUE(Read(empty, bare.Build()) && Read(none, absent.Build()));
    ZKContainer<ImportDirRecord> imports;
    ZKContainer<ExportDirRecord> exports;
    EXPECT_TRUE(empty.GetAllImports(imports)) << "a first entry of zeros ends a valid walk";
    EXPECT_FALSE(empty.GetAllExports(exports));
    EXPECT_EQ(U({exports.GetItemCount(), exports.GetItem(0).subRecords.GetItemCount()}), U({1, 0}));
    EXPECT_FALSE(none.GetAllImports(imports) || none.GetAllExports(exports));
    EXPECT_FALSE(ZKPEParser().GetAllImports(imports) || ZKPEParser().GetAllExports(exports));
    EXPECT_EQ(U({imports.GetItemCount(), exports.GetItemCount()}), U({0, 1}));
}

// Truncated and hostile images: the reader stays inside the file's bytes,
// rejects impossible counts at once and bounds its table walks.
TEST(PEHostile, TruncationsCountsAndUnterminatedTables)
{
    Image const image = WithTables();
    std::string const whole = image.Build();
    std::size_t const headersEnd = image.SectionTable() + image.sections.size() * 40;
    auto const walk = [](std::string const& bytes, unsigned long long* modules = nullptr) {
        ZKPEParser parser;
        bool const read = Read(parser, bytes);
        ZKContainer<ImportDirRecord> imports(1);
        ZKContainer<ExportDirRecord> exports(1);
        parser.GetAllImports(imports);
        parser.GetAllExports(exports);
        EXPECT_EQ(parser.IsValid(), read);
        if (modules) *modules = imports.GetItemCount();
        return read;
    };
    for (std::size_t length = 1; length < whole.size(); length += length < headersEnd + 64 ? 1 : 37)
        EXPECT_EQ(walk(whole.substr(0, length)), length >= headersEnd) << "length " << length;
    std::string bytes = whole;
    Put<std::uint32_t>(bytes, 60, 0xFFFFFFF0u);
    EXPECT_FALSE(walk(bytes)) << "signature offset past the end";
    Put<std::uint32_t>(bytes, 60, static_cast<std::uint32_t>(bytes.size() - 2));
    EXPECT_FALSE(walk(bytes)) << "room for a 16-bit signature, not for the headers";
    Image odd = WithTables();
    odd.magic = 0x107;
    EXPECT_FALSE(walk(odd.Build()));
    odd.magic = 0;
    odd.sectionCount = 0xFFFF;
    EXPECT_LT(Milliseconds([&] { EXPECT_FALSE(walk(odd.Build())); }), 100.0);
    odd.sectionCount = 0;
    odd.rvaCount = 0x7FFFFFFF;
    EXPECT_LT(Milliseconds([&] { EXPECT_FALSE(walk(odd.Build())); }), 100.0);
    // Negative as a signed count: no directories, and the section table is
    // then read where the directories stand (zero entries here).
    odd.rvaCount = 0x80000000u;
    ZKPEParser negative;
    ASSERT_TRUE(Read(negative, odd.Build()));
    ZKContainer<IMAGE_DATA_DIR> dirs;
    ZKContainer<SectionHeader> sections;
    EXPECT_FALSE(negative.GetAllOptionalHeaderDataDirs(dirs));
    ASSERT_TRUE(negative.GetAllSectionHeaders(sections));
    EXPECT_EQ(sections.GetItem(0).SizeOfRawData, 0u) << "a zero directory entry read as a section";

    // Names without terminators up to the end of the file stop the walk.
    std::size_t const name = whole.find("KERNEL32.dll");
    unsigned long long modules = 99;
    EXPECT_TRUE(walk(whole.substr(0, name) + std::string(whole.size() - name, 'A'), &modules));
    EXPECT_EQ(modules, 0u);
    // A lookup table in the last 2 bytes of the file: a thunk is 8 bytes.
    Image last;
    last.sections.push_back(ImportSection(last, 0x3000, kModules));
    auto const rawSize = static_cast<std::uint32_t>(last.sections.back().raw.size());
    Put<std::uint32_t>(last.sections.back().raw, 0, 0x3000 + rawSize - 2);
    EXPECT_TRUE(walk(last.Build(), &modules));
    EXPECT_EQ(modules, 0u);
    // Export names counted beyond the section push nothing, at once.
    bytes = whole;
    Put<std::uint32_t>(bytes, whole.find("x.dll") - (40 + 16 + 12 + 6) + 24, 0xFFFFFFFFu);
    ZKPEParser names;
    ASSERT_TRUE(Read(names, bytes));
    ZKContainer<ExportDirRecord> records(1);
    EXPECT_LT(Milliseconds([&] { EXPECT_FALSE(names.GetAllExports(records)); }), 100.0);
    EXPECT_EQ(records.GetItemCount(), 0u);

    // Thousands of import descriptors sharing one name and one long lookup
    // table: the work stays bounded by the section's size.
    constexpr std::size_t descriptors = 20000;
    std::string raw((descriptors + 1) * 20, '\0');
    std::uint32_t const nameRva = AppendText(raw, "shared.dll", 0x3000);
    std::uint32_t const hintName = AppendText(raw, std::string("\1\0f", 3), 0x3000);
    raw.resize(raw.size() + 7 - (raw.size() + 7) % 8);
    auto const table = static_cast<std::uint32_t>(0x3000 + raw.size());
    for (int i = 0; i < 4000; ++i) Put<std::uint64_t>(raw, raw.size(), hintName);
    Put<std::uint64_t>(raw, raw.size(), 0);
    for (std::size_t d = 0; d < descriptors; ++d) {
        Put(raw, d * 20, table);
        Put(raw, d * 20 + 12, nameRva);
    }
    Image shared;
    shared.sections = {Section{".idata", 0x3000, raw}};
    shared.dirs[1] = IMAGE_DATA_DIR{0x3000, static_cast<std::uint32_t>(descriptors * 20)};
    ZKPEParser parser;
    ASSERT_TRUE(Read(parser, shared.Build()));
    ZKContainer<ImportDirRecord> imports(1);
    EXPECT_LT(Milliseconds([&] { EXPECT_FALSE(parser.GetAllImports(imports)); }), 2000.0);
    EXPECT_LT(imports.GetItemCount(), 400u) << "stopped by the bounds";
    EXPECT_GE(imports.GetItemCount(), 10u) << "honest-sized prefixes are still walked";
}
