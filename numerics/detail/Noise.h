#pragma once

// The parts of the noise functions that take their randomness from outside,
// so that their results can be checked value by value.

#include <random>
#include <vector>

#include "../../foundation/ZKContainer.h"

namespace zk64::detail {

using NoiseGrid = ZKContainer<ZKContainer<double>>;

// One uniform value from two 32-bit draws, low draw first.
double NoiseDraw(std::mt19937& engine, double minimum, double maximum);
// CreateNoise on a given engine: row by row, column by column.
NoiseGrid CreateNoise(std::mt19937& engine, unsigned long long rows, unsigned long long columns,
                      double minimum, double maximum);
// GeneratePerlinNoise's octave sum over a rectangular base grid stored row
// after row in `base` (rows * columns values).
NoiseGrid SumOctaves(std::vector<double> const& base, unsigned long long rows, unsigned long long columns,
                     int octaves);

}  // namespace zk64::detail
