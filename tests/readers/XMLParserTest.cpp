// ZKXMLParser's debug lines, read from standard output and from the fake
// platform's debugger sink.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cctype>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>

#include "files/PrivateAccess.h"
#include "files/TempFiles.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
using namespace std::string_literals;

ZK_PRIVATE_MEMBER(XmlText, ZKString ZKXMLParser::*, &ZKXMLParser::m_xmlText);
ZK_PRIVATE_MEMBER(XmlCurrentToken, ZKTokenType ZKXMLParser::*, &ZKXMLParser::m_currentToken);
ZK_PRIVATE_MEMBER(XmlTokenText, ZKString ZKXMLParser::*, &ZKXMLParser::m_tokenText);
ZK_PRIVATE_MEMBER(XmlTokenPosition, unsigned long long ZKXMLParser::*, &ZKXMLParser::m_tokenPosition);
ZK_PRIVATE_MEMBER(XmlElements, ZKContainer<ZKXMLElement*> ZKXMLParser::*, &ZKXMLParser::m_elements);
ZK_PRIVATE_MEMBER(XmlTokenOf, ZKTokenType (ZKXMLParser::*)(unsigned char), &ZKXMLParser::GetTokenFromCharacter);

namespace {

// Standard output's lines while `work` runs, joined with '|', after checking
// that the debugger received the same lines.
std::string Lines(auto&& work)
{
    fake::Reset();
    std::stringstream captured;
    std::streambuf* previous = std::cout.rdbuf(captured.rdbuf());
    EXPECT_FALSE(work()) << "false on every path";
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

std::string Parse(ZKXMLParser& parser)
{
    return Lines([&] { return parser.ParseXMLFileData(); });
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

std::string const kDefaulted = "Rule 0|parsing table defaulted";
std::string const kOperand = "Rule 1|Rule 3|Matched symbols: 2";
std::string const kMatched = kOperand + "|Matched symbols: 4";

}  // namespace

TEST(XMLParser, ExpressionTable)
{
    std::string const open = "Rule 2|Matched symbols: 0|";
    std::string const sum = "|Matched symbols: 3|Rule 3|Matched symbols: 2";
    EXPECT_EQ(Parse("(a+a)"), open + kOperand + sum + "|Matched symbols: 1|Matched symbols: 4");
    EXPECT_EQ(Parse("((x+y)+z)"),
              open + open + kOperand + sum + "|Matched symbols: 1" + sum + "|Matched symbols: 1|Matched symbols: 4");
    EXPECT_EQ(Parse(""), "");
    for (std::string const& text : {"a"s, "7"s, "Q"s, "a\0b"s}) EXPECT_EQ(Parse(text), kMatched) << text;
    for (std::string const text : {"<?xml version=\"1.0\"?><root/>", "_", "+", " a"})
        EXPECT_EQ(Parse(text), kDefaulted);
    // Stops where the table has no entry; a NUL ends the text.
    EXPECT_EQ(Parse("\0a"s), kDefaulted);
    for (std::string const text : {"a+a", "a)"}) EXPECT_EQ(Parse(text), kOperand + "|" + kDefaulted) << text;
    EXPECT_EQ(Parse("(a+a"), open + kOperand + sum + "|" + kDefaulted);
    // Bytes above 0x7F go to isalnum as unsigned values.
    for (int byte : {0xAA, 0xC0, 0xE9, 0xFF})
        EXPECT_EQ(Parse(std::string(1, static_cast<char>(byte))), std::isalnum(byte) ? kMatched : kDefaulted);
}

TEST(XMLParser, FilesAreReadWholeAsText)
{
    zk64::test::TempDir dir("xml-open");
    ZKXMLParser parser;
    ASSERT_TRUE(parser.OpenXMLFile(ZKString(dir.Write("expr.txt", "(a+b)").c_str())));
    EXPECT_EQ(Parse(parser), Parse("(a+b)"));
    EXPECT_EQ(Parse(parser), Parse("(a+b)")) << "parsing only reads the text";
    EXPECT_FALSE(parser.OpenXMLFile(ZKString(dir.Path("missing.xml").c_str())) ||
                 parser.OpenXMLFile(ZKString(dir.Dir().c_str())));
    EXPECT_EQ(State(parser), "(a+b)||-1|0|0/512") << "the earlier text stays";
    ASSERT_TRUE(parser.OpenXMLFile(ZKString(dir.Write("empty.xml", "").c_str())));
    EXPECT_EQ(Parse(parser), "");
    // On Windows "\r\n" arrives as one byte; the text keeps the file's length.
    ASSERT_TRUE(parser.OpenXMLFile(ZKString(dir.Write("crlf.txt", "a\r\n").c_str())));
    EXPECT_EQ(std::string((parser.*Member(XmlText{})).GetString(), 3),
              zk64::test::TextOnDisk("\n") == "\n" ? std::string("a\r\n") : std::string("a\n\0", 3));
    EXPECT_EQ((parser.*Member(XmlText{})).GetSize(), 3);
    EXPECT_EQ(Parse(parser), kOperand + "|" + kDefaulted);
    ZKString const match(dir.Write("match.txt", "a").c_str());
    EXPECT_EQ(Lines([&] { return parser.OpenXMLFileAndParse(match); }), kMatched);
    EXPECT_EQ(Lines([&] { return parser.OpenXMLFileAndParse(ZKString(dir.Path("missing").c_str())); }), "");
}

TEST(XMLParser, TokenTableAndCopies)
{
    ZKTokenType const kSpecial[] = {ZK_TOKEN_END,      ZK_TOKEN_OPEN_ANGLE,  ZK_TOKEN_CLOSE_ANGLE,
                                    ZK_TOKEN_QUESTION, ZK_TOKEN_EXCLAMATION, ZK_TOKEN_SPACE};
    ZKXMLParser source;
    for (int c = 0; c < 256; ++c) {
        std::size_t const special = std::string("\0<>?! ", 6).find(static_cast<char>(c));
        bool const text = c == '\t' || c == '\n' || c == '\r' || (c > 0x20 && c < 0x7F);
        ZKTokenType const expected = special != std::string::npos ? kSpecial[special]
                                     : text                       ? ZK_TOKEN_TEXT
                                                                  : ZK_TOKEN_INVALID;
        EXPECT_EQ((source.*Member(XmlTokenOf{}))(static_cast<unsigned char>(c)), expected) << c;
    }
    // Copies and moves take the text alone; assignment keeps the rest.
    source.*Member(XmlText{}) = "(a+b)";
    source.*Member(XmlTokenText{}) = "token";
    source.*Member(XmlCurrentToken{}) = ZK_TOKEN_TEXT;
    source.*Member(XmlTokenPosition{}) = 9;
    (source.*Member(XmlElements{})).PushBack(nullptr);
    ZKXMLParser copied(source);
    EXPECT_EQ(Parse(copied), Parse(source));
    ZKXMLParser target;
    target.*Member(XmlCurrentToken{}) = ZK_TOKEN_SPACE;
    target.*Member(XmlTokenPosition{}) = 3;
    target = source;
    ZKXMLParser& self = target;
    target = self;
    std::string const fresh = "(a+b)||-1|0|0/512";
    std::string const kept = "(a+b)||" + std::to_string(ZK_TOKEN_SPACE) + "|3|0/512";
    EXPECT_EQ(State(copied) + " " + State(target), fresh + " " + kept);
    ZKXMLParser moved(std::move(copied));
    EXPECT_EQ(State(moved) + " " + State(copied), fresh + " ||-1|0|0/512");
    target = std::move(moved);
    EXPECT_EQ(State(target) + " " + State(moved), kept + " ||-1|0|0/512");
}
