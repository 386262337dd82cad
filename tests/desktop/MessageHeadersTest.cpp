// The message-name table against the message constants of the Windows
// headers of the cross-build (ZK64_WINDOWS_HEADERS, read at run time). Every
// row whose name the headers define must carry one of the headers' numbers
// for it (a name defined under several conditions has several). With the
// mingw-w64 headers of Debian 12 every row is defined and agrees.

#include <gtest/gtest.h>

#include <cctype>
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

// The values of every object-like `#define NAME value`, brackets removed.
using Definitions = std::map<std::string, std::vector<std::string>>;

Definitions ReadDefinitions(std::filesystem::path const& directory)
{
    Definitions definitions;
    for (auto const& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() != ".h") continue;
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);) {
            line = line.substr(0, std::min(line.find("/*"), line.find("//")));
            std::istringstream words(line);
            std::string hash, name, value;
            if (!(words >> hash >> name) || hash != "#define" || name.find('(') != std::string::npos) continue;
            for (std::string word; words >> word;) value += word;
            std::erase_if(value, [](char c) { return c == '(' || c == ')'; });
            if (!value.empty()) definitions[name].push_back(value);
        }
    }
    return definitions;
}

// The values of `name`: a number, another name, or a name plus a number (the
// only forms of the message constants). Anything else has none.
std::set<long long> Values(Definitions const& definitions, std::string const& name, int depth = 0)
{
    std::set<long long> values;
    auto const found = definitions.find(name);
    if (found == definitions.end() || depth > 16) return values;
    for (std::string const& text : found->second) {
        std::size_t const plus = text.find('+');
        std::string const last = text.substr(plus + 1);  // the whole text without a plus
        char* rest = nullptr;
        long long const number = std::strtoll(last.c_str(), &rest, 0);
        bool const isNumber = std::isdigit(static_cast<unsigned char>(last[0])) &&
                              std::string(rest).find_first_not_of("uUlL") == std::string::npos;
        if (plus == std::string::npos && isNumber) {
            values.insert(number);
            continue;
        }
        std::set<long long> const base = Values(definitions, text.substr(0, plus), depth + 1);
        if (base.size() == 1 && (plus == std::string::npos || isNumber)) values.insert(*base.begin() + number);
    }
    return values;
}

TEST(MessageHeaders, EveryRowTheHeadersDefineCarriesTheirNumber)
{
    Definitions const definitions = ReadDefinitions(ZK64_WINDOWS_HEADERS);
    ASSERT_EQ(Values(definitions, "LVM_GETITEMW"), std::set<long long>{0x1000 + 75}) << "the headers are read";
    ASSERT_EQ(Values(definitions, "EM_SETSCROLLPOS"), std::set<long long>{0x400 + 222});
    int checked = 0;
    for (zk64::detail::WindowMessageName const& row : zk64::detail::WindowMessageNames()) {
        std::set<long long> const values = Values(definitions, row.name);
        checked += !values.empty();
        EXPECT_TRUE(values.empty() || values.count(row.number) == 1) << row.name << " is " << row.number;
    }
    EXPECT_EQ(zk64::detail::WindowMessageNames().size(), 450u);
    EXPECT_GE(checked, 440) << "rows the headers define";
}

}  // namespace
