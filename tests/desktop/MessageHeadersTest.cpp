// The message-name table against the message constants of the Windows
// headers that the cross-build uses (ZK64_WINDOWS_HEADERS, read at run time).
// Every row whose name the headers define must carry one of the headers'
// numbers for it (a name defined under several conditions has several).
// With mingw-w64's headers of Debian 12 every row is defined and agrees.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "desktop/detail/WindowMessageTable.h"

namespace {

// Every `#define NAME value` of the headers, each definition of a name kept.
using Definitions = std::map<std::string, std::vector<std::string>>;

bool IsNameChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// NAME and value of an object-like `#define NAME value` line.
std::optional<std::pair<std::string, std::string>> ParseDefine(std::string line)
{
    line = line.substr(0, std::min(line.find("/*"), line.find("//")));
    std::size_t at = line.find_first_not_of(" \t");
    if (at == std::string::npos || line[at] != '#') return std::nullopt;
    at = line.find_first_not_of(" \t", at + 1);
    if (at == std::string::npos || line.compare(at, 6, "define") != 0) return std::nullopt;
    at += 6;
    if (at >= line.size() || !IsBlank(line[at])) return std::nullopt;
    std::size_t const start = line.find_first_not_of(" \t", at);
    if (start == std::string::npos) return std::nullopt;
    std::size_t end = start;
    while (end < line.size() && IsNameChar(line[end])) ++end;
    if (end == start || end >= line.size() || !IsBlank(line[end])) return std::nullopt;  // no value, or a macro
    std::size_t const valueStart = line.find_first_not_of(" \t\r", end);
    if (valueStart == std::string::npos) return std::nullopt;
    std::size_t const valueEnd = line.find_last_not_of(" \t\r");
    return std::make_pair(line.substr(start, end - start), line.substr(valueStart, valueEnd + 1 - valueStart));
}

Definitions ReadDefinitions(std::filesystem::path const& directory)
{
    Definitions definitions;
    for (auto const& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() != ".h") continue;
        std::ifstream file(entry.path());
        std::string line;
        while (std::getline(file, line))
            if (auto const define = ParseDefine(line)) definitions[define->first].push_back(define->second);
    }
    return definitions;
}

// Values made of numbers, names, + and - and brackets; anything else (casts,
// macro calls) gives no value.
class Evaluator {
public:
    explicit Evaluator(Definitions const& definitions) : definitions_(definitions) {}

    // The values of the name's definitions that can be evaluated.
    std::set<long long> Values(std::string const& name, int depth = 0) const
    {
        std::set<long long> values;
        auto const found = definitions_.find(name);
        if (found == definitions_.end() || depth > 16) return values;
        for (std::string const& text : found->second) {
            Parser parser{*this, text, 0, depth};
            std::optional<long long> const value = parser.Sum();
            parser.SkipBlanks();
            if (value && parser.position == text.size()) values.insert(*value);
        }
        return values;
    }

private:
    struct Parser {
        Evaluator const& evaluator;
        std::string const& text;
        std::size_t position;
        int depth;

        void SkipBlanks()
        {
            while (position < text.size() && std::isspace(static_cast<unsigned char>(text[position]))) ++position;
        }
        bool Take(char c)
        {
            SkipBlanks();
            if (position >= text.size() || text[position] != c) return false;
            ++position;
            return true;
        }
        std::optional<long long> Sum()
        {
            std::optional<long long> total = Term();
            while (total) {
                if (Take('+')) {
                    std::optional<long long> const term = Term();
                    total = term ? std::optional<long long>(*total + *term) : std::nullopt;
                } else if (Take('-')) {
                    std::optional<long long> const term = Term();
                    total = term ? std::optional<long long>(*total - *term) : std::nullopt;
                } else {
                    break;
                }
            }
            return total;
        }
        std::optional<long long> Term()
        {
            if (Take('(')) {
                std::optional<long long> const inner = Sum();
                return inner && Take(')') ? inner : std::nullopt;
            }
            SkipBlanks();
            std::size_t const start = position;
            while (position < text.size() &&
                   (std::isalnum(static_cast<unsigned char>(text[position])) || text[position] == '_'))
                ++position;
            std::string const token = text.substr(start, position - start);
            if (token.empty()) return std::nullopt;
            if (std::isdigit(static_cast<unsigned char>(token[0]))) {
                char* end = nullptr;
                long long const value = std::strtoll(token.c_str(), &end, 0);
                std::string const suffix = end;
                return suffix.find_first_not_of("uUlL") == std::string::npos ? std::optional<long long>(value)
                                                                             : std::nullopt;
            }
            std::set<long long> const values = evaluator.Values(token, depth + 1);
            return values.size() == 1 ? std::optional<long long>(*values.begin()) : std::nullopt;
        }
    };

    Definitions const& definitions_;
};

TEST(MessageHeaders, EveryRowTheHeadersDefineCarriesTheirNumber)
{
    Definitions const definitions = ReadDefinitions(ZK64_WINDOWS_HEADERS);
    Evaluator const evaluator(definitions);
    ASSERT_EQ(evaluator.Values("WM_USER"), std::set<long long>{0x400}) << "the evaluator reads the headers";
    ASSERT_EQ(evaluator.Values("LVM_GETITEMW"), std::set<long long>{0x1000 + 75});

    int checked = 0;
    std::set<std::string> unknown;
    for (zk64::detail::WindowMessageName const& row : zk64::detail::WindowMessageNames()) {
        std::set<long long> const values = evaluator.Values(row.name);
        if (values.empty()) {
            unknown.insert(row.name);
            continue;
        }
        ++checked;
        EXPECT_EQ(values.count(row.number), 1u) << row.name << " is " << row.number << " in the table";
    }
    std::string names;
    for (std::string const& name : unknown) names += name + ' ';
    std::cout << checked << " rows checked; not defined by the headers: " << names << '\n';
    EXPECT_GE(checked, 440);
}

}  // namespace
