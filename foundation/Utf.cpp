#include "detail/Utf.h"

#include <cstdint>
#include <cstring>

namespace zk64::detail {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Length of the ASCII run at the start of [text, end), eight bytes a step.
std::size_t AsciiRun(unsigned char const* text, unsigned char const* end)
{
    unsigned char const* p = text;
    while (end - p >= 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        if (word & 0x8080808080808080ull) break;
        p += 8;
    }
    while (p < end && *p < 0x80) ++p;
    return static_cast<std::size_t>(p - text);
}

// Decodes one code point starting at p (p < end, *p >= 0x80) and advances p
// past it, or past the maximal ill-formed subpart, returning U+FFFD then.
char32_t DecodeMultiByte(unsigned char const*& p, unsigned char const* end)
{
    unsigned char const lead = *p++;
    int extra;
    unsigned char low = 0x80, high = 0xBF;  // allowed range of the 2nd byte
    char32_t cp;
    if (lead >= 0xC2 && lead <= 0xDF) {
        extra = 1;
        cp = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        extra = 2;
        cp = lead & 0x0Fu;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        extra = 3;
        cp = lead & 0x07u;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        return kReplacement;
    }
    for (int i = 0; i < extra; ++i) {
        if (p == end) return kReplacement;
        unsigned char const byte = *p;
        if (byte < low || byte > high) return kReplacement;
        low = 0x80;
        high = 0xBF;
        cp = (cp << 6) | (byte & 0x3Fu);
        ++p;
    }
    return cp;
}

void AppendCodePoint(char32_t cp, std::string& out)
{
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

}  // namespace

std::size_t Utf16Length(unsigned char const* text, std::size_t length)
{
    unsigned char const* p = text;
    unsigned char const* const end = text + length;
    std::size_t units = 0;
    while (p < end) {
        std::size_t const run = AsciiRun(p, end);
        p += run;
        units += run;
        if (p == end) break;
        units += DecodeMultiByte(p, end) >= 0x10000 ? 2 : 1;
    }
    return units;
}

void Utf8ToUtf16(unsigned char const* text, std::size_t length, ZKWideChar* out)
{
    unsigned char const* p = text;
    unsigned char const* const end = text + length;
    while (p < end) {
        std::size_t const run = AsciiRun(p, end);
        for (std::size_t i = 0; i < run; ++i) *out++ = static_cast<ZKWideChar>(p[i]);
        p += run;
        if (p == end) break;
        char32_t const cp = DecodeMultiByte(p, end);
        if (cp >= 0x10000) {
            *out++ = static_cast<ZKWideChar>(0xD800 + ((cp - 0x10000) >> 10));
            *out++ = static_cast<ZKWideChar>(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            *out++ = static_cast<ZKWideChar>(cp);
        }
    }
}

void AppendUtf16AsUtf8(ZKWideChar const* text, std::size_t length, std::string& out)
{
    out.reserve(out.size() + length);
    for (std::size_t i = 0; i < length; ++i) {
        char32_t cp = static_cast<char16_t>(text[i]);
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < length) {
            char32_t const next = static_cast<char16_t>(text[i + 1]);
            if (next >= 0xDC00 && next <= 0xDFFF) {
                cp = 0x10000 + ((cp - 0xD800) << 10) + (next - 0xDC00);
                ++i;
            }
        }
        if (cp >= 0xD800 && cp <= 0xDFFF) cp = kReplacement;
        AppendCodePoint(cp, out);
    }
}

}  // namespace zk64::detail
