#include "Report.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

namespace zk {

Value::Value(Kind k, std::string forPeople, std::string forScripts)
    : kind(k), human(std::move(forPeople)), json(std::move(forScripts))
{
}

Value Value::Text(std::string text)
{
    std::string literal = JsonText(text);
    return Value(Kind::Text, std::move(text), std::move(literal));
}

Value Value::Number(long long number) { return Value(Kind::Number, std::to_string(number), std::to_string(number)); }

Value Value::Unsigned(unsigned long long number)
{
    return Value(Kind::Number, std::to_string(number), std::to_string(number));
}

Value Value::Hex(unsigned long long number, int digits)
{
    char text[32];
    std::snprintf(text, sizeof text, "0x%0*llX", digits, number);
    return Value(Kind::Number, text, std::to_string(number));
}

Value Value::Decimal(double number, int precision)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", precision, number);
    return Value(Kind::Number, text, text);
}

Value Value::Measured(std::string forPeople, unsigned long long number)
{
    return Value(Kind::Number, std::move(forPeople), std::to_string(number));
}

Value Value::Bool(bool value) { return Value(Kind::Bool, value ? "yes" : "no", value ? "true" : "false"); }
Value Value::List() { return Value(Kind::List, "", ""); }
Value Value::Record() { return Value(Kind::Record, "", ""); }

Value& Value::Add(std::string key, Value value)
{
    fields.emplace_back(std::move(key), std::move(value));
    return *this;
}

Value& Value::Push(Value value)
{
    items.push_back(std::move(value));
    return *this;
}

Value const* Value::Find(std::string const& key) const
{
    for (auto const& [name, value] : fields)
        if (name == key) return &value;
    return nullptr;
}

namespace {

// The length of the well-formed UTF-8 sequence at text[i], or 0.
size_t Utf8Length(std::string const& text, size_t i)
{
    auto const byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
    unsigned char const lead = byte(i);
    size_t const length = lead < 0x80                    ? 1
                          : lead >= 0xC2 && lead <= 0xDF ? 2
                          : lead >= 0xE0 && lead <= 0xEF ? 3
                          : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                         : 0;
    if (length == 0 || i + length > text.size()) return 0;
    for (size_t k = 1; k < length; ++k)
        if ((byte(i + k) & 0xC0) != 0x80) return 0;
    unsigned char const second = length > 1 ? byte(i + 1) : 0;
    // No overlong forms, no surrogates, nothing above U+10FFFF.
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
        (lead == 0xF4 && second > 0x8F))
        return 0;
    return length;
}

}  // namespace

std::string JsonText(std::string const& text)
{
    std::string out = "\"";
    for (size_t i = 0; i < text.size();) {
        unsigned char const c = static_cast<unsigned char>(text[i]);
        size_t const length = Utf8Length(text, i);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\t') {
            out += "\\t";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c < 0x20 || length == 0) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04X", c);
            out += escape;
        } else {
            out.append(text, i, length);
            i += length;
            continue;
        }
        ++i;
    }
    return out + "\"";
}

namespace {

bool IsFlatRecord(Value const& value)
{
    return value.GetKind() == Value::Kind::Record &&
           std::all_of(value.Fields().begin(), value.Fields().end(), [](auto const& f) { return f.second.IsScalar(); });
}

bool IsTable(Value const& list)
{
    return !list.Items().empty() && std::all_of(list.Items().begin(), list.Items().end(), IsFlatRecord);
}

void Indent(std::ostream& out, size_t depth) { out << std::string(depth * 2, ' '); }

// Columns of a list of flat records, headed by the first record's keys;
// numbers are aligned to the right.
void PrintTable(std::ostream& out, Value const& list, size_t depth)
{
    auto const& head = list.Items().front().Fields();
    std::vector<size_t> widths;
    for (auto const& [key, value] : head) widths.push_back(key.size());
    for (auto const& row : list.Items())
        for (size_t c = 0; c < row.Fields().size() && c < widths.size(); ++c)
            widths[c] = std::max(widths[c], row.Fields()[c].second.Human().size());
    auto const line = [&](auto const& cell, auto const& rightAligned) {
        Indent(out, depth);
        std::string text;
        for (size_t c = 0; c < widths.size(); ++c) {
            std::string const item = cell(c);
            std::string const pad(widths[c] - std::min(widths[c], item.size()), ' ');
            bool const last = c + 1 == widths.size();
            text += rightAligned(c) ? pad + item : item + (last ? "" : pad);
            if (!last) text += "  ";
        }
        out << text << '\n';
    };
    auto const numeric = [&](size_t c) { return head[c].second.GetKind() == Value::Kind::Number; };
    line([&](size_t c) { return head[c].first; }, numeric);
    for (auto const& row : list.Items())
        line([&](size_t c) { return c < row.Fields().size() ? row.Fields()[c].second.Human() : std::string(); },
             numeric);
}

void PrintBlock(std::ostream& out, Value const& value, size_t depth);

void PrintList(std::ostream& out, Value const& list, size_t depth)
{
    if (IsTable(list)) return PrintTable(out, list, depth);
    for (auto const& item : list.Items()) {
        if (item.IsScalar()) {
            Indent(out, depth);
            out << item.Human() << '\n';
        } else {
            PrintBlock(out, item, depth);
            if (item.GetKind() == Value::Kind::Record && &item != &list.Items().back()) out << '\n';
        }
    }
}

void PrintRecord(std::ostream& out, Value const& record, size_t depth)
{
    size_t width = 0;
    for (auto const& [key, value] : record.Fields())
        if (value.IsScalar()) width = std::max(width, key.size());
    for (auto const& [key, value] : record.Fields()) {
        Indent(out, depth);
        if (value.IsScalar()) {
            out << key << ':' << std::string(width - key.size() + 1, ' ') << value.Human() << '\n';
        } else if (value.GetKind() == Value::Kind::List && value.Items().empty()) {
            out << key << ": none\n";
        } else {
            out << key;
            if (value.GetKind() == Value::Kind::List) out << " (" << value.Items().size() << ')';
            out << ":\n";
            PrintBlock(out, value, depth + 1);
        }
    }
}

void PrintBlock(std::ostream& out, Value const& value, size_t depth)
{
    if (value.GetKind() == Value::Kind::List) return PrintList(out, value, depth);
    if (value.GetKind() == Value::Kind::Record) return PrintRecord(out, value, depth);
    Indent(out, depth);
    out << value.Human() << '\n';
}

void WriteJson(std::ostream& out, Value const& value, int depth)
{
    // depth < 0: everything on one line.
    auto const newline = [&](int level) {
        if (depth >= 0) out << '\n' << std::string(static_cast<size_t>(level) * 2, ' ');
    };
    int const inner = depth < 0 ? -1 : depth + 1;
    if (value.GetKind() == Value::Kind::List) {
        out << '[';
        for (size_t i = 0; i < value.Items().size(); ++i) {
            if (i > 0) out << ',';
            newline(inner);
            WriteJson(out, value.Items()[i], inner);
        }
        if (!value.Items().empty()) newline(depth);
        out << ']';
    } else if (value.GetKind() == Value::Kind::Record) {
        out << '{';
        for (size_t i = 0; i < value.Fields().size(); ++i) {
            if (i > 0) out << ',';
            newline(inner);
            out << JsonText(value.Fields()[i].first) << (depth < 0 ? ":" : ": ");
            WriteJson(out, value.Fields()[i].second, inner);
        }
        if (!value.Fields().empty()) newline(depth);
        out << '}';
    } else {
        out << value.Json();
    }
}

}  // namespace

void PrintHuman(std::ostream& out, Value const& value) { PrintBlock(out, value, 0); }

void PrintJson(std::ostream& out, Value const& value)
{
    WriteJson(out, value, 0);
    out << '\n';
}

void PrintLine(std::ostream& out, Value const& value, bool json)
{
    if (json) {
        WriteJson(out, value, -1);
    } else {
        std::string line;
        for (auto const& [key, field] : value.Fields()) {
            if (field.Human().empty()) continue;
            if (!line.empty()) line += "  ";
            line += field.Human();
        }
        out << line;
    }
    out << '\n' << std::flush;
}

}  // namespace zk
