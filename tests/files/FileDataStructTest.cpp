#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>

#include "files/PrivateAccess.h"

// The cached path is observable only through GetDirNamePath, which
// overwrites it; the copy rules are about the cache itself.
ZK_PRIVATE_MEMBER(CachedPath, ZKString FileDataStruct::*, &FileDataStruct::dirNamePath);

TEST(FileDataStruct, SentinelsCopiesEqualityAndJoins)
{
    FileDataStruct entry;
    EXPECT_STREQ((entry.*Member(CachedPath{})).GetString(), "NONE");
    EXPECT_STREQ(entry.GetDirNamePath(), "NONE\\NONE");
    FileDataStruct source("C:\\Dir", "a.txt", true);
    source.GetDirNamePath();
    FileDataStruct copied(source);
    EXPECT_STREQ((copied.*Member(CachedPath{})).GetString(), "") << "a copy's cache is empty";
    EXPECT_TRUE(copied == source && copied.IsAFile() && !FileDataStruct("d", "n").IsAFile());
    entry = source;
    EXPECT_STREQ((entry.*Member(CachedPath{})).GetString(), "NONE\\NONE") << "an assignment keeps the cache";
    EXPECT_TRUE(entry == source);
    for (FileDataStruct other : {FileDataStruct("C:\\dir", "a.txt", true), FileDataStruct("C:\\Dir", "A.txt", true),
                                 FileDataStruct("C:\\Dir", "a.txt", false), FileDataStruct("C:\\Dir", "a.tx", true)}) {
        EXPECT_FALSE(source == other) << other.GetDirNamePath();
    }

    // Only the backslash separates; with a backslash-star the last star goes.
    char const* const rows[][3] = {
        {"C:\\dir\\*", "a.txt", "C:\\dir\\a.txt"}, {"C:\\dir\\", "a.txt", "C:\\dir\\a.txt"},
        {"C:\\dir", "a.txt", "C:\\dir\\a.txt"},    {"c:/dir/", "a.txt", "c:/dir/\\a.txt"},
        {"", "a.txt", "\\a.txt"},                  {"\\", "a.txt", "\\a.txt"},
        {"C:\\d*r", "a.txt", "C:\\d*r\\a.txt"},    {"C:\\a\\*x*", "n", "C:\\a\\*xn"},
        {"x\\*y", "n", "x\\yn"},                   {"\\*", "n", "\\n"},
    };
    for (auto const& row : rows) {
        FileDataStruct joined("old", "entry");
        joined.SetDir(row[0]);
        joined.SetName(row[1]);
        EXPECT_STREQ(joined.GetDirNamePath(), row[2]) << row[0];
        EXPECT_STREQ((joined.*Member(CachedPath{})).GetString(), row[2]);
    }
}
