// Directory search on real trees, through the system's own enumeration:
// natively on Linux and as zk64.dll under Wine. std::filesystem is the
// oracle for what a tree holds.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "files/TempFiles.h"

namespace fs = std::filesystem;
using Entries = std::set<std::pair<std::string, bool>>;  // path, is a file

namespace {

constexpr char kSep = fs::path::preferred_separator == '/' ? '/' : '\\';

// What the walk must report under `root`: every entry without following
// links, links counting as files, and nothing inside a directory whose
// search pattern (path, separator, star) is longer than 257 characters.
Entries Expected(std::string const& root)
{
    Entries out;
    for (auto it = fs::recursive_directory_iterator(root); it != fs::recursive_directory_iterator(); ++it) {
        bool const isDirectory = !it->is_symlink() && it->is_directory();
        if (it->path().parent_path().string().size() + 2 <= 257) out.insert({it->path().string(), !isDirectory});
        if (isDirectory && it->path().string().size() + 2 > 257) it.disable_recursion_pending();
    }
    return out;
}

}  // namespace

TEST(DirectorySearch, RealTreesMatchTheFileSystemParentsFirst)
{
    // Hidden entries, a dot in a directory name, an empty directory, and
    // directories nested until their pattern passes 257 characters (the last
    // is listed but never entered; on Linux it also holds a file).
    zk64::test::TempDir tree("search");
    std::string const root = tree.Dir();
    for (char const* dir : {"sub/deep", "dot.dir", "empty"}) fs::create_directories(fs::path(root) / dir);
    for (char const* file : {"a.txt", ".hidden.txt", "sub/b.log", "sub/deep/c.txt", "dot.dir/d.txt"}) tree.Write(file, "x");
    fs::path deep = root;
    while (deep.string().size() + 2 <= 257) deep /= "nest";
    fs::create_directories(deep);
    if (kSep == '/') tree.Write((deep / "below").string().substr(root.size() + 1), "x");

    // The link tree was made on the host at configure time (Wine cannot make
    // links): link -> target, target/up -> .. (a cycle), filelink -> a file.
    // Its oracle is written out: mingw's std::filesystem does not see links.
    std::string links = ZK64_LINK_TREE;
    if (kSep == '\\') links = "Z:" + fs::path(links).make_preferred().string();
    std::string const target = links + kSep + "target";
    std::vector<std::pair<std::string, Entries>> roots = {
        {root, Expected(root)},
        {links, {{target, false}, {target + kSep + "inner.txt", true}, {target + kSep + "up", true},
                 {links + kSep + "link", true}, {links + kSep + "filelink", true}}}};
    if (kSep == '/' && fs::is_directory("/usr/include")) roots.push_back({"/usr/include", Expected("/usr/include")});
    for (auto const& [dir, expected] : roots) {
        ZKString const pattern = ConvertToSystemPath(dir.c_str());
        EXPECT_EQ(pattern.GetString(), dir + kSep + '*');
        ZKContainer<FileDataStruct> all = GetFilesAndDirectoriesInDir(pattern, true);
        Entries reported;
        std::set<std::string> seen{dir};
        for (unsigned long long i = 0; i < all.GetItemCount(); ++i) {
            std::string const path = std::string(all[i].GetDir()) + kSep + all[i].GetName();
            EXPECT_TRUE(seen.count(all[i].GetDir())) << path << " listed before its directory";
            if (!all[i].IsAFile()) seen.insert(path);
            reported.insert({path, all[i].IsAFile()});
        }
        EXPECT_EQ(reported, expected) << dir;
        unsigned long long files = 0, dirs = 0;
        GetNumberOfFilesAndDirs(pattern, files, dirs, true);
        EXPECT_EQ(files + dirs, expected.size()) << dir;
    }
    EXPECT_EQ(GetNumberOfDirs(ZKString((links + kSep + "*").c_str()), true), 1u) << "links are files";
    EXPECT_EQ(GetNumberOfFiles(ZKString((root + kSep + "*").c_str()), false), 2u) << "hidden entries are reported";
    EXPECT_EQ(GetFilesInDir((root + kSep + "empty" + kSep + "*").c_str(), true).GetItemCount(), 0u);

    // Hostile patterns give nothing, a file's name finds it (its last two
    // characters cut off as the directory), one character that matches
    // throws, two give the root with an empty directory.
    for (std::string const& pattern : {std::string(), std::string("q"), std::string(5000, 'a'), std::string(258, 'b'),
                                       root + kSep + "missing" + kSep + "*", root + kSep + "a.txt" + kSep + "*"}) {
        EXPECT_EQ(GetFilesAndDirectoriesInDir(pattern.c_str(), true).GetItemCount(), 0u) << pattern.size();
    }
    ZKContainer<FileDataStruct> file = GetFilesInDir((root + kSep + "a.txt").c_str(), false);
    ASSERT_EQ(file.GetItemCount(), 1u);
    EXPECT_EQ(std::string(file[0].GetDir()) + "|" + file[0].GetName(), root + kSep + "a.t|a.txt");
    fs::path const previous = fs::current_path();
    fs::current_path(root);
    EXPECT_THROW(GetFilesInDir("*", false), std::out_of_range);
    fs::current_path(previous);
    ZKContainer<FileDataStruct> top = GetFilesAndDirectoriesInDir(std::string{kSep, '*'}.c_str(), false);
    ASSERT_GT(top.GetItemCount(), 0u);
    EXPECT_STREQ(top[0].GetDir(), "");
}
