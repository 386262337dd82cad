// The message-name table against the message constants of the Windows
// headers of the cross-build (ZK64_WINDOWS_HEADERS, read at run time). Every
// row whose name the headers define must carry one of the headers' numbers
// for it (a name defined under several conditions has several). With the
// mingw-w64 headers of Debian 12 every row is defined and agrees.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "desktop/detail/WindowMessageTable.h"

namespace {

// The values of every object-like `#define NAME value`, brackets and spaces removed.
std::map<std::string, std::vector<std::string>> definitions;

// The values of `name`: a number, another name, or a name plus a number (the
// only forms of the message constants). Anything else has none.
std::set<long long> Values(std::string const& name, int depth = 0)
{
    std::set<long long> values;
    if (depth > 16) return values;
    for (std::string const& text : definitions[name]) {
        std::size_t const plus = text.find('+');
        std::string const last = text.substr(plus + 1);  // the whole text without a plus
        char* rest = nullptr;
        long long const number = std::strtoll(last.c_str(), &rest, 0);
        bool const isNumber =
            last[0] >= '0' && last[0] <= '9' && std::string(rest).find_first_not_of("uUlL") == std::string::npos;
        if (plus == std::string::npos && isNumber) values.insert(number);
        std::set<long long> const base = Values(text.substr(0, plus), depth + 1);  // none for a number
        if (base.size() == 1 && (plus == std::string::npos || isNumber)) values.insert(*base.begin() + number);
    }
    return values;
}

TEST(MessageHeaders, EveryRowTheHeadersDefineCarriesTheirNumber)
{
    for (auto const& entry : std::filesystem::directory_iterator(ZK64_WINDOWS_HEADERS)) {
        std::ifstream file(entry.path());
        for (std::string line; entry.path().extension() == ".h" && std::getline(file, line);) {
            std::istringstream words(line.substr(0, std::min(line.find("/*"), line.find("//"))));
            std::string hash, name, value;
            if (!(words >> hash >> name) || hash != "#define" || name.find('(') != std::string::npos) continue;
            for (std::string word; words >> word;) value += word;
            std::erase_if(value, [](char c) { return c == '(' || c == ')'; });
            definitions[name].push_back(value);
        }
    }
    int checked = 0;
    for (zk64::detail::WindowMessageName const& row : zk64::detail::WindowMessageNames()) {
        std::set<long long> const values = Values(row.name);
        checked += !values.empty();
        EXPECT_TRUE(values.empty() || values.count(row.number) == 1) << row.name << " is " << row.number;
    }
    EXPECT_EQ(zk64::detail::WindowMessageNames().size(), 450u);
    EXPECT_GE(checked, 440) << "rows the headers define, resolved through names such as WM_USER and LVM_FIRST";
}

}  // namespace
