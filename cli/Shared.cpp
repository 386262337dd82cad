#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "Commands.h"

namespace zk {

void Emit(Options const& options, Value const& report)
{
    if (options.json)
        PrintJson(std::cout, report);
    else
        PrintHuman(std::cout, report);
    std::cout.flush();
}

void Warn(Options& options, std::string const& message)
{
    std::cout.flush();
    std::cerr << "zk: " << message << std::endl;
    options.exitCode = 1;
}

std::string ReadWholeFile(std::string const& path)
{
    std::error_code error;
    auto const status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) throw Failure(path + ": no such file");
    if (std::filesystem::is_directory(status)) throw Failure(path + ": is a directory");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw Failure(path + ": cannot be read");
    std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) throw Failure(path + ": cannot be read");
    return bytes;
}

std::string Std(ZKString const& text) { return std::string(text.GetString(), static_cast<size_t>(text.GetSize())); }

unsigned long long ParseNumber(std::string const& text, std::string const& what)
{
    bool const hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    std::string const digits = hex ? text.substr(2) : text;
    if (digits.empty() || digits.size() > 20) throw Failure(what + " '" + text + "' is not a number");
    unsigned long long value = 0;
    for (char c : digits) {
        int digit = c >= '0' && c <= '9'          ? c - '0'
                    : hex && c >= 'a' && c <= 'f' ? c - 'a' + 10
                    : hex && c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                  : -1;
        unsigned long long const base = hex ? 16 : 10;
        if (digit < 0) throw Failure(what + " '" + text + "' is not a number");
        if (value > (~0ull - static_cast<unsigned>(digit)) / base) throw Failure(what + " '" + text + "' is too large");
        value = value * base + static_cast<unsigned>(digit);
    }
    return value;
}

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

char Separator()
{
    static char const separator = ConvertToSystemPath("a").GetString()[1];
    return separator;
}

ZKContainer<ZKString> FindStrings(std::string const& path, unsigned minimum, bool wide)
{
    std::string const bytes = ReadWholeFile(path);
    if (bytes.size() > 0x7FFFFFFFu) throw Failure(path + ": larger than 2 GiB");
    ZKContainer<ZKString> found;
    ZKString::FindStringsInBinaryData(ZKString(bytes.data(), static_cast<int>(bytes.size())), minimum, wide, found);
    return found;
}

Value Bytes(unsigned long long bytes)
{
    if (bytes >= (1ull << 30)) return Value::Measured(Std(FormatStrBytesToGB(bytes, 2)) + " GiB", bytes);
    if (bytes >= (1ull << 20)) return Value::Measured(Std(FormatStrBytesToMB(bytes, 1)) + " MiB", bytes);
    if (bytes >= (1ull << 10)) return Value::Measured(Std(FormatStrBytesToKB(bytes, 1)) + " KiB", bytes);
    return Value::Measured(std::to_string(bytes) + " B", bytes);
}

}  // namespace zk
