#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <utility>
#include <vector>

#include "files/TempFiles.h"

using zk64::test::TempDir;
using zk64::test::TextOnDisk;

namespace {

std::string Bytes(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

std::vector<std::string> Lines(ZKContainer<ZKString> const& lines)
{
    std::vector<std::string> out;
    for (unsigned long long i = 0; i < lines.GetItemCount(); ++i) out.push_back(Bytes(lines.GetItem(i)));
    return out;
}

std::vector<std::string> ReadLines(std::string const& path)
{
    ZKFile file;
    EXPECT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_READ));
    ZKContainer<ZKString> lines;
    EXPECT_TRUE(file.ReadData(lines));
    return Lines(lines);
}

std::string ReadAll(ZKFile const& file)
{
    ZKString text;
    EXPECT_TRUE(file.ReadData(text));
    return Bytes(text);
}

// A file named f holding `bytes`, opened with `type`.
ZKFile Opened(TempDir const& dir, std::string const& bytes, FILE_STREAM_TYPES type = FILE_STREAM_BINARY_READ)
{
    ZKFile file;
    EXPECT_TRUE(file.OpenFile(dir.Write("f", bytes).c_str(), type));
    return file;
}

std::string AllBytes()
{
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
    return bytes;
}

}  // namespace

TEST(ZKFile, ClosedFileRefusesEverything)
{
    ZKFile file;
    EXPECT_FALSE(file.IsFileOpen());
    EXPECT_STREQ(file.GetFileName(), "");
    EXPECT_EQ(file.GetFileStreamType(), FILE_STREAM_READ_WRITE);
    EXPECT_EQ(file.GetFileLengthBytes(), 0u);

    ZKContainer<ZKString> lines;
    ZKString text("keep");
    EXPECT_FALSE(file.ReadData(lines));
    EXPECT_FALSE(file.ReadData(text));
    EXPECT_FALSE(file.ReadData(text, 2));
    EXPECT_EQ(Bytes(text), "keep");
    EXPECT_EQ(lines.GetItemCount(), 0u);
    EXPECT_FALSE(file.WriteData(lines));
    EXPECT_FALSE(file.WriteData(text));
    EXPECT_FALSE(file.WriteData(text, 1));
    EXPECT_FALSE(file.WriteData("x"));
    EXPECT_FALSE(file.WriteData("x", 1));
    EXPECT_FALSE(file.ClearFileData());
    EXPECT_FALSE(file.InsertEndLine());
    EXPECT_FALSE(file.OpenFile(static_cast<char const*>(nullptr), FILE_STREAM_WRITE));
    EXPECT_FALSE(file.CreateOrOpenFile(static_cast<char const*>(nullptr), FILE_STREAM_WRITE));
    EXPECT_STREQ(file.GetFileName(), "");
}

TEST(ZKFile, OpenNeedsAnExistingFileExceptForCreatingTypes)
{
    TempDir dir("open-modes");
    for (FILE_STREAM_TYPES type : {FILE_STREAM_READ_WRITE, FILE_STREAM_READ, FILE_STREAM_BINARY_READ_WRITE,
                                   FILE_STREAM_BINARY_READ}) {
        ZKFile file;
        EXPECT_FALSE(file.OpenFile(dir.Path("missing").c_str(), type)) << type;
        EXPECT_STREQ(file.GetFileName(), dir.Path("missing").c_str()) << "the name is stored first";
        EXPECT_EQ(file.GetFileStreamType(), type);
        EXPECT_FALSE(dir.Exists("missing"));
    }
    int created = 0;
    for (FILE_STREAM_TYPES type : {FILE_STREAM_READ_WRITE_APPEND, FILE_STREAM_WRITE,
                                   FILE_STREAM_BINARY_READ_WRITE_APPEND, FILE_STREAM_BINARY_WRITE}) {
        std::string const name = "new" + std::to_string(created++);
        ZKFile file;
        EXPECT_TRUE(file.OpenFile(ZKString(dir.Path(name).c_str()), type)) << type;
        EXPECT_TRUE(dir.Exists(name));
        EXPECT_EQ(file.GetFileStreamType(), type);
    }
    ZKFile onDirectory;
    EXPECT_FALSE(onDirectory.OpenFile(dir.Dir().c_str(), FILE_STREAM_READ));
    EXPECT_FALSE(onDirectory.CreateOrOpenFile(dir.Dir().c_str(), FILE_STREAM_READ));
    EXPECT_FALSE(onDirectory.CreateOrOpenFile(dir.Path("no/such/dir").c_str(), FILE_STREAM_READ_WRITE));
}

TEST(ZKFile, UnknownTypeClosesTheOldFileAndKeepsTheOldType)
{
    TempDir dir("unknown-type");
    std::string const a = dir.Write("a", "aaa");
    ZKFile file;
    ASSERT_TRUE(file.OpenFile(a.c_str(), FILE_STREAM_BINARY_READ));
    for (int type : {0, 9, -1}) {
        EXPECT_FALSE(file.OpenFile(dir.Path("b").c_str(), static_cast<FILE_STREAM_TYPES>(type)));
        EXPECT_FALSE(file.IsFileOpen());
        EXPECT_STREQ(file.GetFileName(), dir.Path("b").c_str());
        EXPECT_EQ(file.GetFileStreamType(), FILE_STREAM_BINARY_READ);
    }
    EXPECT_FALSE(dir.Exists("b"));
}

TEST(ZKFile, OpenReplacesButCreateOrOpenRefusesAnOpenFile)
{
    TempDir dir("replace");
    std::string const a = dir.Write("a", "first");
    std::string const b = dir.Write("b", "second");
    ZKFile file;
    ASSERT_TRUE(file.OpenFile(a.c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_FALSE(file.CreateOrOpenFile(b.c_str(), FILE_STREAM_BINARY_WRITE));
    EXPECT_STREQ(file.GetFileName(), a.c_str());
    EXPECT_EQ(file.GetFileStreamType(), FILE_STREAM_BINARY_READ);
    EXPECT_EQ(ReadAll(file), "first");
    EXPECT_EQ(dir.Read("b"), "second") << "the refused type would have emptied it";

    ASSERT_TRUE(file.OpenFile(ZKString(b.c_str()), FILE_STREAM_BINARY_READ));
    EXPECT_STREQ(file.GetFileName(), b.c_str());
    EXPECT_EQ(ReadAll(file), "second");
    // Reopening under the stored name itself works too.
    ASSERT_TRUE(file.OpenFile(file.GetFileName(), FILE_STREAM_BINARY_READ));
    EXPECT_STREQ(file.GetFileName(), b.c_str());
}

TEST(ZKFile, CreateOrOpenKeepsOrCreatesContents)
{
    TempDir dir("create");
    std::string const existing = dir.Write("existing", "kept");
    ZKFile file;
    ASSERT_TRUE(file.CreateOrOpenFile(existing.c_str(), FILE_STREAM_READ));
    EXPECT_EQ(ReadAll(file), "kept");
    EXPECT_EQ(file.GetFileStreamType(), FILE_STREAM_READ);
    file.CloseFile();

    ASSERT_TRUE(file.CreateOrOpenFile(ZKString(dir.Path("made").c_str()), FILE_STREAM_READ));
    EXPECT_TRUE(dir.Exists("made"));
    EXPECT_EQ(file.GetFileLengthBytes(), 0u);
    EXPECT_STREQ(file.GetFileName(), dir.Path("made").c_str());
    file.CloseFile();

    // A type that empties files still does so.
    ASSERT_TRUE(file.CreateOrOpenFile(existing.c_str(), FILE_STREAM_WRITE));
    file.CloseFile();
    EXPECT_EQ(dir.Read("existing"), "");

    // A missing file with an unknown type is created, then refused.
    EXPECT_FALSE(file.CreateOrOpenFile(dir.Path("odd").c_str(), static_cast<FILE_STREAM_TYPES>(42)));
    EXPECT_TRUE(dir.Exists("odd"));
    EXPECT_FALSE(file.IsFileOpen());
}

TEST(ZKFile, BinaryTypesRoundTripEveryByte)
{
    TempDir dir("binary");
    std::string const path = dir.Path("bytes");
    std::string const bytes = AllBytes() + "\r\n\n\x1a" + AllBytes();
    ZKFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_WRITE));
    EXPECT_TRUE(file.WriteData(bytes.data(), static_cast<int>(bytes.size())));
    file.CloseFile();
    EXPECT_EQ(dir.Read("bytes"), bytes);

    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_EQ(file.GetFileLengthBytes(), bytes.size());
    EXPECT_EQ(ReadAll(file), bytes);
}

TEST(ZKFile, WriteTruncatesReadWriteOverwritesAppendAppends)
{
    TempDir dir("write-modes");
    std::string const path = dir.Write("f", "0123456789");
    ZKFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ_WRITE));
    EXPECT_TRUE(file.WriteData("ab"));
    file.CloseFile();
    EXPECT_EQ(dir.Read("f"), "ab23456789");

    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ_WRITE_APPEND));
    EXPECT_EQ(file.GetFileLengthBytes(), 10u);  // position now at the start
    EXPECT_TRUE(file.WriteData("XY"));
    file.CloseFile();
    EXPECT_EQ(dir.Read("f"), "ab23456789XY");

    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_WRITE));
    file.CloseFile();
    EXPECT_EQ(dir.Read("f"), "");
}

TEST(ZKFile, WriteDataForms)
{
    TempDir dir("write-forms");
    std::string const path = dir.Path("f");
    ZKFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_WRITE));
    ZKString const withNul("ab\0cd", 5);
    EXPECT_TRUE(file.WriteData(withNul));               // "ab"
    EXPECT_TRUE(file.WriteData("ef\0gh", 5));           // all five
    EXPECT_TRUE(file.WriteData(ZKString("xyz"), 5));    // more than the size: nothing
    EXPECT_TRUE(file.WriteData(ZKString("xyz"), -1));   // widened: nothing
    EXPECT_TRUE(file.WriteData(ZKString("xyz"), 2));    // "xy"
    EXPECT_TRUE(file.WriteData("ij\0kl"));              // to the terminator
    EXPECT_FALSE(file.WriteData(static_cast<char const*>(nullptr)));
    EXPECT_FALSE(file.WriteData(static_cast<char const*>(nullptr), 1));
    EXPECT_FALSE(file.WriteData("mn", -1));
    ZKContainer<ZKString> items;
    EXPECT_TRUE(file.WriteData(items));
    items.PushBack(ZKString("1"));
    items.PushBack(ZKString("2\0x", 3));
    items.PushBack(ZKString(""));
    items.PushBack(ZKString("3"));
    EXPECT_TRUE(file.WriteData(items));
    EXPECT_TRUE(file.InsertEndLine());
    file.CloseFile();
    EXPECT_EQ(dir.Read("f"), std::string("abef\0ghxyij123\n", 15));
}

TEST(ZKFile, FailedWritesClearTheStreamState)
{
    TempDir dir("failed-write");
    std::string const path = dir.Write("f", "abc");
    ZKFile file;
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_FALSE(file.WriteData("x")) << "read-only stream";
    EXPECT_EQ(ReadAll(file), "abc") << "the state was cleared, so reading works";

    // Read to the end (eof and fail), then write: the write fails, clears,
    // and the next write succeeds.
    ASSERT_TRUE(file.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ_WRITE));
    ZKContainer<ZKString> lines;
    ASSERT_TRUE(file.ReadData(lines));
    EXPECT_FALSE(file.WriteData(ZKString("d")));
    EXPECT_TRUE(file.WriteData(ZKString("d")));
    file.CloseFile();
    EXPECT_EQ(dir.Read("f"), "abcd");
}

TEST(ZKFile, InsertEndLineNeitherChecksNorClears)
{
    TempDir dir("endline");
    ZKFile file;
    EXPECT_FALSE(file.InsertEndLine());
    EXPECT_FALSE(file.InsertEndLine()) << "the bad state stays";
    ASSERT_TRUE(file.OpenFile(dir.Path("text").c_str(), FILE_STREAM_WRITE)) << "an open clears it";
    EXPECT_TRUE(file.WriteData("a"));
    EXPECT_TRUE(file.InsertEndLine());
    ASSERT_TRUE(file.OpenFile(dir.Path("binary").c_str(), FILE_STREAM_BINARY_WRITE));
    EXPECT_TRUE(file.WriteData("a"));
    EXPECT_TRUE(file.InsertEndLine());
    file.CloseFile();
    EXPECT_EQ(dir.Read("text"), TextOnDisk("a\n"));
    EXPECT_EQ(dir.Read("binary"), "a\n");

    // On a stream that cannot write it fails and leaves the state bad.
    ASSERT_TRUE(file.OpenFile(dir.Path("binary").c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_FALSE(file.InsertEndLine());
    ZKString text;
    EXPECT_TRUE(file.ReadData(text, 2));
    EXPECT_EQ(Bytes(text), std::string(2, '\0')) << "nothing can be read while the state is bad";
}

TEST(ZKFile, LineReadingLeavesEofAndFail)
{
    TempDir dir("lines");
    EXPECT_EQ(ReadLines(dir.Write("two", "one\ntwo\n")), (std::vector<std::string>{"one", "two", ""}));
    EXPECT_EQ(ReadLines(dir.Write("open", "one\ntwo")), (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(ReadLines(dir.Write("empty", "")), (std::vector<std::string>{""}));
    EXPECT_EQ(ReadLines(dir.Write("zero-byte", std::string("a\0b\n\nc", 6))), (std::vector<std::string>{"a", "", "c"}));

    ZKFile file;
    ASSERT_TRUE(file.OpenFile(dir.Path("two").c_str(), FILE_STREAM_BINARY_READ));
    ZKContainer<ZKString> lines;
    lines.PushBack(ZKString("before"));
    ASSERT_TRUE(file.ReadData(lines));
    EXPECT_EQ(Lines(lines), (std::vector<std::string>{"before", "one", "two", ""}));
    EXPECT_TRUE(file.ReadData(lines)) << "at eof: nothing more";
    EXPECT_EQ(lines.GetItemCount(), 4u);

    // The failbit makes the seeks fail: the length is the failed position.
    EXPECT_EQ(file.GetFileLengthBytes(), 4294967295u);
    EXPECT_EQ(file.GetFileLengthBytes(), 4294967295u);
    // The seek took eofbit away but the stream is still failed: a line read
    // stops at once instead of pushing empty lines forever, and the whole
    // file has no length to go by.
    EXPECT_TRUE(file.ReadData(lines));
    EXPECT_EQ(lines.GetItemCount(), 4u);
    ZKString text("kept");
    EXPECT_FALSE(file.ReadData(text));
    EXPECT_EQ(Bytes(text), "kept");
    // Reopening starts afresh.
    ASSERT_TRUE(file.OpenFile(file.GetFileName(), FILE_STREAM_BINARY_READ));
    EXPECT_EQ(file.GetFileLengthBytes(), 8u);
}

TEST(ZKFile, LinesFromTheCurrentPosition)
{
    TempDir dir("lines-position");
    ZKFile const file = Opened(dir, "abc\ndef");
    ZKString head;
    ASSERT_TRUE(file.ReadData(head, 2));
    ZKContainer<ZKString> lines;
    ASSERT_TRUE(file.ReadData(lines));
    EXPECT_EQ(Lines(lines), (std::vector<std::string>{"c", "def"}));
}

TEST(ZKFile, WholeFileReadStartsAtTheBeginning)
{
    TempDir dir("whole");
    ZKFile file = Opened(dir, "hello world");
    ZKString part;
    ASSERT_TRUE(file.ReadData(part, 5));
    EXPECT_EQ(ReadAll(file), "hello world");
    EXPECT_EQ(ReadAll(file), "hello world");
    ZKString text("previous text that is longer");
    ASSERT_TRUE(file.OpenFile(dir.Write("empty", "").c_str(), FILE_STREAM_BINARY_READ));
    ASSERT_TRUE(file.ReadData(text));
    EXPECT_EQ(text.GetSize(), 0);
}

TEST(ZKFile, CountedReadPadsWithZeroBytes)
{
    TempDir dir("counted");
    ZKFile const file = Opened(dir, "abcdef");
    ZKString text;
    ASSERT_TRUE(file.ReadData(text, 4));
    EXPECT_EQ(Bytes(text), "abcd");
    ASSERT_TRUE(file.ReadData(text, 4));
    EXPECT_EQ(Bytes(text), std::string("ef\0\0", 4));
    ASSERT_TRUE(file.ReadData(text, 3));
    EXPECT_EQ(Bytes(text), std::string(3, '\0')) << "at the end: zeros, and no state check";
    ASSERT_TRUE(file.ReadData(text, 0));
    EXPECT_EQ(text.GetSize(), 0);
    text = "kept";
    EXPECT_FALSE(file.ReadData(text, -1));
    EXPECT_EQ(Bytes(text), "kept");
}

TEST(ZKFile, LengthMovesThePositionToTheStart)
{
    TempDir dir("length");
    ZKFile file = Opened(dir, "abcdef", FILE_STREAM_BINARY_READ_WRITE);
    ZKString text;
    ASSERT_TRUE(file.ReadData(text, 4));
    EXPECT_EQ(file.GetFileLengthBytes(), 6u);
    ASSERT_TRUE(file.ReadData(text, 2));
    EXPECT_EQ(Bytes(text), "ab");
    // A writer in the middle of the file is moved too.
    EXPECT_EQ(file.GetFileLengthBytes(), 6u);
    EXPECT_TRUE(file.WriteData("XY"));
    file.CloseFile();
    EXPECT_EQ(dir.Read("f"), "XYcdef");
}

TEST(ZKFile, ClearFileDataEmptiesAndReopens)
{
    TempDir dir("clear");
    // Even a read-only file is emptied: the truncation opens it for output.
    for (FILE_STREAM_TYPES type : {FILE_STREAM_READ_WRITE, FILE_STREAM_READ}) {
        std::string const path = dir.Write("f", "contents");
        ZKFile file;
        ASSERT_TRUE(file.OpenFile(path.c_str(), type));
        EXPECT_TRUE(file.ClearFileData());
        EXPECT_TRUE(file.IsFileOpen());
        EXPECT_EQ(file.GetFileStreamType(), type);
        EXPECT_STREQ(file.GetFileName(), path.c_str());
        EXPECT_EQ(file.GetFileLengthBytes(), 0u);
        EXPECT_EQ(file.WriteData("new"), type == FILE_STREAM_READ_WRITE) << "reopened with its own type";
        file.CloseFile();
        EXPECT_EQ(dir.Read("f"), type == FILE_STREAM_READ_WRITE ? "new" : "");
    }
}

TEST(ZKFile, MoveTakesTheOpenFile)
{
    TempDir dir("move");
    std::string const a = dir.Write("a", "aaa");
    ZKFile source;
    ASSERT_TRUE(source.OpenFile(a.c_str(), FILE_STREAM_BINARY_READ));
    ZKFile moved(std::move(source));
    EXPECT_TRUE(moved.IsFileOpen());
    EXPECT_STREQ(moved.GetFileName(), a.c_str());
    EXPECT_EQ(moved.GetFileStreamType(), FILE_STREAM_BINARY_READ);
    EXPECT_EQ(ReadAll(moved), "aaa");
    EXPECT_FALSE(source.IsFileOpen());
    EXPECT_STREQ(source.GetFileName(), "");
    EXPECT_EQ(source.GetFileStreamType(), FILE_STREAM_BINARY_READ) << "the source keeps its type";
    ASSERT_TRUE(source.OpenFile(dir.Write("b", "bb").c_str(), FILE_STREAM_BINARY_READ));
    EXPECT_EQ(ReadAll(source), "bb");

    // Assignment closes the target's file (flushing what it buffered) and
    // takes the source's stream with its flags.
    ZKFile target;
    ASSERT_TRUE(target.OpenFile(dir.Path("c").c_str(), FILE_STREAM_BINARY_WRITE));
    ASSERT_TRUE(target.WriteData("written"));
    ZKContainer<ZKString> lines;
    ASSERT_TRUE(source.ReadData(lines));  // eof and fail
    target = std::move(source);
    EXPECT_EQ(dir.Read("c"), "written");
    EXPECT_TRUE(target.IsFileOpen());
    EXPECT_STREQ(target.GetFileName(), dir.Path("b").c_str());
    EXPECT_EQ(target.GetFileLengthBytes(), 4294967295u) << "the failed state came along";
    EXPECT_FALSE(source.IsFileOpen());
    EXPECT_STREQ(source.GetFileName(), "");

    ZKFile& self = target;
    target = std::move(self);
    EXPECT_TRUE(target.IsFileOpen());
    EXPECT_STREQ(target.GetFileName(), dir.Path("b").c_str());
}

TEST(ZKFile, OtherOpenersAreNotDenied)
{
    TempDir dir("sharing");
    std::string const path = dir.Path("shared");
    ZKFile writer;
    ZKFile reader;
    ASSERT_TRUE(writer.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ_WRITE_APPEND));
    ASSERT_TRUE(reader.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ));
    ZKFile second;
    ASSERT_TRUE(second.OpenFile(path.c_str(), FILE_STREAM_BINARY_READ_WRITE));
    ASSERT_TRUE(writer.WriteData("shared"));
    ASSERT_TRUE(writer.InsertEndLine());  // flushes
    EXPECT_EQ(ReadAll(reader), "shared\n");
}

// Text types translate line ends on Windows only; the binary types above
// never do.
TEST(ZKFile, TextTypesTranslateLineEndsOnWindows)
{
    TempDir dir("text-mode");
    ZKFile file;
    ASSERT_TRUE(file.OpenFile(dir.Path("f").c_str(), FILE_STREAM_WRITE));
    EXPECT_TRUE(file.WriteData("a\nb\n"));
    file.CloseFile();
    EXPECT_EQ(dir.Read("f"), TextOnDisk("a\nb\n"));

    ASSERT_TRUE(file.OpenFile(dir.Write("crlf", "a\r\nb").c_str(), FILE_STREAM_READ));
    EXPECT_EQ(file.GetFileLengthBytes(), 4u);
    ZKString text;
    ASSERT_TRUE(file.ReadData(text));
#if defined(_WIN32)
    // Three bytes arrive; the text keeps the file's length of four.
    EXPECT_EQ(Bytes(text), std::string("a\nb\0", 4));
#else
    EXPECT_EQ(Bytes(text), "a\r\nb");
#endif
#if defined(_WIN32)
    std::vector<std::string> const lines{"a", "b"};
#else
    std::vector<std::string> const lines{"a\r", "b"};
#endif
    EXPECT_EQ(ReadLines(dir.Path("crlf")), lines);
}
