#pragma once

// On-disk records of the Portable Executable format, with the format's own
// field names and exact layouts (little-endian, as the file stores them), and
// the records the import and export walks produce.

#include <cstddef>

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

struct DOSHeader {
    unsigned short e_magic;
    unsigned short e_cblp;
    unsigned short e_cp;
    unsigned short e_crlc;
    unsigned short e_cparhdr;
    unsigned short e_minalloc;
    unsigned short e_maxalloc;
    unsigned short e_ss;
    unsigned short e_sp;
    unsigned short e_csum;
    unsigned short e_ip;
    unsigned short e_cs;
    unsigned short e_lfarlc;
    unsigned short e_ovno;
    unsigned short e_res[4];
    unsigned short e_oemid;
    unsigned short e_oeminfo;
    unsigned short e_res2[10];
    unsigned int e_lfanew;  // file offset of the image signature
};

struct COFFHeader {
    unsigned short Machine;
    unsigned short NumberOfSections;
    unsigned int TimeDateStamp;
    unsigned int PointerToSymbolTable;
    unsigned int NumberOfSymbols;
    unsigned short SizeOfOptionalHeader;
    unsigned short Characteristics;
};

// The standard fields common to both image kinds.
struct OptionalHeaderStandard {
    unsigned short Magic;  // 0x10B: 32-bit image, 0x20B: 64-bit image
    unsigned char MajorLinkerVersion;
    unsigned char MinorLinkerVersion;
    unsigned int SizeOfCode;
    unsigned int SizeOfInitializedData;
    unsigned int SizeOfUninitializedData;
    unsigned int AddressOfEntryPoint;
    unsigned int BaseOfCode;
};

// The rest of a 32-bit image's optional header, BaseOfData first.
struct OptionalHeader32 {
    unsigned int BaseOfData;
    unsigned int ImageBase;
    unsigned int SectionAlignment;
    unsigned int FileAlignment;
    unsigned short MajorOperatingSystemVersion;
    unsigned short MinorOperatingSystemVersion;
    unsigned short MajorImageVersion;
    unsigned short MinorImageVersion;
    unsigned short MajorSubsystemVersion;
    unsigned short MinorSubsystemVersion;
    unsigned int Win32VersionValue;
    unsigned int SizeOfImage;
    unsigned int SizeOfHeaders;
    unsigned int CheckSum;
    unsigned short Subsystem;
    unsigned short DllCharacteristics;
    unsigned int SizeOfStackReserve;
    unsigned int SizeOfStackCommit;
    unsigned int SizeOfHeapReserve;
    unsigned int SizeOfHeapCommit;
    unsigned int LoaderFlags;
    unsigned int NumberOfRvaAndSizes;
};

// The rest of a 64-bit image's optional header.
struct OptionalHeader64 {
    unsigned long long ImageBase;
    unsigned int SectionAlignment;
    unsigned int FileAlignment;
    unsigned short MajorOperatingSystemVersion;
    unsigned short MinorOperatingSystemVersion;
    unsigned short MajorImageVersion;
    unsigned short MinorImageVersion;
    unsigned short MajorSubsystemVersion;
    unsigned short MinorSubsystemVersion;
    unsigned int Win32VersionValue;
    unsigned int SizeOfImage;
    unsigned int SizeOfHeaders;
    unsigned int CheckSum;
    unsigned short Subsystem;
    unsigned short DllCharacteristics;
    unsigned long long SizeOfStackReserve;
    unsigned long long SizeOfStackCommit;
    unsigned long long SizeOfHeapReserve;
    unsigned long long SizeOfHeapCommit;
    unsigned int LoaderFlags;
    unsigned int NumberOfRvaAndSizes;
};

struct IMAGE_DATA_DIR {
    unsigned int VirtualAddress;
    unsigned int Size;
};

struct SectionHeader {
    char Name[8];  // NUL-padded; a name of all 8 bytes has no NUL
    unsigned int VirtualSize;
    unsigned int VirtualAddress;
    unsigned int SizeOfRawData;
    unsigned int PointerToRawData;
    unsigned int PointerToRelocations;
    unsigned int PointerToLinenumbers;
    unsigned short NumberOfRelocations;
    unsigned short NumberOfLinenumbers;
    unsigned int Characteristics;
};

// One entry of the import directory.
struct ImportDirectoryTable {
    unsigned int ImportLookupTableRVA;
    unsigned int TimeDateStamp;
    unsigned int ForwarderChain;
    unsigned int NameRVA;
    unsigned int ImportAddressTableRVA;
};

// One imported module.
struct ImportDirRecord {
    // One function imported by name.
    struct ImportDirSubRecord {
        unsigned short hint = 0;
        ZKString name;
    };

    ZKString name;
    unsigned int thunkCount = 0;  // named and by-ordinal thunks alike
    unsigned int importLookupTableRVA = 0;
    unsigned int timeDateStamp = 0;
    unsigned int forwarderChain = 0;
    unsigned int reserved = 0;  // never filled by the import walk
    ZKContainer<ImportDirSubRecord> subRecords;
};

// The export directory of an image: its 40 bytes as the file holds them,
// then one sub-record per exported name.
struct ExportDirRecord {
    struct ExportDirSubRecord {
        unsigned int ordinal = 0;      // Base plus the position in the name list
        unsigned int functionRVA = 0;  // the first entry of the function table, for every name
        unsigned short index = 0;      // the position in the name list (16 bits)
        unsigned int nameRVA = 0;
        ZKString name;
    };

    unsigned int Characteristics = 0;
    unsigned int TimeDateStamp = 0;
    unsigned short MajorVersion = 0;
    unsigned short MinorVersion = 0;
    unsigned int Name = 0;
    unsigned int Base = 0;
    unsigned int NumberOfFunctions = 0;
    unsigned int NumberOfNames = 0;
    unsigned int AddressOfFunctions = 0;
    unsigned int AddressOfNames = 0;
    unsigned int AddressOfNameOrdinals = 0;
    ZKContainer<ExportDirSubRecord> subRecords;
};

// The on-disk records are copied byte for byte from the file, so their
// layout is checked here.
static_assert(sizeof(DOSHeader) == 64 && offsetof(DOSHeader, e_res) == 28 && offsetof(DOSHeader, e_oemid) == 36 &&
              offsetof(DOSHeader, e_res2) == 40 && offsetof(DOSHeader, e_lfanew) == 60);
static_assert(sizeof(COFFHeader) == 20 && offsetof(COFFHeader, TimeDateStamp) == 4 &&
              offsetof(COFFHeader, SizeOfOptionalHeader) == 16 && offsetof(COFFHeader, Characteristics) == 18);
static_assert(sizeof(OptionalHeaderStandard) == 24 && offsetof(OptionalHeaderStandard, MajorLinkerVersion) == 2 &&
              offsetof(OptionalHeaderStandard, SizeOfCode) == 4 && offsetof(OptionalHeaderStandard, BaseOfCode) == 20);
static_assert(sizeof(OptionalHeader32) == 72 && offsetof(OptionalHeader32, MajorOperatingSystemVersion) == 16 &&
              offsetof(OptionalHeader32, Win32VersionValue) == 28 && offsetof(OptionalHeader32, Subsystem) == 44 &&
              offsetof(OptionalHeader32, SizeOfStackReserve) == 48 &&
              offsetof(OptionalHeader32, NumberOfRvaAndSizes) == 68);
static_assert(sizeof(OptionalHeader64) == 88 && offsetof(OptionalHeader64, SectionAlignment) == 8 &&
              offsetof(OptionalHeader64, Win32VersionValue) == 28 && offsetof(OptionalHeader64, Subsystem) == 44 &&
              offsetof(OptionalHeader64, SizeOfStackReserve) == 48 && offsetof(OptionalHeader64, LoaderFlags) == 80 &&
              offsetof(OptionalHeader64, NumberOfRvaAndSizes) == 84);
static_assert(sizeof(IMAGE_DATA_DIR) == 8);
static_assert(sizeof(SectionHeader) == 40 && offsetof(SectionHeader, VirtualSize) == 8 &&
              offsetof(SectionHeader, PointerToRawData) == 20 && offsetof(SectionHeader, NumberOfRelocations) == 32 &&
              offsetof(SectionHeader, Characteristics) == 36);
static_assert(sizeof(ImportDirectoryTable) == 20);

#if !defined(_WIN32)
extern template class ZK_API ZKContainer<DOSHeader>;
extern template class ZK_API ZKContainer<COFFHeader>;
extern template class ZK_API ZKContainer<OptionalHeaderStandard>;
extern template class ZK_API ZKContainer<OptionalHeader32>;
extern template class ZK_API ZKContainer<OptionalHeader64>;
extern template class ZK_API ZKContainer<IMAGE_DATA_DIR>;
extern template class ZK_API ZKContainer<SectionHeader>;
extern template class ZK_API ZKContainer<ImportDirectoryTable>;
extern template class ZK_API ZKContainer<ImportDirRecord>;
#endif
