#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <utility>
#include <vector>

#include "files/TempFiles.h"

using zk64::test::TempDir;
using Lines = std::vector<std::string>;

namespace {

std::string Bytes(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

Lines ReadLines(ZKFile const& file, ZKContainer<ZKString> lines = {})
{
    EXPECT_TRUE(file.ReadData(lines));
    Lines out;
    for (unsigned long long i = 0; i < lines.GetItemCount(); ++i) out.push_back(Bytes(lines.GetItem(i)));
    return out;
}

std::string ReadAll(ZKFile const& file)
{
    ZKString text;
    EXPECT_TRUE(file.ReadData(text));
    return Bytes(text);
}

std::string ReadCount(ZKFile const& file, int count)
{
    ZKString text;
    EXPECT_TRUE(file.ReadData(text, count));
    return Bytes(text);
}

}  // namespace

TEST(ZKFile, ClosedFileRefusesEverything)
{
    ZKFile file;
    EXPECT_EQ(file.GetFileStreamType(), FILE_STREAM_READ_WRITE);
    EXPECT_EQ(file.GetFileLengthBytes(), 0u);
    ZKContainer<ZKString> lines;
    ZKString text("keep");
    EXPECT_FALSE(file.ReadData(lines) || file.ReadData(text) || file.ReadData(text, 2) || file.WriteData(lines) ||
                 file.WriteData(text) || file.WriteData(text, 1) || file.WriteData("x") || file.WriteData("x", 1) ||
                 file.ClearFileData() || file.InsertEndLine() || file.InsertEndLine());
    EXPECT_EQ(Bytes(text), "keep");
    EXPECT_FALSE(file.OpenFile(static_cast<char const*>(nullptr), FILE_STREAM_WRITE));
    EXPECT_FALSE(file.CreateOrOpenFile(static_cast<char const*>(nullptr), FILE_STREAM_WRITE));
    EXPECT_STREQ(file.GetFileName(), "");
}

TEST(ZKFile, OpenAndCreateOrOpenPerType)
{
    TempDir dir("open");
    for (int type = 1; type <= 8; ++type) {
        bool const creates = type == 1 || type == 4 || type == 5 || type == 8;
        std::string const name = "new" + std::to_string(type);
        ZKFile file;
        EXPECT_EQ(file.OpenFile(ZKString(dir.Path(name).c_str()), FILE_STREAM_TYPES(type)), creates) << type;
        EXPECT_EQ(dir.Exists(name), creates);
        EXPECT_STREQ(file.GetFileName(), dir.Path(name).c_str()) << "the name is stored first";
        EXPECT_EQ(file.GetFileStreamType(), type);
        // CreateOrOpen makes the file, keeps what it holds unless the type empties it.
        ZKFile made;
        std::string const kept = dir.Write("kept" + std::to_string(type), "kept");
        ASSERT_TRUE(made.CreateOrOpenFile(ZKString(dir.Path("made" + std::to_string(type)).c_str()), FILE_STREAM_TYPES(type)));
        EXPECT_EQ(made.GetFileLengthBytes(), 0u);
        EXPECT_FALSE(made.CreateOrOpenFile(ZKString(kept.c_str()), FILE_STREAM_TYPES(type))) << "refused while open";
        made.CloseFile();
        ASSERT_TRUE(made.CreateOrOpenFile(kept.c_str(), FILE_STREAM_TYPES(type)));
        made.CloseFile();
        EXPECT_EQ(dir.Read("kept" + std::to_string(type)), type == 4 || type == 8 ? "" : "kept") << type;
    }
    // An unknown type closes the old file, takes the name, keeps the old type.
    ZKFile file;
    ASSERT_TRUE(file.OpenFile(dir.Write("a", "aaa").c_str(), FILE_STREAM_BINARY_READ));
    for (int type : {0, 9, -1}) {
        EXPECT_FALSE(file.OpenFile(dir.Path("b").c_str(), static_cast<FILE_STREAM_TYPES>(type)));
        EXPECT_FALSE(file.IsFileOpen());
        EXPECT_STREQ(file.GetFileName(), dir.Path("b").c_str());
        EXPECT_EQ(file.GetFileStreamType(), FILE_STREAM_BINARY_READ);
    }
    EXPECT_FALSE(dir.Exists("b"));
    EXPECT_FALSE(file.CreateOrOpenFile(dir.Path("odd").c_str(), static_cast<FILE_STREAM_TYPES>(42)));
    EXPECT_TRUE(dir.Exists("odd")) << "created, then refused";
    EXPECT_FALSE(file.OpenFile(dir.Dir().c_str(), FILE_STREAM_READ) || file.CreateOrOpenFile(dir.Dir().c_str(), FILE_STREAM_READ) ||
                 file.CreateOrOpenFile(dir.Path("no/such/dir").c_str(), FILE_STREAM_READ_WRITE));
    // OpenFile replaces an open file, under its own stored name too.
    ASSERT_TRUE(file.OpenFile(dir.Path("a").c_str(), FILE_STREAM_BINARY_READ));
    ASSERT_TRUE(file.OpenFile(ZKString(file.GetFileName()), FILE_STREAM_BINARY_READ));
    EXPECT_EQ(ReadAll(file), "aaa");
}

TEST(ZKFile, WritesPerModeAndForm)
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

    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_WRITE));
    EXPECT_TRUE(file.WriteData(ZKString("ab\0cd", 5)));  // to the zero byte
    EXPECT_TRUE(file.WriteData(all.data(), 256));
    EXPECT_TRUE(file.WriteData(ZKString("xyz"), 4));   // more than the size: nothing
    EXPECT_TRUE(file.WriteData(ZKString("xyz"), -1));  // widened: nothing
    EXPECT_TRUE(file.WriteData(ZKString("xyz"), 3));
    EXPECT_TRUE(file.WriteData("ij\0kl"));
    EXPECT_FALSE(file.WriteData(static_cast<char const*>(nullptr)) || file.WriteData(static_cast<char const*>(nullptr), 1) ||
                 file.WriteData("mn", -1));
    ZKContainer<ZKString> items;
    EXPECT_TRUE(file.WriteData(items));
    for (ZKString const& item : {ZKString("1"), ZKString("2\0x", 3), ZKString(""), ZKString("3")}) items.PushBack(item);
    EXPECT_TRUE(file.WriteData(items));
    EXPECT_TRUE(file.InsertEndLine());
    file.CloseFile();
    EXPECT_EQ(dir.Read("f"), "ab" + all + "xyzij123\n");
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_EQ(file.GetFileLengthBytes(), 267u);
    EXPECT_EQ(ReadAll(file), "ab" + all + "xyzij123\n");

    // A failed write clears the flags: the next call starts afresh.
    EXPECT_FALSE(file.WriteData("x")) << "read-only";
    EXPECT_EQ(file.GetFileLengthBytes(), 267u);
    EXPECT_EQ(ReadCount(file, 2), "ab");
    EXPECT_FALSE(file.InsertEndLine()) << "does not clear";
    EXPECT_EQ(ReadCount(file, 2), std::string(2, '\0'));
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ_WRITE));
    ReadLines(file);  // eof and fail
    EXPECT_FALSE(file.WriteData(ZKString("d")));
    EXPECT_TRUE(file.WriteData(ZKString("d")));
    // The length moves a writer in the middle of the file to the start.
    ASSERT_TRUE(file.OpenFile(dir.Write("g", "abcdef").c_str(), FILE_STREAM_BINARY_READ_WRITE));
    EXPECT_EQ(ReadCount(file, 4), "abcd");
    EXPECT_EQ(file.GetFileLengthBytes(), 6u);
    EXPECT_TRUE(file.WriteData("XY"));
    file.CloseFile();
    EXPECT_EQ(dir.Read("g"), "XYcdef");
}

TEST(ZKFile, Reads)
{
    TempDir dir("read");
    std::pair<std::string, Lines> const rows[] = {
        {"one\ntwo\n", {"one", "two", ""}},
        {"one\ntwo", {"one", "two"}},
        {"", {""}},
        {std::string("a\0b\n\nc", 6), {"a", "", "c"}},
    };
    ZKFile file;
    for (auto const& [bytes, lines] : rows) {
        ASSERT_TRUE(file.OpenFile(dir.Write("f", bytes).c_str(), FILE_STREAM_BINARY_READ));
        EXPECT_EQ(ReadLines(file), lines) << bytes;
    }
    ASSERT_TRUE(file.OpenFile(dir.Write("f", "abc\ndef\n").c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_EQ(ReadCount(file, 2), "ab");
    ZKContainer<ZKString> before;
    before.PushBack(ZKString("before"));
    EXPECT_EQ(ReadLines(file, before), (Lines{"before", "c", "def", ""})) << "from the position, appended";
    EXPECT_EQ(ReadLines(file), Lines{}) << "at the end: nothing more";
    EXPECT_EQ(file.GetFileLengthBytes(), 4294967295u) << "the failbit makes the seek fail";
    EXPECT_EQ(ReadLines(file), Lines{});
    ZKString text("kept");
    EXPECT_FALSE(file.ReadData(text));
    EXPECT_FALSE(file.ReadData(text, -1));
    EXPECT_EQ(Bytes(text), "kept");

    ASSERT_TRUE(file.OpenFile(file.GetFileName(), FILE_STREAM_BINARY_READ));
    EXPECT_EQ(file.GetFileLengthBytes(), 8u) << "reopening starts afresh";
    EXPECT_EQ(ReadCount(file, 5), "abc\nd");
    EXPECT_EQ(ReadAll(file), "abc\ndef\n") << "from the start";
    EXPECT_EQ(ReadAll(file), "abc\ndef\n");
    EXPECT_EQ(file.GetFileLengthBytes(), 8u);
    EXPECT_EQ(ReadCount(file, 5), "abc\nd");
    EXPECT_EQ(ReadCount(file, 4), std::string("ef\n\0", 4));
    EXPECT_EQ(ReadCount(file, 3), std::string(3, '\0'));
    EXPECT_EQ(ReadCount(file, 0), "");
    ASSERT_TRUE(file.OpenFile(dir.Write("empty", "").c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_EQ(ReadAll(file), "");

    // Text types translate line ends on Windows only.
    ASSERT_TRUE(file.OpenFile(dir.Write("crlf", "a\r\nb").c_str(), FILE_STREAM_READ));
    EXPECT_EQ(file.GetFileLengthBytes(), 4u);
    bool const windows = zk64::test::TextOnDisk("\n") != "\n";
    EXPECT_EQ(ReadAll(file), windows ? std::string("a\nb\0", 4) : "a\r\nb") << "a text of the file's length";
    ASSERT_TRUE(file.OpenFile(file.GetFileName(), FILE_STREAM_READ));
    EXPECT_EQ(ReadLines(file), (Lines{windows ? "a" : "a\r", "b"}));
    ASSERT_TRUE(file.OpenFile(dir.Path("text").c_str(), FILE_STREAM_WRITE));
    EXPECT_TRUE(file.WriteData("a\n") && file.InsertEndLine());
    file.CloseFile();
    EXPECT_EQ(dir.Read("text"), zk64::test::TextOnDisk("a\n\n"));
}

TEST(ZKFile, ClearMoveAndSharing)
{
    TempDir dir("clear");
    // Even a read-only file is emptied, and reopened with its own type.
    for (FILE_STREAM_TYPES type : {FILE_STREAM_READ_WRITE, FILE_STREAM_READ}) {
        ZKFile file;
        ASSERT_TRUE(file.OpenFile(dir.Write("f", "contents").c_str(), type));
        EXPECT_TRUE(file.ClearFileData());
        EXPECT_TRUE(file.IsFileOpen());
        EXPECT_EQ(file.GetFileLengthBytes(), 0u);
        EXPECT_EQ(file.WriteData("new"), type == FILE_STREAM_READ_WRITE);
        file.CloseFile();
        EXPECT_EQ(dir.Read("f"), type == FILE_STREAM_READ_WRITE ? "new" : "");
    }

    ZKFile source;
    ASSERT_TRUE(source.OpenFile(dir.Write("a", "aaa").c_str(), FILE_STREAM_BINARY_READ));
    ZKFile moved(std::move(source));
    EXPECT_STREQ(moved.GetFileName(), dir.Path("a").c_str());
    EXPECT_EQ(moved.GetFileStreamType(), FILE_STREAM_BINARY_READ);
    EXPECT_EQ(ReadAll(moved), "aaa");
    EXPECT_FALSE(source.IsFileOpen());
    EXPECT_STREQ(source.GetFileName(), "");
    EXPECT_EQ(source.GetFileStreamType(), FILE_STREAM_BINARY_READ) << "the source keeps its type";
    ASSERT_TRUE(source.OpenFile(dir.Write("b", "bb\n").c_str(), FILE_STREAM_BINARY_READ));
    ReadLines(source);  // eof and fail

    // Assignment flushes and closes the target's file and takes the source's stream, flags included.
    ZKFile target;
    ASSERT_TRUE(target.OpenFile(dir.Path("c").c_str(), FILE_STREAM_BINARY_READ_WRITE_APPEND));
    ZKFile reader;
    ASSERT_TRUE(reader.OpenFile(dir.Path("c").c_str(), FILE_STREAM_BINARY_READ)) << "other openers are not denied";
    ASSERT_TRUE(target.WriteData("written"));
    target = std::move(source);
    EXPECT_EQ(ReadAll(reader), "written");
    EXPECT_STREQ(target.GetFileName(), dir.Path("b").c_str());
    EXPECT_EQ(target.GetFileLengthBytes(), 4294967295u);
    EXPECT_STREQ(source.GetFileName(), "");
    ZKFile& self = target;
    target = std::move(self);
    EXPECT_TRUE(target.IsFileOpen());
    EXPECT_STREQ(target.GetFileName(), dir.Path("b").c_str());
}
