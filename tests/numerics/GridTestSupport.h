#pragma once

// Grids of doubles to and from nested vectors, for the noise and gradient
// tests.

#include <zk64/foundation/ZKContainer.h>

#include <vector>

namespace zk64test {

using Grid = ZKContainer<ZKContainer<double>>;
using Rows = std::vector<std::vector<double>>;

inline Grid MakeGrid(Rows const& rows)
{
    Grid grid;
    for (auto const& values : rows) {
        ZKContainer<double> row;
        for (double value : values) row.PushBack(value);
        grid.PushBack(row);
    }
    return grid;
}

// The live items, row by row, read through the checked by-value forms.
inline Rows ToRows(Grid const& grid)
{
    Rows rows;
    for (unsigned long long i = 0; i < grid.GetItemCount(); ++i) {
        ZKContainer<double> const row = grid.GetItem(i);
        rows.emplace_back();
        for (unsigned long long j = 0; j < row.GetItemCount(); ++j) rows.back().push_back(row.GetItem(j));
    }
    return rows;
}

}  // namespace zk64test
