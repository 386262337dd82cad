#include "ZKString.h"

#include <cstring>
#include <stdexcept>

#include "detail/TextPool.h"
#include "detail/Utf.h"

#if defined(_WIN32)
template class ZK_API ZKContainer<ZKString>;
#else
template class ZKContainer<ZKString>;  // ZK_API comes with the extern declaration
#endif

namespace {

[[noreturn]] void ThrowTooLong() { throw std::length_error("string too long"); }
[[noreturn]] void ThrowBadPosition() { throw std::out_of_range("invalid string position"); }

// Bytes of [text, text + size) before the first zero byte.
std::size_t CutLength(char const* text, std::size_t size)
{
    void const* zero = std::memchr(text, 0, size);
    return zero ? static_cast<std::size_t>(static_cast<char const*>(zero) - text) : size;
}

std::size_t CutLength(std::string const& text) { return CutLength(text.data(), text.size()); }

std::size_t CheckedLength(int length)
{
    if (length < 0) ThrowTooLong();
    return static_cast<std::size_t>(length);
}

// `length` bytes of `source`; bytes past its size read as zero.
void AssignPadded(std::string& target, std::string const& source, std::size_t length)
{
    if (length <= source.size()) {
        target.assign(source.data(), length);
    } else {
        std::string padded(length, '\0');
        std::memcpy(padded.data(), source.data(), source.size());
        target.swap(padded);
    }
}

void CheckPosition(std::string const& text, unsigned long long position)
{
    if (position > text.size()) ThrowBadPosition();
}

std::size_t WideLength(ZKWideChar const* text)
{
    std::size_t length = 0;
    while (text[length] != 0) ++length;
    return length;
}

}  // namespace

void ZKString::TextRelease::operator()(std::string* text) const noexcept
{
    text->~basic_string();
    zk64::detail::ReleaseTextBlock(text);
}

template <class... Args>
ZKString::TextPointer ZKString::MakeText(Args&&... args)
{
    static_assert(sizeof(std::string) <= zk64::detail::kTextBlockSize);
    void* const block = zk64::detail::AcquireTextBlock();
    try {
        return TextPointer(new (block) std::string(std::forward<Args>(args)...));
    } catch (...) {
        zk64::detail::ReleaseTextBlock(block);
        throw;
    }
}

ZKString::ZKString() : stringData(MakeText()) {}

ZKString::ZKString(ZKString const& other)
    : stringData(MakeText(other.stringData->data(), CutLength(*other.stringData)))
{
}

ZKString::ZKString(ZKString const& other, int length) : stringData(MakeText())
{
    AssignPadded(*stringData, *other.stringData, CheckedLength(length));
}

ZKString::ZKString(ZKString&& other) : stringData(MakeText(std::move(*other.stringData)))
{
    other.stringData->clear();
}

ZKString::ZKString(char const* text) : stringData(MakeText(text)) {}

ZKString::ZKString(char const* text, int length) : stringData(MakeText())
{
    stringData->assign(text, CheckedLength(length));
}

ZKString::ZKString(char c) : stringData(MakeText(1, c)) {}

ZKString::ZKString(ZKWideChar const* text) : stringData(MakeText())
{
    SetString(text);
}

ZKString::ZKString(ZKWideChar const* text, int length) : stringData(MakeText())
{
    SetString(text, length);
}

ZKString::~ZKString() = default;

ZKString& ZKString::operator=(ZKString const& other)
{
    if (this != &other) *stringData = *other.stringData;
    return *this;
}

ZKString& ZKString::operator=(ZKString&& other)
{
    if (this != &other) {
        *stringData = std::move(*other.stringData);
        other.stringData->clear();
    }
    return *this;
}

ZKString& ZKString::operator=(char const* text)
{
    stringData->assign(text);
    return *this;
}

ZKString& ZKString::operator=(char c)
{
    stringData->assign(1, c);
    return *this;
}

void ZKString::SetString(ZKString const& other)
{
    stringData->assign(*other.stringData, 0, CutLength(*other.stringData));
}

void ZKString::SetString(char const* text) { stringData->assign(text); }

void ZKString::SetString(ZKString const& other, int length)
{
    std::size_t const count = CheckedLength(length);
    if (this == &other && count > stringData->size()) {
        stringData->resize(count);  // padding self with zero bytes
        return;
    }
    AssignPadded(*stringData, *other.stringData, count);
}

void ZKString::SetString(char const* text, int length) { stringData->assign(text, CheckedLength(length)); }

void ZKString::SetString(char c) { stringData->assign(1, c); }

void ZKString::SetString(ZKWideChar const* text)
{
    if (text == nullptr) return;
    std::string converted;
    zk64::detail::AppendUtf16AsUtf8(text, WideLength(text), converted);
    stringData->swap(converted);
}

void ZKString::SetString(ZKWideChar const* text, int length)
{
    std::size_t const count = CheckedLength(length);
    SetString(text);
    if (count < stringData->size()) stringData->resize(count);
}

bool ZKString::operator==(ZKString const& other) const { return *stringData == *other.stringData; }

bool ZKString::operator==(char const* text) const
{
    std::size_t const length = std::strlen(text);
    return stringData->size() == length && std::memcmp(stringData->data(), text, length) == 0;
}

bool ZKString::operator==(char c) const { return stringData->size() == 1 && (*stringData)[0] == c; }

bool ZKString::operator!=(ZKString const& other) const { return !(*this == other); }
bool ZKString::operator!=(char const* text) const { return !(*this == text); }
bool ZKString::operator!=(char c) const { return !(*this == c); }

ZKString& ZKString::operator+=(ZKString const& other)
{
    // std::string::append copes with other being this string.
    stringData->append(other.stringData->data(), CutLength(*other.stringData));
    return *this;
}

ZKString& ZKString::operator+=(char const* text)
{
    stringData->append(text);
    return *this;
}

ZKString& ZKString::operator+=(char c)
{
    stringData->push_back(c);
    return *this;
}

// The joined text cut at its first zero byte: that is the left text up to
// its first zero if it has one, else the left text and the right one up to
// the right's first zero.
ZKString ZKString::operator+(ZKString const& other) const
{
    return *this + other.stringData->c_str();
}

ZKString ZKString::operator+(char const* text) const
{
    ZKString joined(*this);
    if (static_cast<std::size_t>(joined.GetSize()) == stringData->size()) joined.stringData->append(text);
    return joined;
}

ZKString ZKString::operator+(char c) const
{
    char const text[2] = {c, 0};
    return *this + text;
}

char ZKString::operator[](unsigned int index) const { return stringData->data()[index]; }
char& ZKString::operator[](unsigned int index) { return stringData->data()[index]; }

char ZKString::At(unsigned int index) const
{
    if (index >= stringData->size()) ThrowBadPosition();
    return (*stringData)[index];
}

char& ZKString::At(unsigned int index)
{
    if (index >= stringData->size()) ThrowBadPosition();
    return (*stringData)[index];
}

char const* ZKString::GetString() const { return stringData->c_str(); }

ZKString ZKString::GetString(unsigned long long count) const
{
    ZKString result;
    if (count <= stringData->size())
        result.stringData->assign(stringData->data(), CutLength(stringData->data(), count));
    return result;
}

ZKString ZKString::GetString(unsigned long long position, unsigned int count) const
{
    ZKString result;
    std::size_t const size = stringData->size();
    if (position < size) {
        std::size_t const available = size - position;
        std::size_t const take = count < available ? count : available;
        char const* start = stringData->data() + position;
        result.stringData->assign(start, CutLength(start, take));
    }
    return result;
}

int ZKString::GetSize() const { return static_cast<int>(stringData->size()); }
bool ZKString::IsEmpty() const { return stringData->empty(); }
bool ZKString::IsNotEmpty() const { return !stringData->empty(); }
void ZKString::Clear() { stringData->clear(); }

void ZKString::Reserve(unsigned long long capacity)
{
    if (capacity > stringData->max_size()) ThrowTooLong();
    stringData->reserve(capacity);
}

void ZKString::Resize(unsigned long long size)
{
    if (size > stringData->max_size()) ThrowTooLong();
    stringData->resize(size);
}

void ZKString::Insert(char c) { Insert(c, 0); }

void ZKString::Insert(char c, unsigned int position)
{
    CheckPosition(*stringData, position);
    if (c != 0) stringData->insert(position, 1, c);
}

void ZKString::Insert(ZKString const& text) { Insert(text, 0u); }

void ZKString::Insert(ZKString const& text, unsigned int position)
{
    CheckPosition(*stringData, position);
    // std::string::insert copes with text being this string.
    stringData->insert(position, text.stringData->data(), CutLength(*text.stringData));
}

void ZKString::Insert(ZKString const& text, unsigned int count, unsigned int position)
{
    ZKString work(*this);
    Insert(work, text, count, position);
    *this = std::move(work);
}

void ZKString::Insert(ZKString& target, ZKString const& text, unsigned int count, unsigned int position)
{
    if (count == 0) return;
    ZKString const piece(text);  // text may be target itself
    unsigned int const step = static_cast<unsigned int>(text.GetSize());
    for (unsigned int done = 0; done < count; ++done) target.Insert(piece, position + step * done);
}

ZKWideChar* ZKString::GetWideString(ZKString const& text, unsigned int* length, unsigned int* written)
{
    auto const* bytes = reinterpret_cast<unsigned char const*>(text.stringData->data());
    std::size_t const byteCount = CutLength(*text.stringData);
    std::size_t const units = zk64::detail::Utf16Length(bytes, byteCount);
    auto needed = static_cast<unsigned int>(units + 1);
    unsigned int bufferSize = needed;
    if (length != nullptr) {
        if (*length <= needed) *length = needed;
        else bufferSize = *length;
    }
    auto* buffer = new ZKWideChar[bufferSize]();
    zk64::detail::Utf8ToUtf16(bytes, byteCount, buffer);
    if (written != nullptr) *written = needed;
    return buffer;
}

ZKWideChar* ZKString::GetWideString(unsigned int* length, unsigned int* written) const
{
    return GetWideString(*this, length, written);
}

void ZKString::CleanupWideString(ZKWideChar** text)
{
    delete[] *text;
    *text = nullptr;
}
