#pragma once

// ZKString: a byte string behind a handle. Every ZKString, even an empty
// one, owns one heap-allocated standard string. Text is bytes; where it meets
// wide text it is UTF-8, and wide text is UTF-16 (see ZKWideChar).
//
// A text may hold zero bytes. Which operations see the whole counted text
// and which stop at the first zero byte is fixed, and deliberately not
// uniform:
//   whole text:  operator=(ZKString const&), moves, the counted constructors
//                and SetString forms, ==/!= against a ZKString, Clear,
//                IsEmpty, GetSize.
//   cut at the first zero byte of the source: the copy constructor,
//                SetString(ZKString const&), operator+=(ZKString const&),
//                every operator+ (on the joined result), both GetString
//                forms that return a ZKString, and the Insert forms taking a
//                ZKString.
// So a copy-constructed string can differ from an assigned one.
//
// Errors: a negative length, or a size the standard string cannot hold,
// throws std::length_error("string too long"); an index or position past the
// size in At or Insert throws std::out_of_range("invalid string position").
// A failing call leaves the target as it was, except where noted.

#include <cstdarg>
#include <memory>
#include <string>

#include "ZKContainer.h"
#include "ZKExport.h"

// Format checking for the printf- and scanf-like members. mingw's printf
// family is the C99 one (libstdc++ turns on its ANSI stdio), hence gnu_*.
#if defined(_WIN32)
#  define ZK_PRINTF_LIKE(formatIndex, firstIndex) __attribute__((__format__(gnu_printf, formatIndex, firstIndex)))
#  define ZK_SCANF_LIKE(formatIndex, firstIndex) __attribute__((__format__(gnu_scanf, formatIndex, firstIndex)))
#else
#  define ZK_PRINTF_LIKE(formatIndex, firstIndex) __attribute__((__format__(printf, formatIndex, firstIndex)))
#  define ZK_SCANF_LIKE(formatIndex, firstIndex) __attribute__((__format__(scanf, formatIndex, firstIndex)))
#endif

namespace zk64::detail {
struct TextAccess;
}

class ZK_API ZKString {
public:
    ZKString();
    // Copies up to other's first zero byte.
    ZKString(ZKString const& other);
    // Exactly `length` bytes from the start of other's buffer, also past its
    // size: those bytes read as zero (the terminator and zero padding).
    ZKString(ZKString const& other, int length);
    // Takes other's text; other stays a valid empty string.
    ZKString(ZKString&& other);
    // Up to the terminating zero; text must not be null.
    ZKString(char const* text);
    // Exactly `length` bytes, zero bytes included; the caller guarantees them.
    ZKString(char const* text, int length);
    // Size 1, also for a zero byte.
    ZKString(char c);
    // UTF-16 to UTF-8; null gives an empty string.
    ZKString(ZKWideChar const* text);
    // Converts the whole wide text, then cuts the UTF-8 result to `length`
    // bytes (a longer length leaves it whole).
    ZKString(ZKWideChar const* text, int length);
    virtual ~ZKString();

    ZKString& operator=(ZKString const& other);  // whole text
    ZKString& operator=(ZKString&& other);       // source becomes empty
    ZKString& operator=(char const* text);
    ZKString& operator=(char c);

    void SetString(ZKString const& other);              // cut at other's first zero
    void SetString(char const* text);
    void SetString(ZKString const& other, int length);  // as the counted constructor
    void SetString(char const* text, int length);
    void SetString(char c);
    // Null leaves the old text; otherwise UTF-16 to UTF-8.
    void SetString(ZKWideChar const* text);
    // As the previous form, then cut to `length` bytes; null still cuts.
    void SetString(ZKWideChar const* text, int length);

    // Byte-exact. Against char const*, the other side's length is its
    // zero-terminated length; against char, the size must be exactly 1.
    bool operator==(ZKString const& other) const;
    bool operator==(char const* text) const;
    bool operator==(char c) const;
    bool operator!=(ZKString const& other) const;
    bool operator!=(char const* text) const;
    bool operator!=(char c) const;

    ZKString& operator+=(ZKString const& other);  // up to other's first zero
    ZKString& operator+=(char const* text);
    ZKString& operator+=(char c);                 // one byte, zero included
    // Join both texts, then keep the joined text up to its first zero byte.
    ZKString operator+(ZKString const& other) const;
    ZKString operator+(char const* text) const;
    ZKString operator+(char c) const;

    // Unchecked: index == size reaches the terminator.
    char operator[](unsigned int index) const;
    char& operator[](unsigned int index);
    // Checked: index >= size throws "invalid string position".
    char At(unsigned int index) const;
    char& At(unsigned int index);

    // The zero-terminated buffer, valid until the next change.
    char const* GetString() const;
    // The first `count` bytes, cut at the first zero; empty if count > size.
    ZKString GetString(unsigned long long count) const;
    // At most `count` bytes from `position`, cut at the first zero; empty if
    // position >= size.
    ZKString GetString(unsigned long long position, unsigned int count) const;
    int GetSize() const;
    bool IsEmpty() const;
    bool IsNotEmpty() const;
    void Clear();  // keeps the buffer
    void Reserve(unsigned long long capacity);
    void Resize(unsigned long long size);  // shortens or pads with zero bytes

    // Insertion before `position`; a position past the size throws.
    void Insert(char c);                           // at the start
    void Insert(char c, unsigned int position);    // a zero byte inserts nothing
    void Insert(ZKString const& text);             // at the start, cut at its first zero
    void Insert(ZKString const& text, unsigned int position);
    // `count` copies in a row, worked on a copy of this string (cut at its
    // first zero byte, even for a count of 0) that is assigned back at the
    // end, so a failing position leaves this string untouched.
    void Insert(ZKString const& text, unsigned int count, unsigned int position);
    // The same directly on `target`: copy k (from 0) lands at
    // position + k * text.GetSize(). A count of 0 returns at once. A failing
    // position keeps the copies already inserted.
    static void Insert(ZKString& target, ZKString const& text, unsigned int count,
                       unsigned int position);

    // UTF-8 (up to the first zero byte) to a new zeroed UTF-16 buffer. The
    // needed size counts the terminator. With `length`, the caller offers a
    // minimum: a *length above the need sizes the buffer and stays; otherwise
    // *length becomes the need. `written` receives the units written,
    // terminator included. Release the buffer with CleanupWideString only.
    static ZKWideChar* GetWideString(ZKString const& text, unsigned int* length,
                                     unsigned int* written);
    ZKWideChar* GetWideString(unsigned int* length, unsigned int* written) const;
    static void CleanupWideString(ZKWideChar** text);

    // ---- Search -------------------------------------------------------------
    // Positions are signed 64-bit, -1 for a miss. A hit at 4,294,967,295 is
    // reported as -1 too (the miss test also compares with the 32-bit all-ones
    // value). The int position widens with its sign, so a negative one is a
    // huge unsigned position.
    //
    // Find: first hit at or after `position`; a position at or past the size
    // (or negative) misses. An empty text is found at `position` itself while
    // that is at most the size.
    long long Find(char c, int position) const;
    long long Find(char const* text, int position) const;
    long long Find(ZKString const& text, int position) const;  // text cut at its first zero
    // RFind: last hit beginning at or before `position`; -1 (or any negative
    // or too large position) means from the end. An empty text gives the
    // smaller of the size and the position.
    long long RFind(char c, int position) const;
    long long RFind(char const* text, int position) const;
    long long RFind(ZKString const& text, int position) const;

    // Looks for `pattern` as adjacent bytes in text[textPosition, textEnd),
    // starting the pattern at patternPosition, with a scan that never backs
    // up: after a mismatch the scan restarts the pattern at the next text
    // byte, so "aab" is not found in "aaab". An empty pattern never matches;
    // textPosition == textEnd gives false. With ignoreCase both sides go
    // through tolower.
    // Outcomes for arguments outside the text or pattern: a null text or
    // pattern, a negative textPosition or a negative patternLength gives
    // false; a patternPosition outside [0, patternLength) is a pattern byte
    // that matches nothing (a negative one therefore never matches, one past
    // the pattern mismatches once and the scan goes on from the pattern's
    // start).
    static bool FindSubsequence(int textPosition, int patternPosition, char const* text, int textEnd,
                                char const* pattern, int patternLength, bool ignoreCase);
    bool FindSubsequence(char const* pattern, bool ignoreCase) const;      // pattern to its terminator
    bool FindSubsequence(ZKString const& pattern, bool ignoreCase) const;  // pattern's whole counted text

    // Printable: tab, line feed, carriage return and 32..126.
    static bool IsBytePrintable(unsigned char const& byte);
    // Tab, line feed, form feed, carriage return and space; not vertical tab.
    static bool IsByteWhitespace(unsigned char const& byte);
    // What isalnum says.
    static bool IsByteAlphanumeric(unsigned char const& byte);

    // Strings extractor: one pass that picks out runs of printable bytes and
    // UTF-16LE runs (printable, zero, printable, ...), appending each found
    // run to `out` (old items stay). An item reads as a zero-terminated text
    // of n bytes (n at most 8,191) while its GetSize is 2n: the bytes behind
    // the zero are whatever the extractor's run buffer held. A run that
    // reaches the end of the data is dropped. True when `out` holds at least
    // one item afterwards. minimumLength + 1 is computed without wrapping, so
    // a minimum of 4,294,967,295 is simply never reached. The static form
    // reads `data` while it pushes, so `data` must not be an item of `out`;
    // the member form works on a copy of this string.
    static bool FindStringsInBinaryData(ZKString const& data, unsigned int const& minimumLength,
                                        bool const& findWide, ZKContainer<ZKString>& out);
    bool FindStringsInBinaryData(unsigned int const& minimumLength, bool const& findWide,
                                 ZKContainer<ZKString>& out) const;

    // False for null; an empty text gives true. The ZKString forms use the
    // argument up to its first zero byte.
    bool StartsWith(char const* text) const;
    bool StartsWith(ZKString const& text) const;
    bool EndsWith(char const* text) const;
    bool EndsWith(ZKString const& text) const;

    // ---- Edit ---------------------------------------------------------------
    // Every `from` byte of the counted text becomes `to`; returns how many.
    unsigned long long ReplaceAll(char from, char to);
    // Replaces an occurrence and searches again from the same position, so
    // the replacement is searched along with what follows it: "aaaa" with
    // "aa" -> "a" ends as "a" after 3 replacements. Returns the count.
    // Arguments that would never finish that way are refused: an empty
    // `from`, or a `to` that contains `from` while `from` occurs in the text,
    // leave the text unchanged and give 0.
    unsigned long long ReplaceAll(char const* from, char const* to);
    unsigned long long ReplaceAll(ZKString const& from, ZKString const& to);  // both cut at their first zero
    bool ReplaceOnceFromStart(char from, char to);
    bool ReplaceOnceFromStart(char const* from, char const* to);
    bool ReplaceOnceFromStart(ZKString const& from, ZKString const& to);
    bool ReplaceOnceFromEnd(char from, char to);
    bool ReplaceOnceFromEnd(char const* from, char const* to);
    bool ReplaceOnceFromEnd(ZKString const& from, ZKString const& to);
    // Removes every byte 32 and no other whitespace.
    void RemoveAllSpaces();
    // Each byte through toupper / tolower (only ASCII letters unless the
    // application has set a locale).
    void ToUpper();
    void ToLower();

    // Split at any byte of `delimiters`: runs of delimiters count as one, a
    // leading delimiter gives no empty first item, a trailing one gives one
    // empty last item, and the rest of the text is always pushed (an empty
    // text gives one empty item). A zero `delimiter` is an empty set, so
    // nothing splits. The text is read up to its first zero byte. The bool
    // has no effect. Results are appended through the virtual PushBack; with
    // a null out, text or delimiters nothing happens.
    static void Split(char const* text, char const* delimiters, bool flag, ZKContainer<ZKString>* out);
    static void Split(char const* text, char delimiter, bool flag, ZKContainer<ZKString>* out);
    static void Split(ZKString const& text, char delimiter, bool flag, ZKContainer<ZKString>* out);
    static void Split(ZKString const& text, char const* delimiters, bool flag, ZKContainer<ZKString>* out);
    static ZKContainer<ZKString> Split(char const* text, char delimiter, bool flag);
    static ZKContainer<ZKString> Split(char const* text, char const* delimiters, bool flag);
    static ZKContainer<ZKString> Split(ZKString const& text, char delimiter, bool flag);
    static ZKContainer<ZKString> Split(ZKString const& text, char const* delimiters, bool flag);
    ZKContainer<ZKString> Split(char delimiter, bool flag) const;
    ZKContainer<ZKString> Split(char const* delimiters, bool flag) const;

    // ---- Conversion ---------------------------------------------------------
    // Decimal; a signed char is a number, never a character.
    static ZKString ToString(signed char value);
    static ZKString ToString(short value);
    static ZKString ToString(int value);
    static ZKString ToString(long long value);
    static ZKString ToString(unsigned char value);
    static ZKString ToString(unsigned short value);
    static ZKString ToString(unsigned int value);
    static ZKString ToString(unsigned long long value);
    // "%.*f" with `precision` digits after the point (the float widened to
    // double); precision 0 prints no point.
    static ZKString ToString(float value, unsigned int precision);
    static ZKString ToString(double value, unsigned int precision);

    // Text to number, strtol-style: leading whitespace, an optional sign, the
    // longest valid number, trailing bytes ignored. No digits throws
    // std::invalid_argument, a value outside the conversion's width throws
    // std::out_of_range, with the messages of the standard sto* functions:
    //   ToInt8/16/32  signed 32-bit    "invalid stoi argument"   "stoi argument out of range"
    //   ToInt64       signed 64-bit    "invalid stoll argument"  "stoll argument out of range"
    //   ToUInt8/16/32 unsigned 32-bit  "invalid stoul argument"  "stoul argument out of range"
    //   ToUInt64      unsigned 64-bit  "invalid stoull argument" "stoull argument out of range"
    //   ToFloat       strtof           "invalid stof argument"   "stof argument out of range"
    //   ToDouble      strtod           "invalid stod argument"   "stod argument out of range"
    // The 8- and 16-bit forms cut the 32-bit result without a check (ToInt8
    // of "300" is 44), and the unsigned forms accept a minus sign as strtoul
    // does (ToUInt32 of "-1" is 4294967295). The 32-bit rule holds on every
    // target. The ZKString forms read up to the first zero byte; the text
    // must not be null.
    static signed char ToInt8(char const* text);
    static signed char ToInt8(ZKString const& text);
    signed char ToInt8() const;
    static short ToInt16(char const* text);
    static short ToInt16(ZKString const& text);
    short ToInt16() const;
    static int ToInt32(char const* text);
    static int ToInt32(ZKString const& text);
    int ToInt32() const;
    static long long ToInt64(char const* text);
    static long long ToInt64(ZKString const& text);
    long long ToInt64() const;
    static unsigned char ToUInt8(char const* text);
    static unsigned char ToUInt8(ZKString const& text);
    unsigned char ToUInt8() const;
    static unsigned short ToUInt16(char const* text);
    static unsigned short ToUInt16(ZKString const& text);
    unsigned short ToUInt16() const;
    static unsigned int ToUInt32(char const* text);
    static unsigned int ToUInt32(ZKString const& text);
    unsigned int ToUInt32() const;
    static unsigned long long ToUInt64(char const* text);
    static unsigned long long ToUInt64(ZKString const& text);
    unsigned long long ToUInt64() const;
    static float ToFloat(char const* text);
    static float ToFloat(ZKString const& text);
    float ToFloat() const;
    static double ToDouble(char const* text);
    static double ToDouble(ZKString const& text);
    double ToDouble() const;

    // ---- Formatting and scanning ---------------------------------------------
    // printf-style formatting without a length limit. The base form takes a
    // pointer to the caller's argument list, which it leaves unconsumed; a
    // null pointer gives an empty string, as does an encoding failure.
    // Beware: an argument that converts to va_list* as the only argument
    // after the format selects the base form: a zero constant (0, int{0}),
    // nullptr, and on Windows any char**. Pass such values in a variable of
    // their own type or with a cast.
    static ZKString FormatStr(char const* format, va_list* arguments);
    static ZKString FormatStr(char const* format, ...) ZK_PRINTF_LIKE(1, 2);
    static ZKString FormatStr(ZKString format, ...);
    // Formats and moves the result into this string; the old text is lost.
    void Format(char const* format, ...) ZK_PRINTF_LIKE(2, 3);
    void Format(ZKString format, ...);

    // scanf-style reading through the caller's pointers; the number of fields
    // read is not reported. The text is read up to its first zero byte. A
    // null text, format or list pointer does nothing; the base forms leave
    // the caller's list unconsumed.
    // Beware: the static forms are candidates for a call through an object
    // too, so obj.Scan("%s", buffer) with a char* buffer selects
    // Scan(text, format, ...) and scans the format itself; pass the buffer as
    // anything but a char pointer, or call the static form.
    static void Scan(char const* text, char const* format, va_list* arguments);
    static void Scan(ZKString const& text, ZKString const& format, va_list* arguments);
    static void Scan(char const* text, char const* format, ...) ZK_SCANF_LIKE(2, 3);
    static void Scan(ZKString const& text, ZKString const& format, ...);
    void Scan(char const* format, ...) const ZK_SCANF_LIKE(2, 3);
    void Scan(ZKString const& format, ...) const;

    // ---- Hashing --------------------------------------------------------------
    // HashString (ZKHash.h) on `text` / on this string's text.
    static ZKString Hash(char const* text, unsigned short length, bool useTextLength);
    ZKString Hash(unsigned short length, bool useTextLength) const;

    // ---- Regular expressions -------------------------------------------------
    // The standard regex engine on the text and pattern, both read up to
    // their first zero byte; the pattern is compiled on every call. `flags`
    // is this library's own word; only its four low bits are read:
    //   1 ignore case, 2 ECMAScript, 4 POSIX basic, 8 POSIX extended.
    // No grammar bit means ECMAScript. With several grammar bits the lowest
    // one wins (2 before 4 before 8). Match asks for the whole text, Search
    // for the first (leftmost) match. On success the captures forms append
    // group 0 (the whole match), then each group in order, an unmatched group
    // as an empty item; on failure nothing is appended. A bad pattern throws
    // std::regex_error before the text is looked at.
    static bool RegexMatch(ZKString const& text, ZKString const& pattern, unsigned long long const& flags);
    static bool RegexMatch(ZKString const& text, ZKString const& pattern, ZKContainer<ZKString>& captures,
                           unsigned long long const& flags);
    static bool RegexSearch(ZKString const& text, ZKString const& pattern, unsigned long long const& flags);
    static bool RegexSearch(ZKString const& text, ZKString const& pattern, ZKContainer<ZKString>& captures,
                            unsigned long long const& flags);
    bool RegexMatch(ZKString const& pattern, unsigned long long const& flags) const;
    bool RegexMatch(ZKString const& pattern, ZKContainer<ZKString>& captures,
                    unsigned long long const& flags) const;
    bool RegexSearch(ZKString const& pattern, unsigned long long const& flags) const;
    bool RegexSearch(ZKString const& pattern, ZKContainer<ZKString>& captures,
                     unsigned long long const& flags) const;

private:
    friend struct zk64::detail::TextAccess;

    // The text object lives in the library's string pool and goes back there.
    struct TextRelease {
        void operator()(std::string* text) const noexcept;
    };
    using TextPointer = std::unique_ptr<std::string, TextRelease>;
    template <class... Args>
    static TextPointer MakeText(Args&&... args);

    TextPointer stringData;
};

// Both libraries export this instantiation. mingw's GCC neither exports the
// inline members of an exported template instantiation nor instantiates
// them for a caller that declares it extern, so only non-Windows callers
// take it from the library; Windows callers instantiate it themselves.
#if !defined(_WIN32)
extern template class ZK_API ZKContainer<ZKString>;
#endif

// ---- Free operators: the member rules with the sides exchanged --------------
ZK_API bool operator==(char const* left, ZKString const& right);
ZK_API bool operator!=(char const* left, ZKString const& right);
ZK_API bool operator==(char left, ZKString const& right);  // right has size 1 and equals
ZK_API bool operator!=(char left, ZKString const& right);
// ZKString(left) + right: the joined text is cut at its first zero byte, so a
// zero `left` gives an empty result.
ZK_API ZKString operator+(char const* left, ZKString const& right);
ZK_API ZKString operator+(char left, ZKString const& right);

// ---- Byte sizes: bytes scaled by 2^-10, 2^-20, 2^-30 through "%.*f" ---------
// The number alone, without a unit.
ZK_API ZKString FormatStrBytesToKB(unsigned long long bytes, unsigned int precision);
ZK_API ZKString FormatStrBytesToMB(unsigned long long bytes, unsigned int precision);
ZK_API ZKString FormatStrBytesToGB(unsigned long long bytes, unsigned int precision);

// ---- Hexadecimal: lower-case digits, no prefix ------------------------------
// With `pad` the field is `width` places, zero-filled on the left (a value
// that needs more digits keeps them all); without it `width` is ignored.
ZK_API ZKString FormatStrValueToHex(unsigned long long value, bool pad, unsigned char width);
// Stream extraction in hexadecimal of the text up to its first zero byte:
// leading whitespace and a 0x prefix are accepted, reading stops at the first
// byte that cannot continue. No digits gives 0, more than 64 bits all ones.
ZK_API unsigned long long FormatStrHexToValue(ZKString const& text);
// Every byte as eight hex digits ("000000ab"), separated by one space; after
// every `bytesPerLine` bytes, unless it is the last, a line feed follows the
// separating space. A bytesPerLine of 0 keeps one line. A null `bytes` or a
// count of 0 gives an empty string.
ZK_API ZKString FormatStrBytesToHex(unsigned char const* bytes, unsigned int count, unsigned int bytesPerLine);
ZK_API ZKString FormatStrBytesToHex(ZKString const& bytes, unsigned int bytesPerLine);
