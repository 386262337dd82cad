// ZKXMLParser's debug lines, read from standard output and from the fake
// platform's debugger sink.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cctype>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "files/PrivateAccess.h"
#include "files/TempFiles.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;

ZK_PRIVATE_MEMBER(XmlText, ZKString ZKXMLParser::*, &ZKXMLParser::m_xmlText);
ZK_PRIVATE_MEMBER(XmlCurrentToken, ZKTokenType ZKXMLParser::*, &ZKXMLParser::m_currentToken);
ZK_PRIVATE_MEMBER(XmlTokenText, ZKString ZKXMLParser::*, &ZKXMLParser::m_tokenText);
ZK_PRIVATE_MEMBER(XmlTokenPosition, unsigned long long ZKXMLParser::*, &ZKXMLParser::m_tokenPosition);
ZK_PRIVATE_MEMBER(XmlElements, ZKContainer<ZKXMLElement*> ZKXMLParser::*, &ZKXMLParser::m_elements);
ZK_PRIVATE_MEMBER(XmlTokenOf, ZKTokenType (ZKXMLParser::*)(unsigned char), &ZKXMLParser::GetTokenFromCharacter);

namespace {

// The debug lines of ParseXMLFileData as standard output saw them, joined
// with '|', after checking that the debugger received the same lines.
std::string Parse(ZKXMLParser& parser)
{
    fake::Reset();
    std::stringstream captured;
    std::streambuf* previous = std::cout.rdbuf(captured.rdbuf());
    EXPECT_FALSE(parser.ParseXMLFileData()) << "false on every path";
    std::cout.rdbuf(previous);
    std::string joined;
    fake::Calls calls;
    for (std::string line; std::getline(captured, line);) {
        joined += (joined.empty() ? "" : "|") + line;
        calls.push_back("OutputDebugStringA(\"" + line + "\n\")");
    }
    EXPECT_EQ(fake::TakeCalls(), calls);
    return joined;
}

std::string Parse(std::string const& text)
{
    ZKXMLParser parser;
    parser.*Member(XmlText{}) = ZKString(text.data(), static_cast<int>(text.size()));
    return Parse(parser);
}

// "text|token text|token|position|elements/slots"
std::string State(ZKXMLParser& p)
{
    return std::string((p.*Member(XmlText{})).GetString()) + "|" + (p.*Member(XmlTokenText{})).GetString() + "|" +
           std::to_string(p.*Member(XmlCurrentToken{})) + "|" + std::to_string(p.*Member(XmlTokenPosition{})) + "|" +
           std::to_string((p.*Member(XmlElements{})).GetItemCount()) + "/" +
           std::to_string((p.*Member(XmlElements{})).GetMaxItemCount());
}

std::string const kDefaulted = "Rule 0|parsing table defaulted", kOperand = "Rule 1|Rule 3|Matched symbols: 2";

}  // namespace

TEST(XMLParser, ExpressionTable)
{
    std::string const open = "Rule 2|Matched symbols: 0|", sum = "|Matched symbols: 3|Rule 3|Matched symbols: 2";
    std::pair<std::string, std::string> const rows[] = {
        {"(a+a)", open + kOperand + sum + "|Matched symbols: 1|Matched symbols: 4"},
        {"((x+y)+z)", open + open + kOperand + sum + "|Matched symbols: 1" + sum + "|Matched symbols: 1|Matched symbols: 4"},
        {"a", kOperand + "|Matched symbols: 4"}, {"7", kOperand + "|Matched symbols: 4"}, {"Q", kOperand + "|Matched symbols: 4"},
        {"<?xml version=\"1.0\"?><root/>", kDefaulted}, {"_", kDefaulted}, {"+", kDefaulted}, {" a", kDefaulted},
        // Stops where the table has no entry; a NUL ends the text.
        {"a+a", kOperand + "|" + kDefaulted}, {"a)", kOperand + "|" + kDefaulted}, {"(a+a", open + kOperand + sum + "|" + kDefaulted},
        {std::string("a\0b", 3), kOperand + "|Matched symbols: 4"}, {std::string("\0a", 2), kDefaulted}, {"", ""},
    };
    for (auto const& [text, lines] : rows) EXPECT_EQ(Parse(text), lines) << text;
    // Bytes above 0x7F go to isalnum as unsigned values.
    for (int byte : {0xAA, 0xC0, 0xE9, 0xFF})
        EXPECT_EQ(Parse(std::string(1, static_cast<char>(byte))), std::isalnum(byte) ? kOperand + "|Matched symbols: 4" : kDefaulted);
}

TEST(XMLParser, FilesAreReadWholeAsText)
{
    zk64::test::TempDir dir("xml-open");
    ZKXMLParser parser;
    ASSERT_TRUE(parser.OpenXMLFile(ZKString(dir.Write("expr.txt", "(a+b)").c_str())));
    EXPECT_EQ(Parse(parser), Parse("(a+b)"));
    EXPECT_EQ(Parse(parser), Parse("(a+b)")) << "parsing only reads the text";
    EXPECT_FALSE(parser.OpenXMLFile(ZKString(dir.Path("missing.xml").c_str())) || parser.OpenXMLFile(ZKString(dir.Dir().c_str())));
    EXPECT_EQ(State(parser), "(a+b)||-1|0|0/512") << "the earlier text stays";
    ASSERT_TRUE(parser.OpenXMLFile(ZKString(dir.Write("empty.xml", "").c_str())));
    EXPECT_EQ(Parse(parser), "");
    // On Windows "\r\n" arrives as one byte; the text keeps the file's length.
    ASSERT_TRUE(parser.OpenXMLFile(ZKString(dir.Write("crlf.txt", "a\r\n").c_str())));
    EXPECT_EQ(std::string((parser.*Member(XmlText{})).GetString(), 3),
              zk64::test::TextOnDisk("\n") == "\n" ? std::string("a\r\n") : std::string("a\n\0", 3));
    EXPECT_EQ((parser.*Member(XmlText{})).GetSize(), 3);
    EXPECT_EQ(Parse(parser), kOperand + "|" + kDefaulted);

    std::stringstream captured;
    std::streambuf* previous = std::cout.rdbuf(captured.rdbuf());
    bool const matched = parser.OpenXMLFileAndParse(ZKString(dir.Write("match.txt", "a").c_str()));
    bool const missing = parser.OpenXMLFileAndParse(ZKString(dir.Path("missing").c_str()));
    std::cout.rdbuf(previous);
    EXPECT_FALSE(matched || missing);
    EXPECT_EQ(captured.str(), "Rule 1\nRule 3\nMatched symbols: 2\nMatched symbols: 4\n");
}

TEST(XMLParser, TokenTableAndCopies)
{
    ZKXMLParser source;
    for (int c = 0; c < 256; ++c) {
        ZKTokenType expected = c == 0 ? ZK_TOKEN_END : c == '<' ? ZK_TOKEN_OPEN_ANGLE : c == '>' ? ZK_TOKEN_CLOSE_ANGLE
                             : c == '?' ? ZK_TOKEN_QUESTION : c == '!' ? ZK_TOKEN_EXCLAMATION : c == ' ' ? ZK_TOKEN_SPACE
                             : (c == '\t' || c == '\n' || c == '\r' || (c > 0x20 && c < 0x7F)) ? ZK_TOKEN_TEXT : ZK_TOKEN_INVALID;
        EXPECT_EQ((source.*Member(XmlTokenOf{}))(static_cast<unsigned char>(c)), expected) << c;
    }
    // Copies and moves take the text alone; assignment keeps the rest.
    source.*Member(XmlText{}) = "(a+b)";
    source.*Member(XmlTokenText{}) = "token";
    source.*Member(XmlCurrentToken{}) = ZK_TOKEN_TEXT;
    source.*Member(XmlTokenPosition{}) = 9;
    (source.*Member(XmlElements{})).PushBack(nullptr);
    ZKXMLParser copied(source);
    EXPECT_EQ(State(copied), "(a+b)||-1|0|0/512");
    EXPECT_EQ(Parse(copied), Parse(source));
    ZKXMLParser target;
    target.*Member(XmlCurrentToken{}) = ZK_TOKEN_SPACE;
    target.*Member(XmlTokenPosition{}) = 3;
    target = source;
    ZKXMLParser& self = target;
    target = self;
    EXPECT_EQ(State(target), "(a+b)||" + std::to_string(ZK_TOKEN_SPACE) + "|3|0/512");
    ZKXMLParser moved(std::move(copied));
    EXPECT_EQ(State(moved), "(a+b)||-1|0|0/512");
    EXPECT_EQ(State(copied), "||-1|0|0/512");
    target = std::move(moved);
    EXPECT_EQ(State(target), "(a+b)||" + std::to_string(ZK_TOKEN_SPACE) + "|3|0/512");
    EXPECT_EQ(State(moved), "||-1|0|0/512");
}
