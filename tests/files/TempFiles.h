#pragma once

// A scratch directory per test, with helpers that write and read files
// byte for byte, independently of ZKFile.

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
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
    ~TempDir() { std::filesystem::remove_all(root, ignored); }
    TempDir(TempDir const&) = delete;
    TempDir& operator=(TempDir const&) = delete;

    // The native path of `file` inside the directory, as ZKFile takes it.
    std::string Path(std::string const& file) const { return (root / file).string(); }
    std::string Dir() const { return root.string(); }
    std::string Write(std::string const& file, std::string const& bytes) const
    {
        std::ofstream(root / file, std::ios::binary) << bytes;
        return Path(file);
    }
    std::string Read(std::string const& file) const
    {
        std::ostringstream bytes;
        bytes << std::ifstream(root / file, std::ios::binary).rdbuf();
        return bytes.str();
    }
    bool Exists(std::string const& file) const { return std::filesystem::exists(root / file); }

private:
    std::filesystem::path root;
    std::error_code ignored;
};

// What a text-mode write of `text` leaves on disk: Windows writes every line
// feed as a carriage return and a line feed.
inline std::string TextOnDisk(std::string text)
{
#if defined(_WIN32)
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2)) text.insert(at, 1, '\r');
#endif
    return text;
}

}  // namespace zk64::test
