#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

#include "files/PrivateAccess.h"
#include "files/TempFiles.h"

// The reader's private parts are exported and fixed; nothing in the library
// calls them, so the tests reach them directly.
using Predicate = bool (ZKJSONParser::*)(unsigned char) const;
using Helper = void (ZKJSONParser::*)();
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
ZK_PRIVATE_MEMBER(JsonNextSym, Helper, &ZKJSONParser::NextSym);
ZK_PRIVATE_MEMBER(JsonParseJson, Helper, &ZKJSONParser::ParseJson);
ZK_PRIVATE_MEMBER(JsonConsumeWhiteSpace, Helper, &ZKJSONParser::ConsumeWhiteSpace);
ZK_PRIVATE_MEMBER(JsonElement, Helper, &ZKJSONParser::Element);

namespace {

// "text|look-ahead|symbol"
std::string State(ZKJSONParser& p)
{
    ZKString const& text = p.*Member(JsonText{});
    return std::string(text.GetString(), static_cast<std::size_t>(text.GetSize())) + "|" +
           std::to_string(p.*Member(JsonLookAhead{})) + "|" + std::to_string(p.*Member(JsonSymbol{}));
}

ZKJSONParser Loaded(ZKString const& text, unsigned char lookAhead, Symbol symbol)
{
    ZKJSONParser parser;
    parser.*Member(JsonText{}) = text;
    parser.*Member(JsonLookAhead{}) = lookAhead;
    parser.*Member(JsonSymbol{}) = symbol;
    return parser;
}

}  // namespace

TEST(JSONParser, AnyNonEmptyFileReadsAndNothingIsKept)
{
    zk64::test::TempDir dir("json-read");
    ZKString const notJson(dir.Write("not.json", "this is { not json").c_str());
    ZKString const empty(dir.Write("empty", "").c_str());
    ZKJSONParser parser = Loaded("kept", 7, ZK_JSON_SYMBOL_COMMA);
    EXPECT_TRUE(parser.ReadJSONFile(notJson) &&
                parser.ReadJSONFile(ZKString(dir.Write("zero", std::string(1, '\0')).c_str())));
    EXPECT_EQ(State(parser), "kept|7|6");
    EXPECT_FALSE(parser.ReadJSONFile(empty) || parser.ReadJSONFile(ZKString(dir.Path("missing").c_str())) ||
                 parser.ReadJSONFile(ZKString(dir.Dir().c_str())));
    ZKFile file;
    EXPECT_FALSE(parser.ReadJSONFile(file, empty));
    EXPECT_FALSE(file.IsFileOpen()) << "closed again";
    EXPECT_TRUE(parser.ReadJSONFile(file, notJson));
    EXPECT_TRUE(file.IsFileOpen() && file.GetFileStreamType() == FILE_STREAM_READ) << "left open for the caller";
    EXPECT_FALSE(parser.ReadJSONFile(file, empty)) << "still open";
    EXPECT_STREQ(file.GetFileName(), notJson.GetString());
}

TEST(JSONParser, CopiesMovesAndEqualityTakeTextAndLookAheadOnly)
{
    ZKJSONParser const base = Loaded("ab", 1, ZK_JSON_SYMBOL_NONE);
    EXPECT_TRUE(base == Loaded("ab", 1, ZK_JSON_SYMBOL_WHITESPACE));
    for (ZKJSONParser const& other :
         {Loaded("ab", 2, ZK_JSON_SYMBOL_NONE), Loaded("abc", 1, ZK_JSON_SYMBOL_NONE),
          Loaded("aB", 1, ZK_JSON_SYMBOL_NONE), Loaded(ZKString("ab\0", 3), 1, ZK_JSON_SYMBOL_NONE)})
        EXPECT_FALSE(base == other);

    // Each step: the target's state, then the source's.
    ZKJSONParser source = Loaded("text", 9, ZK_JSON_SYMBOL_WHITESPACE);
    ZKJSONParser copied(source);
    ZKJSONParser target = Loaded("old", 1, ZK_JSON_SYMBOL_COLON);
    target = source;
    ZKJSONParser& self = target;
    target = self;
    EXPECT_EQ(State(copied) + " " + State(target), "text|9|0 text|9|5");
    ZKJSONParser moved(std::move(copied));
    EXPECT_EQ(State(moved) + " " + State(copied), "text|9|0 |9|0") << "the text was moved, the byte copied";
    target = Loaded("old", 1, ZK_JSON_SYMBOL_COLON);
    target = std::move(moved);
    EXPECT_EQ(State(target) + " " + State(moved), "text|9|5 |9|0");
}

TEST(JSONParser, PredicateTablesAndHelpers)
{
    // Fixed bytes, not the escape, exponent and sign characters themselves.
    std::pair<Predicate, std::string> const tables[] = {
        {Member(JsonIsDigit{}), "0123456789"},
        {Member(JsonIsWhiteSpace{}), std::string("\0\t\n\r ", 5)},
        {Member(JsonIsEscape{}), "\x10\x14\x18\x1C\x20\x24\x28\x2C\x30"},
        {Member(JsonIsExponent{}), std::string("\0\x34\x38", 3)},
        {Member(JsonIsSign{}), std::string("\0\x3C\x40", 3)}};
    ZKJSONParser parser = Loaded("t", 3, ZK_JSON_SYMBOL_STRING);
    for (int c = 0; c < 256; ++c) {
        EXPECT_EQ((parser.*Member(JsonIsCharacter{}))(static_cast<unsigned char>(c)), c >= 0x20) << c;
        for (auto const& [predicate, bytes] : tables)
            EXPECT_EQ((parser.*predicate)(static_cast<unsigned char>(c)),
                      bytes.find(static_cast<char>(c)) != std::string::npos)
                << c;
    }

    EXPECT_TRUE((parser.*Member(JsonAcceptSym{}))(ZK_JSON_SYMBOL_STRING));
    EXPECT_FALSE((parser.*Member(JsonAcceptSym{}))(ZK_JSON_SYMBOL_NUMBER));
    for (Helper helper :
         {Member(JsonNextSym{}), Member(JsonParseJson{}), Member(JsonConsumeWhiteSpace{}), Member(JsonElement{})})
        (parser.*helper)();
    ZKJSONParser fresh;
    EXPECT_EQ(State(parser) + " " + State(fresh), "t|3|7 |0|0") << "the symbol keeps the helpers returning";

    // With the symbol 24 both helpers spin until the symbol changes (read
    // through an atomic reference, as the helpers read it).
    for (Helper helper : {Member(JsonConsumeWhiteSpace{}), Member(JsonElement{})}) {
        ZKJSONParser spinning = Loaded("", 0, ZK_JSON_SYMBOL_WHITESPACE);
        std::atomic<bool> returned{false};
        std::thread spinner([&] {
            (spinning.*helper)();
            returned = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_FALSE(returned.load());
        std::atomic_ref<Symbol>(spinning.*Member(JsonSymbol{})).store(ZK_JSON_SYMBOL_NONE);
        spinner.join();
    }
}
