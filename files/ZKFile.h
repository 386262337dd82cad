#pragma once

// ZKFile: the owner of one read-and-write standard file stream, opened with
// one of eight fixed stream types. Every result is a bool (or a length);
// nothing here throws on its own account.
//
// Sharing: files are opened through the standard streams, which deny
// nothing to other openers (on Windows, mingw's runtime opens them without
// a sharing restriction; on Linux there is no such restriction at all).
//
// Stream types and what they do to the file:
//   READ_WRITE_APPEND, BINARY_READ_WRITE_APPEND   create a missing file; writes append
//   READ_WRITE, READ, and their BINARY twins      need the file to exist
//   WRITE, BINARY_WRITE                           output only: empty an existing file
// The text types translate line ends on Windows ("\n" is written as
// "\r\n", and read back as "\n"); the binary types give the same bytes on
// every system.
//
// Behaviours to know about:
//   * OpenFile on an open object REPLACES its file; CreateOrOpenFile on an
//     open object REFUSES (false, the open file untouched).
//   * OpenFile stores the path as the file name first, whatever happens
//     next: with an unknown type it has already closed the old file and
//     replaced the name, and keeps the old stream type.
//   * The stream's error flags persist between calls. Only an open
//     (cleared on success), a failed WriteData (cleared before it returns
//     false) and ClearFileData's reopening reset them.
//   * GetFileLengthBytes is const and still moves the position to the start.
//   * Lengths are cut to 32 bits.
//   * ReadData(lines) reads from the current position to the end. The end
//     is seen only when getline fails on it, so a text ending in a line
//     feed gives one more, empty, item and an empty file gives one empty
//     item. It leaves eofbit and failbit set: a second call adds nothing,
//     and the failbit makes every later seek fail until the file is
//     reopened, so GetFileLengthBytes then reports 4294967295.
//   * The ReadData forms for text assign exactly the number of bytes asked
//     for (the file's length, or `count`), whatever arrived: in a text
//     stream on Windows "\r\n" reads as one byte, so the text ends in zero
//     bytes.
//   * InsertEndLine does not check that a file is open and does not clear
//     the flags: on a closed file it returns false and leaves the stream
//     bad until the next open.
//   * ClearFileData reports whether the truncation worked, not whether the
//     reopening that follows it did.
//   * A move leaves the source closed, with an empty file name; it keeps its
//     own stream type and can be opened again.
//
// Outcomes this class defines for input its steps leave open:
//   * A null path opens nothing and changes nothing: false.
//   * A directory is never opened: Windows refuses one, and Linux would
//     open it for reading only to report nonsense lengths. OpenFile and
//     CreateOrOpenFile treat a directory as a failed open.
//   * ReadData(lines) also stops when a read fails before the end: a stream
//     already failed (for instance by a seek after an earlier read to the
//     end) adds nothing and returns true, instead of pushing empty items
//     forever.
//   * ReadData(text) returns false and leaves `text` alone when the stream
//     cannot report its length (a failed stream, as above), instead of
//     taking 4294967295 as the length.
//   * A negative count makes ReadData(text, count) and
//     WriteData(char const*, count) return false without touching the
//     stream; a null text makes the char const* forms of WriteData return
//     false.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

enum FILE_STREAM_TYPES : int {
    FILE_STREAM_READ_WRITE_APPEND = 1,         // in, out, app
    FILE_STREAM_READ_WRITE = 2,                // in, out
    FILE_STREAM_READ = 3,                      // in
    FILE_STREAM_WRITE = 4,                     // out
    FILE_STREAM_BINARY_READ_WRITE_APPEND = 5,  // in, out, app, binary
    FILE_STREAM_BINARY_READ_WRITE = 6,         // in, out, binary
    FILE_STREAM_BINARY_READ = 7,               // in, binary
    FILE_STREAM_BINARY_WRITE = 8,              // out, binary
};

class ZK_API ZKFile {
public:
    // Closed, with an empty file name and the type FILE_STREAM_READ_WRITE.
    ZKFile();
    // A fresh object that then takes `other` over as move assignment does.
    ZKFile(ZKFile&& other);
    // Closes this file and takes over other's stream, its error flags
    // included, its file name and its stream type; other is left closed
    // with an empty name. A self-move changes nothing.
    ZKFile& operator=(ZKFile&& other);
    ZKFile(ZKFile const&) = delete;
    ZKFile& operator=(ZKFile const&) = delete;
    virtual ~ZKFile();

    // Opens `path` with `type`'s mode; a file already open here is closed
    // first. False (and failbit) when the file cannot be opened, false for a
    // type outside FILE_STREAM_TYPES (see above for what has changed then).
    bool OpenFile(char const* path, FILE_STREAM_TYPES type);
    bool OpenFile(ZKString const& path, FILE_STREAM_TYPES type);
    // Refuses when a file is open here. Otherwise creates `path` empty if it
    // does not exist (an existing file keeps its contents unless `type`
    // empties it), then opens it as OpenFile does.
    bool CreateOrOpenFile(char const* path, FILE_STREAM_TYPES type);
    bool CreateOrOpenFile(ZKString const& path, FILE_STREAM_TYPES type);
    // Closes the stream; closing a closed stream sets failbit. The file name
    // and stream type stay.
    void CloseFile();
    bool IsFileOpen() const;
    char const* GetFileName() const;  // the path of the last open, also after closing
    FILE_STREAM_TYPES GetFileStreamType() const;  // the type of the last accepted open
    // The file's length in bytes, cut to 32 bits; 0 when closed. Moves the
    // position to the start of the file.
    unsigned int GetFileLengthBytes() const;

    // Appends each line from the current position (without its line feed,
    // cut at its first zero byte) to `lines`, which is not cleared first.
    bool ReadData(ZKContainer<ZKString>& lines) const;
    // The whole file: `text` becomes exactly the file's length in bytes.
    bool ReadData(ZKString& text) const;
    // Up to `count` bytes from the current position: `text` becomes exactly
    // `count` bytes, the part not read being zero bytes.
    bool ReadData(ZKString& text, int count) const;

    // Each WriteData returns false when no file is open. Otherwise it writes,
    // and returns true if the stream is good afterwards; if not, it clears
    // the stream's flags (so the next call starts afresh) and returns false.
    //
    // Each item in index order, up to its first zero byte, with nothing in
    // between; items that cannot be fetched are skipped.
    bool WriteData(ZKContainer<ZKString> const& items);
    bool WriteData(ZKString const& text);             // up to its first zero byte
    // text.GetString(count): nothing at all when count exceeds the size (a
    // negative count, widened, always does), which still returns true.
    bool WriteData(ZKString const& text, int count);
    bool WriteData(char const* text);                 // up to its terminator
    bool WriteData(char const* text, int count);      // exactly count bytes
    // One line feed, then a flush; true if the stream is good afterwards.
    bool InsertEndLine();
    // Empties the file and reopens it with the stored name and type. True
    // when the emptying worked; false when no file is open.
    bool ClearFileData();

private:
    struct FileRecord;
    FileRecord* record;
};
