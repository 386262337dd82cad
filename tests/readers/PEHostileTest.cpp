// Truncated and hostile images: the reader must stay inside the file's
// bytes, reject impossible counts at once, and bound its table walks.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <chrono>
#include <string>

#include "readers/PEImageBuilder.h"

namespace {

std::vector<pe::Module> const kModules = {
    {"KERNEL32.dll", {{1, "GetLastError"}, {7, ""}, {2, "Sleep"}}},
    {"USER32.dll", {{3, "MessageBoxA"}}},
};

pe::Image Valid(bool is64 = true)
{
    pe::Image image;
    image.is64 = is64;
    image.sections = {pe::Section{".text", 0x1000, std::string(0x40, '\xC3'), 0}};
    image.sections.push_back(pe::ImportSection(image, 0x3000, kModules));
    image.sections.push_back(pe::ExportSection(image, 0x5000, "x.dll", 1, {"One", "Two"}, 2));
    return image;
}

// Reads `bytes` as an image and walks both tables; true when the read
// succeeded.
bool ReadAndWalk(std::string const& bytes, ZKContainer<ImportDirRecord>* imports = nullptr)
{
    pe::TempFile file("hostile.dll", bytes);
    ZKPEParser parser;
    bool const read = parser.ReadPEFile(file.Path());
    ZKContainer<ImportDirRecord> localImports(1);
    ZKContainer<ExportDirRecord> exports(1);
    parser.GetAllImports(imports ? *imports : localImports);
    parser.GetAllExports(exports);
    IMAGE_DATA_DIR dir{};
    SectionHeader section{};
    parser.GetImportDirSection(section);
    parser.GetExportDir(dir);
    parser.GetSectionHeaderByName(".text", section);
    return read;
}

// Where a section's raw data starts in the file `bytes`.
std::size_t RawOffsetOf(std::string const& bytes, char const* name)
{
    pe::TempFile file("probe.dll", bytes);
    ZKPEParser parser;
    SectionHeader section{};
    EXPECT_TRUE(parser.ReadPEFile(file.Path()) && parser.GetSectionHeaderByName(name, section));
    return section.PointerToRawData;
}

double MillisecondsOf(auto&& work)
{
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

TEST(PEHostile, EveryTruncationIsSafe)
{
    std::string const whole = Valid().Build();
    pe::Image const image = Valid();
    std::size_t const headersEnd = image.SectionTableOffset() + image.sections.size() * 40;
    for (std::size_t length = 1; length < whole.size(); length += length < headersEnd + 64 ? 1 : 37) {
        bool const read = ReadAndWalk(whole.substr(0, length));
        EXPECT_EQ(read, length >= headersEnd) << "length " << length;
    }
    EXPECT_TRUE(ReadAndWalk(whole));
}

TEST(PEHostile, SignatureOffsetPastTheEnd)
{
    std::string bytes = Valid().Build();
    pe::Put<std::uint32_t>(bytes, 60, 0xFFFFFFF0u);
    EXPECT_FALSE(ReadAndWalk(bytes));
    pe::Put<std::uint32_t>(bytes, 60, static_cast<std::uint32_t>(bytes.size() - 2));
    EXPECT_FALSE(ReadAndWalk(bytes)) << "room for a 16-bit signature, not for the headers";
}

TEST(PEHostile, UnknownMagicIsRejected)
{
    pe::Image image = Valid();
    image.magic = 0x107;
    EXPECT_FALSE(ReadAndWalk(image.Build()));
}

TEST(PEHostile, HugeCountsInASmallFileAreRejectedAtOnce)
{
    pe::Image image;
    image.sections = {pe::Section{".text", 0x1000, std::string(0x100, '\xC3'), 0}};
    image.sectionCountOverride = 0xFFFF;
    std::string const manySections = image.Build();
    ASSERT_LT(manySections.size(), 2048u);
    double const sectionsMs = MillisecondsOf([&] { EXPECT_FALSE(ReadAndWalk(manySections)); });

    image.sectionCountOverride = 0;
    image.rvaCount = 0x7FFFFFFF;
    double const dirsMs = MillisecondsOf([&] { EXPECT_FALSE(ReadAndWalk(image.Build())); });
    EXPECT_LT(sectionsMs + dirsMs, 200.0);

    // Negative as a signed count: no directories, and the section table is
    // then read where the directories stand (16 zero entries here).
    image.rvaCount = 0x80000000u;
    pe::TempFile file("negative.dll", image.Build());
    ZKPEParser parser;
    ASSERT_TRUE(parser.ReadPEFile(file.Path()));
    ZKContainer<IMAGE_DATA_DIR> dirs;
    EXPECT_FALSE(parser.GetAllOptionalHeaderDataDirs(dirs));
    ZKContainer<SectionHeader> sections;
    ASSERT_TRUE(parser.GetAllSectionHeaders(sections));
    EXPECT_EQ(sections.GetItem(0).SizeOfRawData, 0u) << "a zero directory entry read as a section";
}

TEST(PEHostile, ImportNamesWithoutTerminatorsStopTheWalk)
{
    pe::Image image = Valid();
    std::string bytes = image.Build();
    // The import section is the last thing in the file but for the export
    // section: fill everything from the first module name to the end with
    // non-zero bytes.
    std::size_t const name = bytes.find("KERNEL32.dll");
    ASSERT_NE(name, std::string::npos);
    std::string hostile = bytes.substr(0, name) + std::string(bytes.size() - name, 'A');
    ZKContainer<ImportDirRecord> records(1);
    EXPECT_TRUE(ReadAndWalk(hostile, &records));
    EXPECT_EQ(records.GetItemCount(), 0u);
}

TEST(PEHostile, LookupTableRunningOffTheFile)
{
    // .idata last in the file, and the first module's lookup table moved to
    // its last 2 bytes: inside the section, but a thunk is 8 bytes.
    pe::Image image;
    image.sections = {pe::Section{".text", 0x1000, std::string(0x40, '\xC3'), 0}};
    image.sections.push_back(pe::ImportSection(image, 0x3000, kModules));
    std::uint32_t const rawSize = static_cast<std::uint32_t>(image.sections.back().raw.size());
    pe::Put<std::uint32_t>(image.sections.back().raw, 0, 0x3000 + rawSize - 2);
    std::string const bytes = image.Build();
    ASSERT_EQ(RawOffsetOf(bytes, ".idata") + rawSize, bytes.size());
    ZKContainer<ImportDirRecord> records(1);
    EXPECT_TRUE(ReadAndWalk(bytes, &records));
    EXPECT_EQ(records.GetItemCount(), 0u);
}

TEST(PEHostile, SharedTablesCannotMultiplyTheWork)
{
    // Thousands of import descriptors sharing one name and one long lookup
    // table: the work must stay bounded by the section's size.
    pe::Image image;
    constexpr std::uint32_t rva = 0x3000;
    constexpr std::size_t descriptors = 20000;
    std::string raw((descriptors + 1) * 20, '\0');
    std::uint32_t const nameRva = rva + static_cast<std::uint32_t>(raw.size());
    pe::AppendText(raw, "shared.dll");
    if (raw.size() % 2) raw += '\0';
    std::uint32_t const hintName = rva + static_cast<std::uint32_t>(raw.size());
    pe::Append<std::uint16_t>(raw, 1);
    pe::AppendText(raw, "f");
    while (raw.size() % 8) raw += '\0';
    std::uint32_t const table = rva + static_cast<std::uint32_t>(raw.size());
    for (int i = 0; i < 4000; ++i) pe::Append<std::uint64_t>(raw, hintName);
    pe::Append<std::uint64_t>(raw, 0);
    for (std::size_t d = 0; d < descriptors; ++d) {
        pe::Put<std::uint32_t>(raw, d * 20, table);
        pe::Put<std::uint32_t>(raw, d * 20 + 12, nameRva);
    }
    image.sections = {pe::Section{".idata", rva, raw, 0}};
    image.dirs[1] = IMAGE_DATA_DIR{rva, static_cast<std::uint32_t>(descriptors * 20)};
    std::string const bytes = image.Build();
    ZKContainer<ImportDirRecord> records(1);
    double const ms = MillisecondsOf([&] { EXPECT_TRUE(ReadAndWalk(bytes, &records)); });
    EXPECT_LT(records.GetItemCount(), 400u) << "stopped by the bounds";
    EXPECT_GE(records.GetItemCount(), 10u) << "honest-sized prefixes are still walked";
    EXPECT_LT(ms, 2000.0);
}

TEST(PEHostile, ExportCountsBeyondTheSection)
{
    pe::Image image = Valid();
    std::string bytes = image.Build();
    std::size_t const edata = RawOffsetOf(bytes, ".edata");
    pe::Put<std::uint32_t>(bytes, edata + 24, 0xFFFFFFFFu);  // NumberOfNames
    ZKContainer<ExportDirRecord> records(1);
    pe::TempFile file("names.dll", bytes);
    ZKPEParser parser;
    ASSERT_TRUE(parser.ReadPEFile(file.Path()));
    double const ms = MillisecondsOf([&] { EXPECT_FALSE(parser.GetAllExports(records)); });
    EXPECT_EQ(records.GetItemCount(), 0u) << "nothing pushed";
    EXPECT_LT(ms, 100.0);
}
