#pragma once

#include <zk64/zk64.h>

#include <string>
#include <vector>

// Reads a container's ring state and whole storage (stale slots included)
// through a copy, which copies every slot and counter.
template <class T>
struct RingView : ZKContainer<T> {
    explicit RingView(ZKContainer<T> const& source) : ZKContainer<T>(source) {}
    unsigned long long Front() const { return this->frontSlot; }
    unsigned long long Back() const { return this->backSlot; }
    std::vector<T> const& Storage() const { return this->items; }
};

template <class T>
unsigned long long FrontSlot(ZKContainer<T> const& c) { return RingView<T>(c).Front(); }
template <class T>
unsigned long long BackSlot(ZKContainer<T> const& c) { return RingView<T>(c).Back(); }

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

inline std::vector<std::string> Texts(ZKContainer<ZKString> const& c)
{
    std::vector<std::string> out;
    for (ZKString const& s : Items(c)) out.emplace_back(s.GetString(), static_cast<std::size_t>(s.GetSize()));
    return out;
}
