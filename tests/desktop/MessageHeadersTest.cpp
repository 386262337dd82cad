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

// The values of `name`: sums and differences of numbers and names with one
// value each. Anything else (casts, shifts, macro calls) has none.
std::set<long long> Values(Definitions const& definitions, std::string const& name, int depth = 0)
{
    std::set<long long> values;
    auto const found = definitions.find(name);
    if (found == definitions.end() || depth > 16) return values;
    for (std::string const& text : found->second) {
        long long total = 0;
        bool valid = true;
        for (std::size_t at = 0; valid && at < text.size();) {
            long long const sign = text[at] == '-' ? -1 : 1;
            if (at > 0 || text[at] == '-') ++at;  // the operator before each term
            std::size_t end = at;
            while (end < text.size() && (std::isalnum(static_cast<unsigned char>(text[end])) || text[end] == '_'))
                ++end;
            std::string const term = text.substr(at, end - at);
            valid = !term.empty() && (end == text.size() || text[end] == '+' || text[end] == '-');
            if (valid && std::isdigit(static_cast<unsigned char>(term[0]))) {
                char* rest = nullptr;
                total += sign * std::strtoll(term.c_str(), &rest, 0);
                valid = std::string(rest).find_first_not_of("uUlL") == std::string::npos;
            } else if (valid) {
                std::set<long long> const inner = Values(definitions, term, depth + 1);
                valid = inner.size() == 1;
                if (valid) total += sign * *inner.begin();
            }
            at = end;
        }
        if (valid) values.insert(total);
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
