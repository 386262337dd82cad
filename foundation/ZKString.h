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

#include <memory>
#include <string>

#include "ZKContainer.h"
#include "ZKExport.h"

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

private:
    std::unique_ptr<std::string> stringData;
};

// Both libraries export this instantiation. mingw's GCC neither exports the
// inline members of an exported template instantiation nor instantiates
// them for a caller that declares it extern, so only non-Windows callers
// take it from the library; Windows callers instantiate it themselves.
#if !defined(_WIN32)
extern template class ZK_API ZKContainer<ZKString>;
#endif
