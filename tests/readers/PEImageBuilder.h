#pragma once

// Builds small Portable Executable images in memory, so that tests control
// every field: 32- or 64-bit, any machine and signature, any sections, and
// import and export tables laid out like a linker would.

#include <zk64/zk64.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "files/TempFiles.h"

namespace pe {

template <class T>
void Put(std::string& bytes, std::size_t offset, T value)
{
    if (bytes.size() < offset + sizeof(T)) bytes.resize(offset + sizeof(T));
    std::memcpy(bytes.data() + offset, &value, sizeof(T));
}

template <class T>
void Append(std::string& bytes, T value)
{
    Put(bytes, bytes.size(), value);
}

inline void AppendText(std::string& bytes, std::string const& text)
{
    bytes += text;
    bytes += '\0';
}

struct Section {
    std::string name;
    std::uint32_t virtualAddress = 0;
    std::string raw;
    std::uint32_t virtualSize = 0;  // 0: the raw size
};

struct Image {
    bool is64 = true;
    std::uint16_t machine = 0x8664;
    std::uint16_t magic = 0;         // 0: 0x20B or 0x10B after is64
    std::string signature = std::string("PE\0\0", 4);
    std::uint32_t rvaCount = 16;
    std::vector<IMAGE_DATA_DIR> dirs = std::vector<IMAGE_DATA_DIR>(16);
    std::vector<Section> sections;
    std::uint16_t sectionCountOverride = 0;  // nonzero: claimed NumberOfSections

    // Where each part of the headers lands in the file.
    static constexpr std::size_t kSignatureOffset = 0x40;
    std::size_t CoffOffset() const { return kSignatureOffset + signature.size(); }
    std::size_t OptionalOffset() const { return CoffOffset() + 20; }
    std::size_t DirsOffset() const { return OptionalOffset() + 24 + (is64 ? 88 : 72); }
    std::size_t SectionTableOffset() const { return DirsOffset() + dirs.size() * 8; }

    std::string Build() const
    {
        std::string bytes(0x40, '\0');
        bytes[0] = 'M';
        bytes[1] = 'Z';
        Put<std::uint32_t>(bytes, 60, kSignatureOffset);
        bytes.replace(kSignatureOffset, std::string::npos, signature);

        std::size_t const coff = CoffOffset();
        Put<std::uint16_t>(bytes, coff, machine);
        Put<std::uint16_t>(bytes, coff + 2,
                           sectionCountOverride ? sectionCountOverride : static_cast<std::uint16_t>(sections.size()));
        Put<std::uint32_t>(bytes, coff + 4, 0x5F5E0FF);  // time stamp
        Put<std::uint16_t>(bytes, coff + 16, static_cast<std::uint16_t>(24 + (is64 ? 88 : 72) + dirs.size() * 8));
        Put<std::uint16_t>(bytes, coff + 18, 0x2022);

        std::size_t const optional = OptionalOffset();
        Put<std::uint16_t>(bytes, optional, magic ? magic : (is64 ? 0x20B : 0x10B));
        Put<std::uint8_t>(bytes, optional + 2, 2);
        Put<std::uint32_t>(bytes, optional + 16, 0x1000);  // entry point
        std::size_t const rest = optional + 24;
        if (is64) {
            Put<std::uint64_t>(bytes, rest, 0x140000000ull);
            Put<std::uint32_t>(bytes, rest + 8, 0x1000);
            Put<std::uint32_t>(bytes, rest + 12, 0x200);
            Put<std::uint32_t>(bytes, rest + 84, rvaCount);
        } else {
            Put<std::uint32_t>(bytes, rest + 4, 0x400000);
            Put<std::uint32_t>(bytes, rest + 8, 0x1000);
            Put<std::uint32_t>(bytes, rest + 12, 0x200);
            Put<std::uint32_t>(bytes, rest + 68, rvaCount);
        }
        std::size_t cursor = DirsOffset();
        for (IMAGE_DATA_DIR const& dir : dirs) {
            Put<std::uint32_t>(bytes, cursor, dir.VirtualAddress);
            Put<std::uint32_t>(bytes, cursor + 4, dir.Size);
            cursor += 8;
        }

        std::size_t rawOffset = (SectionTableOffset() + sections.size() * 40 + 0x1FF) & ~std::size_t{0x1FF};
        for (Section const& section : sections) {
            char name[8] = {};
            std::memcpy(name, section.name.data(), section.name.size() < 8 ? section.name.size() : 8);
            bytes.resize(cursor + 40);
            std::memcpy(bytes.data() + cursor, name, 8);
            Put<std::uint32_t>(bytes, cursor + 8,
                               section.virtualSize ? section.virtualSize : static_cast<std::uint32_t>(section.raw.size()));
            Put<std::uint32_t>(bytes, cursor + 12, section.virtualAddress);
            Put<std::uint32_t>(bytes, cursor + 16, static_cast<std::uint32_t>(section.raw.size()));
            Put<std::uint32_t>(bytes, cursor + 20, static_cast<std::uint32_t>(rawOffset));
            cursor += 40;
            rawOffset += (section.raw.size() + 0x1FF) & ~std::size_t{0x1FF};
        }
        for (std::size_t i = 0, offset = (cursor + 0x1FF) & ~std::size_t{0x1FF}; i < sections.size(); ++i) {
            if (bytes.size() < offset) bytes.resize(offset);
            bytes.replace(offset, sections[i].raw.size(), sections[i].raw);
            offset += (sections[i].raw.size() + 0x1FF) & ~std::size_t{0x1FF};
        }
        return bytes;
    }
};

// An imported function: by name with a hint, or by ordinal (empty name).
struct Function {
    std::uint16_t hintOrOrdinal = 0;
    std::string name;
};

struct Module {
    std::string name;
    std::vector<Function> functions;
};

// An import section at `rva`: descriptors, then each module's lookup table,
// then the names and hint/name entries. Sets data directory 1.
inline Section ImportSection(Image& image, std::uint32_t rva, std::vector<Module> const& modules)
{
    std::size_t const thunkSize = image.is64 ? 8 : 4;
    std::size_t tables = (modules.size() + 1) * 20;
    std::size_t texts = tables;
    for (Module const& module : modules) texts += (module.functions.size() + 1) * thunkSize;

    std::string raw(texts, '\0');
    std::size_t table = tables;
    for (std::size_t m = 0; m < modules.size(); ++m) {
        Module const& module = modules[m];
        std::size_t const descriptor = m * 20;
        Put<std::uint32_t>(raw, descriptor, static_cast<std::uint32_t>(rva + table));       // lookup table
        Put<std::uint32_t>(raw, descriptor + 12, static_cast<std::uint32_t>(rva + raw.size()));  // name
        Put<std::uint32_t>(raw, descriptor + 16, static_cast<std::uint32_t>(rva + table));   // address table
        AppendText(raw, module.name);
        for (Function const& function : module.functions) {
            std::uint64_t thunk;
            if (function.name.empty()) {
                thunk = function.hintOrOrdinal | (image.is64 ? 1ull << 63 : 1ull << 31);
            } else {
                if (raw.size() % 2) raw += '\0';
                thunk = rva + raw.size();
                Append<std::uint16_t>(raw, function.hintOrOrdinal);
                AppendText(raw, function.name);
            }
            if (image.is64) Put<std::uint64_t>(raw, table, thunk);
            else Put<std::uint32_t>(raw, table, static_cast<std::uint32_t>(thunk));
            table += thunkSize;
        }
        table += thunkSize;  // the terminating zero thunk
    }
    image.dirs[1] = IMAGE_DATA_DIR{rva, static_cast<std::uint32_t>(tables)};
    return Section{".idata", rva, raw, 0};
}

// An export section at `rva` for `names`, function i at 0x1000 + 0x10 * i.
// Sets data directory 0.
inline Section ExportSection(Image& image, std::uint32_t rva, std::string const& dll, std::uint32_t base,
                             std::vector<std::string> const& names, std::uint32_t functions)
{
    std::uint32_t const functionTable = 40;
    std::uint32_t const nameTable = functionTable + 4 * functions;
    std::uint32_t const ordinalTable = nameTable + 4 * static_cast<std::uint32_t>(names.size());
    std::string raw(ordinalTable + 2 * names.size(), '\0');
    Put<std::uint32_t>(raw, 12, rva + static_cast<std::uint32_t>(raw.size()));
    AppendText(raw, dll);
    Put<std::uint32_t>(raw, 16, base);
    Put<std::uint32_t>(raw, 20, functions);
    Put<std::uint32_t>(raw, 24, static_cast<std::uint32_t>(names.size()));
    Put<std::uint32_t>(raw, 28, rva + functionTable);
    Put<std::uint32_t>(raw, 32, rva + nameTable);
    Put<std::uint32_t>(raw, 36, rva + ordinalTable);
    for (std::uint32_t i = 0; i < functions; ++i) Put<std::uint32_t>(raw, functionTable + 4 * i, 0x1000 + 0x10 * i);
    for (std::size_t i = 0; i < names.size(); ++i) {
        Put<std::uint32_t>(raw, nameTable + 4 * i, rva + static_cast<std::uint32_t>(raw.size()));
        Put<std::uint16_t>(raw, ordinalTable + 2 * i, static_cast<std::uint16_t>(names.size() - 1 - i));
        AppendText(raw, names[i]);
    }
    image.dirs[0] = IMAGE_DATA_DIR{rva, static_cast<std::uint32_t>(raw.size())};
    return Section{".edata", rva, raw, 0};
}

// Writes `bytes` as `name` in a fresh scratch directory and reads it.
inline bool Read(ZKPEParser& parser, std::string const& bytes, char const* name = "image.dll")
{
    zk64::test::TempDir dir("pe");
    return parser.ReadPEFile(ZKString(dir.Write(name, bytes).c_str()));
}

}  // namespace pe
