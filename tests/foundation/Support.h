#pragma once

// Helpers shared by the foundation tests.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <string>
#include <type_traits>
#include <vector>

namespace zk64::test {

// The whole counted text, embedded zero bytes included.
inline std::string Bytes(ZKString const& s) { return std::string(s.GetString(), static_cast<std::size_t>(s.GetSize())); }
inline ZKString Counted(std::string const& bytes) { return ZKString(bytes.data(), static_cast<int>(bytes.size())); }

// Several strings' whole counted texts, to compare a column of results at once.
template <class... S>
std::vector<std::string> AllBytes(S const&... strings)
{
    return {Bytes(strings)...};
}

// The live items in logical order, through the checked accessor.
template <class T>
std::vector<T> Items(ZKContainer<T> const& c)
{
    std::vector<T> out;
    for (unsigned long long i = 0; i < c.GetItemCount(); ++i) {
        T item{};
        c.GetItem(item, i);
        out.push_back(item);
    }
    return out;
}

// The live items of a string list, each as its whole counted text.
inline std::vector<std::string> ItemBytes(ZKContainer<ZKString> const& list)
{
    std::vector<std::string> out;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) out.push_back(Bytes(list.GetItem(i)));
    return out;
}

// A container's ring state and whole storage (stale slots included), read
// through a copy, which copies every slot and counter.
template <class T>
struct RingView : ZKContainer<T> {
    explicit RingView(ZKContainer<T> const& source) : ZKContainer<T>(source) {}
    unsigned long long Front() const { return this->frontSlot; }
    unsigned long long Back() const { return this->backSlot; }
    std::vector<T> const& Storage() const { return this->items; }
};

// Everything a container holds as text: flags, count, end slots, then every
// slot of its storage.
template <class T>
std::vector<std::string> RingState(ZKContainer<T> const& c)
{
    RingView<T> const view(c);
    std::vector<std::string> out{std::to_string(c.GetFlagsData()), std::to_string(c.GetItemCount()),
                                 std::to_string(view.Front()), std::to_string(view.Back())};
    for (T const& item : view.Storage()) {
        if constexpr (std::is_same_v<T, ZKString>) {
            out.push_back(Bytes(item));
        } else {
            out.push_back(std::to_string(item));
        }
    }
    return out;
}

template <class E, class F>
void ExpectThrowWithMessage(F&& f, char const* message)
{
    try {
        f();
        ADD_FAILURE() << "no exception, expected \"" << message << "\"";
    } catch (E const& e) {
        EXPECT_STREQ(e.what(), message);
    }
}

}  // namespace zk64::test
