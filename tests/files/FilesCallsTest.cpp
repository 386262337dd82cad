// Directory search and watching through the fake backend: the exact calls
// they make, every rule of the walk on a scripted tree, and what the watch
// worker hands its callback.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <deque>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "files/ZKDirectoryWatch.h"
#include "files/detail/DirectorySearch.h"
#include "foundation/detail/Globals.h"
#include "foundation/detail/Utf.h"
#include "platform/DirectoryChanges.h"
#include "platform/Handles.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
namespace platform = zk64::platform;
using namespace zk64::detail;
using zk64::detail::globals;
using Rows = std::vector<std::string>;
using Entries = std::vector<std::pair<std::string, platform::DWORD>>;

namespace {

constexpr platform::DWORD kFile = 0x20, kDir = 0x10;

// Paths here are written with '/'; the walk sees the system's separator.
std::string Sep(std::string path, char from = '/', char to = platform::kPathSeparator)
{
    std::replace(path.begin(), path.end(), from, to);
    return path;
}

// A scripted file system: pattern -> entries in enumeration order. Find
// handles are 0x100, 0x101, ... in the order of the opens.
class FakeTree {
public:
    explicit FakeTree(std::map<std::string, Entries> tree) : dirs(std::move(tree))
    {
        fake::Reset();
        fake::Files().Wow64DisableWow64FsRedirection = [](void** old) {
            *old = reinterpret_cast<void*>(0xabc);
            return 1;
        };
        fake::Files().FindFirstFileA = [this](char const* pattern, platform::FindDataA* data) {
            auto const found = dirs.find(Sep(pattern, platform::kPathSeparator, '/'));
            if (found == dirs.end()) return platform::kInvalidHandleValue;
            cursors.push_back({&found->second, 0});
            Next(cursors.back(), data);
            return reinterpret_cast<platform::HANDLE>(0x100 + cursors.size() - 1);
        };
        fake::Files().FindNextFileA = [this](platform::HANDLE find, platform::FindDataA* data) {
            return Next(cursors.at(reinterpret_cast<std::uintptr_t>(find) - 0x100), data);
        };
    }

private:
    static int Next(std::pair<Entries const*, std::size_t>& cursor, platform::FindDataA* data)
    {
        if (cursor.second == cursor.first->size()) return 0;
        *data = platform::FindDataA{};
        data->dwFileAttributes = (*cursor.first)[cursor.second].second;
        std::strcpy(data->cFileName, (*cursor.first)[cursor.second++].first.c_str());
        return 1;
    }
    std::map<std::string, Entries> dirs;
    std::vector<std::pair<Entries const*, std::size_t>> cursors;
};

// Records as "dir|name|F" or "dir|name|D", in order, written with '/'.
Rows Listed(ZKContainer<FileDataStruct> const& results)
{
    Rows out;
    for (unsigned long long i = 0; i < results.GetItemCount(); ++i) {
        std::string const row =
            std::string(results[i].GetDir()) + "|" + results[i].GetName() + (results[i].IsAFile() ? "|F" : "|D");
        out.push_back(Sep(row, platform::kPathSeparator, '/'));
    }
    return out;
}

}  // namespace

TEST(DirectorySearchCalls, EveryFunctionExclusionsLimitsAndTheCallsOfOneWalk)
{
    // R holds a file, a directory with a subtree, a junction (never to be
    // entered: its listing would show up as "trap") and a hidden directory.
    FakeTree tree({
        {"R/*", {{".", kDir}, {"..", kDir}, {"a.txt", kFile}, {"Sub", kDir}, {"junction", 0x410}, {".hid", 0x12}}},
        {"R/Sub/*", {{".", kDir}, {"..", kDir}, {"b.TXT", kFile}, {"deep", kDir}}},
        {"R/Sub/deep/*", {{"c.txt", kFile}}},
        {"R/.hid/*", {{"h.txt", 0x22}}},
        {"R/junction/*", {{"trap", kFile}}},
    });
    ZKString const root(Sep("R/*").c_str());
    using Search = ZKContainer<FileDataStruct> (*)(ZKString const&);
    std::pair<Search, Rows> const cases[] = {
        {[](ZKString const& r) { return GetFilesAndDirectoriesInDir(r, true); },
         {"R|a.txt|F", "R|Sub|D", "R/Sub|b.TXT|F", "R/Sub|deep|D", "R/Sub/deep|c.txt|F", "R|junction|F", "R|.hid|D",
          "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetFilesInDir(r.GetString(), false); }, {"R|a.txt|F", "R|junction|F"}},
        {[](ZKString const& r) { return GetDirectoriesInDir(r.GetString(), true); },
         {"R|Sub|D", "R/Sub|deep|D", "R|.hid|D"}},
        {[](ZKString const& r) { return GetFilesWithSequence(r, ".txt", true, true); },
         {"R|a.txt|F", "R/Sub|b.TXT|F", "R/Sub/deep|c.txt|F", "R/.hid|h.txt|F"}},
        {[](ZKString const& r) { return GetDirsWithSequence(r, "U", true, false); }, {}},
        {[](ZKString const& r) { return GetFilesAndDirsWithSequence(r, "ee", true, false); }, {"R/Sub|deep|D"}},
        {[](ZKString const& r) { return GetFilesAndDirsWithSequence(r, ZKString(), true, true); }, {}},
    };
    for (auto const& [search, expected] : cases) {
        ZKContainer<FileDataStruct> const results = search(root);
        EXPECT_TRUE(results.GetMaxItemCount() == 512 && results.IsContainerAutoResize());
        EXPECT_EQ(Listed(results), expected) << expected.size();
    }
    unsigned long long files = 99;
    unsigned long long dirs = 99;
    GetNumberOfFilesAndDirs(root, files, dirs, true);
    EXPECT_EQ(std::make_pair(files, dirs), std::make_pair(5ull, 3ull)) << "zeroed first";
    EXPECT_EQ(std::make_pair(GetNumberOfFiles(root, false), GetNumberOfDirs(root, false)), std::make_pair(2ull, 2ull));
    // Exclusion stops only the descent into the exact subpattern, below the top level.
    ZKContainer<ZKString> excluded(4);
    for (char const* item : {"R/Sub/*", "R/.hid", "R/*"}) excluded.PushBack(ZKString(Sep(item).c_str()));
    SetDirsToExcludeFromSearch(excluded);
    RemoveDirToExcludeFromSearch(ZKString(Sep("R/sub/*").c_str()));  // case differs: nothing removed
    EXPECT_EQ(std::make_pair(GetNumberOfFiles(root, true), GetNumberOfDirs(root, true)), std::make_pair(3ull, 2ull));
    RemoveDirToExcludeFromSearch(ZKString(Sep("R/Sub/*").c_str()));
    EXPECT_EQ(GetNumberOfDirs(root, true), 3u);
    ClearDirsToExcludeFromSearch();

    // Redirection only around each open; each level closed after its last entry.
    FakeTree fresh({{"R/*", {{".", kDir}, {"a", kFile}, {"d", kDir}}}, {"R/d/*", {{"b", kFile}}}});
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(root, true)), (Rows{"R|a|F", "R|d|D", "R/d|b|F"}));
    std::string const off = "Wow64DisableWow64FsRedirection(oldValue=out)",
                      on = "Wow64RevertWow64FsRedirection(oldValue=0xabc)";
    auto const first = [](std::string const& pattern) {
        return "FindFirstFileA(pattern=\"" + Sep(pattern) + "\", data=out)";
    };
    auto const next = [](std::string const& find) { return "FindNextFileA(find=" + find + ", data=out)"; };
    EXPECT_EQ(fake::TakeCalls(),
              (Rows{off, first("R/*"), on, next("0x100"), next("0x100"), off, first("R/d/*"), on, next("0x101"),
                    "FindClose(find=0x101)", next("0x100"), "FindClose(find=0x100)"}));

    // A pattern shorter than two characters that finds something throws. 257
    // characters are searched, 258 not even opened, at every level.
    std::string const dir(253, 'x');  // dir + sep + "y" + sep + star = 257
    FakeTree odd({{"*", {{"a", kFile}}},
                  {dir + "/*", {{"y", kDir}, {"yy", kDir}}},
                  {dir + "/y/*", {{"z", kFile}}},
                  {dir + "/yy/*", {{"w", kFile}}}});
    EXPECT_THROW(GetFilesInDir("*", false), std::out_of_range);
    EXPECT_EQ(Listed(GetFilesAndDirectoriesInDir(ZKString(Sep(dir + "/*").c_str()), true)),
              (Rows{dir + "|y|D", dir + "/y|z|F", dir + "|yy|D"}));
    fake::TakeCalls();
    EXPECT_EQ(GetFilesInDir(ZKString(Sep(dir + "xxx/*").c_str()), false).GetItemCount(), 0u);
    EXPECT_TRUE(fake::TakeCalls().empty()) << "a 258-character pattern makes no call at all";
}

namespace {

// A change buffer holding FILE_NOTIFY_INFORMATION records.
std::vector<unsigned char> Records(std::vector<std::pair<unsigned, std::u16string>> const& entries)
{
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::size_t const start = bytes.size(), size = (12 + entries[i].second.size() * 2 + 3) & ~std::size_t{3};
        platform::FileNotifyInformationHead const head{i + 1 < entries.size() ? platform::DWORD(size) : 0,
                                                       entries[i].first, platform::DWORD(entries[i].second.size() * 2)};
        bytes.resize(start + size);
        std::memcpy(bytes.data() + start, &head, sizeof head);
        std::memcpy(bytes.data() + start + sizeof head, entries[i].second.data(), entries[i].second.size() * 2);
    }
    return bytes;
}

std::deque<std::vector<unsigned char>> completions;
unsigned char* changeBuffer = nullptr;
std::atomic<bool> parked{false};
Rows seen;

}  // namespace

// One directory (event 0xe0, handle 0xd0) whose reads complete with the
// scripted buffers; then the worker's wait parks until it is told to stop.
TEST(DirectoryWatchCalls, AddDeliverRemoveAndCleanup)
{
    fake::Reset();
    globals.watchedDirectories.Clear();
    InitDirectoryWatching();
    std::u16string const long1(600, u'\u00e9');
    completions = {Records({{4, u"old"}, {5, u"new"}}), Records({{1, u"first"}, {2, u"x"}}), Records({{1, long1}}),
                   Records({{2, u"x"}})};
    fake::Handles().CreateEventA = [](void*, platform::BOOL, platform::BOOL, char const*) {
        return (platform::HANDLE)0xe0;
    };
    fake::DirectoryChanges().CreateFileA = [](char const* path, auto...) {
        return std::string(path) == "dir" ? (platform::HANDLE)0xd0 : platform::kInvalidHandleValue;
    };
    fake::DirectoryChanges().ReadDirectoryChangesW = [](platform::HANDLE, void* buffer, auto...) {
        changeBuffer = static_cast<unsigned char*>(buffer);
        return 1;
    };
    fake::Handles().WaitForSingleObject = [](platform::HANDLE, platform::DWORD) {
        if (!completions.empty()) return platform::kWaitObject0;
        for (parked = true; globals.directoryWatchWorker.IsRunning();) std::this_thread::yield();
        return platform::kWaitFailed;
    };
    fake::Handles().GetOverlappedResult = [](platform::HANDLE, platform::Overlapped*, platform::DWORD*,
                                             platform::BOOL) {
        std::memcpy(changeBuffer, completions.front().data(), completions.front().size());
        completions.pop_front();
        return 1;
    };
    fake::Text().WideCharToMultiByte = [](unsigned, platform::DWORD, platform::WCHAR const* wide, int count,
                                          char* bytes, int size, char const*, platform::BOOL*) {
        std::string text;
        zk64::detail::AppendUtf16AsUtf8(wide, static_cast<std::size_t>(count), text);
        if (size != 0) std::memcpy(bytes, text.data(), text.size());
        return static_cast<int>(text.size());
    };
    auto const callback = [](DirChangeStruct const& change) {
        seen.push_back(std::to_string(change.action) + ":" + change.fileName.GetString() + ":" +
                       change.newFileName.GetString());
        fake::Record("callback");
    };
    // Bits above the low 32 of the filter are not passed on.
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString("dir"), callback, 0x100000013ull, false));
    while (!parked) std::this_thread::yield();
    CleanupDirectoryWatching();
    EXPECT_FALSE(globals.directoryWatchWorker.IsJoinable());
    // After cleanup the record stays listed. Refused: the same path, a null callback (no call at all), a directory
    // that cannot be opened (its event is made and left open).
    EXPECT_FALSE(AddDirectoryToWatchForChanges(ZKString("dir"), callback, 0x1b, true) ||
                 AddDirectoryToWatchForChanges(ZKString("other"), nullptr, 0x1b, true) ||
                 AddDirectoryToWatchForChanges(ZKString("missing"), callback, 0x1b, true));
    EXPECT_FALSE(IsDirectoryBeingWatchedForChanges(ZKString("dir/")) ||
                 RemoveDirectoryToWatchForChanges(ZKString("di")));
    // A rename's new name stays for later changes; only the first record of a read is delivered.
    std::string e;
    while (e.size() < 1200) e += "\xc3\xa9";
    EXPECT_EQ(seen, (Rows{"4:old:new", "1:first:new", "1:" + e + ":new", "2:x:new"}));
    std::string const read = "ReadDirectoryChangesW(handle=0xd0, buffer=out, size=4096, subtree=0, filter=0x13, "
                             "bytes=out, overlapped={event=0xe0}, routine=null)";
    auto const open = [](std::string const& path) {
        return "CreateFileA(path=\"" + path +
               "\", access=0x1, share=0x3, attributes=null, disposition=3, flags=0x42000000, template=null)";
    };
    Rows expected{"CreateEventA(attributes=null, manualReset=1, initialState=0, name=null)", open("dir"), read};
    // A rename converts the next entry's name first; the name buffer grows
    // to fit a long name and its terminator, and never shrinks.
    for (auto const& [counts, size] :
         std::vector<std::pair<std::vector<int>, int>>{{{3, 3}, 1024}, {{5}, 1024}, {{600}, 1201}, {{1}, 1201}}) {
        expected.push_back("WaitForSingleObject(handle=0xe0, ms=0)");
        expected.push_back("GetOverlappedResult(handle=0xd0, overlapped={event=0xe0}, bytes=out, wait=1)");
        for (int count : counts) {
            std::string const head = "WideCharToMultiByte(codePage=65001, flags=0x0, count=" + std::to_string(count);
            expected.push_back(head + ", bytes=null, size=0, defaultChar=null, usedDefault=null)");
            expected.push_back(head + ", bytes=out, size=" + std::to_string(size) +
                               ", defaultChar=null, usedDefault=null)");
        }
        expected.push_back("callback");
        expected.push_back("ResetEvent(handle=0xe0)");
        expected.push_back(read);
    }
    expected.insert(expected.end(), {"WaitForSingleObject(handle=0xe0, ms=0)", "CloseHandle(handle=0xe0)",
                                     "CloseHandle(handle=0xd0)", expected[0], open("missing")});
    EXPECT_EQ(fake::TakeCalls(), expected);
    // Remove takes the record out, once.
    EXPECT_TRUE(IsDirectoryBeingWatchedForChanges(ZKString("dir")) &&
                RemoveDirectoryToWatchForChanges(ZKString("dir")));
    EXPECT_FALSE(RemoveDirectoryToWatchForChanges(ZKString("dir")) ||
                 IsDirectoryBeingWatchedForChanges(ZKString("dir")));
    fake::Reset();
}
