// Directory watching against the fake platform: the exact calls the service
// makes, in order, and what the worker hands its callbacks.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <deque>
#include <mutex>
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

struct Entry {
    unsigned int action;
    std::u16string name;
};

// A change buffer holding `entries` as FILE_NOTIFY_INFORMATION records.
std::vector<unsigned char> Records(std::vector<Entry> const& entries)
{
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::size_t const start = bytes.size();
        std::size_t const size = (12 + entries[i].name.size() * 2 + 3) & ~std::size_t{3};
        platform::FileNotifyInformationHead const head{i + 1 < entries.size() ? static_cast<platform::DWORD>(size) : 0,
                                                       entries[i].action,
                                                       static_cast<platform::DWORD>(entries[i].name.size() * 2)};
        bytes.resize(start + size);
        std::memcpy(bytes.data() + start, &head, sizeof head);
        std::memcpy(bytes.data() + start + sizeof head, entries[i].name.data(), entries[i].name.size() * 2);
    }
    return bytes;
}

std::atomic<int> delivered{0};

void RecordingCallback(DirChangeStruct const& change)
{
    fake::Record("callback(action=" + std::to_string(change.action) + ", name=" + change.fileName.GetString() +
                 ", new=" + change.newFileName.GetString() + ")");
    ++delivered;
}

template <class Condition>
bool WaitFor(Condition condition)
{
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::yield();
    }
    return true;
}

std::string Hex(unsigned value) { return fake::Hex(value); }

// Scripts a world of directories: each expected path gets event 0xe0+i and
// handle 0xd0+i; a signalled event completes with its directory's next
// prepared buffer; once a directory has nothing left, the worker's wait on
// it parks until the worker is told to stop, and then fails.
class DirectoryWatchCalls : public ::testing::Test {
protected:
    struct Directory {
        std::string path;
        platform::HANDLE event;
        platform::HANDLE handle;
        std::deque<std::vector<unsigned char>> completions;
        std::deque<platform::DWORD> waits;  // results before the completions are looked at
        bool closed = false;
    };

    void SetUp() override
    {
        fake::Reset();
        globals.watchedDirectories.Clear();
        delivered = 0;
        InitDirectoryWatching();
        fake::Handles().CreateEventA = [this](void*, platform::BOOL, platform::BOOL, char const*) {
            std::lock_guard<std::mutex> guard(lock);
            return Handle(0xe0 + eventsMade++);
        };
        fake::DirectoryChanges().CreateFileA = [this](char const* path, platform::DWORD, platform::DWORD, void*,
                                                       platform::DWORD, platform::DWORD, platform::HANDLE) {
            std::lock_guard<std::mutex> guard(lock);
            for (auto& directory : directories) {
                if (directory.path == path) return directory.handle;
            }
            return platform::kInvalidHandleValue;
        };
        fake::DirectoryChanges().ReadDirectoryChangesW = [this](platform::HANDLE, void* buffer, platform::DWORD,
                                                                 platform::BOOL, platform::DWORD, platform::DWORD*,
                                                                 platform::Overlapped*, void*) {
            changeBuffer = static_cast<unsigned char*>(buffer);
            if (onRead) onRead();
            return 1;
        };
        fake::Handles().WaitForSingleObject = [this](platform::HANDLE event, platform::DWORD) {
            {
                std::lock_guard<std::mutex> guard(lock);
                Directory* directory = Find(event, &Directory::event);
                if (directory == nullptr || directory->closed) return platform::kWaitFailed;  // as a closed event
                if (!directory->waits.empty()) {
                    platform::DWORD const result = directory->waits.front();
                    directory->waits.pop_front();
                    return result;
                }
                if (!directory->completions.empty()) return platform::kWaitObject0;
            }
            ++parked;
            WaitFor([this] { return released.load() || !globals.directoryWatchWorker.IsRunning(); });
            if (released) std::this_thread::sleep_for(std::chrono::milliseconds(1));  // throttles the free-running worker
            return platform::kWaitFailed;
        };
        fake::Handles().GetOverlappedResult = [this](platform::HANDLE handle, platform::Overlapped*, platform::DWORD*,
                                                     platform::BOOL) {
            std::lock_guard<std::mutex> guard(lock);
            Directory* directory = Find(handle, &Directory::handle);
            std::vector<unsigned char> const bytes = directory->completions.front();
            directory->completions.pop_front();
            std::memcpy(changeBuffer, bytes.data(), bytes.size());
            return 1;
        };
        fake::Handles().ResetEvent = [](platform::HANDLE) { return 1; };
        fake::Handles().CloseHandle = [this](platform::HANDLE handle) {
            std::lock_guard<std::mutex> guard(lock);
            if (Directory* directory = Find(handle, &Directory::event)) directory->closed = true;
            return 1;
        };
        fake::Text().WideCharToMultiByte = [](unsigned int, platform::DWORD, platform::WCHAR const* wide, int count,
                                              char* bytes, int size, char const*, platform::BOOL*) {
            std::string text;
            zk64::detail::AppendUtf16AsUtf8(wide, static_cast<std::size_t>(count), text);
            if (size == 0) return static_cast<int>(text.size());
            if (static_cast<int>(text.size()) > size) return 0;
            std::memcpy(bytes, text.data(), text.size());
            return static_cast<int>(text.size());
        };
    }

    void TearDown() override
    {
        CleanupDirectoryWatching();
        globals.watchedDirectories.Clear();
        fake::Reset();
    }

    static platform::HANDLE Handle(unsigned value) { return reinterpret_cast<platform::HANDLE>(std::uintptr_t{value}); }

    Directory* Find(platform::HANDLE value, platform::HANDLE Directory::*member)
    {
        for (auto& directory : directories) {
            if (directory.*member == value) return &directory;
        }
        return nullptr;
    }

    // A directory that exists; returns its index (event 0xe0+i, handle 0xd0+i).
    unsigned Expect(std::string const& path, std::deque<std::vector<unsigned char>> completions = {})
    {
        std::lock_guard<std::mutex> guard(lock);
        auto const index = static_cast<unsigned>(directories.size());
        directories.push_back(Directory{path, Handle(0xe0 + index), Handle(0xd0 + index), std::move(completions), {}, false});
        return index;
    }

    // Waits until the worker has delivered everything and parked `count` times.
    void Drain(int count = 1) { ASSERT_TRUE(WaitFor([&] { return parked.load() >= count; })); }
    // Lets the parked worker run free, its passes failing each wait at once,
    // so that the list lock is free between passes.
    void Release() { released = true; }
    static fake::Calls WithoutWaits(fake::Calls calls)
    {
        std::erase_if(calls, [](std::string const& call) { return call.starts_with("WaitForSingleObject"); });
        return calls;
    }

    static std::string AddCalls(std::string const& path, unsigned index, std::string const& filter = "0x1b",
                                std::string const& subtree = "1")
    {
        return "CreateEventA(attributes=null, manualReset=1, initialState=0, name=null)|CreateFileA(path=\"" + path +
               "\", access=0x1, share=0x3, attributes=null, disposition=3, flags=0x42000000, template=null)|" +
               ReadCall(index, filter, subtree);
    }
    static std::string ReadCall(unsigned index, std::string const& filter = "0x1b", std::string const& subtree = "1")
    {
        return "ReadDirectoryChangesW(handle=" + Hex(0xd0 + index) + ", buffer=out, size=4096, subtree=" + subtree +
               ", filter=" + filter + ", bytes=out, overlapped={event=" + Hex(0xe0 + index) + "}, routine=null)";
    }
    static std::string WaitCall(unsigned index) { return "WaitForSingleObject(handle=" + Hex(0xe0 + index) + ", ms=0)"; }
    static std::string Conversion(unsigned count, unsigned size)
    {
        std::string const tail = ", defaultChar=null, usedDefault=null)";
        return "WideCharToMultiByte(codePage=65001, flags=0x0, count=" + std::to_string(count) +
               ", bytes=null, size=0" + tail + "|WideCharToMultiByte(codePage=65001, flags=0x0, count=" +
               std::to_string(count) + ", bytes=out, size=" + std::to_string(size) + tail;
    }
    // One delivery of directory `index`: everything between its signalled
    // wait and the next read.
    static std::string Delivery(unsigned index, std::string const& conversions, std::string const& callback)
    {
        return WaitCall(index) + "|GetOverlappedResult(handle=" + Hex(0xd0 + index) + ", overlapped={event=" +
               Hex(0xe0 + index) + "}, bytes=out, wait=1)|" + conversions + "|" + callback + "|ResetEvent(handle=" +
               Hex(0xe0 + index) + ")|" + ReadCall(index);
    }
    static std::string Closes(unsigned index)
    {
        return "CloseHandle(handle=" + Hex(0xe0 + index) + ")|CloseHandle(handle=" + Hex(0xd0 + index) + ")";
    }

    static std::string Joined(fake::Calls const& calls)
    {
        std::string text;
        for (auto const& call : calls) text += (text.empty() ? "" : "|") + call;
        return text;
    }

    std::mutex lock;
    std::vector<Directory> directories;
    unsigned eventsMade = 0;
    unsigned char* changeBuffer = nullptr;
    std::function<void()> onRead;
    std::atomic<int> parked{0};
    std::atomic<bool> released{false};
};

TEST_F(DirectoryWatchCalls, AddOpensStartsTheFirstReadBeforeListingThenStartsTheWorker)
{
    ZKString const path("calls-add");
    Expect("calls-add");
    bool listedDuringFirstRead = true;
    onRead = [&] { listedDuringFirstRead = IsDirectoryBeingWatchedForChanges(path); };

    // Bits above the low 32 of the filter are not passed on.
    EXPECT_TRUE(AddDirectoryToWatchForChanges(path, RecordingCallback, 0x100000013ull, false));
    EXPECT_FALSE(listedDuringFirstRead);
    EXPECT_TRUE(globals.directoryWatchWorker.IsRunning());
    Drain();
    CleanupDirectoryWatching();

    EXPECT_FALSE(globals.directoryWatchWorker.IsJoinable());
    EXPECT_EQ(Joined(fake::TakeCalls()), AddCalls("calls-add", 0, "0x13", "0") + "|" + WaitCall(0) + "|" + Closes(0));
    // The records stay listed, with their handles closed.
    EXPECT_TRUE(IsDirectoryBeingWatchedForChanges(path));
    EXPECT_FALSE(AddDirectoryToWatchForChanges(path, RecordingCallback, 0x1b, true));
}

TEST_F(DirectoryWatchCalls, RefusedAddsChangeNothing)
{
    Expect("calls-kept");
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString("calls-kept"), RecordingCallback, 0x1b, true));
    Drain();
    Release();
    fake::TakeCalls();

    // The same path again, a null callback: no platform call at all.
    EXPECT_FALSE(AddDirectoryToWatchForChanges(ZKString("calls-kept"), RecordingCallback, 0x1b, true));
    EXPECT_FALSE(AddDirectoryToWatchForChanges(ZKString("calls-other"), nullptr, 0x1b, true));
    EXPECT_EQ(WithoutWaits(fake::TakeCalls()), fake::Calls{});

    // A directory that cannot be opened: its event is made and left open.
    EXPECT_FALSE(AddDirectoryToWatchForChanges(ZKString("calls-missing"), RecordingCallback, 0x1b, true));
    EXPECT_EQ(Joined(WithoutWaits(fake::TakeCalls())),
              "CreateEventA(attributes=null, manualReset=1, initialState=0, name=null)|CreateFileA(path=\"calls-missing\", "
              "access=0x1, share=0x3, attributes=null, disposition=3, flags=0x42000000, template=null)");
    EXPECT_FALSE(IsDirectoryBeingWatchedForChanges(ZKString("calls-missing")));
    EXPECT_EQ(globals.watchedDirectories.GetItemCount(), 1u);

    // Paths compare as whole strings.
    EXPECT_FALSE(IsDirectoryBeingWatchedForChanges(ZKString("calls-kept/")));
    EXPECT_FALSE(RemoveDirectoryToWatchForChanges(ZKString("calls-kep")));
}

TEST_F(DirectoryWatchCalls, WorkerDeliversTheFirstRecordAndKeepsTheRenamedName)
{
    Expect("calls-deliver", {Records({{4, u"old"}, {5, u"new"}}), Records({{3, u"other.txt"}}),
                             Records({{1, u"first"}, {2, u"second"}})});
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString("calls-deliver"), RecordingCallback, 0x1b, true));
    Drain();
    CleanupDirectoryWatching();

    EXPECT_EQ(delivered.load(), 3);
    EXPECT_EQ(Joined(fake::TakeCalls()),
              AddCalls("calls-deliver", 0) + "|" +
                  // A rename converts the next entry's name first, then the first's.
                  Delivery(0, Conversion(3, 1024) + "|" + Conversion(3, 1024), "callback(action=4, name=old, new=new)") +
                  "|" +
                  // newFileName keeps the renamed name through later events.
                  Delivery(0, Conversion(9, 1024), "callback(action=3, name=other.txt, new=new)") + "|" +
                  // Two changes in one buffer: one callback, for the first.
                  Delivery(0, Conversion(5, 1024), "callback(action=1, name=first, new=new)") + "|" + WaitCall(0) +
                  "|" + Closes(0));
}

TEST_F(DirectoryWatchCalls, LongNamesGrowTheNameBufferWhichNeverShrinks)
{
    // 1024 UTF-8 bytes need 1025 with the terminator; then 1200; then 1.
    auto const text = [](int count) {
        std::string bytes;
        for (int i = 0; i < count; ++i) bytes += "\xc3\xa9";
        return bytes;
    };
    Expect("calls-long", {Records({{1, std::u16string(512, u'\u00e9')}}), Records({{1, std::u16string(600, u'\u00e9')}}),
                          Records({{2, u"x"}})});
    static std::vector<std::string> names;
    names.clear();
    ASSERT_TRUE(AddDirectoryToWatchForChanges(
        ZKString("calls-long"), [](DirChangeStruct const& change) { names.push_back(change.fileName.GetString()); },
        0x1b, true));
    Drain();
    CleanupDirectoryWatching();

    EXPECT_EQ(names, (std::vector<std::string>{text(512), text(600), "x"}));
    std::string const calls = Joined(fake::TakeCalls());
    for (auto const& conversion : {Conversion(512, 1025), Conversion(600, 1201), Conversion(1, 1201)}) {
        EXPECT_NE(calls.find(conversion + "|ResetEvent"), std::string::npos) << conversion;
    }
}

TEST_F(DirectoryWatchCalls, RemoveClosesNothingAndCleanupClosesOnlyListedRecords)
{
    Expect("calls-a");
    Expect("calls-b");
    Expect("calls-c");
    Release();  // the worker would hold the lock that the second add needs
    for (char const* path : {"calls-a", "calls-b", "calls-c"}) {
        ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString(path), RecordingCallback, 0x1b, true));
    }
    Drain(3);
    Release();
    fake::TakeCalls();

    EXPECT_TRUE(RemoveDirectoryToWatchForChanges(ZKString("calls-b")));
    EXPECT_FALSE(RemoveDirectoryToWatchForChanges(ZKString("calls-b")));
    EXPECT_FALSE(IsDirectoryBeingWatchedForChanges(ZKString("calls-b")));
    EXPECT_TRUE(IsDirectoryBeingWatchedForChanges(ZKString("calls-c")));
    // The last one too: its stale copy behind the list does not count.
    EXPECT_TRUE(RemoveDirectoryToWatchForChanges(ZKString("calls-c")));
    EXPECT_FALSE(IsDirectoryBeingWatchedForChanges(ZKString("calls-c")));
    EXPECT_FALSE(RemoveDirectoryToWatchForChanges(ZKString("calls-c")));
    EXPECT_TRUE(IsDirectoryBeingWatchedForChanges(ZKString("calls-a")));
    CleanupDirectoryWatching();
    EXPECT_EQ(Joined(WithoutWaits(fake::TakeCalls())), Closes(0));
}

TEST_F(DirectoryWatchCalls, AQuietDirectorySleepsASecondAndOtherResultsGoOnAtOnce)
{
    Expect("calls-quiet");
    directories[0].waits = {platform::kWaitTimeout, platform::kWaitFailed, 0x80 /* abandoned */};
    auto const start = std::chrono::steady_clock::now();
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString("calls-quiet"), RecordingCallback, 0x1b, true));
    Drain();
    auto const elapsed = std::chrono::steady_clock::now() - start;
    CleanupDirectoryWatching();

    EXPECT_GE(elapsed, std::chrono::milliseconds(1000));
    EXPECT_LT(elapsed, std::chrono::milliseconds(1900));
    EXPECT_EQ(delivered.load(), 0);
}

TEST_F(DirectoryWatchCalls, InitAfterCleanupRestartsTheWorker)
{
    Expect("calls-first");
    Expect("calls-second", {Records({{2, u"gone"}})});
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString("calls-first"), RecordingCallback, 0x1b, true));
    Drain();
    CleanupDirectoryWatching();
    EXPECT_FALSE(globals.directoryWatchWorker.IsRunning());

    InitDirectoryWatching();
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString("calls-second"), RecordingCallback, 0x1b, true));
    EXPECT_TRUE(WaitFor([] { return delivered.load() == 1; }));
    Drain(2);
}

}  // namespace
