#pragma once

// ZKJSONParser: the skeleton of a JSON reader. In this release it reads no
// JSON: ReadJSONFile only establishes that a file opens and holds at least
// one byte, so it returns true for ANY non-empty file, well-formed or not.
// No text is kept (m_jsonText is never written by reading), nothing is
// tokenised, and ParseJson and NextSym do nothing.
//
// The private helpers are part of the exported shape and have fixed, odd
// answers, which this class keeps:
//   IsCharacter   every byte from 0x20 up, 0x7F and 0x80-0xFF included
//   IsDigit       '0'-'9'
//   IsWhiteSpace  0x00, tab, line feed, carriage return, blank (NUL counts)
//   IsEscape      the nine bytes 0x10 0x14 0x18 0x1C 0x20 0x24 0x28 0x2C 0x30
//   IsExponent    0x00, 0x34, 0x38
//   IsSign        0x00, 0x3C, 0x40
// The last three are fixed byte tables, one slot per escape, exponent or
// sign character, and they do NOT accept those characters themselves:
// IsEscape('n') is false and IsEscape(' ') true, IsExponent('e') is false,
// IsSign('+') is false; the byte 0x30 ('0') happens to be an escape.
//
// ConsumeWhiteSpace and Element share one body: it returns at once unless
// m_symbol is ZK_JSON_SYMBOL_WHITESPACE (24), for which it never returns.
// Nothing writes m_symbol; every constructor leaves it at
// ZK_JSON_SYMBOL_NONE, which keeps both returning.
//
// Copies and moves take m_jsonText and m_lookAhead; m_symbol is never
// copied nor compared.

#include "../files/ZKFile.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

// The reader's symbols. Only the value 24 has a fixed meaning: the one for
// which ConsumeWhiteSpace and Element spin.
enum Symbol : int {
    ZK_JSON_SYMBOL_NONE = 0,
    ZK_JSON_SYMBOL_BEGIN_OBJECT = 1,
    ZK_JSON_SYMBOL_END_OBJECT = 2,
    ZK_JSON_SYMBOL_BEGIN_ARRAY = 3,
    ZK_JSON_SYMBOL_END_ARRAY = 4,
    ZK_JSON_SYMBOL_COLON = 5,
    ZK_JSON_SYMBOL_COMMA = 6,
    ZK_JSON_SYMBOL_STRING = 7,
    ZK_JSON_SYMBOL_NUMBER = 8,
    ZK_JSON_SYMBOL_TRUE = 9,
    ZK_JSON_SYMBOL_FALSE = 10,
    ZK_JSON_SYMBOL_NULL = 11,
    ZK_JSON_SYMBOL_END = 12,
    ZK_JSON_SYMBOL_WHITESPACE = 24,
};

class ZK_API ZKJSONParser {
public:
    ZKJSONParser();
    ZKJSONParser(ZKJSONParser const& other);
    ZKJSONParser(ZKJSONParser&& other);  // moves the text as ZKString moves
    ~ZKJSONParser();

    // Copies m_lookAhead, then the text (a self-assignment leaves it).
    ZKJSONParser& operator=(ZKJSONParser const& other);
    // Copies m_lookAhead and moves the text.
    ZKJSONParser& operator=(ZKJSONParser&& other);
    // Same text (length and bytes) and same m_lookAhead. There is no !=.
    bool operator==(ZKJSONParser const& other) const;

    // False when `file` is already open (nothing changes then), when `path`
    // does not open for reading, or when the file is empty or unreadable
    // (the file is closed again). True otherwise, and the file is LEFT OPEN,
    // positioned behind what was read: a second call on the same ZKFile
    // returns false until the caller closes it.
    bool ReadJSONFile(ZKFile& file, ZKString const& path);
    // The same on a file of its own, which is closed before returning.
    bool ReadJSONFile(ZKString const& path);

private:
    bool AcceptSym(Symbol symbol);  // m_symbol == symbol; advances nothing
    void NextSym();                 // does nothing
    void ParseJson();               // does nothing
    void ConsumeWhiteSpace();       // spins forever while m_symbol is 24
    void Element();                 // the same body
    bool IsCharacter(unsigned char c) const;
    bool IsDigit(unsigned char c) const;
    bool IsWhiteSpace(unsigned char c) const;
    bool IsEscape(unsigned char c) const;
    bool IsExponent(unsigned char c) const;
    bool IsSign(unsigned char c) const;

    ZKString m_jsonText;
    unsigned char m_lookAhead;
    Symbol m_symbol = ZK_JSON_SYMBOL_NONE;
};
