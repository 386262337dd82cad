#include "ZKPEParser.h"

#include <climits>
#include <cstring>
#include <type_traits>
#include <utility>

#include "../files/ZKFile.h"


namespace {

constexpr unsigned short kMagic32 = 0x10B;
constexpr unsigned short kMagic64 = 0x20B;

// Records compared and copied as raw bytes must have no padding.
static_assert(std::has_unique_object_representations_v<DOSHeader> &&
              std::has_unique_object_representations_v<COFFHeader> &&
              std::has_unique_object_representations_v<OptionalHeaderStandard> &&
              std::has_unique_object_representations_v<OptionalHeader32> &&
              std::has_unique_object_representations_v<OptionalHeader64> &&
              std::has_unique_object_representations_v<SectionHeader>);

template <class Record>
bool SameBytes(Record const& a, Record const& b)
{
    return std::memcmp(&a, &b, sizeof(Record)) == 0;
}

// Bounds-checked reads from the file's bytes.
class Bytes {
public:
    explicit Bytes(ZKString const& buffer)
        : data(reinterpret_cast<unsigned char const*>(buffer.GetString())),
          size(static_cast<unsigned int>(buffer.GetSize()))
    {
    }

    bool Fits(unsigned long long offset, unsigned long long length) const
    {
        return offset <= size && length <= size - offset;
    }
    template <class T>
    bool Read(unsigned long long offset, T& out) const
    {
        if (!Fits(offset, sizeof(T))) return false;
        std::memcpy(&out, data + offset, sizeof(T));
        return true;
    }
    // The NUL-terminated text at `offset`; false when no NUL comes before
    // the end of the file, or when the text would exceed `budget` bytes
    // (which it then consumes).
    bool Text(unsigned long long offset, unsigned long long& budget, ZKString& out) const
    {
        if (offset >= size) return false;
        auto const* start = data + offset;
        auto const* nul = static_cast<unsigned char const*>(std::memchr(start, 0, size - offset));
        if (nul == nullptr) return false;
        auto const length = static_cast<unsigned long long>(nul - start);
        if (length > budget) return false;
        budget -= length;
        out.SetString(reinterpret_cast<char const*>(start), static_cast<int>(length));
        return true;
    }
    unsigned char const* Data() const { return data; }
    unsigned int Size() const { return size; }

private:
    unsigned char const* data;
    unsigned int size;
};

// The directory's section: translates addresses as ImgDataDirRVAToFileOffset
// does, into file offsets that reads then check against the file.
class SectionView {
public:
    SectionView(Bytes const& bytes, SectionHeader const& header) : file(bytes), section(header)
    {
        unsigned long long const start = header.PointerToRawData;
        unsigned long long const end = start + header.SizeOfRawData;
        rawInFile = start >= bytes.Size() ? 0 : (end > bytes.Size() ? bytes.Size() : end) - start;
    }

    bool Translate(unsigned int rva, unsigned long long& offset) const
    {
        if (rva - section.VirtualAddress > section.SizeOfRawData) return false;
        offset = static_cast<unsigned int>(section.PointerToRawData - section.VirtualAddress + rva);
        return true;
    }
    template <class T>
    bool ReadAt(unsigned int rva, T& out) const
    {
        unsigned long long offset = 0;
        return Translate(rva, offset) && file.Read(offset, out);
    }
    bool TextAt(unsigned int rva, unsigned long long extra, unsigned long long& budget, ZKString& out) const
    {
        unsigned long long offset = 0;
        return Translate(rva, offset) && file.Text(offset + extra, budget, out);
    }
    // The section's raw bytes that the file really holds: the measure of
    // how much work a walk over it may cost.
    unsigned long long RawBytes() const { return rawInFile; }
    Bytes const& File() const { return file; }

private:
    Bytes const& file;
    SectionHeader section;
    unsigned long long rawInFile;
};

// The export directory table as the file holds it.
struct ExportDirectoryTable {
    unsigned int Characteristics;
    unsigned int TimeDateStamp;
    unsigned short MajorVersion;
    unsigned short MinorVersion;
    unsigned int Name;
    unsigned int Base;
    unsigned int NumberOfFunctions;
    unsigned int NumberOfNames;
    unsigned int AddressOfFunctions;
    unsigned int AddressOfNames;
    unsigned int AddressOfNameOrdinals;
};
static_assert(sizeof(ExportDirectoryTable) == 40);

// Candidates of the machine classification, in the order they are tried.
constexpr unsigned int kMachineOrder[] = {0x1D3, 0x8664, 0x1C0, 0xAA64, 0x1C4, 0xEBC, 0x14C, 0x200,
                                          0x9041, 0x266, 0x366, 0x466, 0x1F0, 0x1F1, 0x166, 0x5032,
                                          0x5064, 0x5128, 0x1A2, 0x1A3, 0x1A6, 0x1A8, 0x1C2, 0x169};

struct MachineName {
    unsigned int machine;
    char const* text;
};
constexpr MachineName kMachineNames[] = {
    {0x0, "The contents of this field are assumed to be applicable to any machine type"},
    {0x1D3, "Matsushita AM33"},
    {0x8664, "x64"},
    {0x1C0, "ARM little endian"},
    {0xAA64, "ARM64 little endian"},
    {0x1C4, "ARM Thumb-2 little endian"},
    {0xEBC, "EFI byte code"},
    {0x14C, "Intel 386 or later processors and compatible processors"},
    {0x200, "Intel Itanium processor family"},
    {0x9041, "Mitsubishi M32R little endian"},
    {0x266, "MIPS16"},
    {0x366, "MIPS with FPU"},
    {0x466, "MIPS16 with FPU"},
    {0x1F0, "Power PC little endian"},
    {0x1F1, "Power PC with floating point support"},
    {0x166, "MIPS little endian"},
    {0x5032, "RISC-V 32-bit address space"},
    {0x5064, "RISC-V 64-bit address space"},
    {0x5128, "RISC-V 128-bit address space"},
    {0x1A2, "Hitachi SH3"},
    {0x1A3, "Hitachi SH3 DSP"},
    {0x1A6, "Hitachi SH4"},
    {0x1A8, "Hitachi SH5"},
    {0x1C2, "Thumb"},
    {0x169, "MIPS little-endian WCE v2"},
};

// The capacity a default container reaches when `count` items are pushed
// onto it one by one: 512 doubled until they fit.
unsigned long long GrownCapacity(unsigned long long count)
{
    unsigned long long capacity = 512;
    while (capacity < count) capacity *= 2;
    return capacity;
}

}  // namespace

ZKPEParser::ZKPEParser() : m_imageSignature(ZK_IMAGE_SIGNATURE_NONE), m_machineType(ZK_MACHINE_UNKNOWN), m_isValid(false)
{
    InitDOSHeader(m_dosHeader);
    InitCOFFHeader(m_coffHeader);
    InitOptionalHeaderStandard(m_optionalHeaderStandard);
    InitOptionalHeader32(m_optionalHeader32);
    InitOptionalHeader64(m_optionalHeader64);
}

ZKPEParser::ZKPEParser(ZKPEParser const& other) : ZKPEParser() { *this = other; }

ZKPEParser::ZKPEParser(ZKPEParser&& other) : ZKPEParser() { *this = std::move(other); }

ZKPEParser::~ZKPEParser() = default;

ZKPEParser& ZKPEParser::operator=(ZKPEParser const& other)
{
    if (this == &other) return *this;
    m_dosHeader = other.m_dosHeader;
    m_coffHeader = other.m_coffHeader;
    m_optionalHeaderStandard = other.m_optionalHeaderStandard;
    m_optionalHeader32 = other.m_optionalHeader32;
    m_optionalHeader64 = other.m_optionalHeader64;
    m_dataDirs = other.m_dataDirs;
    m_sectionHeaders = other.m_sectionHeaders;
    m_imageSignature = other.m_imageSignature;
    m_machineType = other.m_machineType;
    m_isValid = other.m_isValid;
    m_peFileBuffer = other.m_peFileBuffer;
    return *this;  // the path stays behind
}

ZKPEParser& ZKPEParser::operator=(ZKPEParser&& other)
{
    if (this == &other) return *this;
    m_dosHeader = other.m_dosHeader;
    m_coffHeader = other.m_coffHeader;
    m_optionalHeaderStandard = other.m_optionalHeaderStandard;
    m_optionalHeader32 = other.m_optionalHeader32;
    m_optionalHeader64 = other.m_optionalHeader64;
    m_dataDirs = std::move(other.m_dataDirs);
    m_sectionHeaders = std::move(other.m_sectionHeaders);
    m_imageSignature = other.m_imageSignature;
    m_machineType = other.m_machineType;
    m_isValid = other.m_isValid;
    m_peFileBuffer = std::move(other.m_peFileBuffer);
    return *this;  // the path stays behind
}

bool ZKPEParser::operator==(ZKPEParser const& other) const
{
    return SameBytes(m_dosHeader, other.m_dosHeader) && SameBytes(m_coffHeader, other.m_coffHeader) &&
           SameBytes(m_optionalHeaderStandard, other.m_optionalHeaderStandard) &&
           SameBytes(m_optionalHeader32, other.m_optionalHeader32) &&
           SameBytes(m_optionalHeader64, other.m_optionalHeader64) && m_imageSignature == other.m_imageSignature &&
           m_machineType == other.m_machineType && m_isValid == other.m_isValid &&
           m_peFileBuffer == other.m_peFileBuffer;
}

bool ZKPEParser::ReadPEFile(ZKFile& file, ZKString const& path)
{
    if (m_isValid) return false;
    int const size = path.GetSize();
    if (size < 4) return false;
    ZKString const ending = path.GetString(static_cast<unsigned long long>(size - 4), 4u);
    if (!(ending == ".exe") && !(ending == ".dll")) return false;
    if (file.IsFileOpen()) return false;
    if (!file.OpenFile(path, FILE_STREAM_BINARY_READ)) return false;

    unsigned int const length = file.GetFileLengthBytes();
    ZKString text;
    if (length > static_cast<unsigned int>(INT_MAX) || !file.ReadData(text, static_cast<int>(length)) ||
        text.GetSize() == 0) {
        file.CloseFile();
        return false;
    }
    m_isValid = false;
    m_peFileBuffer = std::move(text);
    if (!ReadHeaders()) return false;
    m_exeFilePath = path;
    m_isValid = true;
    return true;
}

bool ZKPEParser::ReadPEFile(ZKString const& path)
{
    if (m_isValid) return false;
    ZKFile file;
    bool const read = ReadPEFile(file, path);
    if (read) file.CloseFile();
    return read;
}

// Headers, data directories and section table, each checked against the
// bytes the file holds before it is copied or pushed.
bool ZKPEParser::ReadHeaders()
{
    Bytes const file(m_peFileBuffer);
    if (!file.Read(0, m_dosHeader)) return false;

    unsigned long long cursor = m_dosHeader.e_lfanew;
    unsigned short signature16 = 0;
    unsigned int signature32 = 0;
    if (file.Read(cursor, signature16) && signature16 == ZK_IMAGE_SIGNATURE_OS2) {
        m_imageSignature = ZK_IMAGE_SIGNATURE_OS2;
        cursor += 2;
    } else if (file.Read(cursor, signature32) && signature32 == ZK_IMAGE_SIGNATURE_NT) {
        m_imageSignature = ZK_IMAGE_SIGNATURE_NT;
        cursor += 4;
    } else {
        m_imageSignature = ZK_IMAGE_SIGNATURE_DOS;
        cursor += 2;
    }

    if (!file.Read(cursor, m_coffHeader)) return false;
    for (unsigned int candidate : kMachineOrder) {
        if ((m_coffHeader.Machine & candidate) == candidate) {
            m_machineType = static_cast<MACHINE_TYPES>(candidate);
            break;
        }
    }
    if (!file.Read(cursor + sizeof(COFFHeader), m_optionalHeaderStandard)) return false;

    cursor += sizeof(COFFHeader) + sizeof(OptionalHeaderStandard);
    unsigned int rvaCount = 0;
    if (IsPE32Bit()) {
        if (!file.Read(cursor, m_optionalHeader32)) return false;
        cursor += sizeof(OptionalHeader32);
        rvaCount = m_optionalHeader32.NumberOfRvaAndSizes;
    } else if (IsPE64Bit()) {
        if (!file.Read(cursor, m_optionalHeader64)) return false;
        cursor += sizeof(OptionalHeader64);
        rvaCount = m_optionalHeader64.NumberOfRvaAndSizes;
    } else {
        return false;
    }

    int const directories = static_cast<int>(rvaCount);
    if (directories > 0) {
        unsigned long long const count = static_cast<unsigned int>(directories);
        if (!file.Fits(cursor, count * sizeof(IMAGE_DATA_DIR))) return false;
        if (m_dataDirs.GetItemCount() + count > m_dataDirs.GetMaxItemCount())
            m_dataDirs.Reserve(GrownCapacity(m_dataDirs.GetItemCount() + count));
        for (unsigned long long i = 0; i < count; ++i, cursor += sizeof(IMAGE_DATA_DIR)) {
            IMAGE_DATA_DIR dir{};
            file.Read(cursor, dir);
            AddOptionalHeaderDataDir(dir);
        }
    }

    unsigned long long const sections = m_coffHeader.NumberOfSections;
    if (!file.Fits(cursor, sections * sizeof(SectionHeader))) return false;
    if (m_sectionHeaders.GetItemCount() + sections > m_sectionHeaders.GetMaxItemCount())
        m_sectionHeaders.Reserve(GrownCapacity(m_sectionHeaders.GetItemCount() + sections));
    for (unsigned long long i = 0; i < sections; ++i, cursor += sizeof(SectionHeader)) {
        SectionHeader section{};
        file.Read(cursor, section);
        AddSectionHeader(section);
    }
    return true;
}

DOSHeader* ZKPEParser::GetDOSHeaderPtr() { return &m_dosHeader; }
DOSHeader const* ZKPEParser::GetDOSHeaderPtr() const { return &m_dosHeader; }
COFFHeader* ZKPEParser::GetCOFFHeaderPtr() { return &m_coffHeader; }
COFFHeader const* ZKPEParser::GetCOFFHeaderPtr() const { return &m_coffHeader; }
OptionalHeaderStandard* ZKPEParser::GetOptionalHeaderStandardPtr() { return &m_optionalHeaderStandard; }
OptionalHeaderStandard const* ZKPEParser::GetOptionalHeaderStandardPtr() const { return &m_optionalHeaderStandard; }
OptionalHeader32* ZKPEParser::GetOptionalHeaderPtr32() { return IsPE32Bit() ? &m_optionalHeader32 : nullptr; }
OptionalHeader32 const* ZKPEParser::GetOptionalHeaderPtr32() const { return IsPE32Bit() ? &m_optionalHeader32 : nullptr; }
OptionalHeader64* ZKPEParser::GetOptionalHeaderPtr64() { return IsPE64Bit() ? &m_optionalHeader64 : nullptr; }
OptionalHeader64 const* ZKPEParser::GetOptionalHeaderPtr64() const { return IsPE64Bit() ? &m_optionalHeader64 : nullptr; }
bool ZKPEParser::IsPE32Bit() const { return m_optionalHeaderStandard.Magic == kMagic32; }
bool ZKPEParser::IsPE64Bit() const { return m_optionalHeaderStandard.Magic == kMagic64; }
IMAGE_SIGNATURES ZKPEParser::GetImageSignature() const { return m_imageSignature; }
MACHINE_TYPES ZKPEParser::GetMachineType() const { return m_machineType; }
bool ZKPEParser::IsValid() const { return m_isValid; }
ZKString const& ZKPEParser::GetPEFileBufferStr() const { return m_peFileBuffer; }

unsigned char const* ZKPEParser::GetPEFileBufferPtr() const
{
    return reinterpret_cast<unsigned char const*>(m_peFileBuffer.GetString());
}

bool ZKPEParser::GetAllOptionalHeaderDataDirs(ZKContainer<IMAGE_DATA_DIR>& out)
{
    out = m_dataDirs;
    return out.GetItemCount() > 0;
}

bool ZKPEParser::GetAllSectionHeaders(ZKContainer<SectionHeader>& out)
{
    out = m_sectionHeaders;
    return out.GetItemCount() > 0;
}

bool ZKPEParser::GetSectionHeaderByName(ZKString const& name, SectionHeader& out) const
{
    for (unsigned long long i = 0; i < m_sectionHeaders.GetItemCount(); ++i) {
        SectionHeader const section = m_sectionHeaders.GetItem(i);
        // The name runs to its NUL, past the 8-byte field if it fills it,
        // but never past the record.
        auto const* bytes = reinterpret_cast<char const*>(&section);
        auto const* nul = static_cast<char const*>(std::memchr(bytes, 0, sizeof(SectionHeader)));
        int const length = static_cast<int>(nul ? nul - bytes : static_cast<long>(sizeof(SectionHeader)));
        if (ZKString(bytes, length) == name) {
            out = section;
            return true;
        }
    }
    return false;
}

namespace {

// The separator GetExeFileName/GetExeFilePath split at: the last backslash,
// or, with none, the last slash; -1 without either.
long long PathSplit(ZKString const& path)
{
    char const* text = path.GetString();
    for (char const separator : {'\\', '/'}) {
        for (long long i = path.GetSize() - 1; i >= 0; --i)
            if (text[i] == separator) return i;
    }
    return -1;
}

}  // namespace

ZKString ZKPEParser::GetExeFileName() const
{
    long long const split = PathSplit(m_exeFilePath);
    if (split < 0) return ZKString();
    return ZKString(m_exeFilePath.GetString() + split + 1, static_cast<int>(m_exeFilePath.GetSize() - split - 1));
}

ZKString ZKPEParser::GetExeFilePath() const
{
    long long const split = PathSplit(m_exeFilePath);
    if (split < 0) return ZKString();
    return ZKString(m_exeFilePath.GetString(), static_cast<int>(split));
}

ZKString ZKPEParser::GetMachineTypeString() const
{
    for (MachineName const& entry : kMachineNames)
        if (entry.machine == m_machineType) return ZKString(entry.text);
    return ZKString();
}

bool ZKPEParser::DataDir(unsigned int index, IMAGE_DATA_DIR& out)
{
    if (!m_isValid) return false;
    out = m_dataDirs.GetItem(index);
    return true;
}

bool ZKPEParser::DataDirSection(unsigned int index, SectionHeader& out)
{
    if (!m_isValid) return false;
    return FindDataDirSection(m_dataDirs.GetItem(index), out);
}

#define ZK_PE_DEFINE_DIRECTORY_GETTERS(Name, Index)                                                  \
    bool ZKPEParser::Get##Name##Dir(IMAGE_DATA_DIR& out) { return DataDir(Index, out); }            \
    bool ZKPEParser::Get##Name##DirSection(SectionHeader& out) { return DataDirSection(Index, out); }
ZK_PE_DATA_DIRECTORIES(ZK_PE_DEFINE_DIRECTORY_GETTERS)
#undef ZK_PE_DEFINE_DIRECTORY_GETTERS

void ZKPEParser::AddOptionalHeaderDataDir(IMAGE_DATA_DIR const& dir) { m_dataDirs.PushBack(dir); }
void ZKPEParser::AddSectionHeader(SectionHeader const& section) { m_sectionHeaders.PushBack(section); }
void ZKPEParser::InitDOSHeader(DOSHeader& header) { header = DOSHeader{}; }
void ZKPEParser::InitCOFFHeader(COFFHeader& header) { header = COFFHeader{}; }
void ZKPEParser::InitOptionalHeaderStandard(OptionalHeaderStandard& header) { header = OptionalHeaderStandard{}; }
void ZKPEParser::InitOptionalHeader32(OptionalHeader32& header) { header = OptionalHeader32{}; }
void ZKPEParser::InitOptionalHeader64(OptionalHeader64& header) { header = OptionalHeader64{}; }
void ZKPEParser::InitSectionHeader(SectionHeader& header) { header = SectionHeader{}; }

bool ZKPEParser::FindDataDirSection(IMAGE_DATA_DIR const& dir, SectionHeader& out) const
{
    if (dir.Size == 0 || dir.VirtualAddress == 0) return false;
    for (unsigned long long i = 0; i < m_sectionHeaders.GetItemCount(); ++i) {
        SectionHeader const section = m_sectionHeaders.GetItem(i);
        if (section.VirtualAddress <= dir.VirtualAddress &&
            section.VirtualAddress + section.VirtualSize >= dir.VirtualAddress) {
            out = section;
            return true;
        }
    }
    return false;
}

bool ZKPEParser::GetAllImports(ZKContainer<ImportDirRecord>& out)
{
    if (!m_isValid) return false;
    SectionHeader section;
    IMAGE_DATA_DIR const dir = m_dataDirs.GetItem(1);
    if (!FindDataDirSection(dir, section)) return false;

    Bytes const file(m_peFileBuffer);
    SectionView const view(file, section);
    unsigned long long const raw = view.RawBytes();
    unsigned long long modulesLeft = 256 + raw / 1024;
    unsigned long long thunksLeft = raw / 4;
    unsigned long long nameBytesLeft = raw;
    bool const wide = !IsPE32Bit();
    unsigned int const thunkSize = wide ? 8 : 4;
    unsigned long long const ordinalBit = wide ? 1ull << 63 : 1ull << 31;

    // Each module's record starts as a fresh one; assigning a fresh record
    // over the last one gives the same result as building a new one without
    // allocating its 512 sub-record slots again.
    ImportDirRecord const fresh;
    ImportDirRecord record;
    for (unsigned int entryRva = dir.VirtualAddress;; entryRva += sizeof(ImportDirectoryTable)) {
        ImportDirectoryTable entry{};
        if (!view.ReadAt(entryRva, entry)) return false;
        if (entry.ImportLookupTableRVA == 0 && entry.TimeDateStamp == 0 && entry.ForwarderChain == 0 &&
            entry.NameRVA == 0 && entry.ImportAddressTableRVA == 0)
            return true;
        if (modulesLeft-- == 0) return false;

        record = fresh;
        if (!view.TextAt(entry.NameRVA, 0, nameBytesLeft, record.name)) return false;
        record.importLookupTableRVA = entry.ImportLookupTableRVA;
        record.timeDateStamp = entry.TimeDateStamp;
        record.forwarderChain = entry.ForwarderChain;

        unsigned long long thunkOffset = 0;
        if (!view.Translate(entry.ImportLookupTableRVA, thunkOffset)) return false;
        unsigned int thunks = 0;
        for (;; thunkOffset += thunkSize) {
            unsigned long long thunk = 0;
            if (wide) {
                if (!file.Read(thunkOffset, thunk)) return false;
            } else {
                unsigned int narrow = 0;
                if (!file.Read(thunkOffset, narrow)) return false;
                thunk = narrow;
            }
            if (thunk == 0) break;
            if (thunksLeft-- == 0) return false;
            ++thunks;
            if ((thunk & ordinalBit) != 0) continue;  // by ordinal: counted, nothing kept
            auto const nameRva = static_cast<unsigned int>(thunk) & 0x7FFFFFFFu;
            ImportDirRecord::ImportDirSubRecord sub;
            if (!view.ReadAt(nameRva, sub.hint)) return false;
            if (!view.TextAt(nameRva, 2, nameBytesLeft, sub.name)) return false;
            record.subRecords.PushBack(sub);
        }
        record.thunkCount = thunks;
        out.PushBack(record);
    }
}

bool ZKPEParser::GetAllExports(ZKContainer<ExportDirRecord>& out)
{
    if (!m_isValid) return false;
    SectionHeader section;
    IMAGE_DATA_DIR const dir = m_dataDirs.GetItem(0);
    if (!FindDataDirSection(dir, section)) return false;

    Bytes const file(m_peFileBuffer);
    SectionView const view(file, section);
    ExportDirectoryTable table{};
    if (!view.ReadAt(dir.VirtualAddress, table)) return false;

    ExportDirRecord record;
    record.Characteristics = table.Characteristics;
    record.TimeDateStamp = table.TimeDateStamp;
    record.MajorVersion = table.MajorVersion;
    record.MinorVersion = table.MinorVersion;
    record.Name = table.Name;
    record.Base = table.Base;
    record.NumberOfFunctions = table.NumberOfFunctions;
    record.NumberOfNames = table.NumberOfNames;
    record.AddressOfFunctions = table.AddressOfFunctions;
    record.AddressOfNames = table.AddressOfNames;
    record.AddressOfNameOrdinals = table.AddressOfNameOrdinals;

    unsigned long long const names = table.NumberOfNames;
    if (names > 0) {
        // Every name needs a 4-byte entry of its own in the section.
        if (names * 4 > view.RawBytes()) return false;
        unsigned int firstFunction = 0;
        unsigned long long namesOffset = 0;
        if (!view.ReadAt(table.AddressOfFunctions, firstFunction)) return false;
        if (!view.Translate(table.AddressOfNames, namesOffset) || !file.Fits(namesOffset, names * 4)) return false;
        if (names > record.subRecords.GetMaxItemCount()) record.subRecords.Reserve(GrownCapacity(names));
        unsigned long long nameBytesLeft = view.RawBytes();
        for (unsigned long long position = 0; position < names; ++position) {
            ExportDirRecord::ExportDirSubRecord sub;
            sub.ordinal = table.Base + static_cast<unsigned int>(position);
            sub.functionRVA = firstFunction;
            sub.index = static_cast<unsigned short>(static_cast<unsigned short>(sub.ordinal) -
                                                    static_cast<unsigned short>(table.Base));
            file.Read(namesOffset + position * 4, sub.nameRVA);
            if (!view.TextAt(sub.nameRVA, 0, nameBytesLeft, sub.name)) return false;
            record.subRecords.PushBack(sub);
        }
    }
    out.PushBack(record);
    return false;
}

unsigned char const* ImgDataDirRVAToFileOffset(unsigned char const* buffer, unsigned int rva,
                                               SectionHeader const& section)
{
    if (rva - section.VirtualAddress > section.SizeOfRawData) return nullptr;
    return buffer + static_cast<unsigned int>(section.PointerToRawData - section.VirtualAddress + rva);
}
