#pragma once

// What the libFuzzer targets share: fuzzed bytes as a file of their own, and
// fuzzed bytes cut into pieces.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

namespace zk64::fuzz {

// Writes the bytes to this process's scratch file with the given ending
// (the PE reader decides by the name) and returns its path.
inline std::string const& ScratchFile(std::uint8_t const* data, std::size_t size, char const* ending)
{
    static std::string const path = (std::filesystem::temp_directory_path() /
                                     ("zk64-fuzz-" + std::to_string(getpid()) + ending))
                                        .string();
    if (std::FILE* file = std::fopen(path.c_str(), "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    return path;
}

// The bytes cut at each zero byte (the pieces keep no zero; n zeros give
// n + 1 pieces).
inline std::vector<std::string> Pieces(std::uint8_t const* data, std::size_t size)
{
    std::vector<std::string> pieces(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0) pieces.emplace_back();
        else pieces.back() += static_cast<char>(data[i]);
    }
    return pieces;
}

// Aborts, so that libFuzzer records the input, when a documented property
// does not hold.
#define ZK_FUZZ_REQUIRE(condition)                                                         \
    do {                                                                                   \
        if (!(condition)) {                                                                \
            std::fprintf(stderr, "%s:%d: property broken: %s\n", __FILE__, __LINE__, #condition); \
            __builtin_trap();                                                              \
        }                                                                                  \
    } while (false)

}  // namespace zk64::fuzz
