#pragma once

// Two-dimensional value noise as a grid of double: a ZKContainer of rows,
// each row a ZKContainer of values.
//
// CreateNoise     a grid of uniform random values. Each call seeds its own
//                 std::mt19937 from std::random_device, so two calls differ
//                 and no seed can be passed. Each value takes two 32-bit
//                 draws d0, d1: (d0 + d1 * 2^32) / 2^64 * (maximum - minimum)
//                 + minimum. The order of minimum and maximum is not checked.
// SmoothNoise     one octave: samples the grid every period = 2^(octave mod 32)
//                 cells and blends bilinearly in between, wrapping at the far
//                 edges. Octave 0 copies the grid. Octave 31 takes the period
//                 as the unsigned value 2^31. A ragged grid is read as it is:
//                 a cell past the end of a shorter row reads that row's
//                 storage slot, as ZKContainer::GetItem's reference form does
//                 (a stale or default value, never memory out of bounds).
// GeneratePerlinNoise  the weighted mean of octaves 0 .. octaves - 1 of one
//                 CreateNoise grid; the coarsest octave weighs 1/2, the next
//                 1/4, and so on. With octaves below 1 every cell is NaN
//                 (0.0 / 0.0); rows 0 gives an empty grid, columns 0 empty
//                 rows. A shape whose cell count cannot be addressed throws
//                 std::bad_alloc, as any allocation that size would.
// Each result is in the state that building it by pushes onto default
// containers leaves, stale slots included. The cost of every function is
// linear in the number of cells (times the octave count for
// GeneratePerlinNoise).

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"

ZK_API ZKContainer<ZKContainer<double>> CreateNoise(unsigned long long rows, unsigned long long columns,
                                                    double const& minimum, double const& maximum);
ZK_API ZKContainer<ZKContainer<double>> SmoothNoise(ZKContainer<ZKContainer<double>> const& grid, int octave);
ZK_API ZKContainer<ZKContainer<double>> GeneratePerlinNoise(unsigned long long rows, unsigned long long columns,
                                                            int octaves, double const& minimum,
                                                            double const& maximum);
