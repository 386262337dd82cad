#pragma once

// ZKXMLParser: loads a file's bytes and runs them through a small
// table-driven LL(1) parser that reports every step on the debug output
// (__DOUT__: standard output and the debugger). Despite the name it does not
// read XML in this release: the table holds a two-rule expression grammar,
//     S -> F   |   S -> ( S + F )        F -> operand
// where an operand is any byte isalnum accepts (on its unsigned value), no
// tree is built, and ParseXMLFileData returns FALSE ON EVERY PATH; only the
// debug lines tell a full match from a failure. Lines, one per step, each
// ending in a line feed:
//     "Matched symbols: <n>"   the byte matched the terminal on the stack
//     "Rule <r>"               the table's rule for (stack top, byte), 0 if none
//     "parsing table defaulted" after "Rule 0": the parse stops there
// Symbols: 0 "(", 1 ")", 2 operand, 3 "+", 4 end of text (NUL), 5 any other
// byte, 6 S, 7 F. So "a" gives Rule 1, Rule 3, Matched symbols: 2, Matched
// symbols: 4, and an ordinary XML file, which begins with "<", gives Rule 0
// and "parsing table defaulted" and nothing else.
//
// Copies and moves take m_xmlText alone: a copy gets an empty m_tokenText
// and a fresh m_elements. The copy and move constructors set m_currentToken
// to ZK_TOKEN_INVALID and m_tokenPosition to 0, as the default constructor
// does; both assignments leave those two as they were. Nothing else reads or
// writes m_currentToken, m_tokenText, m_tokenPosition or m_elements.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

// The token a byte stands for; see ZKXMLParser::GetTokenFromCharacter.
enum ZKTokenType : int {
    ZK_TOKEN_INVALID = -1,     // any byte no row below takes
    ZK_TOKEN_END = 0,          // NUL
    ZK_TOKEN_OPEN_ANGLE = 1,   // <
    ZK_TOKEN_CLOSE_ANGLE = 2,  // >
    ZK_TOKEN_RESERVED = 3,     // no byte maps to it
    ZK_TOKEN_TEXT = 4,         // tab, line feed, carriage return, 0x21-0x7E not taken above
    ZK_TOKEN_SPACE = 5,        // the blank
    ZK_TOKEN_QUESTION = 6,     // ?
    ZK_TOKEN_EXCLAMATION = 7,  // !
};

// The element type of ZKXMLParser's element list. No code creates, reads
// or frees one; it has no members.
struct ZKXMLElement {};

class ZK_API ZKXMLParser {
public:
    ZKXMLParser();
    ZKXMLParser(ZKXMLParser const& other);
    ZKXMLParser(ZKXMLParser&& other);
    virtual ~ZKXMLParser();

    ZKXMLParser& operator=(ZKXMLParser const& other);  // the text alone
    ZKXMLParser& operator=(ZKXMLParser&& other);       // the text alone, moved

    // Reads the whole file at `path` (opened for text reading) into
    // m_xmlText. False, keeping the old text, when the file does not open.
    // True otherwise, also for an empty file; a failed read is not reported.
    bool OpenXMLFile(ZKString const& path);
    // Runs the parser over m_xmlText, writing its debug lines, and returns
    // false. An empty text returns false without a line.
    bool ParseXMLFileData();
    // OpenXMLFile, then ParseXMLFileData: false in every case.
    bool OpenXMLFileAndParse(ZKString const& path);

private:
    // NUL, "<", ">", "?", "!" and the blank map to their own tokens; tab,
    // line feed, carriage return and the other bytes 0x21-0x7E to
    // ZK_TOKEN_TEXT; everything else to ZK_TOKEN_INVALID. Unused by the
    // parser.
    ZKTokenType GetTokenFromCharacter(unsigned char c);

    ZKString m_xmlText;
    ZKTokenType m_currentToken;
    ZKString m_tokenText;
    unsigned long long m_tokenPosition;
    ZKContainer<ZKXMLElement*> m_elements;
};
