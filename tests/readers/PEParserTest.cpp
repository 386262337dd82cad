// The PE reader on images built in memory: every header field and table is
// under the test's control, hostile ones included.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <chrono>
#include <string>
#include <vector>

#include "readers/PEImageBuilder.h"

using zk64::test::TempDir;

namespace {

std::string Text(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

// A 64-bit image with a code section and a data section.
pe::Image TwoSections()
{
    pe::Image image;
    image.sections = {pe::Section{".text", 0x1000, std::string(0x300, '\xC3'), 0},
                      pe::Section{".data", 0x2000, std::string(0x80, '\x01'), 0x100}};
    return image;
}

std::vector<pe::Module> const kModules = {
    {"KERNEL32.dll", {{0x1A3, "GetLastError"}, {7, ""}, {0x2F0, "Sleep"}, {9, ""}, {0x10, "ExitProcess"}}},
    {"empty.dll", {}},
    {"msvcrt.dll", {{0x44, "printf"}}},
};

// A code section, imports at 0x3000, exports at 0x5000.
pe::Image WithTables(bool is64 = true, std::vector<pe::Module> const& modules = kModules)
{
    pe::Image image;
    image.is64 = is64;
    image.machine = is64 ? 0x8664 : 0x14C;
    image.sections = {pe::Section{".text", 0x1000, std::string(0x40, '\xC3'), 0}};
    image.sections.push_back(pe::ImportSection(image, 0x3000, modules));
    image.sections.push_back(pe::ExportSection(image, 0x5000, "x.dll", 5, {"Alpha", "Beta", "Gamma"}, 4));
    return image;
}

// "name thunks: hint name, ..." per module.
std::vector<std::string> Imports(ZKContainer<ImportDirRecord> const& records)
{
    std::vector<std::string> out;
    for (unsigned long long i = 0; i < records.GetItemCount(); ++i) {
        ImportDirRecord const record = records.GetItem(i);
        out.push_back(Text(record.name) + " " + std::to_string(record.thunkCount) + ":");
        for (unsigned long long j = 0; j < record.subRecords.GetItemCount(); ++j)
            out.back() += " " + std::to_string(record.subRecords.GetItem(j).hint) + " " + Text(record.subRecords.GetItem(j).name);
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
                 unread.IsPE32Bit() || unread.IsPE64Bit() || unread.IsValid() || unread.GetSectionHeaderByName(".text", section));
    EXPECT_TRUE(unread.GetOptionalHeaderPtr32() == nullptr && unread.GetOptionalHeaderPtr64() == nullptr);
    EXPECT_EQ(Text(unread.GetMachineTypeString()), "The contents of this field are assumed to be applicable to any machine type");
    EXPECT_EQ(unread.GetImageSignature(), ZK_IMAGE_SIGNATURE_NONE);

    ZKPEParser parser;
    ASSERT_TRUE(pe::Read(parser, TwoSections().Build()));
    EXPECT_TRUE(parser.IsValid() && parser.IsPE64Bit() && !parser.IsPE32Bit() && parser.GetOptionalHeaderPtr32() == nullptr);
    EXPECT_EQ(parser.GetOptionalHeaderPtr64()->ImageBase, 0x140000000ull);
    EXPECT_EQ(parser.GetOptionalHeaderPtr64()->NumberOfRvaAndSizes, 16u);
    EXPECT_EQ(parser.GetDOSHeaderPtr()->e_lfanew, 0x40u);
    EXPECT_EQ(parser.GetCOFFHeaderPtr()->NumberOfSections, 2);
    EXPECT_EQ(parser.GetCOFFHeaderPtr()->TimeDateStamp, 0x5F5E0FFu);
    EXPECT_EQ(parser.GetOptionalHeaderStandardPtr()->AddressOfEntryPoint, 0x1000u);
    EXPECT_EQ(Text(parser.GetMachineTypeString()), "x64");
    EXPECT_EQ(parser.GetPEFileBufferPtr()[0], 'M');
    ZKContainer<SectionHeader> sections;
    EXPECT_TRUE(parser.GetAllSectionHeaders(sections));
    ASSERT_EQ(sections.GetItemCount(), 2u);
    EXPECT_EQ(std::string(sections[1].Name) + " " + std::to_string(sections[1].VirtualSize), ".data 256");
    EXPECT_EQ(sections[0].PointerToRawData, 0x200u);
    ZKContainer<IMAGE_DATA_DIR> dirs;
    EXPECT_TRUE(parser.GetAllOptionalHeaderDataDirs(dirs));
    EXPECT_EQ(dirs.GetItemCount(), 16u);

    pe::Image image = TwoSections();
    image.is64 = false;
    image.machine = 0x14C;
    image.dirs = {{}, {0x2010, 0}, {0x2000, 8}, {0x2100, 8}, {0x2101, 8}};  // import of size 0, then at, at the end of and past .data
    image.rvaCount = 5;
    ZKPEParser small;
    ASSERT_TRUE(pe::Read(small, image.Build()));
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
    image.sections.push_back(pe::Section{"ABCDEFGH", 0x3000, std::string(0x10, '\0'), 0x41});
    ZKPEParser many;
    ASSERT_TRUE(pe::Read(many, image.Build()));
    many.GetAllOptionalHeaderDataDirs(dirs);
    EXPECT_EQ(dirs.GetItemCount(), 600u);
    EXPECT_EQ(dirs.GetMaxItemCount(), 1024u) << "as one push after another would grow it";
    EXPECT_TRUE(many.GetSectionHeaderByName(".data", section)) << "the section table follows the directories";
    EXPECT_FALSE(many.GetSectionHeaderByName(".TEXT", section) || many.GetSectionHeaderByName(".tex", section) ||
                 many.GetSectionHeaderByName("ABCDEFGH", section));
    EXPECT_TRUE(many.GetSectionHeaderByName("ABCDEFGHA", section)) << "runs on into VirtualSize 0x41";
    EXPECT_EQ(section.VirtualAddress, 0x3000u);
}

TEST(PEParser, SignaturesAndMachinesInTheirSearchOrder)
{
    std::pair<std::string, IMAGE_SIGNATURES> const signatures[] = {
        {std::string("NE", 2), ZK_IMAGE_SIGNATURE_OS2}, {std::string("PE\0\0", 4), ZK_IMAGE_SIGNATURE_NT},
        {std::string("ZZ", 2), ZK_IMAGE_SIGNATURE_DOS}};
    for (auto const& [signature, expected] : signatures) {
        pe::Image image = TwoSections();
        image.signature = signature;
        ZKPEParser parser;
        ASSERT_TRUE(pe::Read(parser, image.Build()));
        EXPECT_EQ(parser.GetImageSignature(), expected);
        EXPECT_EQ(parser.GetCOFFHeaderPtr()->NumberOfSections, 2) << "headers follow the signature";
    }
    // Classified bitwise, in table order.
    struct Case {
        unsigned short machine;
        MACHINE_TYPES stored;
        char const* text;
    };
    for (Case const& c : {Case{0x1C4, ZK_MACHINE_ARM, "ARM little endian"}, Case{0x1F1, ZK_MACHINE_ARM, "ARM little endian"},
                          Case{0x266, ZK_MACHINE_IA64, "Intel Itanium processor family"}, Case{0x1A6, ZK_MACHINE_SH3, "Hitachi SH3"},
                          Case{0xAA64, ZK_MACHINE_ARM64, "ARM64 little endian"}, Case{0xFFFF, ZK_MACHINE_AM33, "Matsushita AM33"},
                          Case{0x5128, ZK_MACHINE_RISCV128, "RISC-V 128-bit address space"},
                          Case{0x5064, ZK_MACHINE_RISCV64, "RISC-V 64-bit address space"}, Case{0x0001, ZK_MACHINE_UNKNOWN, ""}}) {
        pe::Image image = TwoSections();
        image.machine = c.machine;
        ZKPEParser parser;
        ASSERT_TRUE(pe::Read(parser, image.Build()));
        EXPECT_EQ(parser.GetMachineType(), c.stored) << std::hex << c.machine;
        EXPECT_TRUE(!*c.text || Text(parser.GetMachineTypeString()) == c.text) << c.text;
    }
}

TEST(PEParser, FilesPathsCopiesAndOneReadPerParser)
{
    TempDir dir("pe-files");
    std::string const bytes = TwoSections().Build();
    for (char const* name : {"image.EXE", "image.sys", "image.Dll", "x.ex"}) {
        ZKPEParser parser;
        ZKFile stream;
        EXPECT_FALSE(parser.ReadPEFile(stream, ZKString(dir.Write(name, bytes).c_str()))) << name;
        EXPECT_FALSE(stream.IsFileOpen()) << "refused before opening: " << name;
    }
    ZKPEParser parser, other;
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
    EXPECT_TRUE(other == parser);
    ZKPEParser copy(parser);
    EXPECT_TRUE(copy == parser);
    EXPECT_TRUE(copy.IsValid() && copy.GetExeFileName().IsEmpty());
    ZKPEParser moved(std::move(copy));
    EXPECT_TRUE(moved == parser);
    EXPECT_TRUE(moved.GetExeFilePath().IsEmpty());
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

TEST(PEImports, NamedAndOrdinalThunksOfBothKindsAppended)
{
    for (bool is64 : {true, false}) {
        ZKPEParser parser;
        ASSERT_TRUE(pe::Read(parser, WithTables(is64).Build()));
        ZKContainer<ImportDirRecord> records;
        EXPECT_TRUE(parser.GetAllImports(records));
        EXPECT_TRUE(parser.GetAllImports(records));
        std::vector<std::string> const once = {"KERNEL32.dll 5: 419 GetLastError 752 Sleep 16 ExitProcess", "empty.dll 0:",
                                               "msvcrt.dll 1: 68 printf"};
        std::vector<std::string> twice = once;
        twice.insert(twice.end(), once.begin(), once.end());
        EXPECT_EQ(Imports(records), twice) << is64;
        EXPECT_EQ(records.GetItem(0).importLookupTableRVA, 0x3000u + 4 * 20);
        EXPECT_EQ(records.GetItem(0).subRecords.GetMaxItemCount(), 512u);
    }
    ZKContainer<ImportDirRecord> records;
    EXPECT_FALSE(ZKPEParser().GetAllImports(records));
    ZKPEParser empty, absent;
    ASSERT_TRUE(pe::Read(empty, WithTables(true, {}).Build()));
    EXPECT_TRUE(empty.GetAllImports(records)) << "a first entry of zeros ends a valid walk";
    pe::Image sizeZero = WithTables();
    sizeZero.dirs[1].Size = 0;
    ASSERT_TRUE(pe::Read(absent, sizeZero.Build()));
    EXPECT_FALSE(absent.GetAllImports(records));
    EXPECT_EQ(records.GetItemCount(), 0u);
}

TEST(PEExports, OneRecordPerCallAndAlwaysFalse)
{
    ZKPEParser parser;
    ASSERT_TRUE(pe::Read(parser, WithTables().Build(), "lib.dll"));
    ZKContainer<ExportDirRecord> records;
    EXPECT_FALSE(parser.GetAllExports(records));
    ASSERT_EQ(records.GetItemCount(), 1u);
    ExportDirRecord const record = records.GetItem(0);
    EXPECT_EQ(std::vector<unsigned>({record.Base, record.NumberOfFunctions, record.NumberOfNames, record.AddressOfFunctions}),
              std::vector<unsigned>({5, 4, 3, 0x5000 + 40}));
    ASSERT_EQ(record.subRecords.GetItemCount(), 3u);
    char const* const names[] = {"Alpha", "Beta", "Gamma"};
    for (unsigned i = 0; i < 3; ++i) {
        auto const sub = record.subRecords.GetItem(i);
        EXPECT_EQ(Text(sub.name), names[i]) << "the name table's order";
        EXPECT_EQ(sub.ordinal, 5 + i) << "Base plus the position, not the ordinal table's entry";
        EXPECT_EQ(sub.index, i);
        EXPECT_EQ(sub.functionRVA, 0x1000u) << "the first function for every name";
        EXPECT_EQ(sub.nameRVA, 0x5000u + 40 + 16 + 12 + 6 + 6 + (i == 0 ? 0 : i == 1 ? 6 : 11));
    }
    EXPECT_FALSE(parser.GetAllExports(records));
    EXPECT_EQ(records.GetItemCount(), 2u) << "appended again";

    pe::Image none;
    none.sections.push_back(pe::ExportSection(none, 0x4000, "none.dll", 1, {}, 2));
    ZKPEParser noNames, noDirectory;
    ASSERT_TRUE(pe::Read(noNames, none.Build()));
    EXPECT_FALSE(noNames.GetAllExports(records));
    EXPECT_EQ(records.GetItemCount(), 3u);
    EXPECT_EQ(records.GetItem(2).subRecords.GetItemCount(), 0u);
    ASSERT_TRUE(pe::Read(noDirectory, TwoSections().Build()));
    EXPECT_FALSE(noDirectory.GetAllExports(records) || ZKPEParser().GetAllExports(records));
    EXPECT_EQ(records.GetItemCount(), 3u);
}

// Truncated and hostile images: the reader stays inside the file's bytes,
// rejects impossible counts at once and bounds its table walks.
TEST(PEHostile, TruncationsCountsAndUnterminatedTables)
{
    pe::Image const image = WithTables();
    std::string const whole = image.Build();
    std::size_t const headersEnd = image.SectionTableOffset() + image.sections.size() * 40;
    auto const walk = [](std::string const& bytes, unsigned long long* modules = nullptr) {
        ZKPEParser parser;
        bool const read = pe::Read(parser, bytes);
        ZKContainer<ImportDirRecord> imports(1);
        ZKContainer<ExportDirRecord> exports(1);
        parser.GetAllImports(imports);
        parser.GetAllExports(exports);
        IMAGE_DATA_DIR dir{};
        SectionHeader section{};
        parser.GetImportDirSection(section);
        parser.GetExportDir(dir);
        parser.GetSectionHeaderByName(".text", section);
        EXPECT_EQ(parser.IsValid(), read);
        if (modules) *modules = imports.GetItemCount();
        return read;
    };
    for (std::size_t length = 1; length < whole.size(); length += length < headersEnd + 64 ? 1 : 37)
        EXPECT_EQ(walk(whole.substr(0, length)), length >= headersEnd) << "length " << length;
    std::string bytes = whole;
    pe::Put<std::uint32_t>(bytes, 60, 0xFFFFFFF0u);
    EXPECT_FALSE(walk(bytes)) << "signature offset past the end";
    pe::Put<std::uint32_t>(bytes, 60, static_cast<std::uint32_t>(bytes.size() - 2));
    EXPECT_FALSE(walk(bytes)) << "room for a 16-bit signature, not for the headers";
    pe::Image odd = WithTables();
    odd.magic = 0x107;
    EXPECT_FALSE(walk(odd.Build()));
    odd.magic = 0;
    odd.sectionCountOverride = 0xFFFF;
    EXPECT_LT(Milliseconds([&] { EXPECT_FALSE(walk(odd.Build())); }), 100.0);
    odd.sectionCountOverride = 0;
    odd.rvaCount = 0x7FFFFFFF;
    EXPECT_LT(Milliseconds([&] { EXPECT_FALSE(walk(odd.Build())); }), 100.0);
    // Negative as a signed count: no directories, and the section table is
    // then read where the directories stand (zero entries here).
    odd.rvaCount = 0x80000000u;
    ZKPEParser negative;
    ASSERT_TRUE(pe::Read(negative, odd.Build()));
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
    pe::Image last;
    last.sections.push_back(pe::ImportSection(last, 0x3000, kModules));
    auto const rawSize = static_cast<std::uint32_t>(last.sections.back().raw.size());
    pe::Put<std::uint32_t>(last.sections.back().raw, 0, 0x3000 + rawSize - 2);
    bytes = last.Build();
    ASSERT_EQ(bytes.size() % 0x200, rawSize % 0x200) << "the section ends the file";
    EXPECT_TRUE(walk(bytes, &modules));
    EXPECT_EQ(modules, 0u);
    // Export names counted beyond the section push nothing, at once.
    std::size_t const edata = whole.find("x.dll") - (40 + 16 + 12 + 6);
    bytes = whole;
    pe::Put<std::uint32_t>(bytes, edata + 24, 0xFFFFFFFFu);
    ZKPEParser names;
    ASSERT_TRUE(pe::Read(names, bytes));
    ZKContainer<ExportDirRecord> records(1);
    EXPECT_LT(Milliseconds([&] { EXPECT_FALSE(names.GetAllExports(records)); }), 100.0);
    EXPECT_EQ(records.GetItemCount(), 0u);
}

TEST(PEHostile, SharedTablesCannotMultiplyTheWork)
{
    // Thousands of import descriptors sharing one name and one long lookup
    // table: the work stays bounded by the section's size.
    constexpr std::uint32_t rva = 0x3000;
    constexpr std::size_t descriptors = 20000;
    std::string raw((descriptors + 1) * 20, '\0');
    auto const nameRva = rva + static_cast<std::uint32_t>(raw.size());
    pe::AppendText(raw, "shared.dll");
    auto const hintName = rva + static_cast<std::uint32_t>(raw.size());
    pe::Append<std::uint16_t>(raw, 1);
    pe::AppendText(raw, "f");
    while (raw.size() % 8) raw += '\0';
    auto const table = rva + static_cast<std::uint32_t>(raw.size());
    for (int i = 0; i < 4000; ++i) pe::Append<std::uint64_t>(raw, hintName);
    pe::Append<std::uint64_t>(raw, 0);
    for (std::size_t d = 0; d < descriptors; ++d) {
        pe::Put<std::uint32_t>(raw, d * 20, table);
        pe::Put<std::uint32_t>(raw, d * 20 + 12, nameRva);
    }
    pe::Image image;
    image.sections = {pe::Section{".idata", rva, raw, 0}};
    image.dirs[1] = IMAGE_DATA_DIR{rva, static_cast<std::uint32_t>(descriptors * 20)};
    ZKPEParser parser;
    ASSERT_TRUE(pe::Read(parser, image.Build()));
    ZKContainer<ImportDirRecord> records(1);
    EXPECT_LT(Milliseconds([&] { EXPECT_FALSE(parser.GetAllImports(records)); }), 2000.0);
    EXPECT_LT(records.GetItemCount(), 400u) << "stopped by the bounds";
    EXPECT_GE(records.GetItemCount(), 10u) << "honest-sized prefixes are still walked";
}
