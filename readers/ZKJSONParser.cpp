#include "ZKJSONParser.h"

#include <array>
#include <atomic>
#include <initializer_list>
#include <thread>
#include <utility>

namespace {

// A byte set for the predicates: one lookup per call.
using ByteSet = std::array<bool, 256>;

constexpr ByteSet MakeByteSet(std::initializer_list<unsigned char> bytes)
{
    ByteSet set{};
    for (unsigned char byte : bytes) set[byte] = true;
    return set;
}

// One byte per escape character " \ / b f n r t u, per exponent E e and per
// sign + -, in that order: fixed values that are not the characters.
constexpr ByteSet kEscapeBytes = MakeByteSet({0x10, 0x14, 0x18, 0x1C, 0x20, 0x24, 0x28, 0x2C, 0x30});
constexpr ByteSet kExponentBytes = MakeByteSet({0x00, 0x34, 0x38});
constexpr ByteSet kSignBytes = MakeByteSet({0x00, 0x3C, 0x40});
constexpr ByteSet kWhiteSpaceBytes = MakeByteSet({0x00, 0x09, 0x0A, 0x0D, 0x20});

}  // namespace

ZKJSONParser::ZKJSONParser() : m_lookAhead(0) {}

ZKJSONParser::ZKJSONParser(ZKJSONParser const& other) : m_jsonText(other.m_jsonText), m_lookAhead(other.m_lookAhead)
{
}

ZKJSONParser::ZKJSONParser(ZKJSONParser&& other)
    : m_jsonText(std::move(other.m_jsonText)), m_lookAhead(other.m_lookAhead)
{
}

ZKJSONParser::~ZKJSONParser() = default;

ZKJSONParser& ZKJSONParser::operator=(ZKJSONParser const& other)
{
    m_lookAhead = other.m_lookAhead;
    if (this != &other) m_jsonText = other.m_jsonText;
    return *this;
}

ZKJSONParser& ZKJSONParser::operator=(ZKJSONParser&& other)
{
    m_lookAhead = other.m_lookAhead;
    m_jsonText = std::move(other.m_jsonText);  // ZKString ignores a self-move
    return *this;
}

bool ZKJSONParser::operator==(ZKJSONParser const& other) const
{
    return m_jsonText == other.m_jsonText && m_lookAhead == other.m_lookAhead;
}

bool ZKJSONParser::ReadJSONFile(ZKFile& file, ZKString const& path)
{
    if (file.IsFileOpen()) return false;
    if (!file.OpenFile(path.GetString(), FILE_STREAM_READ)) return false;
    ZKString text;
    if (!file.ReadData(text) || text.IsEmpty()) {
        file.CloseFile();
        return false;
    }
    return true;
}

bool ZKJSONParser::ReadJSONFile(ZKString const& path)
{
    ZKFile file;
    bool const read = ReadJSONFile(file, path);
    if (read) file.CloseFile();
    return read;
}

bool ZKJSONParser::AcceptSym(Symbol symbol) { return m_symbol == symbol; }

void ZKJSONParser::NextSym() {}

void ZKJSONParser::ParseJson() {}

// The spin reads m_symbol atomically: an endless loop without a side effect
// would be undefined, and the read can be observed from another thread.
void ZKJSONParser::ConsumeWhiteSpace()
{
    while (std::atomic_ref<Symbol>(m_symbol).load(std::memory_order_relaxed) == ZK_JSON_SYMBOL_WHITESPACE) {
        std::this_thread::yield();
    }
}

void ZKJSONParser::Element() { ConsumeWhiteSpace(); }

bool ZKJSONParser::IsCharacter(unsigned char c) const { return c >= 0x20; }
bool ZKJSONParser::IsDigit(unsigned char c) const { return c >= '0' && c <= '9'; }
bool ZKJSONParser::IsWhiteSpace(unsigned char c) const { return kWhiteSpaceBytes[c]; }
bool ZKJSONParser::IsEscape(unsigned char c) const { return kEscapeBytes[c]; }
bool ZKJSONParser::IsExponent(unsigned char c) const { return kExponentBytes[c]; }
bool ZKJSONParser::IsSign(unsigned char c) const { return kSignBytes[c]; }
