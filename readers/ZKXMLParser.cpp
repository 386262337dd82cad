#include "ZKXMLParser.h"

#include <array>
#include <cctype>
#include <sstream>
#include <utility>
#include <vector>

#include "../diagnostics/ZKDebug.h"
#include "../files/ZKFile.h"

template class ZKContainer<ZKXMLElement*>;

namespace {

// The parser's symbols: terminals 0-5, non-terminals 6 and 7.
enum ParserSymbol : int {
    kOpenParen = 0,
    kCloseParen = 1,
    kOperand = 2,
    kPlus = 3,
    kEndOfText = 4,
    kInvalid = 5,
    kS = 6,
    kF = 7,
};
constexpr int kSymbolCount = 8;

ParserSymbol Classify(unsigned char byte)
{
    if (byte == '(') return kOpenParen;
    if (byte == ')') return kCloseParen;
    if (std::isalnum(byte)) return kOperand;
    if (byte == '+') return kPlus;
    if (byte == 0) return kEndOfText;
    return kInvalid;
}

// The parse table: the rule for (stack top, next symbol), 0 for none.
//   1: S -> F    2: S -> ( S + F )    3: F -> operand
using ParseTable = std::array<std::array<int, kSymbolCount>, kSymbolCount>;
constexpr ParseTable MakeParseTable()
{
    ParseTable table{};
    table[kS][kOpenParen] = 2;
    table[kS][kOperand] = 1;
    table[kF][kOperand] = 3;
    return table;
}
constexpr ParseTable kParseTable = MakeParseTable();

// Each rule's right-hand side in push order (its last symbol ends on top).
void PushRule(std::vector<int>& stack, int rule)
{
    switch (rule) {
    case 1: stack.push_back(kF); break;
    case 2: stack.insert(stack.end(), {kCloseParen, kF, kPlus, kS, kOpenParen}); break;
    case 3: stack.push_back(kOperand); break;
    default: break;
    }
}

// One debug line: the literal, the number, a line feed.
void EmitLine(char const* literal, int number)
{
    std::stringstream line;
    line << literal << number << std::endl;
    __DOUT__(line);
}

void EmitLine(char const* literal)
{
    std::stringstream line;
    line << literal << std::endl;
    __DOUT__(line);
}

// Bytes GetTokenFromCharacter takes as text: tab, line feed, carriage return
// and 0x20-0x7E.
constexpr std::array<bool, 256> MakeTextBytes()
{
    std::array<bool, 256> bytes{};
    bytes[0x09] = bytes[0x0A] = bytes[0x0D] = true;
    for (int c = 0x20; c <= 0x7E; ++c) bytes[static_cast<unsigned>(c)] = true;
    return bytes;
}
constexpr std::array<bool, 256> kTextBytes = MakeTextBytes();

}  // namespace

ZKXMLParser::ZKXMLParser() : m_currentToken(ZK_TOKEN_INVALID), m_tokenPosition(0) {}

ZKXMLParser::ZKXMLParser(ZKXMLParser const& other)
    : m_xmlText(other.m_xmlText), m_currentToken(ZK_TOKEN_INVALID), m_tokenPosition(0)
{
}

ZKXMLParser::ZKXMLParser(ZKXMLParser&& other)
    : m_xmlText(std::move(other.m_xmlText)), m_currentToken(ZK_TOKEN_INVALID), m_tokenPosition(0)
{
}

ZKXMLParser::~ZKXMLParser() = default;

ZKXMLParser& ZKXMLParser::operator=(ZKXMLParser const& other)
{
    if (this != &other) m_xmlText = other.m_xmlText;
    return *this;
}

ZKXMLParser& ZKXMLParser::operator=(ZKXMLParser&& other)
{
    m_xmlText = std::move(other.m_xmlText);  // ZKString ignores a self-move
    return *this;
}

bool ZKXMLParser::OpenXMLFile(ZKString const& path)
{
    ZKFile file;
    if (!file.OpenFile(path.GetString(), FILE_STREAM_READ)) return false;
    m_xmlText.Clear();
    file.ReadData(m_xmlText);
    file.CloseFile();
    return true;
}

bool ZKXMLParser::ParseXMLFileData()
{
    if (m_xmlText.IsEmpty()) return false;
    // The cursor may reach the terminating NUL, which is the end-of-text
    // symbol; matching that symbol empties the stack, and any other top
    // meets it without a table entry, so the cursor never passes it.
    char const* cursor = m_xmlText.GetString();
    std::vector<int> stack{kEndOfText, kS};
    while (!stack.empty()) {
        int const top = stack.back();
        ParserSymbol const next = Classify(static_cast<unsigned char>(*cursor));
        if (top == next) {
            EmitLine("Matched symbols: ", next);
            ++cursor;
            stack.pop_back();
            continue;
        }
        int const rule = kParseTable[static_cast<unsigned>(top)][next];
        EmitLine("Rule ", rule);
        if (rule < 1 || rule > 3) {
            EmitLine("parsing table defaulted");
            break;
        }
        stack.pop_back();
        PushRule(stack, rule);
    }
    return false;
}

bool ZKXMLParser::OpenXMLFileAndParse(ZKString const& path)
{
    if (!OpenXMLFile(path)) return false;
    return ParseXMLFileData();
}

ZKTokenType ZKXMLParser::GetTokenFromCharacter(unsigned char c)
{
    switch (c) {
    case 0: return ZK_TOKEN_END;
    case '<': return ZK_TOKEN_OPEN_ANGLE;
    case '>': return ZK_TOKEN_CLOSE_ANGLE;
    case '?': return ZK_TOKEN_QUESTION;
    case '!': return ZK_TOKEN_EXCLAMATION;
    case ' ': return ZK_TOKEN_SPACE;
    default: return kTextBytes[c] ? ZK_TOKEN_TEXT : ZK_TOKEN_INVALID;
    }
}
