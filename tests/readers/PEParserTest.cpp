#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>

#include "readers/PEImageBuilder.h"

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

bool Read(ZKPEParser& parser, pe::Image const& image, char const* name = "image.exe")
{
    pe::TempFile file(name, image.Build());
    return parser.ReadPEFile(file.Path());
}

}  // namespace

TEST(PEParser, DefaultParserAnswersEmpty)
{
    ZKPEParser parser;
    IMAGE_DATA_DIR dir{1, 1};
    SectionHeader section{};
    EXPECT_FALSE(parser.GetExportDir(dir));
    EXPECT_FALSE(parser.GetCLRDir(dir));
    EXPECT_FALSE(parser.GetImportDirSection(section));
    EXPECT_FALSE(parser.IsPE32Bit());
    EXPECT_FALSE(parser.IsPE64Bit());
    EXPECT_FALSE(parser.IsValid());
    EXPECT_EQ(parser.GetOptionalHeaderPtr32(), nullptr);
    EXPECT_EQ(parser.GetOptionalHeaderPtr64(), nullptr);
    EXPECT_NE(parser.GetDOSHeaderPtr(), nullptr);
    EXPECT_EQ(Text(parser.GetMachineTypeString()),
              "The contents of this field are assumed to be applicable to any machine type");
    EXPECT_TRUE(parser.GetExeFileName().IsEmpty());
    EXPECT_EQ(parser.GetImageSignature(), ZK_IMAGE_SIGNATURE_NONE);
}

TEST(PEParser, Reads64BitHeadersAndSections)
{
    ZKPEParser parser;
    ASSERT_TRUE(Read(parser, TwoSections()));
    EXPECT_TRUE(parser.IsValid());
    EXPECT_TRUE(parser.IsPE64Bit());
    EXPECT_FALSE(parser.IsPE32Bit());
    EXPECT_EQ(parser.GetOptionalHeaderPtr32(), nullptr);
    ASSERT_NE(parser.GetOptionalHeaderPtr64(), nullptr);
    EXPECT_EQ(parser.GetOptionalHeaderPtr64()->ImageBase, 0x140000000ull);
    EXPECT_EQ(parser.GetOptionalHeaderPtr64()->NumberOfRvaAndSizes, 16u);
    EXPECT_EQ(parser.GetDOSHeaderPtr()->e_magic, 0x5A4D);
    EXPECT_EQ(parser.GetDOSHeaderPtr()->e_lfanew, 0x40u);
    EXPECT_EQ(parser.GetCOFFHeaderPtr()->NumberOfSections, 2);
    EXPECT_EQ(parser.GetCOFFHeaderPtr()->TimeDateStamp, 0x5F5E0FFu);
    EXPECT_EQ(parser.GetOptionalHeaderStandardPtr()->AddressOfEntryPoint, 0x1000u);
    EXPECT_EQ(parser.GetImageSignature(), ZK_IMAGE_SIGNATURE_NT);
    EXPECT_EQ(parser.GetMachineType(), ZK_MACHINE_AMD64);
    EXPECT_EQ(Text(parser.GetMachineTypeString()), "x64");
    EXPECT_EQ(parser.GetPEFileBufferPtr()[0], 'M');

    ZKContainer<SectionHeader> sections;
    EXPECT_TRUE(parser.GetAllSectionHeaders(sections));
    ASSERT_EQ(sections.GetItemCount(), 2u);
    EXPECT_EQ(std::string(sections[1].Name), ".data");
    EXPECT_EQ(sections[1].VirtualSize, 0x100u);
    EXPECT_EQ(sections[0].PointerToRawData, 0x200u);
    ZKContainer<IMAGE_DATA_DIR> dirs;
    EXPECT_TRUE(parser.GetAllOptionalHeaderDataDirs(dirs));
    EXPECT_EQ(dirs.GetItemCount(), 16u);
    EXPECT_EQ(dirs.GetMaxItemCount(), 512u);
}

TEST(PEParser, Reads32BitImages)
{
    pe::Image image = TwoSections();
    image.is64 = false;
    image.machine = 0x14C;
    ZKPEParser parser;
    ASSERT_TRUE(Read(parser, image, "image.dll"));
    EXPECT_TRUE(parser.IsPE32Bit());
    EXPECT_EQ(parser.GetOptionalHeaderPtr64(), nullptr);
    ASSERT_NE(parser.GetOptionalHeaderPtr32(), nullptr);
    EXPECT_EQ(parser.GetOptionalHeaderPtr32()->ImageBase, 0x400000u);
    EXPECT_EQ(Text(parser.GetMachineTypeString()), "Intel 386 or later processors and compatible processors");
    SectionHeader section{};
    EXPECT_TRUE(parser.GetSectionHeaderByName(".text", section));
    EXPECT_EQ(section.SizeOfRawData, 0x300u);
}

TEST(PEParser, OnlyLowerCaseExeAndDllEndingsAreRead)
{
    for (char const* name : {"image.EXE", "image.sys", "image.Dll", "x.ex"}) {
        pe::TempFile file(name, TwoSections().Build());
        ZKPEParser parser;
        ZKFile stream;
        EXPECT_FALSE(parser.ReadPEFile(stream, file.Path())) << name;
        EXPECT_FALSE(stream.IsFileOpen()) << "refused before opening: " << name;
    }
    ZKPEParser parser;
    EXPECT_FALSE(parser.ReadPEFile(ZKString("exe")));
    EXPECT_FALSE(parser.ReadPEFile(ZKString("/no/such/dir/missing.exe")));
    EXPECT_FALSE(parser.IsValid());
}

TEST(PEParser, StreamOverloadLeavesTheFileOpenAndAParserReadsOnce)
{
    pe::TempFile file("open.dll", TwoSections().Build());
    ZKPEParser parser;
    ZKFile stream;
    ASSERT_TRUE(parser.ReadPEFile(stream, file.Path()));
    EXPECT_TRUE(stream.IsFileOpen());
    stream.CloseFile();
    EXPECT_FALSE(parser.ReadPEFile(stream, file.Path())) << "a read parser refuses";
    EXPECT_FALSE(parser.ReadPEFile(file.Path()));

    ZKPEParser other;
    ZKFile busy;
    ASSERT_TRUE(busy.OpenFile(file.Path(), FILE_STREAM_BINARY_READ));
    EXPECT_FALSE(other.ReadPEFile(busy, file.Path())) << "a file already open in the stream";
    EXPECT_FALSE(other.IsValid());
}

TEST(PEParser, SignatureSearchOrder)
{
    struct Case {
        std::string signature;
        IMAGE_SIGNATURES expected;
    };
    for (Case const& c : {Case{std::string("NE", 2), ZK_IMAGE_SIGNATURE_OS2},
                          Case{std::string("PE\0\0", 4), ZK_IMAGE_SIGNATURE_NT},
                          Case{std::string("ZZ", 2), ZK_IMAGE_SIGNATURE_DOS}}) {
        pe::Image image = TwoSections();
        image.signature = c.signature;
        ZKPEParser parser;
        ASSERT_TRUE(Read(parser, image)) << c.signature;
        EXPECT_EQ(parser.GetImageSignature(), c.expected);
        EXPECT_EQ(parser.GetCOFFHeaderPtr()->NumberOfSections, 2) << "headers follow the signature";
    }
}

TEST(PEParser, MachineClassificationIsBitwiseInOrder)
{
    struct Case {
        unsigned short machine;
        MACHINE_TYPES stored;
        char const* text;
    };
    for (Case const& c : {Case{0x1C4, ZK_MACHINE_ARM, "ARM little endian"}, Case{0x1C2, ZK_MACHINE_ARM, "ARM little endian"},
                          Case{0x1F1, ZK_MACHINE_ARM, "ARM little endian"}, Case{0x266, ZK_MACHINE_IA64, "Intel Itanium processor family"},
                          Case{0x1A6, ZK_MACHINE_SH3, "Hitachi SH3"}, Case{0xAA64, ZK_MACHINE_ARM64, "ARM64 little endian"},
                          Case{0xFFFF, ZK_MACHINE_AM33, "Matsushita AM33"}, Case{0x0, ZK_MACHINE_UNKNOWN, nullptr},
                          Case{0x5128, ZK_MACHINE_RISCV128, "RISC-V 128-bit address space"}, Case{0x0001, ZK_MACHINE_UNKNOWN, nullptr}}) {
        pe::Image image = TwoSections();
        image.machine = c.machine;
        ZKPEParser parser;
        ASSERT_TRUE(Read(parser, image));
        EXPECT_EQ(parser.GetMachineType(), c.stored) << std::hex << c.machine;
        if (c.text) {
            EXPECT_EQ(Text(parser.GetMachineTypeString()), c.text);
        }
    }
}

TEST(PEParser, DirectoryGettersUseTheIndexAsItStands)
{
    pe::Image image = TwoSections();
    image.dirs[1] = IMAGE_DATA_DIR{0x2010, 0};   // import: address but size 0
    image.dirs[2] = IMAGE_DATA_DIR{0x2000, 8};   // resource: at the start of .data
    image.dirs[3] = IMAGE_DATA_DIR{0x2100, 8};   // exception: exactly at .data's virtual end
    image.dirs[4] = IMAGE_DATA_DIR{0x2101, 8};   // certificate: one past it
    image.rvaCount = 5;
    image.dirs.resize(5);
    ZKPEParser parser;
    ASSERT_TRUE(Read(parser, image));
    IMAGE_DATA_DIR dir{};
    SectionHeader section{};
    EXPECT_TRUE(parser.GetImportDir(dir));
    EXPECT_EQ(dir.VirtualAddress, 0x2010u);
    EXPECT_FALSE(parser.GetImportDirSection(section)) << "size 0";
    ASSERT_TRUE(parser.GetResourceDirSection(section));
    EXPECT_EQ(std::string(section.Name), ".data");
    EXPECT_TRUE(parser.GetExceptionDirSection(section)) << "the upper end is inclusive";
    EXPECT_FALSE(parser.GetCertificateDirSection(section));
    dir = IMAGE_DATA_DIR{7, 7};
    EXPECT_TRUE(parser.GetCLRDir(dir)) << "index 14 of an image declaring 5";
    EXPECT_EQ(dir.VirtualAddress, 0u);
    EXPECT_EQ(dir.Size, 0u);
}

TEST(PEParser, ManyDataDirectoriesGrowTheList)
{
    pe::Image image = TwoSections();
    image.rvaCount = 600;
    image.dirs.resize(600, IMAGE_DATA_DIR{0x1000, 4});
    ZKPEParser parser;
    ASSERT_TRUE(Read(parser, image));
    ZKContainer<IMAGE_DATA_DIR> dirs;
    parser.GetAllOptionalHeaderDataDirs(dirs);
    EXPECT_EQ(dirs.GetItemCount(), 600u);
    EXPECT_EQ(dirs.GetMaxItemCount(), 1024u) << "as one push after another would grow it";
    SectionHeader section{};
    EXPECT_TRUE(parser.GetSectionHeaderByName(".data", section)) << "the section table follows the directories";
}

TEST(PEParser, SectionNamesMatchExactlyAndFullNamesRunOn)
{
    pe::Image image = TwoSections();
    image.sections.push_back(pe::Section{"ABCDEFGH", 0x3000, std::string(0x10, '\0'), 0x41});
    ZKPEParser parser;
    ASSERT_TRUE(Read(parser, image));
    SectionHeader section{};
    EXPECT_FALSE(parser.GetSectionHeaderByName(".TEXT", section));
    EXPECT_FALSE(parser.GetSectionHeaderByName(".tex", section));
    EXPECT_FALSE(parser.GetSectionHeaderByName("ABCDEFGH", section)) << "no NUL inside the field";
    EXPECT_TRUE(parser.GetSectionHeaderByName("ABCDEFGHA", section)) << "runs on into VirtualSize 0x41";
    EXPECT_EQ(section.VirtualAddress, 0x3000u);
    ZKPEParser empty;
    EXPECT_FALSE(empty.GetSectionHeaderByName(".text", section));
}

TEST(PEParser, CopiesCompareEqualButLeaveThePath)
{
    std::string const bytes = TwoSections().Build();
    pe::TempFile first("first.exe", bytes);
    pe::TempFile second("second.dll", bytes);
    ZKPEParser a, b;
    ASSERT_TRUE(a.ReadPEFile(first.Path()));
    ASSERT_TRUE(b.ReadPEFile(second.Path()));
    EXPECT_TRUE(a == b) << "the path is not compared";
    EXPECT_EQ(Text(a.GetExeFileName()), "first.exe");

    ZKPEParser copy(a);
    EXPECT_TRUE(copy == a);
    EXPECT_TRUE(copy.IsValid());
    EXPECT_TRUE(copy.GetExeFileName().IsEmpty());
    ZKContainer<SectionHeader> sections;
    EXPECT_TRUE(copy.GetAllSectionHeaders(sections));

    ZKPEParser moved(std::move(copy));
    EXPECT_TRUE(moved == a);
    EXPECT_TRUE(moved.GetExeFilePath().IsEmpty());
    EXPECT_FALSE(ZKPEParser() == a);
}

TEST(PEParser, PathSplitPrefersTheLastBackslash)
{
    std::string const bytes = TwoSections().Build();
    pe::TempFile file("plain.exe", bytes);
    ZKPEParser parser;
    ASSERT_TRUE(parser.ReadPEFile(file.Path()));
    std::string const directory = file.directory.string();
    EXPECT_EQ(Text(parser.GetExeFileName()), "plain.exe");
    EXPECT_EQ(Text(parser.GetExeFilePath()), directory);

    // The split itself, on a name that needs no real directory: a path with
    // a backslash splits there even when a slash comes later.
    std::filesystem::path const odd = file.directory / "C:\\a";
    std::filesystem::create_directories(odd);
    std::string const oddFile = (odd / "b.exe").string();
    std::ofstream(oddFile, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ZKPEParser split;
    ASSERT_TRUE(split.ReadPEFile(ZKString(oddFile.c_str())));
#if !defined(_WIN32)
    EXPECT_EQ(Text(split.GetExeFileName()), "a/b.exe");
    EXPECT_EQ(Text(split.GetExeFilePath()), directory + "/C:");
#endif
}

TEST(PEParser, RvaToFileOffset)
{
    SectionHeader section{};
    section.VirtualAddress = 0x2000;
    section.SizeOfRawData = 0x100;
    section.PointerToRawData = 0x600;
    unsigned char const* base = reinterpret_cast<unsigned char const*>(0x10000);
    EXPECT_EQ(ImgDataDirRVAToFileOffset(base, 0x2010, section), base + 0x610);
    EXPECT_EQ(ImgDataDirRVAToFileOffset(base, 0x2100, section), base + 0x700) << "the raw end is accepted";
    EXPECT_EQ(ImgDataDirRVAToFileOffset(base, 0x2101, section), nullptr);
    EXPECT_EQ(ImgDataDirRVAToFileOffset(base, 0x1FFF, section), nullptr) << "below the section wraps";
}
