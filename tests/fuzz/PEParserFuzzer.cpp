// libFuzzer target: arbitrary bytes as an image file, through ReadPEFile,
// every getter and both table walks.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

#include <unistd.h>

#include <zk64/zk64.h>

namespace {

std::string const& ImagePath()
{
    static std::string const path =
        (std::filesystem::temp_directory_path() / ("zk64-fuzz-" + std::to_string(getpid()) + ".dll")).string();
    return path;
}

void Walk(ZKPEParser& parser)
{
    IMAGE_DATA_DIR dir{};
    SectionHeader section{};
#define ZK_FUZZ_DIRECTORY(Name, Index) \
    parser.Get##Name##Dir(dir);        \
    parser.Get##Name##DirSection(section);
    ZK_PE_DATA_DIRECTORIES(ZK_FUZZ_DIRECTORY)
#undef ZK_FUZZ_DIRECTORY
    ZKContainer<IMAGE_DATA_DIR> dirs(1);
    ZKContainer<SectionHeader> sections(1);
    parser.GetAllOptionalHeaderDataDirs(dirs);
    parser.GetAllSectionHeaders(sections);
    parser.GetSectionHeaderByName(".text", section);
    parser.GetSectionHeaderByName("ABCDEFGH", section);
    (void)parser.GetMachineTypeString();
    (void)parser.GetExeFileName();
    (void)parser.GetExeFilePath();
    (void)parser.GetOptionalHeaderPtr32();
    (void)parser.GetOptionalHeaderPtr64();
    ZKContainer<ImportDirRecord> imports(1);
    ZKContainer<ExportDirRecord> exports(1);
    parser.GetAllImports(imports);
    parser.GetAllExports(exports);
    ZKPEParser copy(parser);
    (void)(copy == parser);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::FILE* file = std::fopen(ImagePath().c_str(), "wb");
    if (file == nullptr) return 0;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    ZKPEParser parser;
    parser.ReadPEFile(ZKString(ImagePath().c_str()));
    Walk(parser);
    return 0;
}
