// ZKString: searching, byte classes, prefixes and suffixes, replacing, case
// mapping and splitting.

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <string_view>
#include <vector>

#include "ZKString.h"
#include "detail/ByteSearch.h"
#include "detail/ListFill.h"
#include "detail/StringExtractor.h"

namespace {

constexpr std::size_t kNotFound = std::string::npos;

// Search results: -1 for a miss, and for a hit at the 32-bit all-ones
// position, which the miss test also catches.
long long SearchResult(std::size_t position)
{
    if (position == kNotFound || position == 0xFFFFFFFFu) return -1;
    return static_cast<long long>(position);
}

// An int position widened with its sign: a negative one becomes huge.
std::size_t Widen(int position) { return static_cast<std::size_t>(static_cast<long long>(position)); }

// A byte set for splitting, with the zero byte never in it.
struct ByteSet {
    std::array<bool, 256> member{};
    std::size_t size = 0;
    unsigned char first = 0;

    explicit ByteSet(char const* bytes)
    {
        for (auto const* p = reinterpret_cast<unsigned char const*>(bytes); *p != 0; ++p) {
            if (!member[*p]) ++size;
            member[*p] = true;
            first = *p;
        }
    }
    bool Has(char c) const { return member[static_cast<unsigned char>(c)]; }
};

// First byte of [begin, end) in the set, or end.
char const* FindAny(char const* begin, char const* end, ByteSet const& set)
{
    if (set.size == 1) {
        void const* hit = std::memchr(begin, set.first, static_cast<std::size_t>(end - begin));
        return hit ? static_cast<char const*>(hit) : end;
    }
    while (begin != end && !set.Has(*begin)) ++begin;
    return begin;
}

// Past the run of set bytes that starts at `begin`.
char const* SkipRun(char const* begin, char const* end, ByteSet const& set)
{
    while (begin != end && set.Has(*begin)) ++begin;
    return begin;
}

// Offsets k at which a match of `pattern` could begin inside `replacement`
// and run on past its end: replacement[k..] is a proper prefix of pattern.
std::vector<std::size_t> OverlapStarts(std::string_view replacement, std::string_view pattern)
{
    std::vector<std::size_t> starts;
    for (std::size_t k = 0; k < replacement.size(); ++k) {
        std::string_view const tail = replacement.substr(k);
        if (tail.size() < pattern.size() && pattern.substr(0, tail.size()) == tail) starts.push_back(k);
    }
    return starts;
}

// The replace-once steps: a miss changes nothing and gives false.
bool ReplaceByteAt(std::string& text, std::size_t position, char to)
{
    if (position == kNotFound) return false;
    text[position] = to;
    return true;
}

bool ReplaceTextAt(std::string& text, std::size_t position, std::size_t length, char const* to)
{
    if (position == kNotFound) return false;
    text.replace(position, length, to);
    return true;
}

}  // namespace

// ---- Search ---------------------------------------------------------------------------

long long ZKString::Find(char c, int position) const { return SearchResult(stringData->find(c, Widen(position))); }

long long ZKString::Find(char const* text, int position) const
{
    return SearchResult(
        zk64::detail::FindBytes(stringData->data(), stringData->size(), text, std::strlen(text), Widen(position)));
}

long long ZKString::Find(ZKString const& text, int position) const { return Find(text.GetString(), position); }

long long ZKString::RFind(char c, int position) const
{
    return SearchResult(zk64::detail::RFindByte(stringData->data(), stringData->size(), c, Widen(position)));
}

long long ZKString::RFind(char const* text, int position) const
{
    return SearchResult(
        zk64::detail::RFindBytes(stringData->data(), stringData->size(), text, std::strlen(text), Widen(position)));
}

long long ZKString::RFind(ZKString const& text, int position) const { return RFind(text.GetString(), position); }

bool ZKString::FindSubsequence(int textPosition, int patternPosition, char const* text, int textEnd,
                               char const* pattern, int patternLength, bool ignoreCase)
{
    if (textPosition == textEnd) return false;
    if (text == nullptr || pattern == nullptr || textPosition < 0 || patternLength <= 0) return false;
    auto const fold = [ignoreCase](char c) {
        auto const byte = static_cast<unsigned char>(c);
        return ignoreCase ? std::tolower(byte) : static_cast<int>(byte);
    };
    int j = patternPosition;
    for (int i = textPosition; i < textEnd; ++i) {
        // A pattern index outside the pattern is a byte that matches nothing.
        bool const inPattern = j >= 0 && j < patternLength;
        if (inPattern && fold(text[i]) == fold(pattern[j])) {
            if (j == patternLength - 1) return true;
            ++j;
        } else if (j > 0) {
            j = 0;  // no back-up: the current byte isn't tried against the start
        }
    }
    return false;
}

bool ZKString::FindSubsequence(char const* pattern, bool ignoreCase) const
{
    return FindSubsequence(0, 0, GetString(), GetSize(), pattern, static_cast<int>(std::strlen(pattern)), ignoreCase);
}

bool ZKString::FindSubsequence(ZKString const& pattern, bool ignoreCase) const
{
    return FindSubsequence(0, 0, GetString(), GetSize(), pattern.GetString(), pattern.GetSize(), ignoreCase);
}

// ---- Byte classes ---------------------------------------------------------------------

bool ZKString::IsBytePrintable(unsigned char const& byte) { return zk64::detail::kPrintableBytes[byte] != 0; }

bool ZKString::IsByteWhitespace(unsigned char const& byte)
{
    return byte == 9 || byte == 10 || byte == 12 || byte == 13 || byte == 32;
}

bool ZKString::IsByteAlphanumeric(unsigned char const& byte) { return std::isalnum(byte) != 0; }

// ---- Prefix and suffix -----------------------------------------------------------------

bool ZKString::StartsWith(char const* text) const
{
    if (text == nullptr) return false;
    return std::string_view(*stringData).starts_with(text);
}

bool ZKString::StartsWith(ZKString const& text) const { return StartsWith(text.GetString()); }

bool ZKString::EndsWith(char const* text) const
{
    if (text == nullptr) return false;
    return std::string_view(*stringData).ends_with(text);
}

bool ZKString::EndsWith(ZKString const& text) const { return EndsWith(text.GetString()); }

// ---- Replace ----------------------------------------------------------------------------

unsigned long long ZKString::ReplaceAll(char from, char to)
{
    // Branch-free so that the compiler can vectorise it.
    unsigned long long changed = 0;
    for (char& c : *stringData) {
        bool const hit = c == from;
        changed += hit;
        c = hit ? to : c;
    }
    return changed;
}

// The contract's loop replaces an occurrence and searches again from the
// position of that occurrence, i.e. from the start of the replacement. Done
// in place that costs a shift of the whole rest per replacement, so the
// result is built in one pass instead, with the same outcome: the text from
// the search position is always `head` (empty, or the replacement just
// made) followed by the rest of the original text. A match can begin inside
// `head` only at the offsets OverlapStarts finds, and since the
// replacement does not contain the pattern, such a match always runs on
// into the original text; every replacement therefore consumes at least one
// original byte, and the loop ends.
unsigned long long ZKString::ReplaceAll(char const* from, char const* to)
{
    std::string_view const pattern(from);
    std::string_view const replacement(to);
    std::string_view const text(*stringData);
    auto find = [&](std::size_t start) {
        return zk64::detail::FindBytes(text.data(), text.size(), pattern.data(), pattern.size(), start);
    };
    std::size_t const first = find(0);
    if (first == kNotFound) return 0;
    // The never-ending cases are refused.
    if (pattern.empty() || replacement.find(pattern) != kNotFound) return 0;

    std::vector<std::size_t> const overlaps = OverlapStarts(replacement, pattern);
    std::string result;
    result.reserve(text.size());
    result.append(text.substr(0, first));
    std::size_t tail = first + pattern.size();  // the rest of the original text
    unsigned long long count = 1;
    for (;;) {
        // A match that begins inside the replacement just made.
        bool matchedInHead = false;
        for (std::size_t k : overlaps) {
            std::size_t const inHead = replacement.size() - k;
            std::string_view const needed = pattern.substr(inHead);
            if (text.substr(tail, needed.size()) == needed) {
                result.append(replacement.substr(0, k));
                tail += needed.size();
                matchedInHead = true;
                break;
            }
        }
        if (matchedInHead) {
            ++count;
            continue;
        }
        result.append(replacement);
        std::size_t const next = find(tail);
        if (next == kNotFound) break;
        result.append(text.substr(tail, next - tail));
        tail = next + pattern.size();
        ++count;
    }
    result.append(text.substr(tail));
    stringData->swap(result);
    return count;
}

unsigned long long ZKString::ReplaceAll(ZKString const& from, ZKString const& to)
{
    return ReplaceAll(from.GetString(), to.GetString());
}

bool ZKString::ReplaceOnceFromStart(char from, char to)
{
    return ReplaceByteAt(*stringData, stringData->find(from), to);
}

bool ZKString::ReplaceOnceFromStart(char const* from, char const* to)
{
    return ReplaceTextAt(*stringData, stringData->find(from), std::strlen(from), to);
}

bool ZKString::ReplaceOnceFromStart(ZKString const& from, ZKString const& to)
{
    return ReplaceOnceFromStart(from.GetString(), to.GetString());
}

bool ZKString::ReplaceOnceFromEnd(char from, char to)
{
    return ReplaceByteAt(*stringData, stringData->rfind(from), to);
}

bool ZKString::ReplaceOnceFromEnd(char const* from, char const* to)
{
    return ReplaceTextAt(*stringData, stringData->rfind(from), std::strlen(from), to);
}

bool ZKString::ReplaceOnceFromEnd(ZKString const& from, ZKString const& to)
{
    return ReplaceOnceFromEnd(from.GetString(), to.GetString());
}

void ZKString::RemoveAllSpaces()
{
    stringData->erase(std::remove(stringData->begin(), stringData->end(), ' '), stringData->end());
}

// ---- Case ---------------------------------------------------------------------------------

void ZKString::ToUpper()
{
    for (char& c : *stringData) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

void ZKString::ToLower()
{
    for (char& c : *stringData) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

// ---- Split ----------------------------------------------------------------------------------

namespace {

// The pieces of a split, in order: every non-empty piece before a run of
// delimiters, then the rest of the text, even if empty.
template <class Sink>
void ForEachPiece(char const* text, ByteSet const& set, Sink&& sink)
{
    char const* const end = text + std::strlen(text);
    char const* start = text;
    for (char const* hit = FindAny(start, end, set); hit != end; hit = FindAny(start, end, set)) {
        if (hit != start) sink(start, hit);
        start = SkipRun(hit, end, set);
    }
    sink(start, end);
}

// A new default list made with the capacity that `pieces` pushes reach, so
// that the pushes never grow it (MatchDoubledSlot then gives slot 0 what the
// doublings would have left there).
ZKContainer<ZKString> ListFor(char const* text, char const* delimiters)
{
    unsigned long long pieces = 0;
    if (text != nullptr && delimiters != nullptr)
        ForEachPiece(text, ByteSet(delimiters), [&pieces](char const*, char const*) { ++pieces; });
    return ZKContainer<ZKString>(zk64::detail::DoubledCapacity(512, pieces));
}

}  // namespace

void ZKString::Split(char const* text, char const* delimiters, bool /*flag*/, ZKContainer<ZKString>* out)
{
    if (out == nullptr || text == nullptr || delimiters == nullptr) return;
    // The text may be an item of *out, which the pushes can move or
    // overwrite, so the split reads a copy.
    std::string const source(text);
    ZKString piece;  // reused, so that a push copies into the slot's own buffer
    ForEachPiece(source.c_str(), ByteSet(delimiters), [&](char const* begin, char const* end) {
        piece.stringData->assign(begin, static_cast<std::size_t>(end - begin));
        out->PushBack(piece);
    });
}

void ZKString::Split(char const* text, char delimiter, bool flag, ZKContainer<ZKString>* out)
{
    char const delimiters[2] = {delimiter, 0};
    Split(text, delimiters, flag, out);
}

void ZKString::Split(ZKString const& text, char delimiter, bool flag, ZKContainer<ZKString>* out)
{
    Split(text.GetString(), delimiter, flag, out);
}

void ZKString::Split(ZKString const& text, char const* delimiters, bool flag, ZKContainer<ZKString>* out)
{
    Split(text.GetString(), delimiters, flag, out);
}

ZKContainer<ZKString> ZKString::Split(char const* text, char delimiter, bool flag)
{
    char const delimiters[2] = {delimiter, 0};
    return Split(text, delimiters, flag);
}

ZKContainer<ZKString> ZKString::Split(char const* text, char const* delimiters, bool flag)
{
    ZKContainer<ZKString> out = ListFor(text, delimiters);
    Split(text, delimiters, flag, &out);
    zk64::detail::MatchDoubledSlot(out, 512);
    return out;
}

ZKContainer<ZKString> ZKString::Split(ZKString const& text, char delimiter, bool flag)
{
    return Split(text.GetString(), delimiter, flag);
}

ZKContainer<ZKString> ZKString::Split(ZKString const& text, char const* delimiters, bool flag)
{
    return Split(text.GetString(), delimiters, flag);
}

ZKContainer<ZKString> ZKString::Split(char delimiter, bool flag) const { return Split(GetString(), delimiter, flag); }

ZKContainer<ZKString> ZKString::Split(char const* delimiters, bool flag) const
{
    return Split(GetString(), delimiters, flag);
}
