// Directory watching against the fake platform: the exact calls the service
// makes, in order, and what the worker hands its callback.

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include "files/ZKDirectoryWatch.h"
#include "foundation/detail/Globals.h"
#include "foundation/detail/Utf.h"
#include "platform/DirectoryChanges.h"
#include "platform/Handles.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
namespace platform = zk64::platform;
using zk64::detail::globals;

namespace {

// A change buffer holding FILE_NOTIFY_INFORMATION records.
std::vector<unsigned char> Records(std::vector<std::pair<unsigned, std::u16string>> const& entries)
{
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::size_t const start = bytes.size(), size = (12 + entries[i].second.size() * 2 + 3) & ~std::size_t{3};
        platform::FileNotifyInformationHead const head{i + 1 < entries.size() ? platform::DWORD(size) : 0, entries[i].first,
                                                       platform::DWORD(entries[i].second.size() * 2)};
        bytes.resize(start + size);
        std::memcpy(bytes.data() + start, &head, sizeof head);
        std::memcpy(bytes.data() + start + sizeof head, entries[i].second.data(), entries[i].second.size() * 2);
    }
    return bytes;
}

std::deque<std::vector<unsigned char>> completions;
unsigned char* changeBuffer = nullptr;
std::atomic<bool> parked{false};

}  // namespace

// One directory (event 0xe0, handle 0xd0) whose reads complete with the
// scripted buffers; then the worker's wait parks until it is told to stop.
TEST(DirectoryWatchCalls, AddDeliverRemoveAndCleanup)
{
    fake::Reset();
    globals.watchedDirectories.Clear();
    InitDirectoryWatching();
    std::u16string const long1(512, u'\u00e9'), long2(600, u'\u00e9');
    completions = {Records({{4, u"old"}, {5, u"new"}}), Records({{3, u"other.txt"}}), Records({{1, u"first"}, {2, u"x"}}),
                   Records({{1, long1}}), Records({{1, long2}}), Records({{2, u"x"}})};
    fake::Handles().CreateEventA = [](void*, platform::BOOL, platform::BOOL, char const*) { return (platform::HANDLE)0xe0; };
    fake::DirectoryChanges().CreateFileA = [](char const* path, auto...) {
        return std::string(path) == "dir" ? (platform::HANDLE)0xd0 : platform::kInvalidHandleValue;
    };
    fake::DirectoryChanges().ReadDirectoryChangesW = [](platform::HANDLE, void* buffer, auto...) {
        return changeBuffer = static_cast<unsigned char*>(buffer), 1;
    };
    fake::Handles().WaitForSingleObject = [](platform::HANDLE, platform::DWORD) {
        if (!completions.empty()) return platform::kWaitObject0;
        for (parked = true; globals.directoryWatchWorker.IsRunning();) std::this_thread::yield();
        return platform::kWaitFailed;
    };
    fake::Handles().GetOverlappedResult = [](platform::HANDLE, platform::Overlapped*, platform::DWORD*, platform::BOOL) {
        std::memcpy(changeBuffer, completions.front().data(), completions.front().size());
        return completions.pop_front(), 1;
    };
    fake::Handles().ResetEvent = fake::Handles().CloseHandle = [](platform::HANDLE) { return 1; };
    fake::Text().WideCharToMultiByte = [](unsigned, platform::DWORD, platform::WCHAR const* wide, int count, char* bytes,
                                          int size, char const*, platform::BOOL*) {
        std::string text;
        zk64::detail::AppendUtf16AsUtf8(wide, static_cast<std::size_t>(count), text);
        if (size != 0) std::memcpy(bytes, text.data(), text.size());
        return static_cast<int>(text.size());
    };
    static std::vector<std::string> seen;
    auto const callback = [](DirChangeStruct const& change) {
        seen.push_back(std::to_string(change.action) + ":" + change.fileName.GetString() + ":" + change.newFileName.GetString());
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
    EXPECT_FALSE(IsDirectoryBeingWatchedForChanges(ZKString("dir/")) || RemoveDirectoryToWatchForChanges(ZKString("di")));

    auto const e = [](int count) {
        std::string text;
        while (count-- > 0) text += "\xc3\xa9";
        return text;
    };
    EXPECT_EQ(seen, (std::vector<std::string>{"4:old:new", "3:other.txt:new", "1:first:new", "1:" + e(512) + ":new",
                                              "1:" + e(600) + ":new", "2:x:new"}));
    std::string const event = "handle=0xe0", read = "ReadDirectoryChangesW(handle=0xd0, buffer=out, size=4096, subtree=";
    auto const convert = [](int count, int size) {
        std::string const head = "WideCharToMultiByte(codePage=65001, flags=0x0, count=" + std::to_string(count) + ", bytes=";
        std::string const tail = ", defaultChar=null, usedDefault=null)";
        return std::vector<std::string>{head + "null, size=0" + tail, head + "out, size=" + std::to_string(size) + tail};
    };
    auto const open = [](std::string const& path) {
        return "CreateFileA(path=\"" + path + "\", access=0x1, share=0x3, attributes=null, disposition=3, flags=0x42000000, template=null)";
    };
    std::vector<std::string> expected{"CreateEventA(attributes=null, manualReset=1, initialState=0, name=null)", open("dir"),
                                      read + "0, filter=0x13, bytes=out, overlapped={event=0xe0}, routine=null)"};
    // A rename converts the next entry's name first; the name buffer grows
    // to fit a long name (and its terminator) and never shrinks.
    for (auto const& [counts, size] : std::vector<std::pair<std::vector<int>, int>>{
             {{3, 3}, 1024}, {{9}, 1024}, {{5}, 1024}, {{512}, 1025}, {{600}, 1201}, {{1}, 1201}}) {
        expected.push_back("WaitForSingleObject(" + event + ", ms=0)");
        expected.push_back("GetOverlappedResult(handle=0xd0, overlapped={event=0xe0}, bytes=out, wait=1)");
        for (int count : counts) {
            for (auto const& call : convert(count, size)) expected.push_back(call);
        }
        expected.push_back("callback");
        expected.push_back("ResetEvent(" + event + ")");
        expected.push_back(read + "0, filter=0x13, bytes=out, overlapped={event=0xe0}, routine=null)");
    }
    for (std::string const& call : {"WaitForSingleObject(" + event + ", ms=0)", "CloseHandle(" + event + ")",
                                     std::string("CloseHandle(handle=0xd0)"), expected[0], open("missing")})
        expected.push_back(call);
    EXPECT_EQ(fake::TakeCalls(), expected);
    // Remove takes the record out, once.
    EXPECT_TRUE(IsDirectoryBeingWatchedForChanges(ZKString("dir")));
    EXPECT_TRUE(RemoveDirectoryToWatchForChanges(ZKString("dir")));
    EXPECT_FALSE(RemoveDirectoryToWatchForChanges(ZKString("dir")) || IsDirectoryBeingWatchedForChanges(ZKString("dir")));
    fake::Reset();
}
