// A caller that includes the library before <windows.h> (WindowSystemTest.cpp
// includes them the other way round): both see the one system rectangle,
// and no min/max macro reaches C++ code.

#include <zk64/zk64.h>

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>

static_assert(std::is_same_v<tagRECT, RECT>);
static_assert(sizeof(tagRECT) == 16);

TEST(WindowHeaders, LibraryFirstThenSystem)
{
    RECT const rect{1, 2, std::max(3, 4), std::min(5, 6)};
    HWND__* const none = nullptr;
    EXPECT_EQ(rect.right, 4);
    EXPECT_EQ(GetExtendedWindowsBorder(none).right, 0);
}
