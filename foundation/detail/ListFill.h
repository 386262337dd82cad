#pragma once

// Filling a caller's list of strings in one go where the result is the same
// as pushing the items one by one.
//
// A list grows by doubling when a push finds it full: each doubling builds
// new storage, moves the items over and keeps the old slot 0, which holds the
// item whose push filled the ring. Growing once to the final capacity C and
// pushing gives the same items in the same slots; every other slot is a
// default string in both, except slot 0 after at least one doubling, which
// the one-by-one pushes leave holding item C/2 - 1 (unless the last push
// filled the list). MatchDoubledSlot puts it there.

#include <string>
#include <vector>

#include "../ZKContainer.h"
#include "../ZKString.h"

namespace zk64::detail {

struct TextAccess {
    static std::string& Text(ZKString& text) { return *text.stringData; }
    static std::string const& Text(ZKString const& text) { return *text.stringData; }
};

// The capacity that doubling from `capacity` reaches to hold `items`.
unsigned long long DoubledCapacity(unsigned long long capacity, unsigned long long items);

// Slot 0 as the doublings from `initialCapacity` leave it (see above).
void MatchDoubledSlot(ZKContainer<ZKString>& list, unsigned long long initialCapacity);

// A list that pushes would fill as FillUnusedList does: exactly a
// ZKContainer<ZKString>, empty, in the state its construction or a Clear
// leaves (the next push goes to slot 1), growing by itself, with a capacity
// of at least 1. Slots left from an earlier use don't matter: the growth
// keeps them where the doublings would, and the pushes overwrite the same.
bool IsUnusedList(ZKContainer<ZKString> const& list);

// Pushes `texts` (moved out) into such a list, growing it at most once.
void FillUnusedList(ZKContainer<ZKString>& list, std::vector<std::string>& texts);

}  // namespace zk64::detail
