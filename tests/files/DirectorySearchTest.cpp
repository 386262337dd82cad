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

class DirectorySearch : public ::testing::Test {
protected:
    void SetUp() override
    {
        ClearDirsToExcludeFromSearch();
        for (char const* file : {"a.txt", ".hidden.txt", "sub/b.log", "sub/deep/c.txt", "dot.dir/d.txt",
                                 "skip/e.txt", "skip/inner/f.txt"}) {
            fs::create_directories((fs::path(tree.Dir()) / file).parent_path());
            tree.Write(file, "x");
        }
        fs::create_directories(fs::path(tree.Dir()) / "empty");
    }
    void TearDown() override { ClearDirsToExcludeFromSearch(); }

    zk64::test::TempDir tree{"search"};
    std::string const root = fs::path(tree.Dir()).string();
};

}  // namespace

TEST_F(DirectorySearch, ReportsWhatTheFileSystemHoldsParentsFirst)
{
    ZKString const pattern = ConvertToSystemPath(root.c_str());
    EXPECT_EQ(std::string(pattern.GetString()), Pattern(root));
    ZKContainer<FileDataStruct> const all = GetFilesAndDirectoriesInDir(pattern, true);
    EXPECT_EQ(Reported(all), Expected(root));
    ExpectParentsFirst(all, root);
    EXPECT_TRUE(Reported(all).count({root + kSep + ".hidden.txt", true})) << "hidden entries are reported";
    EXPECT_TRUE(Reported(all).count({root + kSep + "dot.dir" + kSep + "d.txt", true}));

    unsigned long long files = 0, dirs = 0;
    GetNumberOfFilesAndDirs(pattern, files, dirs, true);
    EXPECT_EQ(files, 7u);
    EXPECT_EQ(dirs, 6u);
    EXPECT_EQ(GetNumberOfFiles(pattern, false), 2u);
    EXPECT_EQ(GetFilesInDir(Pattern(root + kSep + "empty").c_str(), true).GetItemCount(), 0u);
    EXPECT_EQ(Reported(GetFilesWithSequence(pattern, ZKString(".TXT"), true, true)).size(), 6u);
}

TEST_F(DirectorySearch, ExcludedDirectoryIsListedButNotEntered)
{
    ZKContainer<ZKString> excluded;
    excluded.PushBack(ZKString((root + kSep + "skip").c_str()));  // no star: not the form the walk compares
    SetDirsToExcludeFromSearch(excluded);
    EXPECT_EQ(GetNumberOfFiles(ZKString(Pattern(root).c_str()), true), 7u);

    excluded.Clear();
    excluded.PushBack(ZKString(Pattern(root + kSep + "skip").c_str()));
    SetDirsToExcludeFromSearch(excluded);
    std::set<Entry> const found = Reported(GetFilesAndDirectoriesInDir(Pattern(root).c_str(), true));
    EXPECT_TRUE(found.count({root + kSep + "skip", false}));
    EXPECT_FALSE(found.count({root + kSep + "skip" + kSep + "e.txt", true}));
    EXPECT_FALSE(found.count({root + kSep + "skip" + kSep + "inner", false}));
    EXPECT_EQ(found.size(), 10u);
}

TEST_F(DirectorySearch, LinksCountAsFilesAndAreNeverEntered)
{
    // Made on the host when the tests were configured: link -> target,
    // target/up -> .. (a cycle), filelink -> target/inner.txt.
#if defined(_WIN32)
    std::string links = std::string("Z:") + ZK64_LINK_TREE;
    for (char& c : links) {
        if (c == '/') c = '\\';
    }
#else
    std::string const links = ZK64_LINK_TREE;
#endif
    std::set<Entry> const expected = {{links + kSep + "target", false},
                                      {links + kSep + "target" + kSep + "inner.txt", true},
                                      {links + kSep + "target" + kSep + "up", true},
                                      {links + kSep + "link", true},
                                      {links + kSep + "filelink", true}};
    EXPECT_EQ(Reported(GetFilesAndDirectoriesInDir(Pattern(links).c_str(), true)), expected);
    EXPECT_EQ(GetNumberOfDirs(ZKString(Pattern(links).c_str()), true), 1u);
}

TEST_F(DirectorySearch, HostilePatternsGiveNothingOrTheStringException)
{
    for (std::string const& pattern :
         {std::string(), std::string("q"), std::string(5000, 'a'), std::string(258, 'b'),
          Pattern(root + kSep + "missing"), Pattern(root + kSep + "a.txt")}) {
        EXPECT_EQ(GetFilesAndDirectoriesInDir(pattern.c_str(), true).GetItemCount(), 0u) << pattern.size();
        EXPECT_EQ(GetNumberOfFiles(ZKString(pattern.c_str()), true), 0u) << pattern.size();
    }

    // A pattern naming a file finds it, with the last two characters cut
    // off as the record's directory.
    ZKContainer<FileDataStruct> file = GetFilesInDir((root + kSep + "a.txt").c_str(), false);
    ASSERT_EQ(file.GetItemCount(), 1u);
    EXPECT_STREQ(file[0].GetName(), "a.txt");
    EXPECT_EQ(std::string(file[0].GetDir()), root + kSep + "a.t");

    // One character that matches something: the string exception.
    fs::path const previous = fs::current_path();
    fs::current_path(root);
    EXPECT_THROW(GetFilesInDir("*", false), std::out_of_range);
    fs::current_path(previous);

    // Two characters: the root of the current drive (Windows) or the file
    // system (Linux), reported with an empty directory.
    ZKContainer<FileDataStruct> top = GetFilesAndDirectoriesInDir(std::string{kSep, '*'}.c_str(), false);
    ASSERT_GT(top.GetItemCount(), 0u);
    EXPECT_STREQ(top[0].GetDir(), "");
}

TEST_F(DirectorySearch, DeepTreesEndSilentlyAtThePatternCap)
{
    // Directories nested until their pattern passes 257 characters; the
    // last one is listed but never entered.
    fs::path deep = root;
    while (deep.string().size() + 2 <= 257) deep /= "nest";
#if !defined(_WIN32)
    deep /= "below";  // on Linux also a file where Windows paths would pass MAX_PATH
#endif
    fs::create_directories(deep);
    ZKContainer<FileDataStruct> const all = GetFilesAndDirectoriesInDir(Pattern(root).c_str(), true);
    EXPECT_EQ(Reported(all), Expected(root));
    unsigned long long files = 0, dirs = 0;
    GetNumberOfFilesAndDirs(ZKString(Pattern(root).c_str()), files, dirs, true);
    EXPECT_EQ(files + dirs, Expected(root).size());
}

#if !defined(_WIN32)
TEST(DirectorySearchLinux, SystemHeadersMatchTheOracle)
{
    // A large real tree with links, deep paths and many directories.
    std::string const root = "/usr/include";
    if (!fs::is_directory(root)) GTEST_SKIP() << root << " is absent";
    ZKContainer<FileDataStruct> const all = GetFilesAndDirectoriesInDir(ConvertToSystemPath(root.c_str()), true);
    EXPECT_EQ(Reported(all), Expected(root));
    ExpectParentsFirst(all, root);
}
#endif
