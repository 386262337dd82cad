#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <atomic>
#include <chrono>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include "files/PrivateAccess.h"
#include "files/TempFiles.h"

using zk64::test::TempDir;

// The reader's private parts are exported and fixed; nothing in the library
// calls them, so the tests reach them directly.
using Predicate = bool (ZKJSONParser::*)(unsigned char) const;
ZK_PRIVATE_MEMBER(JsonText, ZKString ZKJSONParser::*, &ZKJSONParser::m_jsonText);
ZK_PRIVATE_MEMBER(JsonLookAhead, unsigned char ZKJSONParser::*, &ZKJSONParser::m_lookAhead);
ZK_PRIVATE_MEMBER(JsonSymbol, Symbol ZKJSONParser::*, &ZKJSONParser::m_symbol);
ZK_PRIVATE_MEMBER(JsonIsCharacter, Predicate, &ZKJSONParser::IsCharacter);
ZK_PRIVATE_MEMBER(JsonIsDigit, Predicate, &ZKJSONParser::IsDigit);
ZK_PRIVATE_MEMBER(JsonIsWhiteSpace, Predicate, &ZKJSONParser::IsWhiteSpace);
ZK_PRIVATE_MEMBER(JsonIsEscape, Predicate, &ZKJSONParser::IsEscape);
ZK_PRIVATE_MEMBER(JsonIsExponent, Predicate, &ZKJSONParser::IsExponent);
ZK_PRIVATE_MEMBER(JsonIsSign, Predicate, &ZKJSONParser::IsSign);
ZK_PRIVATE_MEMBER(JsonAcceptSym, bool (ZKJSONParser::*)(Symbol), &ZKJSONParser::AcceptSym);
ZK_PRIVATE_MEMBER(JsonNextSym, void (ZKJSONParser::*)(), &ZKJSONParser::NextSym);
ZK_PRIVATE_MEMBER(JsonParseJson, void (ZKJSONParser::*)(), &ZKJSONParser::ParseJson);
ZK_PRIVATE_MEMBER(JsonConsumeWhiteSpace, void (ZKJSONParser::*)(), &ZKJSONParser::ConsumeWhiteSpace);
ZK_PRIVATE_MEMBER(JsonElement, void (ZKJSONParser::*)(), &ZKJSONParser::Element);

namespace {

ZKString& Text(ZKJSONParser& parser) { return parser.*Member(JsonText{}); }
unsigned char& LookAhead(ZKJSONParser& parser) { return parser.*Member(JsonLookAhead{}); }
Symbol& CurrentSymbol(ZKJSONParser& parser) { return parser.*Member(JsonSymbol{}); }

// The bytes a predicate accepts.
std::set<int> Accepted(Predicate predicate)
{
    ZKJSONParser parser;
    std::set<int> bytes;
    for (int c = 0; c < 256; ++c) {
        if ((parser.*predicate)(static_cast<unsigned char>(c))) bytes.insert(c);
    }
    return bytes;
}

std::set<int> Range(int first, int last)
{
    std::set<int> bytes;
    for (int c = first; c <= last; ++c) bytes.insert(c);
    return bytes;
}

ZKJSONParser Loaded(char const* text, unsigned char lookAhead, Symbol symbol)
{
    ZKJSONParser parser;
    Text(parser) = text;
    LookAhead(parser) = lookAhead;
    CurrentSymbol(parser) = symbol;
    return parser;
}

}  // namespace

TEST(JSONParser, AnyNonEmptyFileReads)
{
    TempDir dir("json-read");
    std::string const notJson = dir.Write("not.json", "this is { not json");
    ZKJSONParser parser;
    EXPECT_TRUE(parser.ReadJSONFile(ZKString(notJson.c_str())));
    ZKFile file;
    EXPECT_TRUE(parser.ReadJSONFile(file, ZKString(notJson.c_str())));
    EXPECT_TRUE(file.IsFileOpen()) << "left open for the caller";
    EXPECT_STREQ(file.GetFileName(), notJson.c_str());
    EXPECT_EQ(file.GetFileStreamType(), FILE_STREAM_READ);
    EXPECT_FALSE(parser.ReadJSONFile(file, ZKString(notJson.c_str()))) << "still open";
    file.CloseFile();
    EXPECT_TRUE(parser.ReadJSONFile(file, ZKString(dir.Write("one", "x").c_str())));
    EXPECT_TRUE(parser.ReadJSONFile(ZKString(dir.Write("zero-byte", std::string(1, '\0')).c_str())))
        << "one zero byte is not empty";
}

TEST(JSONParser, EmptyMissingAndBusyFilesFail)
{
    TempDir dir("json-fail");
    std::string const empty = dir.Write("empty.json", "");
    ZKJSONParser parser;
    ZKFile file;
    EXPECT_FALSE(parser.ReadJSONFile(file, ZKString(empty.c_str())));
    EXPECT_FALSE(file.IsFileOpen()) << "closed again";
    EXPECT_FALSE(parser.ReadJSONFile(ZKString(empty.c_str())));
    EXPECT_FALSE(parser.ReadJSONFile(ZKString(dir.Path("missing.json").c_str())));
    EXPECT_FALSE(parser.ReadJSONFile(file, ZKString(dir.Path("missing.json").c_str())));
    EXPECT_FALSE(parser.ReadJSONFile(ZKString(dir.Dir().c_str())));

    std::string const other = dir.Write("other", "busy");
    ZKFile busy;
    ASSERT_TRUE(busy.OpenFile(other.c_str(), FILE_STREAM_BINARY_READ_WRITE));
    EXPECT_FALSE(parser.ReadJSONFile(busy, ZKString(dir.Write("good.json", "{}").c_str())));
    EXPECT_TRUE(busy.IsFileOpen());
    EXPECT_STREQ(busy.GetFileName(), other.c_str());
    EXPECT_EQ(busy.GetFileStreamType(), FILE_STREAM_BINARY_READ_WRITE);
}

TEST(JSONParser, ReadingChangesNoMember)
{
    TempDir dir("json-members");
    ZKJSONParser reader = Loaded("kept", 7, ZK_JSON_SYMBOL_COMMA);
    ZKJSONParser const before = reader;
    EXPECT_TRUE(reader.ReadJSONFile(ZKString(dir.Write("f.json", "[1, 2]").c_str())));
    EXPECT_TRUE(reader == before);
    EXPECT_STREQ(Text(reader).GetString(), "kept");
    EXPECT_EQ(CurrentSymbol(reader), ZK_JSON_SYMBOL_COMMA);

    ZKJSONParser a;
    ZKJSONParser const b;
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(a.ReadJSONFile(ZKString(dir.Path("f.json").c_str())));
    EXPECT_TRUE(a == b);
}

TEST(JSONParser, EqualityComparesTextAndLookAheadOnly)
{
    ZKJSONParser const base = Loaded("ab", 1, ZK_JSON_SYMBOL_NONE);
    EXPECT_TRUE(base == Loaded("ab", 1, ZK_JSON_SYMBOL_WHITESPACE));
    EXPECT_FALSE(base == Loaded("ab", 2, ZK_JSON_SYMBOL_NONE));
    EXPECT_FALSE(base == Loaded("abc", 1, ZK_JSON_SYMBOL_NONE));
    EXPECT_FALSE(base == Loaded("aB", 1, ZK_JSON_SYMBOL_NONE));
    ZKJSONParser withNul = Loaded("ab", 1, ZK_JSON_SYMBOL_NONE);
    Text(withNul) = ZKString("ab\0", 3);
    EXPECT_FALSE(base == withNul) << "the whole counted text counts";
}

TEST(JSONParser, CopiesAndMovesTakeTextAndLookAheadButNotTheSymbol)
{
    ZKJSONParser source = Loaded("text", 9, ZK_JSON_SYMBOL_WHITESPACE);
    ZKJSONParser copied(source);
    EXPECT_STREQ(Text(copied).GetString(), "text");
    EXPECT_EQ(LookAhead(copied), 9);
    EXPECT_EQ(CurrentSymbol(copied), ZK_JSON_SYMBOL_NONE);

    ZKJSONParser target = Loaded("old", 1, ZK_JSON_SYMBOL_COLON);
    target = source;
    EXPECT_TRUE(target == source);
    EXPECT_EQ(CurrentSymbol(target), ZK_JSON_SYMBOL_COLON);
    ZKJSONParser& self = target;
    target = self;
    EXPECT_STREQ(Text(target).GetString(), "text");

    ZKJSONParser moved(std::move(copied));
    EXPECT_STREQ(Text(moved).GetString(), "text");
    EXPECT_EQ(LookAhead(moved), 9);
    EXPECT_EQ(CurrentSymbol(moved), ZK_JSON_SYMBOL_NONE);
    EXPECT_TRUE(Text(copied).IsEmpty()) << "the text was moved";
    EXPECT_EQ(LookAhead(copied), 9) << "the byte was copied";

    ZKJSONParser moveTarget = Loaded("old", 1, ZK_JSON_SYMBOL_COLON);
    moveTarget = std::move(moved);
    EXPECT_STREQ(Text(moveTarget).GetString(), "text");
    EXPECT_EQ(LookAhead(moveTarget), 9);
    EXPECT_EQ(CurrentSymbol(moveTarget), ZK_JSON_SYMBOL_COLON);
    EXPECT_TRUE(Text(moved).IsEmpty());
}

TEST(JSONParser, PredicateTables)
{
    EXPECT_EQ(Accepted(Member(JsonIsCharacter{})), Range(0x20, 0xFF));
    EXPECT_EQ(Accepted(Member(JsonIsDigit{})), Range('0', '9'));
    EXPECT_EQ(Accepted(Member(JsonIsWhiteSpace{})), (std::set<int>{0x00, 0x09, 0x0A, 0x0D, 0x20}));
    // Fixed bytes, not the escape, exponent and sign characters themselves.
    EXPECT_EQ(Accepted(Member(JsonIsEscape{})),
              (std::set<int>{0x10, 0x14, 0x18, 0x1C, 0x20, 0x24, 0x28, 0x2C, 0x30}));
    EXPECT_EQ(Accepted(Member(JsonIsExponent{})), (std::set<int>{0x00, 0x34, 0x38}));
    EXPECT_EQ(Accepted(Member(JsonIsSign{})), (std::set<int>{0x00, 0x3C, 0x40}));
}

TEST(JSONParser, SymbolHelpersNeitherAdvanceNorChangeAnything)
{
    ZKJSONParser parser = Loaded("t", 3, ZK_JSON_SYMBOL_STRING);
    EXPECT_TRUE((parser.*Member(JsonAcceptSym{}))(ZK_JSON_SYMBOL_STRING));
    EXPECT_TRUE((parser.*Member(JsonAcceptSym{}))(ZK_JSON_SYMBOL_STRING));
    EXPECT_FALSE((parser.*Member(JsonAcceptSym{}))(ZK_JSON_SYMBOL_NUMBER));
    (parser.*Member(JsonNextSym{}))();
    (parser.*Member(JsonParseJson{}))();
    (parser.*Member(JsonConsumeWhiteSpace{}))();
    (parser.*Member(JsonElement{}))();
    EXPECT_EQ(CurrentSymbol(parser), ZK_JSON_SYMBOL_STRING);
    EXPECT_TRUE(parser == Loaded("t", 3, ZK_JSON_SYMBOL_NONE));
    ZKJSONParser fresh;
    EXPECT_EQ(CurrentSymbol(fresh), ZK_JSON_SYMBOL_NONE) << "the constructors' symbol keeps them returning";
}

// With the symbol 24 both helpers spin. The test lets one spin, checks that
// it has not returned, then changes the symbol through an atomic reference
// (the helpers read it the same way) so that it can return and be joined.
TEST(JSONParser, WhiteSpaceSymbolSpinsForever)
{
    using Helper = void (ZKJSONParser::*)();
    for (Helper helper : {Member(JsonConsumeWhiteSpace{}), Member(JsonElement{})}) {
        ZKJSONParser parser;
        CurrentSymbol(parser) = ZK_JSON_SYMBOL_WHITESPACE;
        ASSERT_TRUE((parser.*Member(JsonAcceptSym{}))(static_cast<Symbol>(24)));
        std::atomic<bool> returned{false};
        std::thread spinner([&] {
            (parser.*helper)();
            returned = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_FALSE(returned.load());
        std::atomic_ref<Symbol>(CurrentSymbol(parser)).store(ZK_JSON_SYMBOL_NONE);
        spinner.join();
        EXPECT_TRUE(returned.load());
    }
}
