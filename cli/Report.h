#pragma once

// What a command reports, built once and printed either for people (aligned
// "key: value" lines and tables) or as JSON for scripts.

#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace zk {

class Value {
public:
    enum class Kind { Text, Number, Bool, List, Record };

    static Value Text(std::string text);
    static Value Number(long long number);
    static Value Unsigned(unsigned long long number);
    // Written in hexadecimal for people, as a plain number in JSON.
    static Value Hex(unsigned long long number, int digits = 0);
    static Value Decimal(double number, int precision);
    static Value Bool(bool value);
    // A number people read in the form given (a size in MiB, a time), plain in
    // JSON.
    static Value Measured(std::string forPeople, unsigned long long number);
    static Value List();
    static Value Record();

    // A record's field, in the order added; returns the record.
    Value& Add(std::string key, Value value);
    // A list's item; returns the list.
    Value& Push(Value value);

    Kind GetKind() const { return kind; }
    bool IsScalar() const { return kind != Kind::List && kind != Kind::Record; }
    std::string const& Human() const { return human; }
    std::string const& Json() const { return json; }
    std::vector<std::pair<std::string, Value>> const& Fields() const { return fields; }
    std::vector<Value> const& Items() const { return items; }
    Value const* Find(std::string const& key) const;

private:
    Value(Kind k, std::string forPeople, std::string forScripts);

    Kind kind;
    std::string human;  // scalars: the text people read
    std::string json;   // scalars: the JSON literal
    std::vector<std::pair<std::string, Value>> fields;
    std::vector<Value> items;
};

// A JSON string literal; bytes that are not well-formed UTF-8 are written as
// the characters U+0080..U+00FF of the same number.
std::string JsonText(std::string const& text);

void PrintHuman(std::ostream& out, Value const& value);
void PrintJson(std::ostream& out, Value const& value);
// One line: a record's values joined by blanks, or its JSON on one line.
void PrintLine(std::ostream& out, Value const& value, bool json);

}  // namespace zk
