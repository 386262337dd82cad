// ZKString::FindStringsInBinaryData on hand-traced inputs: each row of the
// extractor's state table, the run cap, and the bytes behind each item's
// terminating zero.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <vector>

#include "foundation/StringTestSupport.h"

using zk64::test::Bytes;
using zk64::test::Counted;
using zk64::test::ItemBytes;
using zk64::test::ItemTexts;
using Items = std::vector<std::string>;

namespace {

std::string Z(std::size_t count) { return std::string(count, '\0'); }

// UTF-16LE bytes of an ASCII text.
std::string Wide(std::string const& text)
{
    std::string out;
    for (char c : text) {
        out += c;
        out += '\0';
    }
    return out;
}

ZKContainer<ZKString> Extract(std::string const& bytes, unsigned int minimum, bool wide)
{
    ZKContainer<ZKString> out;
    ZKString::FindStringsInBinaryData(Counted(bytes), minimum, wide, out);
    return out;
}

}  // namespace

TEST(StringExtract, PlainRunNeedsATerminatingByte)
{
    ZKContainer<ZKString> out;
    EXPECT_TRUE(ZKString::FindStringsInBinaryData(Counted("hello" + Z(1)), 4, false, out));
    ASSERT_EQ(out.GetItemCount(), 1u);
    EXPECT_STREQ(out.GetItem(0).GetString(), "hello");
    EXPECT_EQ(out.GetItem(0).GetSize(), 10) << "the size is doubled";
    EXPECT_EQ(Bytes(out.GetItem(0)), "hello" + Z(5));

    ZKContainer<ZKString> none;
    EXPECT_FALSE(ZKString::FindStringsInBinaryData(ZKString("hello"), 4, false, none))
        << "a run that reaches the end is dropped";
    EXPECT_EQ(none.GetItemCount(), 0u);
    EXPECT_TRUE(ItemBytes(Extract("abc" + Z(1), 4, true)).empty()) << "shorter than the minimum";
    EXPECT_EQ(ItemTexts(Extract("\x01\x02" "abcd\x03", 4, false)), (Items{"abcd"}));
    EXPECT_EQ(ItemTexts(Extract("tab\there\r\n" + Z(1), 4, false)), (Items{"tab\there\r\n"}))
        << "tab, carriage return and line feed are printable";
}

TEST(StringExtract, WideRuns)
{
    std::string const wide = Wide("wide") + Z(2);
    EXPECT_EQ(ItemBytes(Extract(wide, 4, true)), (Items{"wide" + Z(4)}));
    EXPECT_TRUE(ItemBytes(Extract(wide, 4, false)).empty()) << "row 1 0 0 emits only wide runs";
    EXPECT_TRUE(ItemBytes(Extract(Wide("wide"), 4, true)).empty()) << "one zero unit is not the end";
    EXPECT_TRUE(ItemBytes(Extract(Wide("wid") + Z(2), 4, true)).empty());
}

TEST(StringExtract, TwoPrintablesEndAWideRun)
{
    // Row 0 1 1 with count >= minimum + 1: the 'x' joined the wide run as a
    // fifth byte, so count - 1 bytes are emitted and the run is cleared;
    // "xy" is lost from the plain run that follows.
    std::string const bytes = Wide("wide") + "xyzzy" + Z(1);
    EXPECT_EQ(ItemBytes(Extract(bytes, 4, true)), (Items{"wide" + Z(4)}));
    EXPECT_TRUE(ItemBytes(Extract(bytes, 4, false)).empty());
    // With a minimum of 3 "zzy" is long enough; its bytes behind the zero
    // still hold the wide run's 'x'.
    EXPECT_EQ(ItemBytes(Extract(bytes, 3, true)), (Items{"wide" + Z(4), std::string("zzy\0x\0", 6)}));
}

TEST(StringExtract, PlainRunEndingInAZeroMayStartAWideOne)
{
    // Row 1 1 0 on a zero byte with count < minimum: the run restarts as the
    // previous byte alone, and the wide run b c d e follows.
    std::string const bytes = "ab" + Z(1) + "c" + Z(1) + "d" + Z(1) + "e" + Z(2);
    EXPECT_EQ(ItemBytes(Extract(bytes, 4, true)), (Items{"bcde" + Z(4)}));
    EXPECT_TRUE(ItemBytes(Extract(bytes, 4, false)).empty());
    // A non-zero byte ends the plain run for good, and a printable after a
    // non-zero byte (row 1 0 1) is not appended.
    EXPECT_TRUE(ItemBytes(Extract("ab\x01" "c\x01" "d\x01" "e\x01\x01", 4, true)).empty());
    EXPECT_EQ(ItemTexts(Extract("ab\x01" "cd" + Z(1), 2, false)), (Items{"ab", "cd"}));
}

TEST(StringExtract, RunsAreCappedAt8191Bytes)
{
    std::string const bytes = std::string(10000, 'x') + Z(1);
    ZKContainer<ZKString> const out = Extract(bytes, 4, false);
    ASSERT_EQ(out.GetItemCount(), 1u);
    EXPECT_EQ(out.GetItem(0).GetSize(), 16382);
    EXPECT_EQ(Bytes(out.GetItem(0)), std::string(8191, 'x') + Z(8191));
    EXPECT_TRUE(ItemBytes(Extract(bytes, 10001, false)).empty()) << "the count goes on past the cap";
    EXPECT_EQ(ItemBytes(Extract(bytes, 10000, false)).size(), 1u);
}

TEST(StringExtract, BytesBehindTheZeroComeFromEarlierRuns)
{
    std::string const bytes = "ABCDEFGHIJ" + Z(1) + "abcd" + Z(1);
    EXPECT_EQ(ItemBytes(Extract(bytes, 4, false)), (Items{"ABCDEFGHIJ" + Z(10), std::string("abcd\0FGH", 8)}));
}

TEST(StringExtract, AppendsToTheListAndReportsAnyItem)
{
    ZKContainer<ZKString> out;
    out.PushBack(ZKString("old"));
    EXPECT_TRUE(ZKString::FindStringsInBinaryData(ZKString("nothing"), 4, true, out))
        << "true when the list holds any item, old ones included";
    ZKString const data = Counted("first" + Z(1) + "second" + Z(1));
    EXPECT_TRUE(data.FindStringsInBinaryData(4, false, out));
    EXPECT_EQ(ItemTexts(out), (Items{"old", "first", "second"}));

    ZKContainer<ZKString> own(1);
    own.PushBack(Counted("abcd" + Z(1) + "efgh" + Z(1)));
    EXPECT_TRUE(own.GetItem(0).FindStringsInBinaryData(4, false, own)) << "the member form reads a copy";
    EXPECT_EQ(ItemTexts(own), (Items{"abcd", "abcd", "efgh"}));

    ZKContainer<ZKString> viaStatic;
    ZKString::FindStringsInBinaryData(data, 4, false, viaStatic);
    EXPECT_EQ(ItemBytes(viaStatic), (Items{"first" + Z(5), "second" + Z(6)}));
}

TEST(StringExtract, RepeatedBytesAndEmptyData)
{
    EXPECT_TRUE(ItemBytes(Extract(std::string(100000, 'A'), 4, true)).empty());
    EXPECT_TRUE(ItemBytes(Extract(Z(100000), 0, true)).empty());
    EXPECT_TRUE(ItemBytes(Extract("", 0, true)).empty());
    // A minimum of 0: "ab" went to the cleared wide run at 'b', so the plain
    // run's end emits an empty item.
    EXPECT_EQ(ItemBytes(Extract("ab\x01", 0, false)), (Items{""}));
    EXPECT_EQ(ItemBytes(Extract("a\x01\x01", 0, true)), (Items{std::string("a\0", 2)}));
}
