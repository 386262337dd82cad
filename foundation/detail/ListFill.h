#pragma once

// Filling a list in one go where the result is the same as pushing the items
// one by one.
//
// A list grows by doubling when a push finds it full: each doubling builds
// new storage, moves the items over and keeps the old slot 0, which holds the
// item whose push filled the ring. Growing once to the final capacity C and
// pushing gives the same items in the same slots; every other slot is as the
// doublings leave it in both, except slot 0 after at least one doubling,
// which the one-by-one pushes leave holding item C/2 - 1 (unless the last
// push filled the list). MatchDoubledSlot puts it there.

#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "../ZKContainer.h"
#include "../ZKString.h"

namespace zk64::detail {

struct TextAccess {
    static std::string& Text(ZKString& text) { return *text.stringData; }
    static std::string const& Text(ZKString const& text) { return *text.stringData; }
};

// Reaches a list's slot bookkeeping, which has no public reader.
template <class T>
struct ListState : ZKContainer<T> {
    static unsigned long long FrontSlot(ZKContainer<T> const& list) { return list.*(&ListState::frontSlot); }
    static unsigned long long BackSlot(ZKContainer<T> const& list) { return list.*(&ListState::backSlot); }
    static std::vector<T> const& Slots(ZKContainer<T> const& list) { return list.*(&ListState::items); }
};

// The capacity that doubling from `capacity` reaches to hold `items`.
unsigned long long DoubledCapacity(unsigned long long capacity, unsigned long long items);

// Slot 0 as the doublings from `initialCapacity` leave it (see above).
template <class T>
void MatchDoubledSlot(ZKContainer<T>& list, unsigned long long initialCapacity)
{
    unsigned long long const capacity = list.GetMaxItemCount();
    if (capacity > initialCapacity && list.GetItemCount() < capacity)
        list.SetItem(list.GetItem(capacity / 2 - 1), capacity - 1);  // logical index capacity - 1 is slot 0
}

// A list that pushes would fill as FillUnusedList does: exactly a
// ZKContainer<T>, empty, in the state its construction or a Clear leaves
// (the next push goes to slot 1), growing by itself, with a capacity of at
// least 1. Slots left from an earlier use don't matter: the growth keeps
// them where the doublings would, and the pushes overwrite the same.
template <class T>
bool IsUnusedList(ZKContainer<T> const& list)
{
    if (typeid(list) != typeid(ZKContainer<T>) || !list.IsContainerAutoResize()) return false;
    if (list.GetItemCount() != 0 || list.GetMaxItemCount() == 0) return false;
    return ListState<T>::FrontSlot(list) == 0 && ListState<T>::BackSlot(list) == 1;
}

// Pushes every one of `items` into such a list with `push(list, item)`,
// growing the list at most once.
// Whether every slot of a list holds the empty text: a list that was never
// filled, whose strings have no buffers a push could reuse.
bool HoldsNoText(ZKContainer<ZKString> const& list);

template <class T, class Item, class Push>
void FillUnusedList(ZKContainer<T>& list, std::vector<Item>& items, Push&& push)
{
    unsigned long long const initial = list.GetMaxItemCount();
    unsigned long long const capacity = DoubledCapacity(initial, items.size());
    if (capacity != initial) list.Reserve(capacity);
    for (Item& item : items) push(list, item);
    MatchDoubledSlot(list, initial);
}

// The same for texts, moved into the slots.
void FillUnusedList(ZKContainer<ZKString>& list, std::vector<std::string>& texts);

}  // namespace zk64::detail
