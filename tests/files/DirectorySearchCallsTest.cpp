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
using platform::BOOL;
using platform::DWORD;
using platform::FindDataA;
using platform::HANDLE;
using Calls = fake::Calls;

namespace {

// "R/Sub/*" with the system's separator.
std::string P(std::string path)
{
    for (char& c : path) {
        if (c == '/') c = platform::kPathSeparator;
    }
    return path;
}

constexpr DWORD kFile = 0x20;
constexpr DWORD kDir = 0x10;
constexpr DWORD kHiddenDir = 0x12;
constexpr DWORD kJunction = 0x410;

// A scripted file system: pattern -> entries in enumeration order. Handles
// are small numbers from 0x100 on, so recorded calls are reproducible.
class FakeTree {
public:
    using Entries = std::vector<std::pair<std::string, DWORD>>;

    explicit FakeTree(std::map<std::string, Entries> tree) : dirs(std::move(tree))
    {
        fake::Files().Wow64DisableWow64FsRedirection = [](void** old) {
            *old = reinterpret_cast<void*>(0xabc);
            return 1;
        };
        fake::Files().Wow64RevertWow64FsRedirection = [](void*) { return 1; };
        fake::Files().FindFirstFileA = [this](char const* pattern, FindDataA* data) {
            auto const found = dirs.find(P(pattern));
            if (found == dirs.end() || found->second.empty()) return platform::kInvalidHandleValue;
            cursors.push_back({&found->second, 0});
            Fill(cursors.back(), data);
            return reinterpret_cast<HANDLE>(0x100 + cursors.size() - 1);
        };
        fake::Files().FindNextFileA = [this](HANDLE find, FindDataA* data) -> BOOL {
            Cursor& cursor = cursors.at(reinterpret_cast<std::uintptr_t>(find) - 0x100);
            if (cursor.next == cursor.entries->size()) return 0;
            Fill(cursor, data);
            return 1;
        };
        fake::Files().FindClose = [](HANDLE) { return 1; };
    }

private:
    struct Cursor {
        Entries const* entries;
        std::size_t next;
    };
    static void Fill(Cursor& cursor, FindDataA* data)
    {
        auto const& [name, attributes] = (*cursor.entries)[cursor.next++];
        *data = FindDataA{};
        data->dwFileAttributes = attributes;
        std::strcpy(data->cFileName, name.c_str());
    }

    std::map<std::string, Entries> dirs;
    std::vector<Cursor> cursors;
};

// R holds a file, a directory with a subtree, a junction (never to be
// entered: its listing would show up as "trap") and a hidden directory.
std::map<std::string, FakeTree::Entries> SampleTree()
{
    return {
        {P("R/*"), {{".", kDir}, {"..", kDir}, {"a.txt", kFile}, {"Sub", kDir}, {"junction", kJunction},
                    {".hid", kHiddenDir}}},
        {P("R/Sub/*"), {{".", kDir}, {"..", kDir}, {"b.TXT", kFile}, {"deep", kDir}}},
        {P("R/Sub/deep/*"), {{".", kDir}, {"..", kDir}, {"c.txt", kFile}}},
        {P("R/.hid/*"), {{".", kDir}, {"..", kDir}, {"h.txt", 0x22}}},
        {P("R/junction/*"), {{"trap", kFile}}},
    };
}

// Records as "dir|name|F" or "dir|name|D", in order.
std::vector<std::string> Listed(ZKContainer<FileDataStruct> results)
{
    std::vector<std::string> out;
    for (unsigned long long i = 0; i < results.GetItemCount(); ++i) {
        FileDataStruct& entry = results[i];
        out.push_back(std::string(entry.GetDir()) + "|" + entry.GetName() + (entry.IsAFile() ? "|F" : "|D"));
    }
    return out;
}

std::vector<std::string> L(std::vector<std::string> rows)
{
    for (auto& row : rows) row = P(row);
    return rows;
}

class DirectorySearchCalls : public ::testing::Test {
protected:
    void SetUp() override
    {
        fake::Reset();
        ClearDirsToExcludeFromSearch();
    }
    void TearDown() override
    {
        fake::Reset();
        ClearDirsToExcludeFromSearch();
    }
};

}  // namespace

TEST_F(DirectorySearchCalls, RedirectionOnlyAroundTheOpenAndEachLevelClosedAfterItsLastEntry)
{
    FakeTree tree({{P("R/*"), {{".", kDir}, {"a", kFile}, {"d", kDir}}}, {P("R/d/*"), {{"b", kFile}}}});
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(P("R/*").c_str(), true)), L({"R|a|F", "R|d|D", "R/d|b|F"}));
    std::string const open = "Wow64DisableWow64FsRedirection(oldValue=out)";
    std::string const revert = "Wow64RevertWow64FsRedirection(oldValue=0xabc)";
    EXPECT_EQ(fake::TakeCalls(), (Calls{
                                     open,
                                     "FindFirstFileA(pattern=\"" + P("R/*") + "\", data=out)",
                                     revert,
                                     "FindNextFileA(find=0x100, data=out)",
                                     "FindNextFileA(find=0x100, data=out)",
                                     open,
                                     "FindFirstFileA(pattern=\"" + P("R/d/*") + "\", data=out)",
                                     revert,
                                     "FindNextFileA(find=0x101, data=out)",
                                     "FindClose(find=0x101)",
                                     "FindNextFileA(find=0x100, data=out)",
                                     "FindClose(find=0x100)",
                                 }));
}

TEST_F(DirectorySearchCalls, EveryFunctionOnOneTree)
{
    using Search = ZKContainer<FileDataStruct> (*)(ZKString const&);
    std::pair<Search, std::vector<std::string>> const cases[] = {
        {[](ZKString const& r) { return GetFilesAndDirectoriesInDir(r, true); },
         {"R|a.txt|F", "R|Sub|D", "R/Sub|b.TXT|F", "R/Sub|deep|D", "R/Sub/deep|c.txt|F", "R|junction|F", "R|.hid|D",
          "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetFilesAndDirectoriesInDir(r, false); },
         {"R|a.txt|F", "R|Sub|D", "R|junction|F", "R|.hid|D"}},
        {[](ZKString const& r) { return GetFilesInDir(r, true); },
         {"R|a.txt|F", "R/Sub|b.TXT|F", "R/Sub/deep|c.txt|F", "R|junction|F", "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetDirectoriesInDir(r, true); }, {"R|Sub|D", "R/Sub|deep|D", "R|.hid|D"}},
        {[](ZKString const& r) { return GetFilesWithSequence(r, ".txt", true, false); },
         {"R|a.txt|F", "R/Sub/deep|c.txt|F", "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetFilesWithSequence(r, ".txt", true, true); },
         {"R|a.txt|F", "R/Sub|b.TXT|F", "R/Sub/deep|c.txt|F", "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetDirsWithSequence(r, "U", true, true); }, {"R|Sub|D"}},
        {[](ZKString const& r) { return GetDirsWithSequence(r, "U", true, false); }, {}},
        {[](ZKString const& r) { return GetFilesAndDirsWithSequence(r, "ee", true, false); }, {"R/Sub|deep|D"}},
        {[](ZKString const& r) { return GetFilesWithSequence(r, "ta", true, false); }, {}},  // from its start
        {[](ZKString const& r) { return GetFilesAndDirsWithSequence(r, ZKString(), true, true); }, {}},
    };
    FakeTree tree(SampleTree());
    ZKString const root(P("R/*").c_str());
    int row = 0;
    for (auto const& [search, expected] : cases) {
        ZKContainer<FileDataStruct> const results = search(root);
        EXPECT_EQ(Listed(results), L(expected)) << "row " << row++;
        EXPECT_TRUE(results.GetMaxItemCount() == 512 && results.IsContainerAutoResize());
    }
    for (std::string const& call : fake::TakeCalls()) {
        EXPECT_EQ(call.find("junction"), std::string::npos) << "a reparse point was entered: " << call;
    }

    unsigned long long files = 99, dirs = 99;
    GetNumberOfFilesAndDirs(root, files, dirs, true);
    EXPECT_EQ(std::make_pair(files, dirs), std::make_pair(5ull, 3ull));
    GetNumberOfFilesAndDirs(root, files, dirs, false);
    EXPECT_EQ(std::make_pair(files, dirs), std::make_pair(2ull, 2ull));
    EXPECT_EQ(std::make_pair(GetNumberOfFiles(root, true), GetNumberOfDirs(root, false)), std::make_pair(5ull, 2ull));
    // Counts ignore what the sequence test gave.
    using namespace zk64::detail;
    SearchDirectoryEntries(root, ZKString("none"), nullptr, &dirs, &files,
                           SEARCH_SEQUENCE | SEARCH_COUNT_DIRS | SEARCH_COUNT_FILES | SEARCH_RECURSIVE);
    EXPECT_EQ(std::make_pair(files, dirs), std::make_pair(7ull, 5ull));
}

TEST_F(DirectorySearchCalls, ExclusionStopsOnlyTheDescentIntoTheExactSubpattern)
{
    FakeTree tree(SampleTree());
    ZKString const root(P("R/*").c_str());
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
    fake::TakeCalls();
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(root, true)),
              L({"R|a.txt|F", "R|Sub|D", "R|junction|F", "R|.hid|D", "R/.hid|h.txt|F"}));
    for (std::string const& call : fake::TakeCalls()) {
        EXPECT_EQ(call.find(P("R/Sub/*")), std::string::npos) << call;
    }
    EXPECT_EQ(GetNumberOfDirs(root, true), 2u) << "Sub is counted, deep beneath it is not";

    RemoveDirToExcludeFromSearch(ZKString(P("R/sub/*").c_str()));  // case differs: nothing removed
    EXPECT_EQ(GetDirsToExcludeFromSearch().GetItemCount(), 1u);
    RemoveDirToExcludeFromSearch(ZKString(P("R/Sub/*").c_str()));
    EXPECT_EQ(GetDirsToExcludeFromSearch().GetItemCount(), 0u);
    EXPECT_EQ(GetNumberOfDirs(root, true), 3u);

    SetDirsToExcludeFromSearch(excluded);
    ClearDirsToExcludeFromSearch();  // the item stays in its slot, but is no longer listed
    EXPECT_EQ(GetNumberOfDirs(root, true), 3u);
}

TEST_F(DirectorySearchCalls, PatternLengthCapAndShortPatterns)
{
    // 257 characters are searched, 258 are not even opened; the cap holds at
    // every level, so a subdirectory whose pattern would be too long is
    // listed but not entered.
    std::string const dir(253, 'x');  // dir + sep + "y" + sep + star = 257
    FakeTree tree({{dir + P("/*"), {{"y", kDir}, {"yy", kDir}}},
                   {dir + P("/y/*"), {{"z", kFile}}},
                   {dir + P("/yy/*"), {{"w", kFile}}}});
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(ZKString((dir + P("/*")).c_str()), true)),
              (std::vector<std::string>{dir + "|y|D", dir + P("/y") + "|z|F", dir + "|yy|D"}));
    for (std::string const& call : fake::TakeCalls()) {
        EXPECT_EQ(call.find(P("/yy/")), std::string::npos) << "a 258-character pattern was opened: " << call;
    }
    EXPECT_EQ(GetFilesInDir(ZKString((dir + "xxx" + P("/*")).c_str()), false).GetItemCount(), 0u);
    EXPECT_TRUE(fake::TakeCalls().empty()) << "a 258-character pattern makes no call at all";

    // Shorter than two characters: harmless when nothing is found, the
    // string exception when something is (the handle is closed first).
    EXPECT_EQ(GetFilesInDir("", false).GetItemCount(), 0u);
    FakeTree star({{"*", {{"a", kFile}}}});
    fake::TakeCalls();
    try {
        GetFilesInDir("*", false);
        ADD_FAILURE() << "no exception";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "invalid string position");
    }
    EXPECT_EQ(fake::TakeCalls().back(), "FindClose(find=0x100)");

    // Without the separator and star the last two characters are cut anyway.
    FakeTree plain({{P("C/dir"), {{"dir", kDir}}}});
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(P("C/dir").c_str(), false)), L({"C/d|dir|D"}));
}

TEST_F(DirectorySearchCalls, FailuresLeaveOnlyTheirSubtreeOut)
{
    // R/Sub/* cannot be opened (absent from the script); a count flag whose
    // counter is missing makes no call at all.
    FakeTree tree({{P("R/*"), {{"Sub", kDir}, {"a", kFile}}}});
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(P("R/*").c_str(), true)), L({"R|Sub|D", "R|a|F"}));
    EXPECT_EQ(GetNumberOfFiles(ZKString(P("missing/*").c_str()), true), 0u);
    fake::TakeCalls();
    unsigned long long count = 0;
    zk64::detail::SearchDirectoryEntries(ZKString(P("R/*").c_str()), ZKString(), nullptr, nullptr, &count,
                                         zk64::detail::SEARCH_COUNT_DIRS | zk64::detail::SEARCH_COUNT_FILES);
    EXPECT_TRUE(fake::TakeCalls().empty());
    EXPECT_EQ(count, 0u);
}

TEST(ConvertToSystemPath, LoosePathsBecomeSearchPatterns)
{
    struct Row {
        char const* in;
        char const* out;
    };
#if defined(_WIN32)
    Row const rows[] = {
        {"C:/dir", "C:\\dir\\*"},         {"C:\\dir\\*", "C:\\dir\\*"},       {"C:\\dir\\", "C:\\dir\\\\*"},
        {"C:\\dir\\a.txt", "C:\\dir\\a.txt"}, {"C:\\dir.d\\sub", "C:\\dir.dsub\\"}, {"..\\dir", "..dir\\"},
        {"foo", "foo\\*"},               {"C://dir//x", "C:\\dir\\x\\*"},     {"a/*/b", "a\\*"},
        {"\\dir", "dir\\*"},             {"", ""},
    };
#else
    Row const rows[] = {
        {"/usr/share", "/usr/share/*"}, {"/tmp/a.txt", "/tmp/a.txt"}, {"rel/dir", "rel/dir/*"},
        {"\\usr\\share", "/usr/share/*"}, {"/dir/", "/dir//*"},        {"//usr///x", "/usr/x/*"},
        {"/dir.d/sub", "/dir.dsub/"},     {"../dir", "..dir/"},        {"foo", "foo/*"},
        {"a/*/b", "a/*"},                 {"/", "/*"},                 {"", ""},
    };
#endif
    for (Row const& row : rows) {
        EXPECT_STREQ(ConvertToSystemPath(row.in).GetString(), row.out) << row.in;
        EXPECT_STREQ(ConvertToSystemPath(ZKString(row.in)).GetString(), row.out) << row.in;
    }
}

// A list the search fills for a caller who has not used it is grown once at
// the end; slot for slot it must match one filled push by push (a list of a
// derived type always takes the pushes), the doublings' slot 0 included.
TEST_F(DirectorySearchCalls, OneGoFillMatchesPushesSlotForSlot)
{
    struct PushedList : ZKContainer<FileDataStruct> {};
    for (int files : {3, 511, 512, 513, 1300}) {
        FakeTree::Entries entries{{"Sub", kDir}};
        for (int i = 0; i < files; ++i) {
            std::string name = "f";
            name += std::to_string(i);
            entries.push_back({name, kFile});
        }
        FakeTree tree({{P("R/*"), entries}, {P("R/Sub/*"), {{"s", kFile}}}});
        ZKContainer<FileDataStruct> grown;
        PushedList pushed;
        for (ZKContainer<FileDataStruct>* list : {static_cast<ZKContainer<FileDataStruct>*>(&pushed), &grown})
            zk64::detail::SearchDirectoryEntries(ZKString(P("R/*").c_str()), ZKString(), list, nullptr, nullptr,
                                                 zk64::detail::SEARCH_FILES_AND_DIRS | zk64::detail::SEARCH_RECURSIVE);
        ASSERT_EQ(grown.GetMaxItemCount(), pushed.GetMaxItemCount()) << files;
        ASSERT_EQ(grown.GetItemCount(), pushed.GetItemCount()) << files;
        for (unsigned long long i = 0; i < grown.GetMaxItemCount(); ++i) {
            FileDataStruct& a = grown[i];
            FileDataStruct& b = pushed[i];
            ASSERT_EQ(std::string(a.GetDir()) + "|" + a.GetName() + (a.IsAFile() ? "|F" : "|D"),
                      std::string(b.GetDir()) + "|" + b.GetName() + (b.IsAFile() ? "|F" : "|D"))
                << files << " files, slot " << i;
        }
    }
}
