#pragma once

// A scratch directory per test, with helpers that write and read files
// byte for byte, independently of ZKFile.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace zk64::test {

class TempDir {
public:
    explicit TempDir(std::string const& name)
        : root(std::filesystem::temp_directory_path() / ("zk64-" + name + "-" + std::to_string(std::random_device{}())))
    {
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(root);
    }
    ~TempDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
    TempDir(TempDir const&) = delete;
    TempDir& operator=(TempDir const&) = delete;

    // The native path of `file` inside the directory, as ZKFile takes it.
    std::string Path(std::string const& file) const { return (root / file).string(); }
    std::string Dir() const { return root.string(); }

    std::string Write(std::string const& file, std::string const& bytes) const
    {
        std::ofstream out(root / file, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return Path(file);
    }
    std::string Read(std::string const& file) const
    {
        std::ifstream in(root / file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    bool Exists(std::string const& file) const { return std::filesystem::exists(root / file); }

private:
    std::filesystem::path root;
};

// What a text-mode write of `text` leaves on disk: Windows writes every line
// feed as a carriage return and a line feed.
inline std::string TextOnDisk(std::string const& text)
{
#if defined(_WIN32)
    std::string out;
    for (char c : text) {
        if (c == '\n') out += '\r';
        out += c;
    }
    return out;
#else
    return text;
#endif
}

}  // namespace zk64::test
