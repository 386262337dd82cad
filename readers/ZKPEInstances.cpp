// Containers of the PE records. The explicit instantiations come before
// anything else uses these types, so that the DLL's export attribute takes.

#include "ZKPERecords.h"

#if defined(_WIN32)
template class ZK_API ZKContainer<DOSHeader>;
template class ZK_API ZKContainer<COFFHeader>;
template class ZK_API ZKContainer<OptionalHeaderStandard>;
template class ZK_API ZKContainer<OptionalHeader32>;
template class ZK_API ZKContainer<OptionalHeader64>;
template class ZK_API ZKContainer<IMAGE_DATA_DIR>;
template class ZK_API ZKContainer<SectionHeader>;
template class ZK_API ZKContainer<ImportDirectoryTable>;
template class ZK_API ZKContainer<ImportDirRecord>;
#else
// ZK_API comes with the extern declarations.
template class ZKContainer<DOSHeader>;
template class ZKContainer<COFFHeader>;
template class ZKContainer<OptionalHeaderStandard>;
template class ZKContainer<OptionalHeader32>;
template class ZKContainer<OptionalHeader64>;
template class ZKContainer<IMAGE_DATA_DIR>;
template class ZKContainer<SectionHeader>;
template class ZKContainer<ImportDirectoryTable>;
template class ZKContainer<ImportDirRecord>;
#endif
template class ZKContainer<ImportDirRecord::ImportDirSubRecord>;
template class ZKContainer<ExportDirRecord::ExportDirSubRecord>;
template class ZKContainer<ExportDirRecord>;

#include "ZKPEParser.h"

#if defined(_WIN32)
template class ZK_API ZKContainer<ZKPEParser>;
#else
template class ZKContainer<ZKPEParser>;
#endif
