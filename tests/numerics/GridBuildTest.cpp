// Grids built at their final capacities end in the same state as grids
// grown by pushes onto default containers.

#include <gtest/gtest.h>

#include <zk64/numerics/detail/GridAccess.h>

namespace {

using Row = ZKContainer<int>;
using Grid = ZKContainer<Row>;

// Compares everything a caller can observe: counts, capacities, every
// storage slot (logical indexes 0 .. capacity - 1 cover them all), and the
// slots that the next pushes at both ends write.
void ExpectSameState(Row a, Row b)
{
    ASSERT_EQ(a.GetItemCount(), b.GetItemCount());
    ASSERT_EQ(a.GetMaxItemCount(), b.GetMaxItemCount());
    for (unsigned long long i = 0; i < a.GetMaxItemCount(); ++i) ASSERT_EQ(a.GetItem(i), b.GetItem(i)) << i;
    EXPECT_EQ(a.PushBack(-1), b.PushBack(-1));
    EXPECT_EQ(a.PushFront(-2), b.PushFront(-2));
}

TEST(GridBuild, GrownCapacityDoublesFrom512)
{
    EXPECT_EQ(zk64::detail::GrownCapacity(0), 512u);
    EXPECT_EQ(zk64::detail::GrownCapacity(512), 512u);
    EXPECT_EQ(zk64::detail::GrownCapacity(513), 1024u);
    EXPECT_EQ(zk64::detail::GrownCapacity(5000), 8192u);
    EXPECT_EQ(zk64::detail::GrownCapacity(~0ull), 1ull << 63);
}

TEST(GridBuild, RowsMatchRowsGrownByPushes)
{
    for (unsigned long long columns : {0ull, 1ull, 511ull, 512ull, 513ull, 1023ull, 1024ull, 1025ull, 3000ull}) {
        Grid pushed;
        pushed.EmplaceBack();
        for (unsigned long long j = 0; j < columns; ++j) pushed.GetItem(0).PushBack(static_cast<int>(j) + 1);

        Grid built = zk64::detail::NewGrid<int>(1);
        Row const blank;
        Row& row = zk64::detail::AppendRow(built, blank, columns);
        for (unsigned long long j = 0; j < columns; ++j) row.PushBack(static_cast<int>(j) + 1);
        zk64::detail::FinishGrown(row);

        SCOPED_TRACE(columns);
        ExpectSameState(pushed.GetItem(0), built.GetItem(0));
    }
}

TEST(GridBuild, OuterContainersMatchGrownOnes)
{
    for (unsigned long long rows : {0ull, 3ull, 512ull, 513ull, 1100ull}) {
        Grid pushed;
        Grid built = zk64::detail::NewGrid<int>(rows);
        Row const blank;
        for (unsigned long long i = 0; i < rows; ++i) {
            pushed.EmplaceBack();
            pushed.GetItem(i).PushBack(static_cast<int>(i));
            zk64::detail::AppendRow(built, blank, 1).PushBack(static_cast<int>(i));
        }
        zk64::detail::FinishGrown(built);
        SCOPED_TRACE(rows);
        ASSERT_EQ(pushed.GetItemCount(), built.GetItemCount());
        ASSERT_EQ(pushed.GetMaxItemCount(), built.GetMaxItemCount());
        for (unsigned long long i = 0; i < pushed.GetMaxItemCount(); ++i)
            ExpectSameState(pushed.GetItem(i), built.GetItem(i));
        EXPECT_EQ(pushed.EmplaceBack(), built.EmplaceBack());
    }
}

}  // namespace
