// The message-name table as a whole: its families, its order and the
// numbers that several names share.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "desktop/detail/WindowMessageTable.h"

namespace {

using zk64::detail::WindowMessageName;
using zk64::detail::WindowMessageNames;

TEST(MessageTable, HoldsItsFamiliesInAscendingOrderButOne)
{
    auto const rows = WindowMessageNames();
    ASSERT_EQ(rows.size(), 450u);
    std::map<std::string, int> families;
    for (WindowMessageName const& row : rows) {
        std::string const name = row.name;
        ++families[name.substr(0, name.find('_') + 1)];
    }
    EXPECT_EQ(families, (std::map<std::string, int>{{"WM_", 216}, {"EM_", 69}, {"LVM_", 126}, {"MCIWNDM_", 19},
                                                    {"SBM_", 9}, {"BM_", 9}, {"PSM_", 1}, {"CDM_", 1}}));
    std::vector<std::string> descents;
    for (std::size_t index = 1; index < rows.size(); ++index)
        if (rows[index].number < rows[index - 1].number) descents.push_back(rows[index - 1].name);
    EXPECT_EQ(descents, std::vector<std::string>{"WM_MOUSELAST"});
    EXPECT_STREQ(rows[rows.size() - 2].name, "WM_APP");
    EXPECT_STREQ(rows.back().name, "WM_RASDIALEVENT");
}

TEST(MessageTable, SharedNumbersKeepTheirLaterRows)
{
    std::map<unsigned, std::vector<std::string>> byNumber;
    for (WindowMessageName const& row : WindowMessageNames()) byNumber[row.number].push_back(row.name);
    std::map<unsigned, std::vector<std::string>> shared;
    for (auto const& [number, names] : byNumber)
        if (names.size() > 1) shared[number] = names;
    std::map<unsigned, std::vector<std::string>> const expected = {
        {0x00C5, {"EM_LIMITTEXT", "EM_SETLIMITTEXT"}},
        {0x0100, {"WM_KEYDOWN", "WM_KEYFIRST"}},
        {0x04C8, {"CDM_LAST", "EM_SETBIDIOPTIONS", "MCIWNDM_NOTIFYMODE"}},
        {0x04CB, {"EM_GETTYPOGRAPHYOPTIONS", "MCIWNDM_NOTIFYMEDIA"}},
        {0x04CD, {"EM_GETEDITSTYLE", "MCIWNDM_NOTIFYERROR"}},
        {0x04DC, {"EM_OUTLINE", "MCIWNDM_GETTIMEFORMATW"}},
        {0x04DE, {"EM_SETSCROLLPOS", "EM_SETSCROLLPOS"}},
        {0x04E0, {"EM_GETZOOM", "MCIWNDM_GETFILENAMEW"}},
        {0x04E1, {"EM_SETZOOM", "MCIWNDM_GETDEVICEW"}},
        {0x04E4, {"EM_GETPAGE", "MCIWNDM_GETERRORW"}},
        {0x1000, {"LVM_FIRST", "LVM_GETBKCOLOR"}},
    };
    EXPECT_EQ(shared, expected);
}

}  // namespace
