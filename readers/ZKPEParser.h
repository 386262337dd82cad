#pragma once

// ZKPEParser reads a Portable Executable image (.exe or .dll) whole into
// memory and copies its headers into the records of ZKPERecords.h.
//
// What it trusts and what it decides:
//   * The file name's ending decides: only paths ending exactly in ".exe" or
//     ".dll" (lower case) are read; the content is not asked.
//   * The DOS signature is not checked. The image signature is looked for at
//     e_lfanew: "NE" (0x454E, headers 2 bytes on), else "PE\0\0" (0x4550,
//     headers 4 bytes on), else it is recorded as 0x5A4D and the headers are
//     read 2 bytes on anyway.
//   * SizeOfOptionalHeader is not consulted; NumberOfRvaAndSizes (as a signed
//     number) and NumberOfSections say how many records follow.
//   * A parser reads one image in its life: ReadPEFile on a read parser
//     gives false. A failed read may be repeated; the containers are not
//     cleared first.
//   * The data-directory getters take their index as it stands: on an image
//     declaring fewer directories the answer is a stale slot (all zero in a
//     freshly read parser).
//   * Copies and moves do not take the path: a copy answers empty from
//     GetExeFileName/GetExeFilePath. operator== compares the five header
//     records, the signature, the machine type, the valid flag and the file's
//     bytes, not the containers or the path.
//
// Hostile input. The reader never reads outside the file's bytes:
//   * ReadPEFile returns false (the parser stays unread, with whatever
//     headers were copied before the stop) when any header, the data
//     directories or the section table would run past the end of the file,
//     when Magic is neither 0x10B nor 0x20B, or when the file is 2 GiB or
//     more. Counts are checked against the bytes left before anything is
//     pushed, so a short file claiming huge counts is rejected at once.
//   * Section names are read within their 40-byte record: an 8-byte name
//     runs on into the record's following bytes up to the first NUL, and
//     stops at the record's end.
//   * GetAllImports and GetAllExports stop at the first table entry, thunk or
//     name that lies outside the file or outside the raw data of the section
//     holding the directory, or that has no NUL before the end of the file;
//     they then return false. Imports keep the modules pushed before the
//     stop; exports push nothing. Work is bounded by the size of that
//     section: at most 256 modules plus one per KiB of it, at most one thunk
//     per 4 bytes of it, and no more name bytes in total than it holds;
//     past a bound the walk stops in the same way.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"
#include "ZKPERecords.h"

class ZKFile;

enum IMAGE_SIGNATURES : unsigned int {
    ZK_IMAGE_SIGNATURE_NONE = 0,
    ZK_IMAGE_SIGNATURE_DOS = 0x5A4D,  // "MZ": recorded when no other signature is found
    ZK_IMAGE_SIGNATURE_OS2 = 0x454E,  // "NE"
    ZK_IMAGE_SIGNATURE_NT = 0x4550,   // "PE\0\0"
};

// The PE format's machine numbers.
enum MACHINE_TYPES : unsigned int {
    ZK_MACHINE_UNKNOWN = 0x0,
    ZK_MACHINE_AM33 = 0x1D3,
    ZK_MACHINE_AMD64 = 0x8664,
    ZK_MACHINE_ARM = 0x1C0,
    ZK_MACHINE_ARM64 = 0xAA64,
    ZK_MACHINE_ARMNT = 0x1C4,
    ZK_MACHINE_EBC = 0xEBC,
    ZK_MACHINE_I386 = 0x14C,
    ZK_MACHINE_IA64 = 0x200,
    ZK_MACHINE_M32R = 0x9041,
    ZK_MACHINE_MIPS16 = 0x266,
    ZK_MACHINE_MIPSFPU = 0x366,
    ZK_MACHINE_MIPSFPU16 = 0x466,
    ZK_MACHINE_POWERPC = 0x1F0,
    ZK_MACHINE_POWERPCFP = 0x1F1,
    ZK_MACHINE_R4000 = 0x166,
    ZK_MACHINE_RISCV32 = 0x5032,
    ZK_MACHINE_RISCV64 = 0x5064,
    ZK_MACHINE_RISCV128 = 0x5128,
    ZK_MACHINE_SH3 = 0x1A2,
    ZK_MACHINE_SH3DSP = 0x1A3,
    ZK_MACHINE_SH4 = 0x1A6,
    ZK_MACHINE_SH5 = 0x1A8,
    ZK_MACHINE_THUMB = 0x1C2,
    ZK_MACHINE_WCEMIPSV2 = 0x169,
};

// The fifteen data directories, by index: X(Name, index).
#define ZK_PE_DATA_DIRECTORIES(X)                                                                      \
    X(Export, 0) X(Import, 1) X(Resource, 2) X(Exception, 3) X(Certificate, 4) X(Relocation, 5)       \
    X(Debug, 6) X(Architecture, 7) X(Global, 8) X(TLS, 9) X(LoadConfig, 10) X(BoundImport, 11) X(IAT, 12) \
    X(DelayImport, 13) X(CLR, 14)

class ZK_API ZKPEParser {
public:
    ZKPEParser();
    ZKPEParser(ZKPEParser const& other);
    ZKPEParser(ZKPEParser&& other);
    virtual ~ZKPEParser();
    ZKPEParser& operator=(ZKPEParser const& other);
    ZKPEParser& operator=(ZKPEParser&& other);
    bool operator==(ZKPEParser const& other) const;

    // Opens `path` in `file` (binary read), which must not have a file open,
    // reads the image and leaves the stream open on success.
    bool ReadPEFile(ZKFile& file, ZKString const& path);
    // The same through a file of its own, closed again before returning.
    bool ReadPEFile(ZKString const& path);

    DOSHeader* GetDOSHeaderPtr();
    DOSHeader const* GetDOSHeaderPtr() const;
    COFFHeader* GetCOFFHeaderPtr();
    COFFHeader const* GetCOFFHeaderPtr() const;
    OptionalHeaderStandard* GetOptionalHeaderStandardPtr();
    OptionalHeaderStandard const* GetOptionalHeaderStandardPtr() const;
    // Null unless Magic says the image is of that kind (0x10B / 0x20B).
    OptionalHeader32* GetOptionalHeaderPtr32();
    OptionalHeader32 const* GetOptionalHeaderPtr32() const;
    OptionalHeader64* GetOptionalHeaderPtr64();
    OptionalHeader64 const* GetOptionalHeaderPtr64() const;
    bool IsPE32Bit() const;
    bool IsPE64Bit() const;
    IMAGE_SIGNATURES GetImageSignature() const;
    MACHINE_TYPES GetMachineType() const;
    bool IsValid() const;
    ZKString const& GetPEFileBufferStr() const;
    unsigned char const* GetPEFileBufferPtr() const;

    // `out` becomes a copy of the list; true when it holds an item.
    bool GetAllOptionalHeaderDataDirs(ZKContainer<IMAGE_DATA_DIR>& out);
    bool GetAllSectionHeaders(ZKContainer<SectionHeader>& out);
    // Exact, case-sensitive match of the section's NUL-terminated name.
    bool GetSectionHeaderByName(ZKString const& name, SectionHeader& out) const;
    // The path split at its last backslash, or, with none, its last slash;
    // both empty when it has neither.
    ZKString GetExeFileName() const;
    ZKString GetExeFilePath() const;
    // The machine type's description; empty for a number not in the table.
    ZKString GetMachineTypeString() const;

    // Get<Name>Dir: false on an unread parser, else the directory at its
    // index, present or not. Get<Name>DirSection: the section holding it.
#define ZK_PE_DECLARE_DIRECTORY_GETTERS(Name, Index) \
    bool Get##Name##Dir(IMAGE_DATA_DIR& out);       \
    bool Get##Name##DirSection(SectionHeader& out);
    ZK_PE_DATA_DIRECTORIES(ZK_PE_DECLARE_DIRECTORY_GETTERS)
#undef ZK_PE_DECLARE_DIRECTORY_GETTERS

    // Imported modules, each with the functions it imports by name. Appends
    // to `out`. False on an unread parser, for an absent import directory,
    // and when a walk stops on hostile data (see above).
    bool GetAllImports(ZKContainer<ImportDirRecord>& out);
    // Appends one record with the exported names, then returns false on every
    // path: success shows as one more record in `out`. Each name's ordinal is
    // Base plus its position in the name table, and every functionRVA is the
    // first entry of the function table.
    bool GetAllExports(ZKContainer<ExportDirRecord>& out);

private:
    void AddOptionalHeaderDataDir(IMAGE_DATA_DIR const& dir);
    void AddSectionHeader(SectionHeader const& section);
    void InitDOSHeader(DOSHeader& header);
    void InitCOFFHeader(COFFHeader& header);
    void InitOptionalHeaderStandard(OptionalHeaderStandard& header);
    void InitOptionalHeader32(OptionalHeader32& header);
    void InitOptionalHeader64(OptionalHeader64& header);
    void InitSectionHeader(SectionHeader& header);
    bool FindDataDirSection(IMAGE_DATA_DIR const& dir, SectionHeader& out) const;
    bool ReadHeaders();
    bool DataDir(unsigned int index, IMAGE_DATA_DIR& out);
    bool DataDirSection(unsigned int index, SectionHeader& out);

    DOSHeader m_dosHeader;
    COFFHeader m_coffHeader;
    OptionalHeaderStandard m_optionalHeaderStandard;
    OptionalHeader32 m_optionalHeader32;
    OptionalHeader64 m_optionalHeader64;
    ZKContainer<IMAGE_DATA_DIR> m_dataDirs;
    ZKContainer<SectionHeader> m_sectionHeaders;
    IMAGE_SIGNATURES m_imageSignature;
    MACHINE_TYPES m_machineType;
    bool m_isValid;
    ZKString m_peFileBuffer;  // the whole file
    ZKString m_exeFilePath;
};

// In spite of its name, a pointer into `buffer`: null when `rva` lies outside
// the section's raw data (an rva exactly at its end is accepted), else
// buffer + PointerToRawData - VirtualAddress + rva, in 32-bit arithmetic.
// The buffer's length is not known here.
ZK_API unsigned char const* ImgDataDirRVAToFileOffset(unsigned char const* buffer, unsigned int rva,
                                                     SectionHeader const& section);

#if !defined(_WIN32)
extern template class ZK_API ZKContainer<ZKPEParser>;
#endif
