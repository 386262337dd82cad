// ZKString: numbers to text and back, printf/scanf-style formatting and
// scanning, the free operators, and the byte-size and hexadecimal formatters.

#include <cctype>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "ZKString.h"

namespace {

// ---- Numbers to text ----------------------------------------------------------

template <class T>
ZKString DecimalText(T value)
{
    char digits[24];
    auto const result = std::to_chars(digits, digits + sizeof digits, value);
    return ZKString(digits, static_cast<int>(result.ptr - digits));
}

// ---- Text to numbers ----------------------------------------------------------

[[noreturn]] void ThrowInvalid(char const* name)
{
    throw std::invalid_argument(std::string("invalid ") + name + " argument");
}

[[noreturn]] void ThrowOutOfRange(char const* name)
{
    throw std::out_of_range(std::string(name) + " argument out of range");
}

// Runs one strtol-family conversion with errno cleared first; raises the
// invalid-argument error when nothing was converted and reports whether the
// conversion itself overflowed.
template <class Conversion>
auto Convert(char const* text, char const* name, bool& overflow, Conversion convert)
{
    char* end = nullptr;
    int const savedErrno = errno;
    errno = 0;
    auto const value = convert(text, &end);
    overflow = errno == ERANGE;
    if (errno == 0) errno = savedErrno;
    if (end == text) ThrowInvalid(name);
    return value;
}

// Signed 32-bit conversion (strtol where long has 32 bits), on every target.
int ToSigned32(char const* text)
{
    bool overflow = false;
    long long const value = Convert(text, "stoi", overflow,
                                    [](char const* t, char** e) { return std::strtoll(t, e, 10); });
    if (overflow || value < INT_MIN || value > INT_MAX) ThrowOutOfRange("stoi");
    return static_cast<int>(value);
}

// True when the number in `text` begins with a minus sign after the
// whitespace that strtoul skips.
bool HasMinusSign(char const* text)
{
    while (std::isspace(static_cast<unsigned char>(*text))) ++text;
    return *text == '-';
}

// Unsigned 32-bit conversion (strtoul where long has 32 bits), on every
// target: a magnitude up to 2^32 - 1 is accepted with either sign, and a
// minus sign negates it modulo 2^32.
unsigned int ToUnsigned32(char const* text)
{
    bool overflow = false;
    unsigned long long const value = Convert(text, "stoul", overflow,
                                             [](char const* t, char** e) { return std::strtoull(t, e, 10); });
    bool const negative = HasMinusSign(text);
    unsigned long long const magnitude = negative ? 0 - value : value;
    if (overflow || magnitude > UINT_MAX) ThrowOutOfRange("stoul");
    return static_cast<unsigned int>(value);  // the low 32 bits of -magnitude when negative
}

long long ToSigned64(char const* text)
{
    bool overflow = false;
    long long const value = Convert(text, "stoll", overflow,
                                    [](char const* t, char** e) { return std::strtoll(t, e, 10); });
    if (overflow) ThrowOutOfRange("stoll");
    return value;
}

unsigned long long ToUnsigned64(char const* text)
{
    bool overflow = false;
    unsigned long long const value = Convert(text, "stoull", overflow,
                                             [](char const* t, char** e) { return std::strtoull(t, e, 10); });
    if (overflow) ThrowOutOfRange("stoull");
    return value;
}

float ToFloatValue(char const* text)
{
    bool overflow = false;
    float const value = Convert(text, "stof", overflow, [](char const* t, char** e) { return std::strtof(t, e); });
    if (overflow) ThrowOutOfRange("stof");
    return value;
}

double ToDoubleValue(char const* text)
{
    bool overflow = false;
    double const value = Convert(text, "stod", overflow, [](char const* t, char** e) { return std::strtod(t, e); });
    if (overflow) ThrowOutOfRange("stod");
    return value;
}

// ---- Formatting ------------------------------------------------------------------

// The formatting core: a counting pass, then the real one into a buffer of
// exactly that size. `arguments` is left unconsumed.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::string FormatToString(char const* format, va_list arguments)
{
    va_list counting;
    va_copy(counting, arguments);
    int const length = std::vsnprintf(nullptr, 0, format, counting);
    va_end(counting);
    if (length <= 0) return std::string();

    std::string buffer(static_cast<std::size_t>(length), '\0');
    va_list writing;
    va_copy(writing, arguments);
    std::vsnprintf(buffer.data(), buffer.size() + 1, format, writing);
    va_end(writing);
    buffer.resize(std::strlen(buffer.c_str()));  // up to the first zero byte (a %c of 0)
    return buffer;
}

void ScanText(char const* text, char const* format, va_list arguments)
{
    if (text == nullptr || format == nullptr) return;
    va_list scanning;
    va_copy(scanning, arguments);
    std::vsscanf(text, format, scanning);
    va_end(scanning);
}
#pragma GCC diagnostic pop

ZKString FixedPoint(double value, unsigned int precision)
{
    return ZKString::FormatStr("%.*f", static_cast<int>(precision), value);
}

}  // namespace

// ---- Numbers to text ----------------------------------------------------------------

ZKString ZKString::ToString(signed char value) { return DecimalText(static_cast<int>(value)); }
ZKString ZKString::ToString(short value) { return DecimalText(value); }
ZKString ZKString::ToString(int value) { return DecimalText(value); }
ZKString ZKString::ToString(long long value) { return DecimalText(value); }
ZKString ZKString::ToString(unsigned char value) { return DecimalText(static_cast<unsigned int>(value)); }
ZKString ZKString::ToString(unsigned short value) { return DecimalText(value); }
ZKString ZKString::ToString(unsigned int value) { return DecimalText(value); }
ZKString ZKString::ToString(unsigned long long value) { return DecimalText(value); }
ZKString ZKString::ToString(float value, unsigned int precision)
{
    return FixedPoint(static_cast<double>(value), precision);
}
ZKString ZKString::ToString(double value, unsigned int precision) { return FixedPoint(value, precision); }

// ---- Text to numbers ------------------------------------------------------------------
// Three forms per name: on a C string, on a ZKString up to its first zero
// byte, and on this string.

#define ZK_TEXT_TO_NUMBER(Name, Type, convert)                                                  \
    Type ZKString::Name(char const* text) { return static_cast<Type>(convert(text)); }        \
    Type ZKString::Name(ZKString const& text) { return Name(text.GetString()); }              \
    Type ZKString::Name() const { return Name(GetString()); }

ZK_TEXT_TO_NUMBER(ToInt8, signed char, ToSigned32)
ZK_TEXT_TO_NUMBER(ToInt16, short, ToSigned32)
ZK_TEXT_TO_NUMBER(ToInt32, int, ToSigned32)
ZK_TEXT_TO_NUMBER(ToInt64, long long, ToSigned64)
ZK_TEXT_TO_NUMBER(ToUInt8, unsigned char, ToUnsigned32)
ZK_TEXT_TO_NUMBER(ToUInt16, unsigned short, ToUnsigned32)
ZK_TEXT_TO_NUMBER(ToUInt32, unsigned int, ToUnsigned32)
ZK_TEXT_TO_NUMBER(ToUInt64, unsigned long long, ToUnsigned64)
ZK_TEXT_TO_NUMBER(ToFloat, float, ToFloatValue)
ZK_TEXT_TO_NUMBER(ToDouble, double, ToDoubleValue)

#undef ZK_TEXT_TO_NUMBER

// ---- Formatting and scanning ----------------------------------------------------------

ZKString ZKString::FormatStr(char const* format, va_list* arguments)
{
    ZKString result;
    if (arguments != nullptr) *result.stringData = FormatToString(format, *arguments);
    return result;
}

ZKString ZKString::FormatStr(char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ZKString result;
    *result.stringData = FormatToString(format, arguments);
    va_end(arguments);
    return result;
}

ZKString ZKString::FormatStr(ZKString format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ZKString result;
    *result.stringData = FormatToString(format.GetString(), arguments);
    va_end(arguments);
    return result;
}

void ZKString::Format(char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string formatted = FormatToString(format, arguments);
    va_end(arguments);
    *stringData = std::move(formatted);
}

void ZKString::Format(ZKString format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string formatted = FormatToString(format.GetString(), arguments);
    va_end(arguments);
    *stringData = std::move(formatted);
}

void ZKString::Scan(char const* text, char const* format, va_list* arguments)
{
    if (arguments != nullptr) ScanText(text, format, *arguments);
}

void ZKString::Scan(ZKString const& text, ZKString const& format, va_list* arguments)
{
    Scan(text.GetString(), format.GetString(), arguments);
}

void ZKString::Scan(char const* text, char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ScanText(text, format, arguments);
    va_end(arguments);
}

void ZKString::Scan(ZKString const& text, ZKString const& format, ...)
{
    ZKString const formatCopy(format);  // up to its first zero byte
    va_list arguments;
    va_start(arguments, format);
    ScanText(text.GetString(), formatCopy.GetString(), arguments);
    va_end(arguments);
}

void ZKString::Scan(char const* format, ...) const
{
    va_list arguments;
    va_start(arguments, format);
    ScanText(GetString(), format, arguments);
    va_end(arguments);
}

void ZKString::Scan(ZKString const& format, ...) const
{
    va_list arguments;
    va_start(arguments, format);
    ScanText(GetString(), format.GetString(), arguments);
    va_end(arguments);
}

// ---- Free operators ---------------------------------------------------------------------

bool operator==(char const* left, ZKString const& right) { return right == left; }
bool operator!=(char const* left, ZKString const& right) { return right != left; }
bool operator==(char left, ZKString const& right) { return right == left; }
bool operator!=(char left, ZKString const& right) { return right != left; }
ZKString operator+(char const* left, ZKString const& right) { return ZKString(left) + right; }
ZKString operator+(char left, ZKString const& right) { return ZKString(left) + right; }

// ---- Byte sizes --------------------------------------------------------------------------

ZKString FormatStrBytesToKB(unsigned long long bytes, unsigned int precision)
{
    return FixedPoint(static_cast<double>(bytes) * 0x1p-10, precision);
}

ZKString FormatStrBytesToMB(unsigned long long bytes, unsigned int precision)
{
    return FixedPoint(static_cast<double>(bytes) * 0x1p-20, precision);
}

ZKString FormatStrBytesToGB(unsigned long long bytes, unsigned int precision)
{
    return FixedPoint(static_cast<double>(bytes) * 0x1p-30, precision);
}

// ---- Hexadecimal -------------------------------------------------------------------------

ZKString FormatStrValueToHex(unsigned long long value, bool pad, unsigned char width)
{
    char digits[16];
    auto const result = std::to_chars(digits, digits + sizeof digits, value, 16);
    auto const length = static_cast<std::size_t>(result.ptr - digits);
    std::size_t const padding = pad && width > length ? width - length : 0;
    std::string text(padding, '0');
    text.append(digits, length);
    return ZKString(text.c_str(), static_cast<int>(text.size()));
}

unsigned long long FormatStrHexToValue(ZKString const& text)
{
    std::istringstream stream(text.GetString());
    unsigned long long value = 0;
    stream >> std::hex >> value;  // failure stores 0, overflow the maximum
    return value;
}

ZKString FormatStrBytesToHex(unsigned char const* bytes, unsigned int count, unsigned int bytesPerLine)
{
    if (bytes == nullptr || count == 0) return ZKString();
    static constexpr char kDigits[] = "0123456789abcdef";
    // Each byte: "000000" and its two digits, then a space unless it is the
    // last one, then a line feed after every full line.
    std::string text;
    text.reserve(static_cast<std::size_t>(count) * 9 + (bytesPerLine ? count / bytesPerLine : 0));
    unsigned int column = 0;
    for (unsigned int i = 0; i < count; ++i) {
        bool const last = i + 1 == count;
        text.append("000000", 6);
        text.push_back(kDigits[bytes[i] >> 4]);
        text.push_back(kDigits[bytes[i] & 15]);
        if (!last) text.push_back(' ');
        if (++column == bytesPerLine && !last) {
            text.push_back('\n');
            column = 0;
        }
    }
    return ZKString(text.c_str(), static_cast<int>(text.size()));
}

ZKString FormatStrBytesToHex(ZKString const& bytes, unsigned int bytesPerLine)
{
    return FormatStrBytesToHex(reinterpret_cast<unsigned char const*>(bytes.GetString()),
                               static_cast<unsigned int>(bytes.GetSize()), bytesPerLine);
}
