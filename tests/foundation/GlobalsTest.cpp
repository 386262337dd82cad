// The library's process-wide objects start in their documented states.

#include <gtest/gtest.h>

#include <zk64/foundation/detail/Globals.h>

using zk64::detail::globals;

namespace {

template <class T>
void ExpectNewDefaultList(ZKContainer<T> const& list)
{
    EXPECT_EQ(list.GetItemCount(), 0u);
    EXPECT_EQ(list.GetMaxItemCount(), 512u);
    EXPECT_TRUE(list.IsContainerAutoResize());
}

}  // namespace

TEST(Globals, InitialStates)
{
    EXPECT_TRUE(globals.machineIdCache.IsEmpty());
    ExpectNewDefaultList(globals.reservedPointers);
    ExpectNewDefaultList(globals.searchExclusions);

    EXPECT_TRUE(globals.programArgs.empty());
    EXPECT_GE(globals.programArgs.bucket_count(), 8u);
    EXPECT_EQ(globals.programArgs.max_load_factor(), 1.0f);

    EXPECT_TRUE(globals.logBuffer.str().empty());
    EXPECT_TRUE(globals.logBaseName == "SYSLOG");
    EXPECT_TRUE(globals.logDirectory == "../logs/");
    EXPECT_TRUE(globals.logExtension == ".log");
}
