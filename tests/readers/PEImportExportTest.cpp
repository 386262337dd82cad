#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <vector>

#include "readers/PEImageBuilder.h"

namespace {

std::string Text(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

std::vector<pe::Module> const kModules = {
    {"KERNEL32.dll", {{0x1A3, "GetLastError"}, {7, ""}, {0x2F0, "Sleep"}, {9, ""}, {0x10, "ExitProcess"}}},
    {"empty.dll", {}},
    {"msvcrt.dll", {{0x44, "printf"}}},
};

pe::Image WithImports(bool is64, std::vector<pe::Module> const& modules)
{
    pe::Image image;
    image.is64 = is64;
    image.machine = is64 ? 0x8664 : 0x14C;
    image.sections = {pe::Section{".text", 0x1000, std::string(0x200, '\xC3'), 0}};
    image.sections.push_back(pe::ImportSection(image, 0x3000, modules));
    return image;
}

struct Read {
    explicit Read(pe::Image const& image, char const* name = "imports.exe") : file(name, image.Build())
    {
        EXPECT_TRUE(parser.ReadPEFile(file.Path()));
    }
    pe::TempFile file;
    ZKPEParser parser;
};

struct ImportView {
    std::string name;
    unsigned int thunks;
    std::vector<std::pair<unsigned short, std::string>> functions;
    bool operator==(ImportView const&) const = default;
};

std::vector<ImportView> View(ZKContainer<ImportDirRecord> const& records)
{
    std::vector<ImportView> out;
    for (unsigned long long i = 0; i < records.GetItemCount(); ++i) {
        ImportDirRecord const record = records.GetItem(i);
        ImportView view{Text(record.name), record.thunkCount, {}};
        for (unsigned long long j = 0; j < record.subRecords.GetItemCount(); ++j) {
            auto const sub = record.subRecords.GetItem(j);
            view.functions.emplace_back(sub.hint, Text(sub.name));
        }
        out.push_back(view);
    }
    return out;
}

}  // namespace

TEST(PEImports, NamedAndOrdinalThunksOfBothImageKinds)
{
    std::vector<ImportView> const expected = {
        {"KERNEL32.dll", 5, {{0x1A3, "GetLastError"}, {0x2F0, "Sleep"}, {0x10, "ExitProcess"}}},
        {"empty.dll", 0, {}},
        {"msvcrt.dll", 1, {{0x44, "printf"}}},
    };
    for (bool is64 : {true, false}) {
        Read image(WithImports(is64, kModules));
        ZKContainer<ImportDirRecord> records;
        EXPECT_TRUE(image.parser.GetAllImports(records));
        EXPECT_EQ(View(records), expected) << (is64 ? "64-bit" : "32-bit");
        ImportDirRecord const first = records.GetItem(0);
        EXPECT_EQ(first.importLookupTableRVA, 0x3000u + 4 * 20);
        EXPECT_EQ(first.subRecords.GetMaxItemCount(), 512u);
    }
}

TEST(PEImports, AppendsWithoutClearing)
{
    Read image(WithImports(true, kModules));
    ZKContainer<ImportDirRecord> records;
    image.parser.GetAllImports(records);
    image.parser.GetAllImports(records);
    std::vector<ImportView> const views = View(records);
    ASSERT_EQ(views.size(), 6u);
    EXPECT_EQ(views[3], views[0]);
}

TEST(PEImports, EmptyTableAbsentDirectoryAndUnreadParser)
{
    ZKContainer<ImportDirRecord> records;
    EXPECT_FALSE(ZKPEParser().GetAllImports(records));

    Read empty(WithImports(true, {}));
    EXPECT_TRUE(empty.parser.GetAllImports(records)) << "a first entry of zeros ends a valid walk";
    EXPECT_EQ(records.GetItemCount(), 0u);

    pe::Image sizeZero = WithImports(true, kModules);
    sizeZero.dirs[1].Size = 0;
    Read absent(sizeZero);
    EXPECT_FALSE(absent.parser.GetAllImports(records));
    EXPECT_EQ(records.GetItemCount(), 0u);
}

TEST(PEExports, OneRecordPerCallAndAlwaysFalse)
{
    pe::Image image;
    image.sections = {pe::Section{".text", 0x1000, std::string(0x200, '\xC3'), 0}};
    image.sections.push_back(pe::ExportSection(image, 0x4000, "lib.dll", 5, {"Alpha", "Beta", "Gamma"}, 4));
    Read read(image, "lib.dll");
    ZKContainer<ExportDirRecord> records;
    EXPECT_FALSE(read.parser.GetAllExports(records));
    ASSERT_EQ(records.GetItemCount(), 1u);
    ExportDirRecord const record = records.GetItem(0);
    EXPECT_EQ(record.Base, 5u);
    EXPECT_EQ(record.NumberOfFunctions, 4u);
    EXPECT_EQ(record.NumberOfNames, 3u);
    EXPECT_EQ(record.AddressOfFunctions, 0x4000u + 40);
    ASSERT_EQ(record.subRecords.GetItemCount(), 3u);
    char const* const names[] = {"Alpha", "Beta", "Gamma"};
    for (unsigned int i = 0; i < 3; ++i) {
        auto const sub = record.subRecords.GetItem(i);
        EXPECT_EQ(Text(sub.name), names[i]) << "the name table's order";
        EXPECT_EQ(sub.ordinal, 5 + i) << "Base plus the position, not the ordinal table's entry";
        EXPECT_EQ(sub.index, sub.ordinal - record.Base);
        EXPECT_EQ(sub.functionRVA, 0x1000u) << "the first function for every name";
        EXPECT_EQ(sub.nameRVA, 0x4000u + 40 + 16 + 12 + 6 + 8 + (i == 0 ? 0 : i == 1 ? 6 : 11));
    }
    EXPECT_FALSE(read.parser.GetAllExports(records));
    EXPECT_EQ(records.GetItemCount(), 2u) << "appended again";
}

TEST(PEExports, NoNamesStillPushesARecordAndNoDirectoryPushesNothing)
{
    pe::Image image;
    image.sections.push_back(pe::ExportSection(image, 0x4000, "none.dll", 1, {}, 2));
    Read read(image, "none.dll");
    ZKContainer<ExportDirRecord> records;
    EXPECT_FALSE(read.parser.GetAllExports(records));
    ASSERT_EQ(records.GetItemCount(), 1u);
    EXPECT_EQ(records.GetItem(0).subRecords.GetItemCount(), 0u);

    Read bare(WithImports(true, kModules));
    EXPECT_FALSE(bare.parser.GetAllExports(records));
    EXPECT_EQ(records.GetItemCount(), 1u);
    EXPECT_FALSE(ZKPEParser().GetAllExports(records));
}
