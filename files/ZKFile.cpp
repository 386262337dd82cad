#include "ZKFile.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

// std::fstream::open clears the flags on success and sets failbit on
// failure, and std::fstream::close sets failbit when there was nothing to
// close or the close failed: exactly what every open and close here needs.
struct ZKFile::FileRecord {
    std::fstream stream;
    std::string fileName;
    FILE_STREAM_TYPES streamType = FILE_STREAM_READ_WRITE;
};

namespace {

bool OpenModeOf(FILE_STREAM_TYPES type, std::ios::openmode& mode)
{
    using std::ios;
    switch (type) {
    case FILE_STREAM_READ_WRITE_APPEND: mode = ios::in | ios::out | ios::app; return true;
    case FILE_STREAM_READ_WRITE: mode = ios::in | ios::out; return true;
    case FILE_STREAM_READ: mode = ios::in; return true;
    case FILE_STREAM_WRITE: mode = ios::out; return true;
    case FILE_STREAM_BINARY_READ_WRITE_APPEND: mode = ios::in | ios::out | ios::app | ios::binary; return true;
    case FILE_STREAM_BINARY_READ_WRITE: mode = ios::in | ios::out | ios::binary; return true;
    case FILE_STREAM_BINARY_READ: mode = ios::in | ios::binary; return true;
    case FILE_STREAM_BINARY_WRITE: mode = ios::out | ios::binary; return true;
    }
    return false;
}

// Opens `path`, except a directory, which counts as a failed open.
void OpenStream(std::fstream& stream, char const* path, std::ios::openmode mode)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        stream.setstate(std::ios::failbit);
        return;
    }
    stream.open(path, mode);
}

// After a write: true if the stream is good; otherwise its flags are
// cleared for the next call and the result is false.
bool WriteSucceeded(std::fstream& stream)
{
    if (stream.good()) return true;
    stream.clear();
    return false;
}

}  // namespace

ZKFile::ZKFile() : record(new FileRecord) {}

ZKFile::ZKFile(ZKFile&& other) : record(new FileRecord) { *this = std::move(other); }

ZKFile& ZKFile::operator=(ZKFile&& other)
{
    if (record != other.record) {
        record->stream.rdbuf()->close();
        record->stream.swap(other.record->stream);  // flags and file buffers change places
        record->fileName = std::move(other.record->fileName);
        other.record->fileName.clear();
    }
    record->streamType = other.record->streamType;
    return *this;
}

ZKFile::~ZKFile() { delete record; }

bool ZKFile::OpenFile(char const* path, FILE_STREAM_TYPES type)
{
    if (path == nullptr) return false;
    record->fileName = path;
    std::fstream& stream = record->stream;
    if (stream.is_open()) stream.close();
    if (stream.is_open()) return false;
    std::ios::openmode mode;
    if (!OpenModeOf(type, mode)) return false;
    record->streamType = type;
    OpenStream(stream, record->fileName.c_str(), mode);
    return stream.is_open();
}

bool ZKFile::OpenFile(ZKString const& path, FILE_STREAM_TYPES type) { return OpenFile(path.GetString(), type); }

bool ZKFile::CreateOrOpenFile(char const* path, FILE_STREAM_TYPES type)
{
    if (path == nullptr || IsFileOpen()) return false;
    std::fstream& stream = record->stream;
    OpenStream(stream, path, std::ios::in);
    if (!stream.is_open()) {
        // Taken as missing: create it empty.
        OpenStream(stream, path, std::ios::in | std::ios::out | std::ios::trunc);
        if (!stream.is_open()) return false;
        stream.close();
    }
    record->fileName = path;
    return OpenFile(path, type);  // closes the probe left open above
}

bool ZKFile::CreateOrOpenFile(ZKString const& path, FILE_STREAM_TYPES type)
{
    return CreateOrOpenFile(path.GetString(), type);
}

void ZKFile::CloseFile() { record->stream.close(); }

bool ZKFile::IsFileOpen() const { return record->stream.is_open(); }

char const* ZKFile::GetFileName() const { return record->fileName.c_str(); }

FILE_STREAM_TYPES ZKFile::GetFileStreamType() const { return record->streamType; }

unsigned int ZKFile::GetFileLengthBytes() const
{
    if (!IsFileOpen()) return 0;
    std::fstream& stream = record->stream;
    stream.seekg(0, std::ios::end);
    std::streamoff const end = stream.tellg();  // -1 on a failed stream
    stream.seekg(0, std::ios::beg);
    return static_cast<unsigned int>(end);
}

bool ZKFile::ReadData(ZKContainer<ZKString>& lines) const
{
    if (!IsFileOpen()) return false;
    std::fstream& stream = record->stream;
    if (stream.eof()) return true;
    std::string line;
    for (;;) {
        std::getline(stream, line);
        if (stream.fail() && !stream.eof()) break;  // failed before the end: see the header
        lines.PushBack(ZKString(line.c_str()));
        if (stream.eof()) break;
    }
    return true;
}

bool ZKFile::ReadData(ZKString& text) const
{
    if (!IsFileOpen()) return false;
    std::fstream& stream = record->stream;
    stream.seekg(0, std::ios::end);
    std::streamoff const end = stream.tellg();
    if (end < 0) return false;  // no length to go by: see the header
    unsigned int const length = static_cast<unsigned int>(end);
    stream.seekg(0, std::ios::beg);
    // Read straight into the text, zero-filled first so that a short read
    // leaves zero bytes behind what arrived.
    text.Clear();
    text.Resize(length);
    stream.read(&text[0], static_cast<std::streamsize>(length));
    return true;
}

bool ZKFile::ReadData(ZKString& text, int count) const
{
    if (!IsFileOpen() || count < 0) return false;
    text.Clear();
    text.Resize(static_cast<unsigned long long>(count));
    record->stream.read(&text[0], count);
    return true;
}

bool ZKFile::WriteData(ZKContainer<ZKString> const& items)
{
    if (!IsFileOpen()) return false;
    std::fstream& stream = record->stream;
    ZKString item;
    for (unsigned long long i = 0; i < items.GetItemCount(); ++i) {
        if (items.GetItem(item, i)) stream << item.GetString();
    }
    return WriteSucceeded(stream);
}

bool ZKFile::WriteData(ZKString const& text)
{
    if (!IsFileOpen()) return false;
    record->stream << text.GetString();
    return WriteSucceeded(record->stream);
}

bool ZKFile::WriteData(ZKString const& text, int count)
{
    if (!IsFileOpen()) return false;
    // A negative count widens to a huge one, which exceeds any size.
    record->stream << text.GetString(static_cast<unsigned long long>(count)).GetString();
    return WriteSucceeded(record->stream);
}

bool ZKFile::WriteData(char const* text)
{
    if (!IsFileOpen() || text == nullptr) return false;
    record->stream.write(text, static_cast<std::streamsize>(std::strlen(text)));
    return WriteSucceeded(record->stream);
}

bool ZKFile::WriteData(char const* text, int count)
{
    if (!IsFileOpen() || text == nullptr || count < 0) return false;
    record->stream.write(text, count);
    return WriteSucceeded(record->stream);
}

bool ZKFile::InsertEndLine()
{
    record->stream.put('\n');
    record->stream.flush();
    return record->stream.good();
}

bool ZKFile::ClearFileData()
{
    if (!IsFileOpen()) return false;
    std::fstream& stream = record->stream;
    std::string const name = record->fileName;
    stream.close();
    OpenStream(stream, name.c_str(), std::ios::out | std::ios::trunc);
    bool const emptied = stream.is_open();
    stream.close();
    OpenFile(name.c_str(), record->streamType);
    return emptied;
}
