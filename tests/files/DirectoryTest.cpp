// Directory search and watching on the real system: natively on Linux and
// as zk64.dll under Wine. std::filesystem is the oracle for what a tree
// holds; watches use fresh directories and wait with bounded polls.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
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

std::mutex seenLock;
std::vector<std::string> seen;  // "action:name>new name"

void Collect(DirChangeStruct const& change)
{
    std::lock_guard<std::mutex> guard(seenLock);
    seen.push_back(
        std::to_string(change.action) + ":" + change.fileName.GetString() +
        (change.action == ZK_FILE_ACTION_RENAMED_OLD_NAME ? ">" + std::string(change.newFileName.GetString()) : ""));
}

// Polls up to 10 s for the change among those seen.
bool Arrives(std::string const& expected)
{
    for (auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
         std::chrono::steady_clock::now() < end;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        std::lock_guard<std::mutex> guard(seenLock);
        if (std::find(seen.begin(), seen.end(), expected) != seen.end()) return true;
    }
    return false;
}

}  // namespace

TEST(DirectorySearch, RealTreesMatchTheFileSystem)
{
    // Hidden entries, a dot in a directory name, an empty directory, and
    // directories nested until their pattern passes 257 characters (the last
    // is listed but never entered; on Linux it also holds a file).
    zk64::test::TempDir tree("search");
    std::string const root = tree.Dir();
    for (char const* dir : {"sub/deep", "dot.dir", "empty"}) fs::create_directories(fs::path(root) / dir);
    for (char const* file : {"a.txt", ".hidden.txt", "sub/b.log", "dot.dir/d.txt"}) tree.Write(file, "x");
    fs::path deep = root;
    while (deep.string().size() + 2 <= 257) deep /= "nest";
    fs::create_directories(deep);
    if (kSep == '/') tree.Write((deep / "below").string().substr(root.size() + 1), "x");
    // The link tree was made on the host at configure time (Wine cannot make
    // links): link -> target, target/up -> .. (a cycle), filelink -> a file.
    // Its oracle is written out: mingw's std::filesystem does not see links.
    std::string links = ZK64_LINK_TREE;
    if (kSep == '\\') links = "Z:" + fs::path(links).make_preferred().string();
    Entries linked{{links + kSep + "target", false}};
    for (char const* link : {"target/inner.txt", "target/up", "link", "filelink"})
        linked.insert({(fs::path(links) / link).make_preferred().string(), true});
    std::vector<std::pair<std::string, Entries>> roots = {{root, Expected(root)}, {links, linked}};
    if (kSep == '/' && fs::is_directory("/usr/include")) roots.push_back({"/usr/include", Expected("/usr/include")});
    for (auto const& [dir, expected] : roots) {
        ZKString const pattern = ConvertToSystemPath(dir.c_str());
        EXPECT_EQ(pattern.GetString(), dir + kSep + '*');
        ZKContainer<FileDataStruct> all = GetFilesAndDirectoriesInDir(pattern, true);
        Entries reported;
        for (unsigned long long i = 0; i < all.GetItemCount(); ++i)
            reported.insert({std::string(all[i].GetDir()) + kSep + all[i].GetName(), all[i].IsAFile()});
        EXPECT_EQ(reported, expected) << dir;
        EXPECT_EQ(GetNumberOfFiles(pattern, true) + GetNumberOfDirs(pattern, true), expected.size()) << dir;
    }
    // Hostile patterns give nothing; a one-character pattern that matches throws.
    for (std::string const& pattern : {std::string(), std::string("q"), std::string(5000, 'a'), std::string(258, 'b'),
                                       root + kSep + "missing" + kSep + "*", root + kSep + "a.txt" + kSep + "*"}) {
        EXPECT_EQ(GetFilesAndDirectoriesInDir(pattern.c_str(), true).GetItemCount(), 0u) << pattern.size();
    }
    fs::path const previous = fs::current_path();
    fs::current_path(root);
    EXPECT_THROW(GetFilesInDir("*", false), std::out_of_range);
    fs::current_path(previous);
}

TEST(ConvertToSystemPath, LoosePathsBecomeSearchPatterns)
{
    // Pairs of a loose path and its pattern, written with '/' for the
    // system's separator; a leading separator is the root on Linux only.
    char const* const rows[] = {
        "C:/dir",       "C:/dir/*",     "C:/dir/*",     "C:/dir/*", "C:/dir/", "C:/dir//*", "C:/dir/a.txt",
        "C:/dir/a.txt", "C:/dir.d/sub", "C:/dir.dsub/", "../dir",   "..dir/",  "foo",       "foo/*",
        "C://dir//x",   "C:/dir/x/*",   "a/*/b",        "a/*",      "",        "",          "/usr/share",
        "/usr/share/*", "\\x\\y",       "/x/y/*"};
    for (std::size_t i = 0; i < std::size(rows); i += 2) {
        std::string expected = rows[i + 1];
        if (kSep == '\\' && expected[0] == '/') expected.erase(0, 1);
        std::replace(expected.begin(), expected.end(), '/', kSep);
        EXPECT_EQ(ConvertToSystemPath(rows[i]).GetString(), expected) << rows[i];
        EXPECT_EQ(ConvertToSystemPath(ZKString(rows[i])).GetString(), expected) << rows[i];
    }
}

// Every action with UTF-8 names, a refused missing directory, and a
// subtree that covers directories made after the add.
TEST(DirectoryWatch, ActionsUtf8NamesAndSubtrees)
{
    InitDirectoryWatching();
    zk64::test::TempDir dir("watch");
    fs::path const flat = fs::path(dir.Dir()) / "flat", first = flat / u8"na\u00efve.txt",
                   renamed = flat / u8"\U0001F600.txt";
    for (char const* sub : {"flat", "tree"}) fs::create_directories(fs::path(dir.Dir()) / sub);
    unsigned long long const names = ZK_FILE_NOTIFY_CHANGE_FILE_NAME | ZK_FILE_NOTIFY_CHANGE_DIR_NAME;
    EXPECT_FALSE(AddDirectoryToWatchForChanges(ZKString(dir.Path("missing").c_str()), Collect, names, false));
    EXPECT_FALSE(AddDirectoryToWatchForChanges(ZKString(flat.string().c_str()), nullptr, names, false));
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString(flat.string().c_str()), Collect,
                                              names | ZK_FILE_NOTIFY_CHANGE_LAST_WRITE, false));
    EXPECT_FALSE(AddDirectoryToWatchForChanges(ZKString(flat.string().c_str()), Collect, names, false));
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString(dir.Path("tree").c_str()), Collect, names, true));
    std::ofstream(first).close();
    EXPECT_TRUE(Arrives("1:na\xc3\xafve.txt"));
    std::ofstream(first, std::ios::app) << "more bytes";
    EXPECT_TRUE(Arrives("3:na\xc3\xafve.txt"));
    fs::rename(first, renamed);
    EXPECT_TRUE(Arrives("4:na\xc3\xafve.txt>\xf0\x9f\x98\x80.txt"));
    fs::remove(renamed);
    EXPECT_TRUE(Arrives("2:\xf0\x9f\x98\x80.txt"));
    // (Wine 8.0 reports changes only in subdirectories made after the add;
    // Windows and Linux report both.)
    fs::create_directories(fs::path(dir.Dir()) / "tree" / "new");
    EXPECT_TRUE(Arrives("1:new"));
    std::ofstream(fs::path(dir.Dir()) / "tree" / "new" / "file").close();
    EXPECT_TRUE(Arrives(std::string("1:new") + kSep + "file"));
    CleanupDirectoryWatching();
}
