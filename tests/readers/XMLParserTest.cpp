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
using zk64::test::TempDir;

ZK_PRIVATE_MEMBER(XmlText, ZKString ZKXMLParser::*, &ZKXMLParser::m_xmlText);
ZK_PRIVATE_MEMBER(XmlCurrentToken, ZKTokenType ZKXMLParser::*, &ZKXMLParser::m_currentToken);
ZK_PRIVATE_MEMBER(XmlTokenText, ZKString ZKXMLParser::*, &ZKXMLParser::m_tokenText);
ZK_PRIVATE_MEMBER(XmlTokenPosition, unsigned long long ZKXMLParser::*, &ZKXMLParser::m_tokenPosition);
ZK_PRIVATE_MEMBER(XmlElements, ZKContainer<ZKXMLElement*> ZKXMLParser::*, &ZKXMLParser::m_elements);
ZK_PRIVATE_MEMBER(XmlTokenOf, ZKTokenType (ZKXMLParser::*)(unsigned char), &ZKXMLParser::GetTokenFromCharacter);

namespace {

using Lines = std::vector<std::string>;

ZKString& Text(ZKXMLParser& parser) { return parser.*Member(XmlText{}); }

// Runs ParseXMLFileData and returns its debug lines as standard output saw
// them, after checking that the debugger received the same lines.
Lines ParseLines(ZKXMLParser& parser)
{
    fake::Reset();
    std::stringstream captured;
    std::streambuf* previous = std::cout.rdbuf(captured.rdbuf());
    bool const result = parser.ParseXMLFileData();
    std::cout.rdbuf(previous);
    EXPECT_FALSE(result) << "false on every path";

    Lines lines;
    fake::Calls expectedCalls;
    std::string line;
    while (std::getline(captured, line)) {
        lines.push_back(line);
        expectedCalls.push_back("OutputDebugStringA(\"" + line + "\n\")");
    }
    EXPECT_EQ(fake::TakeCalls(), expectedCalls);
    return lines;
}

Lines ParseText(std::string const& text)
{
    ZKXMLParser parser;
    Text(parser) = ZKString(text.data(), static_cast<int>(text.size()));
    return ParseLines(parser);
}

Lines const kDefaulted = {"Rule 0", "parsing table defaulted"};
Lines const kSingleOperand = {"Rule 1", "Rule 3", "Matched symbols: 2", "Matched symbols: 4"};

Lines Join(Lines first, Lines const& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

}  // namespace

TEST(XMLParser, WorkedExamples)
{
    EXPECT_EQ(ParseText("(a+a)"),
              (Lines{"Rule 2", "Matched symbols: 0", "Rule 1", "Rule 3", "Matched symbols: 2", "Matched symbols: 3",
                     "Rule 3", "Matched symbols: 2", "Matched symbols: 1", "Matched symbols: 4"}));
    EXPECT_EQ(ParseText("a"), kSingleOperand);
    EXPECT_EQ(ParseText("<?xml version=\"1.0\"?><root/>"), kDefaulted);
}

TEST(XMLParser, StopsWhereTheTableHasNoEntry)
{
    // After a whole S the end is expected: the plus meets symbol 4.
    EXPECT_EQ(ParseText("a+a"), Join({"Rule 1", "Rule 3", "Matched symbols: 2"}, kDefaulted));
    // The text ends where the closing parenthesis is expected.
    EXPECT_EQ(ParseText("(a+a"), Join({"Rule 2", "Matched symbols: 0", "Rule 1", "Rule 3", "Matched symbols: 2",
                                       "Matched symbols: 3", "Rule 3", "Matched symbols: 2"},
                                      kDefaulted));
    EXPECT_EQ(ParseText("a)"), Join({"Rule 1", "Rule 3", "Matched symbols: 2"}, kDefaulted));
    EXPECT_EQ(ParseText("+"), kDefaulted);
    EXPECT_EQ(ParseText(" a"), kDefaulted);
    // A NUL inside the text is the end of the text.
    EXPECT_EQ(ParseText(std::string("a\0b", 3)), kSingleOperand);
    EXPECT_EQ(ParseText(std::string("\0a", 2)), kDefaulted);
}

TEST(XMLParser, NestedExpressions)
{
    EXPECT_EQ(ParseText("((x+y)+z)"),
              (Lines{"Rule 2", "Matched symbols: 0", "Rule 2", "Matched symbols: 0", "Rule 1", "Rule 3",
                     "Matched symbols: 2", "Matched symbols: 3", "Rule 3", "Matched symbols: 2", "Matched symbols: 1",
                     "Matched symbols: 3", "Rule 3", "Matched symbols: 2", "Matched symbols: 1",
                     "Matched symbols: 4"}));
}

TEST(XMLParser, OperandsAreWhatIsalnumAccepts)
{
    EXPECT_EQ(ParseText("7"), kSingleOperand);
    EXPECT_EQ(ParseText("Q"), kSingleOperand);
    EXPECT_EQ(ParseText("_"), kDefaulted);
    // Bytes above 0x7F go to isalnum as unsigned values.
    for (int byte : {0xAA, 0xC0, 0xE9, 0xFF}) {
        bool const operand = std::isalnum(byte) != 0;
        EXPECT_EQ(ParseText(std::string(1, static_cast<char>(byte))), operand ? kSingleOperand : kDefaulted) << byte;
    }
}

TEST(XMLParser, EmptyTextGivesNoLines)
{
    ZKXMLParser parser;
    EXPECT_EQ(ParseLines(parser), Lines{});
    // Parsing only reads the text: the same lines every time.
    Text(parser) = "a";
    EXPECT_EQ(ParseLines(parser), kSingleOperand);
    EXPECT_EQ(ParseLines(parser), kSingleOperand);
}

TEST(XMLParser, OpenXMLFileReadsTheWholeFile)
{
    TempDir dir("xml-open");
    ZKXMLParser parser;
    ASSERT_TRUE(parser.OpenXMLFile(ZKString(dir.Write("expr.txt", "(a+b)").c_str())));
    EXPECT_STREQ(Text(parser).GetString(), "(a+b)");
    EXPECT_EQ(ParseLines(parser).back(), "Matched symbols: 4");

    EXPECT_FALSE(parser.OpenXMLFile(ZKString(dir.Path("missing.xml").c_str())));
    EXPECT_STREQ(Text(parser).GetString(), "(a+b)") << "the earlier text stays";
    EXPECT_FALSE(parser.OpenXMLFile(ZKString(dir.Dir().c_str())));

    ASSERT_TRUE(parser.OpenXMLFile(ZKString(dir.Write("empty.xml", "").c_str())));
    EXPECT_TRUE(Text(parser).IsEmpty());
    EXPECT_EQ(ParseLines(parser), Lines{});
}

// The file is read as text: on Windows "\r\n" arrives as one byte, and the
// text keeps the file's length with zero bytes at its end.
TEST(XMLParser, FilesAreReadAsText)
{
    TempDir dir("xml-text");
    ZKXMLParser parser;
    ASSERT_TRUE(parser.OpenXMLFile(ZKString(dir.Write("crlf.txt", "a\r\n").c_str())));
#if defined(_WIN32)
    EXPECT_EQ(std::string(Text(parser).GetString(), 3), std::string("a\n\0", 3));
#else
    EXPECT_EQ(std::string(Text(parser).GetString(), 3), "a\r\n");
#endif
    EXPECT_EQ(Text(parser).GetSize(), 3);
    EXPECT_EQ(ParseLines(parser), Join({"Rule 1", "Rule 3", "Matched symbols: 2"}, kDefaulted));
}

TEST(XMLParser, OpenAndParseIsAlwaysFalse)
{
    TempDir dir("xml-both");
    ZKXMLParser parser;
    std::stringstream captured;
    std::streambuf* previous = std::cout.rdbuf(captured.rdbuf());
    bool const matched = parser.OpenXMLFileAndParse(ZKString(dir.Write("match.txt", "a").c_str()));
    bool const missing = parser.OpenXMLFileAndParse(ZKString(dir.Path("missing").c_str()));
    std::cout.rdbuf(previous);
    EXPECT_FALSE(matched);
    EXPECT_FALSE(missing);
    EXPECT_EQ(captured.str(), "Rule 1\nRule 3\nMatched symbols: 2\nMatched symbols: 4\n");
}

TEST(XMLParser, TokenTable)
{
    ZKXMLParser parser;
    auto const tokenOf = Member(XmlTokenOf{});
    for (int c = 0; c < 256; ++c) {
        ZKTokenType expected = ZK_TOKEN_INVALID;
        if (c == 0) expected = ZK_TOKEN_END;
        else if (c == '<') expected = ZK_TOKEN_OPEN_ANGLE;
        else if (c == '>') expected = ZK_TOKEN_CLOSE_ANGLE;
        else if (c == '?') expected = ZK_TOKEN_QUESTION;
        else if (c == '!') expected = ZK_TOKEN_EXCLAMATION;
        else if (c == ' ') expected = ZK_TOKEN_SPACE;
        else if (c == '\t' || c == '\n' || c == '\r' || (c > 0x20 && c < 0x7F)) expected = ZK_TOKEN_TEXT;
        EXPECT_EQ((parser.*tokenOf)(static_cast<unsigned char>(c)), expected) << c;
        EXPECT_NE((parser.*tokenOf)(static_cast<unsigned char>(c)), ZK_TOKEN_RESERVED);
    }
}

TEST(XMLParser, CopiesAndMovesTakeTheTextAlone)
{
    ZKXMLParser source;
    EXPECT_EQ(source.*Member(XmlCurrentToken{}), ZK_TOKEN_INVALID);
    EXPECT_EQ(source.*Member(XmlTokenPosition{}), 0u);
    EXPECT_EQ((source.*Member(XmlElements{})).GetMaxItemCount(), 512u);
    Text(source) = "(a+b)";
    source.*Member(XmlTokenText{}) = "token";
    source.*Member(XmlCurrentToken{}) = ZK_TOKEN_TEXT;
    source.*Member(XmlTokenPosition{}) = 9;
    (source.*Member(XmlElements{})).PushBack(nullptr);

    ZKXMLParser copied(source);
    EXPECT_STREQ(Text(copied).GetString(), "(a+b)");
    EXPECT_TRUE((copied.*Member(XmlTokenText{})).IsEmpty());
    EXPECT_EQ((copied.*Member(XmlElements{})).GetItemCount(), 0u);
    EXPECT_EQ((copied.*Member(XmlElements{})).GetMaxItemCount(), 512u);
    EXPECT_EQ(copied.*Member(XmlCurrentToken{}), ZK_TOKEN_INVALID);
    EXPECT_EQ(copied.*Member(XmlTokenPosition{}), 0u);
    EXPECT_EQ(ParseLines(copied), ParseLines(source));

    ZKXMLParser target;
    target.*Member(XmlCurrentToken{}) = ZK_TOKEN_SPACE;
    target.*Member(XmlTokenPosition{}) = 3;
    target = source;
    EXPECT_STREQ(Text(target).GetString(), "(a+b)");
    EXPECT_TRUE((target.*Member(XmlTokenText{})).IsEmpty());
    EXPECT_EQ(target.*Member(XmlCurrentToken{}), ZK_TOKEN_SPACE);
    EXPECT_EQ(target.*Member(XmlTokenPosition{}), 3u);
    ZKXMLParser& self = target;
    target = self;
    EXPECT_STREQ(Text(target).GetString(), "(a+b)");

    ZKXMLParser moved(std::move(copied));
    EXPECT_STREQ(Text(moved).GetString(), "(a+b)");
    EXPECT_TRUE(Text(copied).IsEmpty());
    EXPECT_EQ(moved.*Member(XmlCurrentToken{}), ZK_TOKEN_INVALID);

    target = std::move(moved);
    EXPECT_STREQ(Text(target).GetString(), "(a+b)");
    EXPECT_TRUE(Text(moved).IsEmpty());
    EXPECT_EQ(target.*Member(XmlCurrentToken{}), ZK_TOKEN_SPACE);
    EXPECT_EQ(target.*Member(XmlTokenPosition{}), 3u);
}
