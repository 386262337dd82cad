#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>

#include "files/PrivateAccess.h"

// The cached path is observable only through GetDirNamePath, which
// overwrites it; the copy rules are about the cache itself.
ZK_PRIVATE_MEMBER(CachedPath, ZKString FileDataStruct::*, &FileDataStruct::dirNamePath);

namespace {

std::string Cache(FileDataStruct& entry) { return (entry.*Member(CachedPath{})).GetString(); }

std::string Joined(char const* dir, char const* name)
{
    FileDataStruct entry(dir, name);
    return entry.GetDirNamePath();
}

}  // namespace

TEST(FileDataStruct, DefaultsAreTheNoneSentinel)
{
    FileDataStruct entry;
    EXPECT_STREQ(entry.GetDir(), "NONE");
    EXPECT_STREQ(entry.GetName(), "NONE");
    EXPECT_EQ(Cache(entry), "NONE");
    EXPECT_FALSE(entry.IsAFile());
    EXPECT_STREQ(entry.GetDirNamePath(), "NONE\\NONE");

    FileDataStruct named("C:\\dir", "a.txt");
    EXPECT_FALSE(named.IsAFile());
    EXPECT_EQ(Cache(named), "NONE");
    FileDataStruct file("C:\\dir", "a.txt", true);
    EXPECT_TRUE(file.IsAFile());
    EXPECT_STREQ(file.GetDir(), "C:\\dir");
    EXPECT_STREQ(file.GetName(), "a.txt");

    file.SetDir("x");
    file.SetName("y");
    file.SetIsAFile(false);
    EXPECT_STREQ(file.GetDir(), "x");
    EXPECT_STREQ(file.GetName(), "y");
    EXPECT_FALSE(file.IsAFile());
}

TEST(FileDataStruct, CopyConstructorEmptiesTheCacheAssignmentKeepsIt)
{
    FileDataStruct source("C:\\dir", "a.txt", true);
    source.GetDirNamePath();

    FileDataStruct copied(source);
    EXPECT_EQ(Cache(copied), "");
    EXPECT_TRUE(copied == source);
    EXPECT_TRUE(copied.IsAFile());

    FileDataStruct defaulted;
    FileDataStruct copiedDefault(defaulted);
    EXPECT_EQ(Cache(copiedDefault), "") << "not NONE either";

    FileDataStruct target("old", "entry");
    target.GetDirNamePath();
    target = source;
    EXPECT_STREQ(target.GetDir(), "C:\\dir");
    EXPECT_STREQ(target.GetName(), "a.txt");
    EXPECT_TRUE(target.IsAFile());
    EXPECT_EQ(Cache(target), "old\\entry");
    EXPECT_STREQ(target.GetDirNamePath(), "C:\\dir\\a.txt");
}

TEST(FileDataStruct, EqualityIgnoresTheCacheButNotCaseOrKind)
{
    FileDataStruct a("C:\\Dir", "a.txt", true);
    FileDataStruct b("C:\\Dir", "a.txt", true);
    a.GetDirNamePath();
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a == FileDataStruct("C:\\dir", "a.txt", true));
    EXPECT_FALSE(a == FileDataStruct("C:\\Dir", "A.txt", true));
    EXPECT_FALSE(a == FileDataStruct("C:\\Dir", "a.txt", false));
    EXPECT_FALSE(a == FileDataStruct("C:\\Dir", "a.tx", true));
}

TEST(FileDataStruct, DirNamePathJoinsWithOneBackslash)
{
    // Search pattern, trailing backslash, bare directory: the same path.
    EXPECT_EQ(Joined("C:\\dir\\*", "a.txt"), "C:\\dir\\a.txt");
    EXPECT_EQ(Joined("C:\\dir\\", "a.txt"), "C:\\dir\\a.txt");
    EXPECT_EQ(Joined("C:\\dir", "a.txt"), "C:\\dir\\a.txt");
    // No backslash at all: one is appended, a forward slash does not count.
    EXPECT_EQ(Joined("dir", "a.txt"), "dir\\a.txt");
    EXPECT_EQ(Joined("c:/dir/", "a.txt"), "c:/dir/\\a.txt");
    EXPECT_EQ(Joined("", "a.txt"), "\\a.txt");
    EXPECT_EQ(Joined("\\", "a.txt"), "\\a.txt");
    // A star without a backslash before it is no pattern.
    EXPECT_EQ(Joined("C:\\d*r", "a.txt"), "C:\\d*r\\a.txt");
    // With a backslash-star anywhere, the LAST star is the one removed, and
    // nothing else is added.
    EXPECT_EQ(Joined("C:\\a\\*x*", "n"), "C:\\a\\*xn");
    EXPECT_EQ(Joined("x\\*y", "n"), "x\\yn");
    EXPECT_EQ(Joined("\\*", "n"), "\\n");
}

TEST(FileDataStruct, DirNamePathIsStoredAndReturnedAsTheCache)
{
    FileDataStruct entry("C:\\dir", "a.txt");
    char const* path = entry.GetDirNamePath();
    EXPECT_EQ(Cache(entry), "C:\\dir\\a.txt");
    EXPECT_EQ(path, (entry.*Member(CachedPath{})).GetString());
    // Repeated calls recompute from the fields, not from the cache.
    entry.SetName("b.txt");
    EXPECT_STREQ(entry.GetDirNamePath(), "C:\\dir\\b.txt");
    EXPECT_STREQ(entry.GetDirNamePath(), "C:\\dir\\b.txt");
}

TEST(FileDataStruct, ContainerKeepsEntries)
{
    ZKContainer<FileDataStruct> list;
    list.PushBack(FileDataStruct("C:\\dir", "a", true));
    list.PushBack(FileDataStruct("C:\\dir", "sub", false));
    ASSERT_EQ(list.GetItemCount(), 2u);
    EXPECT_TRUE(list.GetItem(0) == FileDataStruct("C:\\dir", "a", true));
    EXPECT_FALSE(list.GetItem(1).IsAFile());
    EXPECT_STREQ(list[1].GetDirNamePath(), "C:\\dir\\sub");
}
