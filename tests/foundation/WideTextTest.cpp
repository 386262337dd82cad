// UTF-8 <-> UTF-16 through ZKString's wide forms. The same vectors run on
// the Linux and the Windows build; the converter is the library's own, so
// the results must be identical.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using Wide = std::basic_string<ZKWideChar>;

Wide W(std::u16string const& units) { return Wide(units.begin(), units.end()); }

std::string Bytes(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }

// The converted text up to its terminator, and the two counts.
struct WideResult {
    Wide text;
    unsigned int length;
    unsigned int written;
};

WideResult ToWide(ZKString const& s, unsigned int offered = 0)
{
    WideResult r{{}, offered, 0};
    ZKWideChar* buffer = s.GetWideString(&r.length, &r.written);
    r.text = buffer;
    ZKString::CleanupWideString(&buffer);
    EXPECT_EQ(buffer, nullptr);
    return r;
}

struct Vector {
    char const* name;
    std::string utf8;
    std::u16string utf16;
};

void ExpectUtf8ToUtf16(Vector const& v)
{
    WideResult const wide = ToWide(ZKString(v.utf8.c_str()));
    EXPECT_EQ(wide.text, W(v.utf16)) << v.name;
    EXPECT_EQ(wide.written, v.utf16.size() + 1) << v.name;
}

}  // namespace

TEST(WideText, WellFormedVectorsConvertBothWays)
{
    std::vector<Vector> const vectors = {
        {"empty", "", u""},
        {"ascii", "plain ASCII text, long enough for the 8-byte scan", u"plain ASCII text, long enough for the 8-byte scan"},
        {"two-byte", "h\xC3\xA9llo", u"h\u00E9llo"},
        {"three-byte", "\xE2\x82\xAC 5", u"\u20AC 5"},
        {"four-byte", "\xF0\x9D\x84\x9E", u"\xD834\xDD1E"},
        {"edges", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
         std::u16string(u"\x7F\x80\x7FF\x800\xFFFF\xD800\xDC00\xDBFF\xDFFF")},
    };
    for (Vector const& v : vectors) {
        EXPECT_EQ(Bytes(ZKString(W(v.utf16).c_str())), v.utf8) << v.name;
        ExpectUtf8ToUtf16(v);
    }
}

TEST(WideText, IllFormedUtf8BecomesOneReplacementPerMaximalSubpart)
{
    std::vector<Vector> const vectors = {
        {"stray continuation", "\x80", u"\xFFFD"},
        {"overlong two-byte", "\xC0\xAF", u"\xFFFD\xFFFD"},
        {"overlong three-byte", "\xE0\x80\x80", u"\xFFFD\xFFFD\xFFFD"},
        {"encoded surrogate", "\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},
        {"above U+10FFFF", "\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"invalid lead", "a\xFF" "b", u"a\xFFFD" "b"},
        {"truncated at end", "\xE2\x82", u"\xFFFD"},
        {"truncated before ASCII", "\xE2\x82" "A", u"\xFFFD" "A"},
        {"truncated four-byte", "\xF0\x9D\x84" "A\xC3\xA9", u"\xFFFD" "A\u00E9"},
    };
    for (Vector const& v : vectors) ExpectUtf8ToUtf16(v);
}

TEST(WideText, UnpairedSurrogatesBecomeReplacementCharacters)
{
    EXPECT_EQ(Bytes(ZKString(W(u"\xD800" "a").c_str())), "\xEF\xBF\xBD" "a");
    EXPECT_EQ(Bytes(ZKString(W(u"a\xDC00").c_str())), "a\xEF\xBF\xBD");
    EXPECT_EQ(Bytes(ZKString(W(u"\xDC00\xD800").c_str())), "\xEF\xBF\xBD\xEF\xBF\xBD") << "reversed pair";
    EXPECT_EQ(Bytes(ZKString(W(u"\xD800\xD800\xDC00").c_str())), "\xEF\xBF\xBD\xF0\x90\x80\x80");
}

TEST(WideText, EveryScalarValueRoundTrips)
{
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
    WideResult const back = ToWide(narrow);
    EXPECT_TRUE(back.text == W(all));
    EXPECT_EQ(back.written, all.size() + 1);
}

TEST(WideText, GetWideStringBufferSizing)
{
    ZKString const s("xyz");
    unsigned int length = 100, written = 0;
    ZKWideChar* buffer = s.GetWideString(&length, &written);
    EXPECT_EQ(length, 100u) << "a larger offer sizes the buffer and stays";
    EXPECT_EQ(written, 4u);
    EXPECT_EQ(Wide(buffer), W(u"xyz"));
    for (unsigned int i = 3; i < 100; ++i) ASSERT_EQ(buffer[i], 0) << "zeroed at " << i;
    ZKString::CleanupWideString(&buffer);

    length = 0;
    buffer = ZKString::GetWideString(s, &length, nullptr);
    EXPECT_EQ(length, 4u) << "a smaller offer becomes the need";
    ZKString::CleanupWideString(&buffer);

    EXPECT_EQ(ToWide(s, 4).length, 4u);
    buffer = s.GetWideString(nullptr, nullptr);
    EXPECT_EQ(Wide(buffer), W(u"xyz"));
    ZKString::CleanupWideString(&buffer);
    ZKString::CleanupWideString(&buffer) /* null inside is harmless */;
}

TEST(WideText, GetWideStringStopsAtTheFirstZeroByte)
{
    ZKString const s("ab\0cd", 5);
    WideResult const wide = ToWide(s);
    EXPECT_EQ(wide.text, W(u"ab"));
    EXPECT_EQ(wide.written, 3u);
    EXPECT_EQ(ToWide(ZKString()).written, 1u) << "the terminator alone";
}

TEST(WideText, NullAndCountedWideForms)
{
    EXPECT_TRUE(ZKString(static_cast<ZKWideChar const*>(nullptr)).IsEmpty());

    ZKString s("old");
    s.SetString(static_cast<ZKWideChar const*>(nullptr));
    EXPECT_EQ(Bytes(s), "old") << "null leaves the old text";
    s.SetString(static_cast<ZKWideChar const*>(nullptr), 2);
    EXPECT_EQ(Bytes(s), "ol") << "null still cuts";

    Wide const text = W(u"h\u00E9llo");
    EXPECT_EQ(Bytes(ZKString(text.c_str(), 2)), "h\xC3") << "cut in UTF-8 bytes, not wide units";
    EXPECT_EQ(Bytes(ZKString(text.c_str(), 100)), "h\xC3\xA9llo");
    s.SetString(text.c_str(), 3);
    EXPECT_EQ(Bytes(s), "h\xC3\xA9");
    try {
        ZKString bad(text.c_str(), -1);
        ADD_FAILURE() << "no exception";
    } catch (std::length_error const& e) {
        EXPECT_STREQ(e.what(), "string too long");
    }
    EXPECT_THROW(s.SetString(text.c_str(), -1), std::length_error);
    EXPECT_EQ(Bytes(s), "h\xC3\xA9");
}

TEST(WideText, ContainerOfStringsFromNarrowAndWideText)
{
    ZKContainer<ZKString> c(2);
    c.PushBack("narrow");
    c.PushBack(ZKString(W(u"wide \u00FC").c_str()));
    c.PushFront(ZKString(W(u"\xD83D\xDE00").c_str()));
    EXPECT_EQ(c.GetMaxItemCount(), 4u);
    EXPECT_EQ(Bytes(c[0]), "\xF0\x9F\x98\x80");
    EXPECT_EQ(Bytes(c[1]), "narrow");
    EXPECT_EQ(Bytes(c[2]), "wide \xC3\xBC");
}
