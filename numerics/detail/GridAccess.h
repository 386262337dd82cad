#pragma once

// Reading and building grids (containers of rows) in time linear in their
// cells.
//
// ZKContainer offers a const caller only by-value access, which copies a
// whole row per cell read; ItemAt reaches an element by reference through
// GetItem's reference form, which changes nothing in the container. Like
// that form, it does not check the index against the item count: an index
// past it reads a stale slot (wrapped modulo the capacity, so always inside
// the storage).
//
// A grid built row by row with pushes onto default containers grows each
// container by doubling from 512, copying it every time. NewGrid and
// AppendRow give each container its final capacity at once instead, and
// FinishGrown then leaves it in the state the doublings would have: a
// container that grew holds its items from slot 1 on (every doubling
// re-pushes them from there), as one sized up front does; the one
// difference is slot 0, which a doubling leaves as it was, holding the item
// that had just filled the ring (logical index capacity / 2 - 1 of the last
// doubling). Every other slot holds a default element in both.

#include "../../foundation/ZKContainer.h"

namespace zk64::detail {

template <class T>
T const& ItemAt(ZKContainer<T> const& container, unsigned long long index)
{
    return const_cast<ZKContainer<T>&>(container).GetItem(index);
}

// The capacity that a default container reaches when `count` items are
// pushed onto it.
inline unsigned long long GrownCapacity(unsigned long long count)
{
    unsigned long long capacity = 512;
    while (capacity < count && capacity <= (~0ull >> 1)) capacity <<= 1;
    return capacity;
}

// An empty grid as pushing `rows` rows onto a default container would size it.
template <class T>
ZKContainer<ZKContainer<T>> NewGrid(unsigned long long rows)
{
    return ZKContainer<ZKContainer<T>>(GrownCapacity(rows));
}

// Appends a copy of `blankRow`, a default-constructed row, to `grid` and
// returns the new row, sized for `columns` pushes.
template <class T>
ZKContainer<T>& AppendRow(ZKContainer<ZKContainer<T>>& grid, ZKContainer<T> const& blankRow,
                          unsigned long long columns)
{
    grid.PushBack(blankRow);
    ZKContainer<T>& row = grid.GetItem(grid.GetItemCount() - 1);
    unsigned long long const capacity = GrownCapacity(columns);
    if (capacity != row.GetMaxItemCount()) row.Reserve(capacity);
    return row;
}

// Gives a container sized up front the stale copy that its last doubling
// would have left in slot 0: `stale`, the item that had just filled the ring
// as it stood then. Call it once all items are in.
template <class T>
void FinishGrownWith(ZKContainer<T>& container, T const& stale)
{
    unsigned long long const capacity = container.GetMaxItemCount();
    if (capacity > 512 && container.GetItemCount() < capacity) container.GetItem(capacity - 1) = stale;  // slot 0
}

// The same for a container whose items never changed after their push: the
// stale item is the one at logical index capacity / 2 - 1.
template <class T>
void FinishGrown(ZKContainer<T>& container)
{
    unsigned long long const capacity = container.GetMaxItemCount();
    if (capacity > 512) FinishGrownWith(container, container.GetItem(capacity / 2 - 1));  // another slot
}

}  // namespace zk64::detail
