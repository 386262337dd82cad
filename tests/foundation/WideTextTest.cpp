// UTF-8 <-> UTF-16 through ZKString's wide forms. The same vectors run on
// the Linux and the Windows build; the converter is the library's own, so
// the results must be identical.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/Support.h"

using zk64::test::Bytes;

namespace {

using Wide = std::basic_string<ZKWideChar>;

Wide W(std::u16string const& units) { return Wide(units.begin(), units.end()); }

// The converted text up to its terminator, and the units written.
std::pair<Wide, unsigned int> ToWide(ZKString const& s)
{
    unsigned int length = 0, written = 0;
    ZKWideChar* buffer = s.GetWideString(&length, &written);
    Wide const text = buffer;
    ZKString::CleanupWideString(&buffer);
    EXPECT_EQ(buffer, nullptr);
    return {text, written};
}

}  // namespace

TEST(WideText, VectorsBothWays)
{
    struct Vector {
        std::string utf8;
        std::u16string utf16;
        bool roundTrip;
    };
    std::vector<Vector> const vectors = {
        {"", u"", true},
        {"plain ASCII text, long enough for the 8-byte scan", u"plain ASCII text, long enough for the 8-byte scan", true},
        {"h\xC3\xA9llo \xE2\x82\xAC", u"h\u00E9llo \u20AC", true},
        {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
         u"\x7F\x80\x7FF\x800\xFFFF\xD800\xDC00\xDBFF\xDFFF", true},
        // Ill-formed UTF-8: one replacement per maximal subpart.
        {"\x80", u"\xFFFD", false}, {"\xC0\xAF", u"\xFFFD\xFFFD", false},
        {"\xE0\x80\x80", u"\xFFFD\xFFFD\xFFFD", false}, {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD", false},
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD", false}, {"a\xFF" "b", u"a\xFFFD" "b", false},
        {"\xE2\x82", u"\xFFFD", false}, {"\xF0\x9D\x84" "A\xC3\xA9", u"\xFFFD" "A\u00E9", false},
    };
    for (Vector const& v : vectors) {
        EXPECT_EQ(ToWide(ZKString(v.utf8.c_str())), std::make_pair(W(v.utf16), unsigned(v.utf16.size() + 1))) << v.utf8;
        if (v.roundTrip) {
            EXPECT_EQ(Bytes(ZKString(W(v.utf16).c_str())), v.utf8) << v.utf8;
        }
    }
    // Unpaired surrogates become replacement characters.
    EXPECT_EQ(Bytes(ZKString(W({0xD800, 'a', 0xDC00}).c_str())), "\xEF\xBF\xBD\x61\xEF\xBF\xBD");
    EXPECT_EQ(Bytes(ZKString(W(u"\xDC00\xD800\xD800\xDC00").c_str())), "\xEF\xBF\xBD\xEF\xBF\xBD\xF0\x90\x80\x80");

    std::u16string all;
    std::size_t expectedBytes = 0;
    for (char32_t cp = 1; cp <= 0x10FFFF; ++cp) {
        if (cp >= 0xD800 && cp <= 0xDFFF) continue;
        if (cp < 0x10000) {
            all.push_back(static_cast<char16_t>(cp));
        } else {
            all.push_back(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
            all.push_back(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
        }
        expectedBytes += cp < 0x80 ? 1 : cp < 0x800 ? 2 : cp < 0x10000 ? 3 : 4;
    }
    ZKString const narrow(W(all).c_str());
    EXPECT_EQ(static_cast<std::size_t>(narrow.GetSize()), expectedBytes);
    EXPECT_TRUE(ToWide(narrow) == std::make_pair(W(all), unsigned(all.size() + 1))) << "every scalar value round-trips";
}

TEST(WideText, BuffersAndCountedForms)
{
    ZKString const s("xyz");
    unsigned int length = 100, written = 0;
    ZKWideChar* buffer = s.GetWideString(&length, &written);
    EXPECT_EQ(length + written, 104u) << "a larger offer sizes the buffer and stays";
    for (unsigned int i = 3; i < 100; ++i) ASSERT_EQ(buffer[i], 0) << "zeroed at " << i;
    ZKString::CleanupWideString(&buffer);
    length = 0;
    buffer = ZKString::GetWideString(s, &length, nullptr);
    EXPECT_EQ(length, 4u) << "a smaller offer becomes the need";
    ZKString::CleanupWideString(&buffer);
    ZKString::CleanupWideString(&buffer);  // null inside is harmless
    EXPECT_EQ(ToWide(ZKString("ab\0cd", 5)), std::make_pair(W(u"ab"), 3u)) << "stops at the first zero byte";

    ZKString t("old");
    t.SetString(static_cast<ZKWideChar const*>(nullptr));
    EXPECT_EQ(Bytes(t), "old") << "null leaves the old text";
    t.SetString(static_cast<ZKWideChar const*>(nullptr), 2);
    EXPECT_EQ(Bytes(t), "ol") << "null still cuts";
    Wide const text = W(u"h\u00E9llo");
    EXPECT_EQ(Bytes(ZKString(text.c_str(), 2)), "h\xC3") << "cut in UTF-8 bytes, not wide units";
    t.SetString(text.c_str(), 3);
    zk64::test::ExpectThrowWithMessage<std::length_error>([&] { ZKString bad(text.c_str(), -1); }, "string too long");
    EXPECT_THROW(t.SetString(text.c_str(), -1), std::length_error);
    EXPECT_EQ(Bytes(t), "h\xC3\xA9");
}
