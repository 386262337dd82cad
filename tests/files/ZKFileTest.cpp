#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <utility>
#include <vector>

#include "files/PrivateAccess.h"
#include "files/TempFiles.h"

using zk64::test::TempDir;
using Lines = std::vector<std::string>;

// The cached path is observable only through GetDirNamePath, which
// overwrites it; the copy rules are about the cache itself.
ZK_PRIVATE_MEMBER(CachedPath, ZKString FileDataStruct::*, &FileDataStruct::dirNamePath);

namespace {

std::string Bytes(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

Lines ReadLines(ZKFile const& file, ZKContainer<ZKString> lines = {})
{
    EXPECT_TRUE(file.ReadData(lines));
    Lines out;
    for (unsigned long long i = 0; i < lines.GetItemCount(); ++i) out.push_back(Bytes(lines.GetItem(i)));
    return out;
}

// The whole file by its length, or `count` bytes from the position.
std::string Read(ZKFile const& file, int count = -1)
{
    ZKString text;
    EXPECT_TRUE(count < 0 ? file.ReadData(text) : file.ReadData(text, count));
    return Bytes(text);
}

}  // namespace

TEST(FileDataStruct, SentinelsCopiesEqualityAndJoins)
{
    FileDataStruct entry;
    EXPECT_STREQ(entry.GetDirNamePath(), "NONE\\NONE");
    FileDataStruct source("C:\\Dir", "a.txt", true);
    FileDataStruct copied(source);
    EXPECT_STREQ((copied.*Member(CachedPath{})).GetString(), "") << "a copy's cache is empty";
    EXPECT_TRUE(copied == source && copied.IsAFile() && !FileDataStruct("d", "n").IsAFile());
    entry = source;
    EXPECT_STREQ((entry.*Member(CachedPath{})).GetString(), "NONE\\NONE") << "an assignment keeps the cache";
    EXPECT_TRUE(entry == source);
    EXPECT_FALSE(
        source == FileDataStruct("C:\\dir", "a.txt", true) || source == FileDataStruct("C:\\Dir", "A.txt", true) ||
        source == FileDataStruct("C:\\Dir", "a.txt", false) || source == FileDataStruct("C:\\Dir", "a.tx", true));
    // Only the backslash separates; with a backslash-star the last star goes. Rows of dir, name, path.
    char const* const rows[] = {"C:\\dir\\*", "a.txt", "C:\\dir\\a.txt", "C:\\dir\\",  "a.txt", "C:\\dir\\a.txt",
                                "C:\\dir",    "a.txt", "C:\\dir\\a.txt", "c:/dir/",    "a.txt", "c:/dir/\\a.txt",
                                "",           "a.txt", "\\a.txt",        "\\",         "a.txt", "\\a.txt",
                                "C:\\d*r",    "a.txt", "C:\\d*r\\a.txt", "C:\\a\\*x*", "n",     "C:\\a\\*xn",
                                "x\\*y",      "n",     "x\\yn",          "\\*",        "n",     "\\n"};
    for (std::size_t i = 0; i < std::size(rows); i += 3) {
        entry.SetDir(rows[i]);
        entry.SetName(rows[i + 1]);
        EXPECT_STREQ(entry.GetDirNamePath(), rows[i + 2]) << rows[i];
        EXPECT_STREQ((entry.*Member(CachedPath{})).GetString(), rows[i + 2]);
    }
}

TEST(ZKFile, OpenAndCreateOrOpenPerType)
{
    ZKFile file;
    ZKContainer<ZKString> lines;
    ZKString text("keep");
    EXPECT_FALSE(file.ReadData(lines) || file.ReadData(text) || file.ReadData(text, 2) || file.WriteData(lines) ||
                 file.WriteData(text) || file.WriteData(text, 1) || file.WriteData("x") || file.WriteData("x", 1) ||
                 file.ClearFileData() || file.InsertEndLine() || file.GetFileLengthBytes() != 0 ||
                 file.OpenFile(static_cast<char const*>(nullptr), FILE_STREAM_WRITE) ||
                 file.CreateOrOpenFile(static_cast<char const*>(nullptr), FILE_STREAM_WRITE));
    EXPECT_EQ(Bytes(text) + file.GetFileName(), "keep") << "a closed file refuses everything";
    EXPECT_EQ(file.GetFileStreamType(), FILE_STREAM_READ_WRITE);
    TempDir dir("open");
    for (int type = 1; type <= 8; ++type) {
        std::string const name = "new" + std::to_string(type), kept = "kept" + std::to_string(type);
        bool const creates = type == 1 || type == 4 || type == 5 || type == 8;
        EXPECT_EQ(file.OpenFile(ZKString(dir.Path(name).c_str()), FILE_STREAM_TYPES(type)), creates) << type;
        EXPECT_EQ(file.GetFileName() + std::to_string(file.GetFileStreamType()), dir.Path(name) + std::to_string(type));
        file.CloseFile();
        // CreateOrOpen makes a missing file, keeps what one holds unless the type empties it, refuses while open.
        ASSERT_TRUE(file.CreateOrOpenFile(ZKString(dir.Path("made" + name).c_str()), FILE_STREAM_TYPES(type)));
        EXPECT_FALSE(file.CreateOrOpenFile(ZKString(dir.Write(kept, "kept").c_str()), FILE_STREAM_TYPES(type)));
        file.CloseFile();
        ASSERT_TRUE(file.CreateOrOpenFile(dir.Path(kept).c_str(), FILE_STREAM_TYPES(type)));
        file.CloseFile();
        EXPECT_EQ(dir.Read(kept) + dir.Read("made" + name), type == 4 || type == 8 ? "" : "kept") << type;
    }
    // An unknown type closes the old file, takes the name, keeps the old type.
    ASSERT_TRUE(file.OpenFile(dir.Write("a", "aaa").c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_FALSE(file.OpenFile(dir.Path("b").c_str(), static_cast<FILE_STREAM_TYPES>(9)) || file.IsFileOpen() ||
                 dir.Exists("b"));
    EXPECT_EQ(file.GetFileName() + std::to_string(file.GetFileStreamType()), dir.Path("b") + "7");
    EXPECT_FALSE(file.CreateOrOpenFile(dir.Path("odd").c_str(), static_cast<FILE_STREAM_TYPES>(0)));
    EXPECT_TRUE(dir.Exists("odd")) << "created, then refused";
    EXPECT_FALSE(file.OpenFile(dir.Dir().c_str(), FILE_STREAM_READ) ||
                 file.CreateOrOpenFile(dir.Dir().c_str(), FILE_STREAM_READ) ||
                 file.CreateOrOpenFile(dir.Path("no/such/dir").c_str(), FILE_STREAM_READ_WRITE));
}

TEST(ZKFile, WritesAndReads)
{
    TempDir dir("write");
    std::string const path = dir.Write("f", "0123456789");
    ZKFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ_WRITE));
    EXPECT_TRUE(file.WriteData("ab"));
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ_WRITE_APPEND));
    EXPECT_EQ(file.GetFileLengthBytes(), 10u);  // the position is now at the start, appending anyway
    EXPECT_TRUE(file.WriteData("XY"));
    file.CloseFile();
    EXPECT_EQ(dir.Read("f"), "ab23456789XY");
    // Text forms stop at a zero byte or write nothing past the size; byte forms write every byte.
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    ZKContainer<ZKString> items;
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_WRITE));
    EXPECT_TRUE(file.WriteData(ZKString("ab\0cd", 5)) && file.WriteData(all.data(), 256) &&
                file.WriteData(ZKString("xyz"), 4) && file.WriteData(ZKString("xyz"), -1) &&
                file.WriteData(ZKString("xyz"), 3) && file.WriteData("ij\0kl") && file.WriteData(items));
    EXPECT_FALSE(file.WriteData(static_cast<char const*>(nullptr)) ||
                 file.WriteData(static_cast<char const*>(nullptr), 1) || file.WriteData("mn", -1));
    for (ZKString const& item : {ZKString("1"), ZKString("2\0x", 3), ZKString(""), ZKString("3")}) items.PushBack(item);
    EXPECT_TRUE(file.WriteData(items) && file.InsertEndLine());
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_EQ(Read(file), "ab" + all + "xyzij123\n");
    // A failed write clears the flags for the next call; InsertEndLine does not clear.
    EXPECT_FALSE(file.WriteData("x") || file.WriteData(items)) << "read-only";
    EXPECT_EQ(file.GetFileLengthBytes(), 267u);
    EXPECT_EQ(Read(file, 2), "ab");
    EXPECT_FALSE(file.InsertEndLine());
    EXPECT_EQ(Read(file, 2), std::string(2, '\0'));
    // Lines from the position to the end; at the end the failbit makes the length's seek fail.
    std::pair<std::string, Lines> const rows[] = {{"one\ntwo", {"one", "two"}},
                                                  {"", {""}},
                                                  {std::string("a\0b\n\nc", 6), {"a", "", "c"}},
                                                  {"one\ntwo\n", {"one", "two", ""}}};
    for (auto const& [bytes, lines] : rows) {
        ASSERT_TRUE(file.OpenFile(dir.Write("f", bytes).c_str(), FILE_STREAM_BINARY_READ_WRITE));
        EXPECT_EQ(ReadLines(file), lines) << bytes;
    }
    EXPECT_EQ(ReadLines(file), Lines{}) << "at the end: nothing more";
    EXPECT_EQ(file.GetFileLengthBytes(), 4294967295u);
    ZKString text("kept");
    EXPECT_FALSE(file.ReadData(text) || file.ReadData(text, -1) || file.WriteData(ZKString("d")));
    EXPECT_TRUE(file.WriteData(ZKString("d")) && Bytes(text) == "kept");
    // The whole text comes from the start, a count and lines from the position, lines appended.
    ASSERT_TRUE(file.OpenFile(dir.Write("g", "abc\ndef\n").c_str(), FILE_STREAM_BINARY_READ_WRITE));
    EXPECT_EQ(Read(file, 2), "ab");
    EXPECT_EQ(Read(file), "abc\ndef\n");
    EXPECT_EQ(file.GetFileLengthBytes(), 8u);
    EXPECT_EQ(Read(file, 5), "abc\nd");
    items.Clear();
    items.PushBack(ZKString("before"));
    EXPECT_EQ(ReadLines(file, items), (Lines{"before", "ef", ""}));
    // Text types translate line ends on Windows only.
    ASSERT_TRUE(file.OpenFile(dir.Write("crlf", "a\r\nb").c_str(), FILE_STREAM_READ));
    EXPECT_EQ(file.GetFileLengthBytes(), 4u);
    bool const windows = zk64::test::TextOnDisk("\n") != "\n";
    EXPECT_EQ(Read(file), windows ? std::string("a\nb\0", 4) : "a\r\nb") << "a text of the file's length";
}

TEST(ZKFile, ClearMoveAndSharing)
{
    TempDir dir("clear");
    // Even a read-only file is emptied, and reopened with its own type.
    for (FILE_STREAM_TYPES type : {FILE_STREAM_READ_WRITE, FILE_STREAM_READ}) {
        ZKFile file;
        ASSERT_TRUE(file.OpenFile(dir.Write("f", "contents").c_str(), type));
        EXPECT_TRUE(file.ClearFileData() && file.IsFileOpen() && file.GetFileLengthBytes() == 0);
        EXPECT_EQ(file.WriteData("new"), type == FILE_STREAM_READ_WRITE);
        file.CloseFile();
        EXPECT_EQ(dir.Read("f"), type == FILE_STREAM_READ_WRITE ? "new" : "");
    }
    // A move takes the stream, flags included, and the name; the source keeps its type. An assignment first
    // closes the target's file, whose writes others then see: openers are not denied.
    ZKFile source;
    ASSERT_TRUE(source.OpenFile(dir.Write("a", "a\n").c_str(), FILE_STREAM_BINARY_READ));
    ReadLines(source);
    ZKFile moved(std::move(source));
    EXPECT_EQ(moved.GetFileName() + std::to_string(moved.GetFileStreamType()), dir.Path("a") + "7");
    EXPECT_EQ(moved.GetFileLengthBytes(), 4294967295u);
    EXPECT_FALSE(source.IsFileOpen());
    EXPECT_EQ(source.GetFileName() + std::to_string(source.GetFileStreamType()), "7");
    ASSERT_TRUE(source.OpenFile(dir.Path("c").c_str(), FILE_STREAM_BINARY_READ_WRITE_APPEND));
    ZKFile reader;
    ASSERT_TRUE(reader.OpenFile(dir.Path("c").c_str(), FILE_STREAM_BINARY_READ));
    ASSERT_TRUE(source.WriteData("written"));
    source = std::move(moved);
    EXPECT_EQ(Read(reader), "written");
    EXPECT_EQ(moved.GetFileName() + std::string(source.GetFileName()), dir.Path("a"));
}
