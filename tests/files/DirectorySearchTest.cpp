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

namespace {

#if defined(_WIN32)
constexpr char kSep = '\\';
#else
constexpr char kSep = '/';
#endif

using Entry = std::pair<std::string, bool>;  // path, is a file

// What the search reports, as full paths: dir + separator + name.
std::set<Entry> Reported(ZKContainer<FileDataStruct> results)
{
    std::set<Entry> out;
    for (unsigned long long i = 0; i < results.GetItemCount(); ++i) {
        FileDataStruct& e = results[i];
        out.insert({std::string(e.GetDir()) + kSep + e.GetName(), e.IsAFile()});
    }
    return out;
}

// What the walk must report under `root`: every entry without following
// links, links counting as files, and nothing inside a directory whose
// search pattern (path, separator, star) is longer than 257 characters.
std::set<Entry> Expected(std::string const& root)
{
    std::set<Entry> out;
    for (auto it = fs::recursive_directory_iterator(root); it != fs::recursive_directory_iterator(); ++it) {
        std::string const path = it->path().string();
        bool const isDirectory = !it->is_symlink() && it->is_directory();
        if (it->path().parent_path().string().size() + 2 <= 257) out.insert({path, !isDirectory});
        if (isDirectory && path.size() + 2 > 257) it.disable_recursion_pending();
    }
    return out;
}

// Every directory's own record comes before anything beneath it.
void ExpectParentsFirst(ZKContainer<FileDataStruct> results, std::string const& root)
{
    std::set<std::string> seen{root};
    for (unsigned long long i = 0; i < results.GetItemCount(); ++i) {
        FileDataStruct& e = results[i];
        EXPECT_TRUE(seen.count(e.GetDir())) << e.GetName() << " listed before its directory " << e.GetDir();
        if (!e.IsAFile()) seen.insert(std::string(e.GetDir()) + kSep + e.GetName());
    }
}

std::string Pattern(std::string const& dir) { return dir + kSep + '*'; }

// The link tree was made on the host when the tests were configured (Wine
// cannot make links): link -> target, target/up -> .. (a cycle), filelink ->
// target/inner.txt.
std::string LinkTree()
{
#if defined(_WIN32)
    std::string links = std::string("Z:") + ZK64_LINK_TREE;
    for (char& c : links) c = c == '/' ? '\\' : c;
    return links;
#else
    return ZK64_LINK_TREE;
#endif
}

}  // namespace

TEST(DirectorySearch, RealTreesMatchTheFileSystemParentsFirst)
{
    // Hidden entries, a dot in a directory name, an empty directory, and
    // directories nested until their pattern passes 257 characters (the last
    // is listed but never entered; on Linux it also holds a file).
    zk64::test::TempDir tree("search");
    std::string const root = tree.Dir();
    for (char const* file : {"a.txt", ".hidden.txt", "sub/b.log", "sub/deep/c.txt", "dot.dir/d.txt", "empty/"}) {
        fs::create_directories((fs::path(root) / file).parent_path());
        if (fs::path(file).has_filename()) tree.Write(file, "x");
    }
    fs::path deep = root;
    while (deep.string().size() + 2 <= 257) deep /= "nest";
    fs::create_directories(deep);
    if (kSep == '/') tree.Write((deep / "below").string().substr(root.size() + 1), "x");

    // The link tree's oracle is written out: mingw's std::filesystem does
    // not see links on Windows and would walk the cycle.
    std::string const links = LinkTree();
    std::vector<std::pair<std::string, std::set<Entry>>> roots = {
        {root, Expected(root)},
        {links,
         {{links + kSep + "target", false}, {links + kSep + "target" + kSep + "inner.txt", true},
          {links + kSep + "target" + kSep + "up", true}, {links + kSep + "link", true},
          {links + kSep + "filelink", true}}}};
    if (kSep == '/' && fs::is_directory("/usr/include")) {
        roots.push_back({"/usr/include", Expected("/usr/include")});  // large, with links
    }
    for (auto const& [dir, expected] : roots) {
        ZKString const pattern = ConvertToSystemPath(dir.c_str());
        EXPECT_EQ(std::string(pattern.GetString()), Pattern(dir));
        ZKContainer<FileDataStruct> const all = GetFilesAndDirectoriesInDir(pattern, true);
        EXPECT_EQ(Reported(all), expected) << dir;
        ExpectParentsFirst(all, dir);
        unsigned long long files = 0, dirs = 0;
        GetNumberOfFilesAndDirs(pattern, files, dirs, true);
        EXPECT_EQ(files + dirs, expected.size()) << dir;
    }
    EXPECT_EQ(GetNumberOfDirs(ZKString(Pattern(links).c_str()), true), 1u) << "links are files";
    EXPECT_EQ(GetNumberOfFiles(ZKString(Pattern(root).c_str()), false), 2u) << "hidden entries are reported";
    EXPECT_EQ(GetFilesInDir(Pattern(root + kSep + "empty").c_str(), true).GetItemCount(), 0u);
}

TEST(DirectorySearch, HostilePatternsGiveNothingOrTheStringException)
{
    zk64::test::TempDir tree("hostile");
    std::string const root = tree.Dir();
    tree.Write("a.txt", "x");
    for (std::string const& pattern : {std::string(), std::string("q"), std::string(5000, 'a'), std::string(258, 'b'),
                                       Pattern(root + kSep + "missing"), Pattern(root + kSep + "a.txt")}) {
        EXPECT_EQ(GetFilesAndDirectoriesInDir(pattern.c_str(), true).GetItemCount(), 0u) << pattern.size();
    }

    // A pattern naming a file finds it, its last two characters cut off as
    // the record's directory.
    ZKContainer<FileDataStruct> file = GetFilesInDir((root + kSep + "a.txt").c_str(), false);
    ASSERT_EQ(file.GetItemCount(), 1u);
    EXPECT_EQ(std::string(file[0].GetDir()) + "|" + file[0].GetName(), root + kSep + "a.t|a.txt");

    // One character that matches something: the string exception.
    fs::path const previous = fs::current_path();
    fs::current_path(root);
    EXPECT_THROW(GetFilesInDir("*", false), std::out_of_range);
    fs::current_path(previous);

    // Two: the root of the current drive (Windows) or of the file system
    // (Linux), reported with an empty directory.
    ZKContainer<FileDataStruct> top = GetFilesAndDirectoriesInDir(std::string{kSep, '*'}.c_str(), false);
    ASSERT_GT(top.GetItemCount(), 0u);
    EXPECT_STREQ(top[0].GetDir(), "");
}
