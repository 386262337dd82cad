#pragma once

// ZKContainer<T>: the library's one sequence type, a double-ended ring
// buffer over a storage array whose every slot holds a constructed T.
//
// Ring rules
//   * Empty state (construction, Clear): frontSlot 0, backSlot 1, itemCount 0.
//     A first PushFront writes slot 0, a first PushBack slot 1.
//   * Logical index i lives in slot (frontSlot + i + 1) % capacity.
//   * A push that fills the ring leaves its end index unwrapped: frontSlot
//     may be all ones, backSlot may equal the capacity.
//   * Pushes return the physical slot written; all ones when the ring is full
//     and growth (bit 0 of flagsData) is off. Growth is exact doubling.
//   * Pops leave a stale copy of the element in its slot; GetItem's reference
//     form and SetItem do not check the index against the item count, so
//     stale slots stay observable. Copies copy stale slots too.
//
// Outcomes this container defines where the plain ring steps would index
// outside the storage:
//   * An unwrapped end index is folded into the storage before it is used:
//     backSlot == capacity means slot 0, frontSlot == all ones means slot
//     capacity - 1 (the slot before 0). So a push after a filling push and a
//     pop at the other end writes the free slot, and a capacity of 1 works
//     from both ends (PushBack on an empty capacity-1 ring writes slot 0).
//   * Capacity 0: doubling leaves it 0, so every push returns all ones, even
//     with growth on; index arithmetic uses slot 0 of a one-slot spare
//     storage, so GetItem's reference form still returns a valid element.
//     Reserve or Resize with a positive count makes the container usable.
//   * Remove returns false, changing nothing, on an empty container and for
//     an index at or past the item count (as well as on a full container).
//     On a ring whose live range wraps past the end of the storage, the
//     shift walks the live range cyclically, so the result is the same as on
//     an unwrapped ring: the item goes, later ones move down by one, the
//     slot behind the new last item keeps a stale copy of the old last item.
//   * A moved-from container keeps reporting its old count and capacity, as
//     a move assignment leaves it, over a one-slot spare storage; anything
//     but assigning to it or destroying it reads that spare slot.
//   * The by-value Pop/Peek/GetItem forms return a value-initialised T when
//     they fail, so pointer element types get a null pointer.
//
// Element types used by the library are instantiated explicitly next to the
// element type's definition; other element types instantiate implicitly.

#include <typeinfo>
#include <utility>
#include <vector>

#include "ZKExport.h"
#include "ZKFlags.h"

template <class T>
class ZKContainer {
protected:
    unsigned long long flagsData;     // bit 0: automatic growth
    unsigned long long maxItemCount;  // capacity
    unsigned long long backSlot;      // slot the next PushBack writes
    unsigned long long frontSlot;     // slot the next PushFront writes
    unsigned long long itemCount;     // live items
    std::vector<T> items;             // storage; max(capacity, 1) slots

    static constexpr unsigned long long kAutoResizeBit = 1;
    static constexpr unsigned long long kPushRefused = ~0ull;

public:
    ZK_FLAGS_MEMBERS

    ZKContainer();
    explicit ZKContainer(unsigned long long maxItems);
    ZKContainer(ZKContainer const& other);
    // Deliberately a copy: the source stays intact.
    ZKContainer(ZKContainer&& other);
    ZKContainer& operator=(ZKContainer const& other);
    ZKContainer& operator=(ZKContainer&& other);

    T& operator[](unsigned long long const& index);
    T operator[](unsigned long long const& index) const;

    unsigned long long GetItemCount() const { return itemCount; }
    unsigned long long GetMaxItemCount() const { return maxItemCount; }
    bool IsContainerFull() const { return itemCount == maxItemCount; }
    bool IsContainerEmpty() const { return itemCount == 0; }
    void SetContainerAutoResize(bool on)
    {
        if (on) flagsData |= kAutoResizeBit;
        else flagsData &= ~kAutoResizeBit;
    }
    bool IsContainerAutoResize() const { return (flagsData & kAutoResizeBit) != 0; }

    // Virtual operations, in virtual-table order.
    virtual ~ZKContainer();
    virtual void Clear();
    // Linearises the ring (first item in slot 1) and sets the capacity.
    // Items beyond the new capacity make it double while growth is on and are
    // dropped silently while it is off.
    virtual void Reserve(unsigned long long maxItems);
    // As Reserve, but the count becomes maxItems too; the old items are then
    // re-pushed behind those maxItems slots (growth on) or lost (growth off).
    virtual void Resize(unsigned long long maxItems);
    virtual unsigned long long PushFront(T const& item);
    virtual unsigned long long EmplaceFront();
    virtual unsigned long long PushBack(T const& item);
    virtual unsigned long long EmplaceBack();
    virtual T PopFront();
    virtual bool PopFront(T& out);
    virtual T PopBack();
    virtual bool PopBack(T& out);
    virtual T PeekFront() const;
    virtual bool PeekFront(T& out) const;
    virtual T PeekBack() const;
    virtual bool PeekBack(T& out) const;
    // No check at all: an index at or past the count reaches a stale slot.
    virtual T& GetItem(unsigned long long const& index);
    virtual T GetItem(unsigned long long const& index) const;
    virtual bool GetItem(T& out, unsigned long long const& index) const;
    // False only on an empty container; any index is taken modulo the
    // capacity and that slot is overwritten.
    virtual bool SetItem(T const& item, unsigned long long const& index);
    // Removes by shifting later items down one slot. A full container refuses.
    virtual bool Remove(unsigned long long index);

private:
    // Slot arithmetic. Every index below is turned into a storage index
    // before it is used. The storage has exactly `capacity` slots except in
    // two states: capacity 0 (one spare slot) and moved-from (one spare slot
    // under the old counters). So an index below the storage size is the
    // answer itself, and one comparison serves the common case; the rest
    // folds in Fold*Slot.

    // Storage index of logical index `index`: (frontSlot + index + 1) modulo
    // the capacity.
    unsigned long long LogicalSlot(unsigned long long index) const
    {
        unsigned long long const slot = frontSlot + index + 1;
        return slot < items.size() ? slot : FoldLogicalSlot(slot);
    }
    // Storage index of a ring end index, which may be unwrapped: the
    // capacity means slot 0, all ones means the slot before 0.
    unsigned long long EndSlot(unsigned long long slot) const
    {
        return slot < items.size() ? slot : FoldEndSlot(slot);
    }
    // The first and the last item of a non-empty ring.
    unsigned long long FirstItemSlot() const { return EndSlot(frontSlot + 1); }  // all ones + 1 is 0
    unsigned long long LastItemSlot() const
    {
        unsigned long long const slot = EndSlot(backSlot);
        return slot == 0 ? EndSlot(maxItemCount - 1) : slot - 1;
    }
    unsigned long long FoldToStorage(unsigned long long slot) const
    {
        return slot < items.size() ? slot : slot % items.size();
    }
    unsigned long long FoldLogicalSlot(unsigned long long slot) const
    {
        return maxItemCount == 0 ? 0 : FoldToStorage(slot % maxItemCount);
    }
    unsigned long long FoldEndSlot(unsigned long long slot) const
    {
        if (maxItemCount == 0) return 0;
        return FoldToStorage(slot == ~0ull ? maxItemCount - 1 : slot % maxItemCount);
    }
    // Step 1 of a push onto a full ring: grow, or say there is no room. Kept
    // out of line so that the pushes themselves stay small enough to inline.
    [[gnu::noinline]] bool GrowForPush();
    void ReserveLinear(unsigned long long maxItems);
    void ReserveByRepush(unsigned long long maxItems, bool resize);
};

template <class T>
ZKContainer<T>::ZKContainer() : ZKContainer(512)
{
}

// The state Reserve(maxItems) leaves an empty container in, built at once:
// maxItems default slots (one for a capacity of 0), nothing constructed twice.
template <class T>
ZKContainer<T>::ZKContainer(unsigned long long maxItems)
    : flagsData(kAutoResizeBit),
      maxItemCount(maxItems),
      backSlot(1),
      frontSlot(0),
      itemCount(0),
      items(maxItems == 0 ? 1 : maxItems)
{
}

template <class T>
ZKContainer<T>::ZKContainer(ZKContainer const& other)
    : flagsData(0), maxItemCount(0), backSlot(1), frontSlot(0), itemCount(0)
{
    *this = other;
}

template <class T>
ZKContainer<T>::ZKContainer(ZKContainer&& other) : ZKContainer(static_cast<ZKContainer const&>(other))
{
}

template <class T>
ZKContainer<T>& ZKContainer<T>::operator=(ZKContainer const& other)
{
    if (this == &other) return *this;
    items = other.items;  // slot for slot, stale slots included
    maxItemCount = other.maxItemCount;
    backSlot = other.backSlot;
    frontSlot = other.frontSlot;
    itemCount = other.itemCount;
    flagsData = (flagsData & ~kAutoResizeBit) | (other.flagsData & kAutoResizeBit);
    return *this;
}

template <class T>
ZKContainer<T>& ZKContainer<T>::operator=(ZKContainer&& other)
{
    if (this != &other) {
        std::vector<T> spare(1);  // what the source is left with
        items = std::move(other.items);
        other.items = std::move(spare);
    }
    // The source keeps its counters: it still reports its old count and
    // capacity.
    maxItemCount = other.maxItemCount;
    backSlot = other.backSlot;
    frontSlot = other.frontSlot;
    itemCount = other.itemCount;
    flagsData = (flagsData & ~kAutoResizeBit) | (other.flagsData & kAutoResizeBit);
    return *this;
}

template <class T>
T& ZKContainer<T>::operator[](unsigned long long const& index)
{
    return GetItem(index);
}

template <class T>
T ZKContainer<T>::operator[](unsigned long long const& index) const
{
    return GetItem(index);
}

template <class T>
ZKContainer<T>::~ZKContainer() = default;

template <class T>
void ZKContainer<T>::Clear()
{
    backSlot = 1;
    frontSlot = 0;
    itemCount = 0;
}

template <class T>
void ZKContainer<T>::Reserve(unsigned long long maxItems)
{
    // The re-push walk below only has results worth computing step by step
    // when a derived class may observe the virtual calls, or when the items
    // do not fit (growth or truncation). Otherwise its outcome is known in
    // closed form and is built directly.
    if (typeid(*this) == typeid(ZKContainer) && itemCount <= maxItems && maxItems > 0 &&
        items.size() == maxItemCount) {
        ReserveLinear(maxItems);
        return;
    }
    ReserveByRepush(maxItems, false);
}

template <class T>
void ZKContainer<T>::Resize(unsigned long long maxItems)
{
    ReserveByRepush(maxItems, true);
}

// Copy the live items out through the virtual GetItem, Clear, set the
// capacity (and, for Resize, the count), resize the storage keeping the
// surviving slots' elements, then re-push each item through the virtual
// PushBack.
template <class T>
void ZKContainer<T>::ReserveByRepush(unsigned long long maxItems, bool resize)
{
    std::vector<T> live;
    live.reserve(itemCount);
    for (unsigned long long i = 0; i < itemCount; ++i) {
        live.emplace_back();
        GetItem(live.back(), i);
    }
    Clear();
    maxItemCount = maxItems;
    if (resize) itemCount = maxItems;
    items.resize(maxItems == 0 ? 1 : maxItems);
    for (T const& item : live) PushBack(item);
}

// The closed form of ReserveByRepush for n = itemCount <= m = maxItems:
// item i ends in slot (i + 1) % m, every other slot keeps the element it had
// (or a default T if it is new), frontSlot is 0 and backSlot is where the
// n-th PushBack would have left it.
template <class T>
void ZKContainer<T>::ReserveLinear(unsigned long long maxItems)
{
    unsigned long long const n = itemCount;
    unsigned long long const m = maxItems;
    unsigned long long const oldSize = items.size();
    auto isTarget = [&](unsigned long long slot) { return n == m || (slot >= 1 && slot <= n); };

    std::vector<T> fresh(m);
    unsigned long long source = n == 0 ? 0 : LogicalSlot(0);
    unsigned long long target = 1 % m;
    for (unsigned long long i = 0; i < n; ++i) {
        // A source slot that survives untouched keeps its element, so that
        // one is copied; every other live element can be moved.
        if (source < m && !isTarget(source)) fresh[target] = items[source];
        else fresh[target] = std::move(items[source]);
        if (++source == oldSize) source = 0;
        if (++target == m) target = 0;
    }
    // Untouched surviving slots: slot 0 and those past the last item.
    unsigned long long const keep = oldSize < m ? oldSize : m;
    if (n < m && keep > 0) {
        fresh[0] = std::move(items[0]);
        if (keep > n + 1) std::move(items.begin() + (n + 1), items.begin() + keep, fresh.begin() + (n + 1));
    }
    items.swap(fresh);

    maxItemCount = m;
    frontSlot = 0;
    itemCount = n;
    if (n == 0 || n == m) backSlot = 1;  // no push, or the filling push wrote slot 0
    else backSlot = (n + 1 == m) ? 0 : n + 1;
}

template <class T>
bool ZKContainer<T>::GrowForPush()
{
    if ((flagsData & kAutoResizeBit) == 0) return false;
    Reserve(maxItemCount * 2);
    return itemCount != maxItemCount;  // doubling 0 stays 0
}

template <class T>
inline unsigned long long ZKContainer<T>::PushFront(T const& item)
{
    if (itemCount == maxItemCount && !GrowForPush()) [[unlikely]] return kPushRefused;
    unsigned long long const slot = EndSlot(frontSlot);
    items[slot] = item;
    ++itemCount;
    if (slot != 0) frontSlot = slot - 1;
    else frontSlot = itemCount == maxItemCount ? ~0ull : maxItemCount - 1;
    return slot;
}

template <class T>
unsigned long long ZKContainer<T>::EmplaceFront()
{
    return PushFront(T());
}

template <class T>
inline unsigned long long ZKContainer<T>::PushBack(T const& item)
{
    if (itemCount == maxItemCount && !GrowForPush()) [[unlikely]] return kPushRefused;
    unsigned long long const slot = EndSlot(backSlot);
    items[slot] = item;
    ++itemCount;
    backSlot = slot + 1;
    if (backSlot == maxItemCount && itemCount != maxItemCount) backSlot = 0;
    return slot;
}

template <class T>
unsigned long long ZKContainer<T>::EmplaceBack()
{
    return PushBack(T());
}

template <class T>
T ZKContainer<T>::PopFront() { T out = T(); PopFront(out); return out; }

template <class T>
inline bool ZKContainer<T>::PopFront(T& out)
{
    if (itemCount == 0) return false;
    frontSlot = FirstItemSlot();
    --itemCount;
    out = items[frontSlot];
    return true;
}

template <class T>
T ZKContainer<T>::PopBack() { T out = T(); PopBack(out); return out; }

template <class T>
inline bool ZKContainer<T>::PopBack(T& out)
{
    if (itemCount == 0) return false;
    backSlot = LastItemSlot();
    --itemCount;
    out = items[backSlot];
    return true;
}

template <class T>
T ZKContainer<T>::PeekFront() const { T out = T(); PeekFront(out); return out; }

template <class T>
inline bool ZKContainer<T>::PeekFront(T& out) const
{
    if (itemCount == 0) return false;
    out = items[FirstItemSlot()];
    return true;
}

template <class T>
T ZKContainer<T>::PeekBack() const { T out = T(); PeekBack(out); return out; }

template <class T>
inline bool ZKContainer<T>::PeekBack(T& out) const
{
    if (itemCount == 0) return false;
    out = items[LastItemSlot()];
    return true;
}

template <class T>
inline T& ZKContainer<T>::GetItem(unsigned long long const& index)
{
    return items[LogicalSlot(index)];
}

template <class T>
T ZKContainer<T>::GetItem(unsigned long long const& index) const { T out = T(); GetItem(out, index); return out; }

template <class T>
inline bool ZKContainer<T>::GetItem(T& out, unsigned long long const& index) const
{
    if (index >= itemCount) return false;
    out = items[LogicalSlot(index)];
    return true;
}

template <class T>
bool ZKContainer<T>::SetItem(T const& item, unsigned long long const& index)
{
    if (itemCount == 0) return false;
    items[LogicalSlot(index)] = item;
    return true;
}

template <class T>
bool ZKContainer<T>::Remove(unsigned long long index)
{
    if (itemCount == maxItemCount) return false;
    if (itemCount == 0 || index >= itemCount) return false;
    --itemCount;
    unsigned long long const back = EndSlot(backSlot);
    unsigned long long const last = LastItemSlot();
    unsigned long long slot = LogicalSlot(index);
    while (slot != last) {
        unsigned long long const next = EndSlot(slot + 1);
        items[slot] = items[next];
        slot = next;
    }
    items[back] = T();
    backSlot = last;
    return true;
}
