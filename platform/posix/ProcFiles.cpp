// /proc reading helpers of the posix backend.

#include "ProcFiles.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace zk64::platform::posix {

bool ReadProcFile(int dirfd, char const* name, std::string& out)
{
    int const fd = openat(dirfd, name, O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    out.clear();
    std::size_t used = 0;
    out.resize(4096);
    for (;;) {
        if (used == out.size()) out.resize(out.size() * 2);
        ssize_t const got = read(fd, out.data() + used, out.size() - used);
        if (got < 0) {
            int const error = errno;
            close(fd);
            errno = error;
            return false;
        }
        if (got == 0) break;
        used += static_cast<std::size_t>(got);
    }
    close(fd);
    out.resize(used);
    return true;
}

long ReadProcFileInto(int dirfd, char const* name, char* buffer, std::size_t size)
{
    int const fd = openat(dirfd, name, O_RDONLY | O_CLOEXEC);
    if (fd < 0) return -1;
    ssize_t const got = read(fd, buffer, size - 1);
    close(fd);
    if (got < 0) return -1;
    buffer[got] = '\0';
    return static_cast<long>(got);
}

bool ReadProcLink(int dirfd, char const* name, std::string& out)
{
    char buffer[4096];
    ssize_t const got = readlinkat(dirfd, name, buffer, sizeof buffer);
    if (got < 0) return false;
    out.assign(buffer, static_cast<std::size_t>(got));
    return true;
}

namespace {

unsigned long long Number(char const*& cursor, char const* end, int base)
{
    unsigned long long value = 0;
    while (cursor < end) {
        char const c = *cursor;
        int digit = -1;
        if (c >= '0' && c <= '9') digit = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f') digit = c - 'a' + 10;
        if (digit < 0) break;
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        ++cursor;
    }
    return value;
}

void Skip(char const*& cursor, char const* end, char c)
{
    while (cursor < end && *cursor == c) ++cursor;
}

}  // namespace

// "start-end perms offset dev inode   path"
bool ParseMapsLine(char const* line, char const* end, MapsLine& out)
{
    char const* cursor = line;
    out.start = Number(cursor, end, 16);
    if (cursor >= end || *cursor != '-') return false;
    ++cursor;
    out.end = Number(cursor, end, 16);
    Skip(cursor, end, ' ');
    for (int index = 0; index < 4 && cursor < end; ++index) out.permissions[index] = *cursor++;
    Skip(cursor, end, ' ');
    out.offset = Number(cursor, end, 16);
    Skip(cursor, end, ' ');
    while (cursor < end && *cursor != ' ') ++cursor;  // device
    Skip(cursor, end, ' ');
    out.inode = Number(cursor, end, 10);
    Skip(cursor, end, ' ');
    out.path = cursor;
    out.pathLength = static_cast<std::size_t>(end - cursor);
    return out.end > out.start;
}

}  // namespace zk64::platform::posix
