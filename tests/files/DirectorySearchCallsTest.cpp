// Directory search through the fake backend: the exact enumeration calls,
// and every rule of the walk on a scripted tree.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "files/detail/DirectorySearch.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
namespace platform = zk64::platform;
using namespace zk64::detail;
using Rows = std::vector<std::string>;
using Entries = std::vector<std::pair<std::string, platform::DWORD>>;

namespace {

// "R/Sub/*" with the system's separator.
std::string P(std::string path)
{
    for (char& c : path) c = c == '/' ? platform::kPathSeparator : c;
    return path;
}

Rows L(Rows rows)
{
    for (auto& row : rows) row = P(row);
    return rows;
}

constexpr platform::DWORD kFile = 0x20, kDir = 0x10;

// A scripted file system: pattern -> entries in enumeration order. Find
// handles are 0x100, 0x101, ... in the order of the opens.
class FakeTree {
public:
    explicit FakeTree(std::map<std::string, Entries> tree) : dirs(std::move(tree))
    {
        fake::Files().Wow64DisableWow64FsRedirection = [](void** old) { return *old = (void*)0xabc, 1; };
        fake::Files().Wow64RevertWow64FsRedirection = [](void*) { return 1; };
        fake::Files().FindFirstFileA = [this](char const* pattern, platform::FindDataA* data) {
            auto const found = dirs.find(P(pattern));
            if (found == dirs.end()) return platform::kInvalidHandleValue;
            cursors.push_back({&found->second, 0});
            Fill(cursors.back(), data);
            return reinterpret_cast<platform::HANDLE>(0x100 + cursors.size() - 1);
        };
        fake::Files().FindNextFileA = [this](platform::HANDLE find, platform::FindDataA* data) {
            auto& cursor = cursors.at(reinterpret_cast<std::uintptr_t>(find) - 0x100);
            return cursor.second == cursor.first->size() ? 0 : (Fill(cursor, data), 1);
        };
        fake::Files().FindClose = [](platform::HANDLE) { return 1; };
    }

private:
    static void Fill(std::pair<Entries const*, std::size_t>& cursor, platform::FindDataA* data)
    {
        *data = platform::FindDataA{};
        data->dwFileAttributes = (*cursor.first)[cursor.second].second;
        std::strcpy(data->cFileName, (*cursor.first)[cursor.second++].first.c_str());
    }
    std::map<std::string, Entries> dirs;
    std::vector<std::pair<Entries const*, std::size_t>> cursors;
};

// Records as "dir|name|F" or "dir|name|D", in order.
Rows Listed(ZKContainer<FileDataStruct>&& results, bool slots = false)
{
    Rows out;
    for (unsigned long long i = 0; i < (slots ? results.GetMaxItemCount() : results.GetItemCount()); ++i) {
        out.push_back(std::string(results[i].GetDir()) + "|" + results[i].GetName() + (results[i].IsAFile() ? "|F" : "|D"));
    }
    return out;
}

class DirectorySearchCalls : public ::testing::Test {
protected:
    int reset = (TearDown(), 0);  // before the tree sets its fakes
    void TearDown() override
    {
        fake::Reset();
        ClearDirsToExcludeFromSearch();
    }
    // R holds a file, a directory with a subtree, a junction (never to be
    // entered: its listing would show up as "trap") and a hidden directory.
    FakeTree tree{{
        {P("R/*"), {{".", kDir}, {"..", kDir}, {"a.txt", kFile}, {"Sub", kDir}, {"junction", 0x410}, {".hid", 0x12}}},
        {P("R/Sub/*"), {{".", kDir}, {"..", kDir}, {"b.TXT", kFile}, {"deep", kDir}}},
        {P("R/Sub/deep/*"), {{"c.txt", kFile}}},
        {P("R/.hid/*"), {{"h.txt", 0x22}}},
        {P("R/junction/*"), {{"trap", kFile}}},
        {P("C/dir"), {{"dir", kDir}}},
        {"*", {{"a", kFile}}},
    }};
    ZKString const root{P("R/*").c_str()};
};

}  // namespace

TEST_F(DirectorySearchCalls, EveryFunctionOnOneTreeAndTheCallsOfOneWalk)
{
    using Search = ZKContainer<FileDataStruct> (*)(ZKString const&);
    std::pair<Search, Rows> const cases[] = {
        {[](ZKString const& r) { return GetFilesAndDirectoriesInDir(r, true); },
         {"R|a.txt|F", "R|Sub|D", "R/Sub|b.TXT|F", "R/Sub|deep|D", "R/Sub/deep|c.txt|F", "R|junction|F", "R|.hid|D",
          "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetFilesAndDirectoriesInDir(r.GetString(), false); },
         {"R|a.txt|F", "R|Sub|D", "R|junction|F", "R|.hid|D"}},
        {[](ZKString const& r) { return GetFilesInDir(r.GetString(), true); },
         {"R|a.txt|F", "R/Sub|b.TXT|F", "R/Sub/deep|c.txt|F", "R|junction|F", "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetFilesInDir(r, false); }, {"R|a.txt|F", "R|junction|F"}},
        {[](ZKString const& r) { return GetDirectoriesInDir(r.GetString(), true); }, {"R|Sub|D", "R/Sub|deep|D", "R|.hid|D"}},
        {[](ZKString const& r) { return GetDirectoriesInDir(r, false); }, {"R|Sub|D", "R|.hid|D"}},
        {[](ZKString const& r) { return GetFilesWithSequence(r, ".txt", true, false); },
         {"R|a.txt|F", "R/Sub/deep|c.txt|F", "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetFilesWithSequence(r, ".txt", false, true); }, {"R|a.txt|F"}},
        {[](ZKString const& r) { return GetFilesWithSequence(r, ".txt", true, true); },
         {"R|a.txt|F", "R/Sub|b.TXT|F", "R/Sub/deep|c.txt|F", "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetDirsWithSequence(r, "U", true, true); }, {"R|Sub|D"}},
        {[](ZKString const& r) { return GetDirsWithSequence(r, "ee", false, false); }, {}},
        {[](ZKString const& r) { return GetDirsWithSequence(r, "U", true, false); }, {}},
        {[](ZKString const& r) { return GetFilesAndDirsWithSequence(r, "ee", true, false); }, {"R/Sub|deep|D"}},
        {[](ZKString const& r) { return GetFilesAndDirsWithSequence(r, "a", false, false); }, {"R|a.txt|F"}},
        {[](ZKString const& r) { return GetFilesWithSequence(r, "ta", true, false); }, {}},  // from its start
        {[](ZKString const& r) { return GetFilesAndDirsWithSequence(r, ZKString(), true, true); }, {}},
    };
    int row = 0;
    for (auto const& [search, expected] : cases) {
        ZKContainer<FileDataStruct> results = search(root);
        EXPECT_TRUE(results.GetMaxItemCount() == 512 && results.IsContainerAutoResize());
        EXPECT_EQ(Listed(std::move(results)), L(expected)) << "row " << row++;
    }
    for (std::string const& call : fake::TakeCalls()) EXPECT_EQ(call.find("junction"), std::string::npos) << call;

    unsigned long long files = 99, dirs = 99;
    GetNumberOfFilesAndDirs(root, files, dirs, true);
    EXPECT_EQ(std::make_pair(files, dirs), std::make_pair(5ull, 3ull));
    GetNumberOfFilesAndDirs(root, files, dirs, false);
    EXPECT_EQ(std::make_pair(files, dirs), std::make_pair(2ull, 2ull));
    EXPECT_EQ(std::make_pair(GetNumberOfFiles(root, true), GetNumberOfDirs(root, false)), std::make_pair(5ull, 2ull));
    EXPECT_EQ(std::make_pair(GetNumberOfFiles(root, false), GetNumberOfDirs(root, true)), std::make_pair(2ull, 3ull));
    // Counts ignore the sequence test; a count without its counter makes no call.
    SearchDirectoryEntries(root, ZKString("none"), nullptr, &dirs, &files,
                           SEARCH_SEQUENCE | SEARCH_COUNT_DIRS | SEARCH_COUNT_FILES | SEARCH_RECURSIVE);
    EXPECT_EQ(std::make_pair(files, dirs), std::make_pair(7ull, 5ull));
    fake::TakeCalls();
    SearchDirectoryEntries(root, ZKString(), nullptr, nullptr, &files, SEARCH_COUNT_DIRS | SEARCH_COUNT_FILES);
    EXPECT_TRUE(fake::TakeCalls().empty());

    // Redirection only around each open; each level closed after its last entry.
    FakeTree fresh({{P("R/*"), {{".", kDir}, {"a", kFile}, {"d", kDir}}}, {P("R/d/*"), {{"b", kFile}}}});
    fake::TakeCalls();
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(root, true)), L({"R|a|F", "R|d|D", "R/d|b|F"}));
    std::string const off = "Wow64DisableWow64FsRedirection(oldValue=out)", on = "Wow64RevertWow64FsRedirection(oldValue=0xabc)";
    auto const next = [](char const* find) { return std::string("FindNextFileA(find=") + find + ", data=out)"; };
    EXPECT_EQ(fake::TakeCalls(), (Rows{off, "FindFirstFileA(pattern=\"" + P("R/*") + "\", data=out)", on, next("0x100"),
                                       next("0x100"), off, "FindFirstFileA(pattern=\"" + P("R/d/*") + "\", data=out)", on,
                                       next("0x101"), "FindClose(find=0x101)", next("0x100"), "FindClose(find=0x100)"}));
}

TEST_F(DirectorySearchCalls, ExclusionStopsOnlyTheDescentIntoTheExactSubpattern)
{
    ZKContainer<ZKString> excluded(2);
    excluded.SetContainerAutoResize(false);
    excluded.PushBack(ZKString(P("R/Sub").c_str()));  // without the star: excludes nothing
    excluded.PushBack(ZKString(P("R/*").c_str()));    // the top level is never compared
    SetDirsToExcludeFromSearch(excluded);
    EXPECT_EQ(GetNumberOfFiles(root, true), 5u);
    EXPECT_FALSE(GetDirsToExcludeFromSearch().IsContainerAutoResize()) << "Set takes the source's growth flag";

    excluded.Clear();
    excluded.PushBack(ZKString(P("R/Sub/*").c_str()));
    SetDirsToExcludeFromSearch(excluded);
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(root, true)),
              L({"R|a.txt|F", "R|Sub|D", "R|junction|F", "R|.hid|D", "R/.hid|h.txt|F"}));
    EXPECT_EQ(GetNumberOfDirs(root, true), 2u) << "Sub is counted, deep beneath it is not";
    RemoveDirToExcludeFromSearch(ZKString(P("R/sub/*").c_str()));  // case differs: nothing removed
    EXPECT_EQ(GetDirsToExcludeFromSearch().GetItemCount(), 1u);
    RemoveDirToExcludeFromSearch(ZKString(P("R/Sub/*").c_str()));
    EXPECT_EQ(GetNumberOfDirs(root, true), 3u);
    SetDirsToExcludeFromSearch(excluded);
    ClearDirsToExcludeFromSearch();  // the item stays in its slot, but is no longer listed
    EXPECT_EQ(GetNumberOfDirs(root, true), 3u);
}

TEST_F(DirectorySearchCalls, PatternLengthCapShortPatternsAndFailures)
{
    // Shorter than two characters: harmless when nothing is found, the
    // string exception when something is (the handle is closed first).
    EXPECT_EQ(GetFilesInDir("", false).GetItemCount(), 0u);
    fake::TakeCalls();
    try {
        GetFilesInDir("*", false);
        ADD_FAILURE() << "no exception";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "invalid string position");
    }
    EXPECT_EQ(fake::TakeCalls().back(), "FindClose(find=0x100)");
    // Without the separator and star the last two characters are cut anyway;
    // a directory that cannot be opened leaves only its subtree out.
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(P("C/dir").c_str(), true)), L({"C/d|dir|D"}));
    EXPECT_EQ(GetNumberOfFiles(ZKString(P("missing/*").c_str()), true), 0u);
    // 257 characters are searched, 258 are not even opened, at every level.
    std::string const dir(253, 'x');  // dir + sep + "y" + sep + star = 257
    FakeTree deep({{dir + P("/*"), {{"y", kDir}, {"yy", kDir}}}, {dir + P("/y/*"), {{"z", kFile}}}, {dir + P("/yy/*"), {{"w", kFile}}}});
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(ZKString((dir + P("/*")).c_str()), true)),
              (Rows{dir + "|y|D", dir + P("/y") + "|z|F", dir + "|yy|D"}));
    fake::TakeCalls();
    EXPECT_EQ(GetFilesInDir(ZKString((dir + "xxx" + P("/*")).c_str()), false).GetItemCount(), 0u);
    EXPECT_TRUE(fake::TakeCalls().empty()) << "a 258-character pattern makes no call at all";

}

TEST(ConvertToSystemPath, LoosePathsBecomeSearchPatterns)
{
#if defined(_WIN32)
    char const* const rows[][2] = {
        {"C:/dir", "C:\\dir\\*"}, {"C:\\dir\\*", "C:\\dir\\*"}, {"C:\\dir\\", "C:\\dir\\\\*"}, {"C:\\dir\\a.txt", "C:\\dir\\a.txt"},
        {"C:\\dir.d\\sub", "C:\\dir.dsub\\"}, {"..\\dir", "..dir\\"}, {"foo", "foo\\*"}, {"C://dir//x", "C:\\dir\\x\\*"},
        {"a/*/b", "a\\*"}, {"\\dir", "dir\\*"}, {"", ""},
    };
#else
    char const* const rows[][2] = {
        {"/usr/share", "/usr/share/*"}, {"/tmp/a.txt", "/tmp/a.txt"}, {"rel/dir", "rel/dir/*"}, {"\\usr\\share", "/usr/share/*"},
        {"/dir/", "/dir//*"}, {"//usr///x", "/usr/x/*"}, {"/dir.d/sub", "/dir.dsub/"}, {"../dir", "..dir/"},
        {"foo", "foo/*"}, {"a/*/b", "a/*"}, {"/", "/*"}, {"", ""},
    };
#endif
    for (auto const& row : rows) {
        EXPECT_STREQ(ConvertToSystemPath(row[0]).GetString(), row[1]) << row[0];
        EXPECT_STREQ(ConvertToSystemPath(ZKString(row[0])).GetString(), row[1]) << row[0];
    }
}

// A list the search fills for a caller who has not used it is grown once at
// the end; slot for slot it must match one filled push by push (a list of a
// derived type always takes the pushes), the doublings' slot 0 included.
TEST_F(DirectorySearchCalls, OneGoFillMatchesPushesSlotForSlot)
{
    struct PushedList : ZKContainer<FileDataStruct> {};
    for (int files : {3, 511, 512, 513, 1300}) {
        Entries entries{{"Sub", kDir}};
        for (int i = 0; i < files; ++i) entries.push_back({"f" + std::to_string(i), kFile});
        FakeTree many({{P("R/*"), entries}, {P("R/Sub/*"), {{"s", kFile}}}});
        ZKContainer<FileDataStruct> grown;
        PushedList pushed;
        for (ZKContainer<FileDataStruct>* list : {static_cast<ZKContainer<FileDataStruct>*>(&pushed), &grown})
            SearchDirectoryEntries(root, ZKString(), list, nullptr, nullptr, SEARCH_FILES_AND_DIRS | SEARCH_RECURSIVE);
        ASSERT_EQ(grown.GetItemCount(), pushed.GetItemCount()) << files;
        EXPECT_EQ(Listed(std::move(grown), true), Listed(std::move(pushed), true)) << files;
    }
}
