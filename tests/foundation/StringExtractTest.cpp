// ZKString::FindStringsInBinaryData on hand-traced inputs: the rows of the
// extractor's state table, the run cap, and the bytes behind each item's
// terminating zero.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <vector>

#include "foundation/Support.h"

using zk64::test::Counted;
using zk64::test::ItemBytes;
using Items = std::vector<std::string>;

namespace {

std::string Z(std::size_t count) { return std::string(count, '\0'); }

std::string Wide(std::string const& text)  // UTF-16LE bytes of an ASCII text
{
    std::string out;
    for (char c : text) out += std::string{c, '\0'};
    return out;
}

}  // namespace

TEST(StringExtract, HandTracedRunsAppendedToTheList)
{
    std::string const tenThousand = std::string(10000, 'x') + Z(1);
    struct Row {
        std::string bytes;
        unsigned int minimum;
        bool wide;
        Items items;
    } const rows[] = {
        {"hello" + Z(1), 4, false, {"hello" + Z(5)}},  // the size is doubled
        {"hello", 4, false, {}},                        // a run that reaches the end is dropped
        {"abc" + Z(1), 4, true, {}}, {"\x01\x02" "abcd\x03", 4, false, {"abcd" + Z(4)}},
        {"t\tb\r\n" + Z(1), 4, false, {"t\tb\r\n" + Z(5)}},  // tab, CR and LF are printable
        {Wide("wide") + Z(2), 4, true, {"wide" + Z(4)}},
        {Wide("wide") + Z(2), 4, false, {}},  // without the flag only plain runs are emitted
        {Wide("wide"), 4, true, {}},          // one zero unit is not the end
        {Wide("wid") + Z(2), 4, true, {}},
        // Two printables end a wide run: the 'x' joined it as a fifth byte, so
        // count - 1 bytes are emitted, and "xy" is lost from the plain run.
        {Wide("wide") + "xyzzy" + Z(1), 4, true, {"wide" + Z(4)}}, {Wide("wide") + "xyzzy" + Z(1), 4, false, {}},
        {Wide("wide") + "xyzzy" + Z(1), 3, true, {"wide" + Z(4), std::string("zzy\0x\0", 6)}},
        // A short plain run ending in a zero restarts as its last byte, and
        // the wide run b c d e follows; a non-zero byte ends it for good.
        {"ab" + Z(1) + "c" + Z(1) + "d" + Z(1) + "e" + Z(2), 4, true, {"bcde" + Z(4)}},
        {"ab" + Z(1) + "c" + Z(1) + "d" + Z(1) + "e" + Z(2), 4, false, {}},
        {"ab\x01" "c\x01" "d\x01" "e\x01\x01", 4, true, {}},
        {"ab\x01" "cd" + Z(1), 2, false, {"ab" + Z(2), "cd" + Z(2)}},
        // Runs are capped at 8,191 bytes, the count goes on past the cap.
        {tenThousand, 4, false, {std::string(8191, 'x') + Z(8191)}},
        {tenThousand, 10000, false, {std::string(8191, 'x') + Z(8191)}}, {tenThousand, 10001, false, {}},
        // The bytes behind the zero come from earlier runs.
        {"ABCDEFGHIJ" + Z(1) + "abcd" + Z(1), 4, false, {"ABCDEFGHIJ" + Z(10), std::string("abcd\0FGH", 8)}},
        {std::string(100000, 'A'), 4, true, {}}, {Z(100000), 0, true, {}}, {"", 0, true, {}},
        // A minimum of 0: "ab" went to the cleared wide run at 'b', so the
        // plain run's end emits an empty item.
        {"ab\x01", 0, false, {""}}, {"a\x01\x01", 0, true, {std::string("a\0", 2)}},
    };
    // Both forms append to the list and report whether it holds any item,
    // old ones included.
    for (Row const& row : rows) {
        ZKContainer<ZKString> out, old;
        old.PushBack(ZKString("old"));
        EXPECT_EQ(ZKString::FindStringsInBinaryData(Counted(row.bytes), row.minimum, row.wide, out), !row.items.empty());
        EXPECT_TRUE(Counted(row.bytes).FindStringsInBinaryData(row.minimum, row.wide, old));
        EXPECT_EQ(ItemBytes(out), row.items) << row.bytes.substr(0, 40) << " " << row.minimum << " " << row.wide;
        Items const all = ItemBytes(old);
        EXPECT_EQ(Items(all.begin() + 1, all.end()), row.items) << "appended after the old item";
    }
    ZKContainer<ZKString> own(1);
    own.PushBack(Counted("abcd" + Z(1) + "efgh" + Z(1)));
    EXPECT_TRUE(own.GetItem(0).FindStringsInBinaryData(4, false, own)) << "the member form reads a copy";
    EXPECT_EQ(ItemBytes(own), (Items{"abcd" + Z(1) + "efgh" + Z(1), "abcd" + Z(4), "efgh" + Z(4)}));
}
