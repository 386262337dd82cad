// libFuzzer target: arbitrary bytes as an image file, through ReadPEFile,
// every getter and both table walks.

#include <zk64/zk64.h>

#include "FuzzSupport.h"

namespace {

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
    ZKPEParser parser;
    parser.ReadPEFile(ZKString(zk64::fuzz::ScratchFile(data, size, ".dll").c_str()));
    Walk(parser);
    return 0;
}
