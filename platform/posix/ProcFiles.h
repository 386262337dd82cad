#pragma once

// Reading /proc files for the posix backend: plain read(2) into a buffer,
// no streams.

#include <string>

#include <sys/types.h>

namespace zk64::platform::posix {

// The whole of `name` under the directory descriptor `dirfd` into `out`;
// false (errno set) when it cannot be opened or read.
bool ReadProcFile(int dirfd, char const* name, std::string& out);
// Up to size - 1 bytes of `name`, terminated; the count, or -1.
long ReadProcFileInto(int dirfd, char const* name, char* buffer, std::size_t size);
// The target of the link `name`; false when it cannot be read.
bool ReadProcLink(int dirfd, char const* name, std::string& out);

// One line of /proc/PID/maps.
struct MapsLine {
    unsigned long long start = 0;
    unsigned long long end = 0;
    char permissions[5] = {};  // "rwxp"
    unsigned long long offset = 0;
    unsigned long long inode = 0;
    char const* path = nullptr;  // points into the text; "" for anonymous regions
    std::size_t pathLength = 0;
};

// Calls visit(MapsLine const&) for each line of a maps text, in order;
// stops early when visit returns false.
template <class Visit>
void ForEachMapsLine(std::string const& text, Visit&& visit);

bool ParseMapsLine(char const* line, char const* end, MapsLine& out);

template <class Visit>
void ForEachMapsLine(std::string const& text, Visit&& visit)
{
    char const* line = text.data();
    char const* const stop = text.data() + text.size();
    while (line < stop) {
        char const* end = line;
        while (end < stop && *end != '\n') ++end;
        MapsLine parsed;
        if (ParseMapsLine(line, end, parsed) && !visit(parsed)) return;
        line = end + 1;
    }
}

}  // namespace zk64::platform::posix
