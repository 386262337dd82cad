// Directory watching on the real system: natively over inotify, and as
// zk64.dll under Wine over its change journal. Every test watches fresh
// directories (records stay listed after cleanup) and waits for callbacks
// with bounded polls.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "files/TempFiles.h"

namespace fs = std::filesystem;
using zk64::test::TempDir;

namespace {

std::mutex seenLock;
std::vector<std::string> seen;  // "action:name>new name"

void Collect(DirChangeStruct const& change)
{
    std::lock_guard<std::mutex> guard(seenLock);
    seen.push_back(std::to_string(change.action) + ":" + change.fileName.GetString() +
                   (change.action == ZK_FILE_ACTION_RENAMED_OLD_NAME ? ">" + std::string(change.newFileName.GetString()) : ""));
}

// Polls up to 10 s for `expected` among the changes seen.
bool Arrives(unsigned action, fs::path const& name, fs::path const& newName = {})
{
    auto const utf8 = [](fs::path const& path) {
        std::u8string const text = path.u8string();
        return std::string(text.begin(), text.end());
    };
    std::string const expected = std::to_string(action) + ":" + utf8(name) + (newName.empty() ? "" : ">" + utf8(newName));
    for (auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(10); std::chrono::steady_clock::now() < end;) {
        {
            std::lock_guard<std::mutex> guard(seenLock);
            for (auto const& change : seen) if (change == expected) return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

void Touch(fs::path const& path, std::string const& bytes = "") { std::ofstream(path, std::ios::binary | std::ios::app) << bytes; }

constexpr unsigned long long kNames = ZK_FILE_NOTIFY_CHANGE_FILE_NAME | ZK_FILE_NOTIFY_CHANGE_DIR_NAME;

class DirectoryWatch : public ::testing::Test {
protected:
    void SetUp() override { InitDirectoryWatching(); }
    void TearDown() override { CleanupDirectoryWatching(); }
};

}  // namespace

TEST_F(DirectoryWatch, ActionsUtf8NamesRefusalsAndHeldDirectories)
{
    TempDir dir("watch-actions");
    fs::path const root(dir.Dir()), first(u8"na\u00efve-\u00fc.txt"), renamed(u8"\u65e5\u672c-\U0001F600.txt");
    fs::create_directories(root / "removed");
    ZKString const path(dir.Dir().c_str()), removed((root / "removed").string().c_str());
    EXPECT_FALSE(AddDirectoryToWatchForChanges(path, nullptr, kNames, false));
    EXPECT_FALSE(AddDirectoryToWatchForChanges(ZKString(dir.Path("missing").c_str()), Collect, kNames, false));
    ASSERT_TRUE(AddDirectoryToWatchForChanges(path, Collect, kNames | ZK_FILE_NOTIFY_CHANGE_LAST_WRITE, false));
    EXPECT_FALSE(AddDirectoryToWatchForChanges(path, Collect, kNames, false));
    // A file opens as a directory would (backup semantics), but its read
    // fails: it is listed and never reported.
    EXPECT_TRUE(AddDirectoryToWatchForChanges(ZKString(dir.Write("plain.txt", "x").c_str()), Collect, kNames, false));
    EXPECT_TRUE(Arrives(ZK_FILE_ACTION_ADDED, "plain.txt"));
    Touch(root / first);
    EXPECT_TRUE(Arrives(ZK_FILE_ACTION_ADDED, first));
    Touch(root / first, "more bytes");
    EXPECT_TRUE(Arrives(ZK_FILE_ACTION_MODIFIED, first));
    fs::rename(root / first, root / renamed);
    EXPECT_TRUE(Arrives(ZK_FILE_ACTION_RENAMED_OLD_NAME, first, renamed));
    fs::remove(root / renamed);
    EXPECT_TRUE(Arrives(ZK_FILE_ACTION_REMOVED, renamed));

    // A removed record keeps its handle: on Windows its directory cannot go
    // for the life of the process; Linux has no share modes.
    ASSERT_TRUE(AddDirectoryToWatchForChanges(removed, Collect, kNames, false));
    EXPECT_TRUE(RemoveDirectoryToWatchForChanges(removed));
    EXPECT_FALSE(IsDirectoryBeingWatchedForChanges(removed));
    std::error_code error;
    fs::remove(root / "removed", error);
    EXPECT_EQ(bool(error), fs::path::preferred_separator == '\\');
    CleanupDirectoryWatching();
    EXPECT_TRUE(IsDirectoryBeingWatchedForChanges(path)) << "records stay listed after cleanup";
    InitDirectoryWatching();
    EXPECT_FALSE(AddDirectoryToWatchForChanges(path, Collect, kNames, false));
}

TEST_F(DirectoryWatch, SubtreeCoversNewDirectoriesAndNamesLongerThanTheNameBuffer)
{
    TempDir dir("watch-subtree");
    fs::path const root(dir.Dir());
    fs::create_directories(root / "a" / "b");
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString(dir.Dir().c_str()), Collect, kNames, true));
#if !defined(_WIN32)
    // Directories there before the add. (Wine 8.0 reports changes only in
    // subdirectories made after the add; Windows reports both.)
    Touch(root / "a" / "b" / "old.txt");
    EXPECT_TRUE(Arrives(ZK_FILE_ACTION_ADDED, fs::path("a") / "b" / "old.txt"));
#endif
    // Four directories of 80 three-byte characters made after the add (240
    // UTF-8 bytes each, within Linux's limit) and a file: a 1204-byte name.
    std::u8string component;
    for (int i = 0; i < 80; ++i) component += u8"\u65e5";
    fs::path const deep = fs::path(component) / component / component / component, file = deep / (component + u8"f");
    fs::create_directories(root / deep);
    EXPECT_TRUE(Arrives(ZK_FILE_ACTION_ADDED, component));
    Touch(root / file);
    EXPECT_TRUE(Arrives(ZK_FILE_ACTION_ADDED, file));
}

#if !defined(_WIN32)
// A flood loses changes and the service goes on; run again in a user
// namespace whose inotify watch limit is 3, a subtree is watched in part and
// the next directory is refused.
TEST_F(DirectoryWatch, FloodAndWatchLimit)
{
    TempDir dir("watch-flood");
    fs::path const root(dir.Dir());
    bool const limited = std::getenv("ZK64_WATCH_LIMIT_CHILD") != nullptr;
    for (char const* sub : {"a", "b", "c", "d", "e"}) fs::create_directories(root / sub);
    ASSERT_TRUE(AddDirectoryToWatchForChanges(ZKString(dir.Dir().c_str()), Collect, kNames, limited));
    TempDir other("watch-limit-other");
    EXPECT_EQ(AddDirectoryToWatchForChanges(ZKString(other.Dir().c_str()), Collect, kNames, false), !limited);
    for (int i = 0; i < (limited ? 0 : 6000); ++i) Touch(root / std::string("f").append(std::to_string(i)));
    bool reported = false;
    for (int i = 0; i < 20 && !reported; ++i) {
        Touch(root / std::string("marker").append(std::to_string(i)));
        reported = Arrives(ZK_FILE_ACTION_ADDED, std::string("marker").append(std::to_string(i)));
    }
    EXPECT_TRUE(reported);
    std::lock_guard<std::mutex> guard(seenLock);
    EXPECT_LT(seen.size(), 6000u) << "only the first record of each read is delivered";
    if (limited || std::system("unshare -Ur true >/dev/null 2>&1") != 0) return;
    std::string const command = "unshare -Ur sh -c 'echo 3 > /proc/sys/user/max_inotify_watches && ZK64_WATCH_LIMIT_CHILD=1 exec \"" +
                                fs::read_symlink("/proc/self/exe").string() + "\" --gtest_filter=DirectoryWatch.FloodAndWatchLimit' >/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
}
#endif
