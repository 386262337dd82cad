#include "ZKNoise.h"

#include <limits>
#include <new>
#include <random>
#include <vector>

#include "detail/GridAccess.h"
#include "detail/Noise.h"

namespace {

using zk64::detail::AppendRow;
using zk64::detail::FinishGrown;
using zk64::detail::ItemAt;
using zk64::detail::NewGrid;
using zk64::detail::NoiseGrid;

// Sampling step and blend factor of one octave.
struct Octave {
    unsigned long long period;
    double frequency;
};

Octave OctaveOf(int octave)
{
    // The shift count is taken modulo 32; octave 31 gives 2^31, read as an
    // unsigned period.
    unsigned int const period = 1u << (static_cast<unsigned int>(octave) & 31u);
    float const frequency = 1.0f / static_cast<float>(period);  // in single precision
    return {period, static_cast<double>(frequency)};
}

// Where a cell index falls along one axis of an octave: the sample at or
// before it, the next sample (wrapping at `count`), and the blend between.
struct Span {
    unsigned long long low;
    unsigned long long high;
    double blend;
};

Span SpanOf(unsigned long long index, unsigned long long count, Octave const& octave)
{
    // The period is a power of two, so (index / period) * period is a mask.
    unsigned long long const low = index & ~(octave.period - 1);
    unsigned long long high = low + octave.period;
    if (high >= count) high %= count;
    return {low, high, static_cast<double>(index - low) * octave.frequency};
}

// Bilinear blend: rows first, then columns. vRC is the value at row span end
// R and column span end C (0 low, 1 high).
double BlendCell(double v00, double v10, double v01, double v11, double rowBlend, double columnBlend)
{
    double const first = (1 - rowBlend) * v00 + rowBlend * v10;
    double const second = (1 - rowBlend) * v01 + rowBlend * v11;
    return (1 - columnBlend) * first + columnBlend * second;
}

unsigned long long DrawSeed()
{
    std::random_device device;
    return device();
}

}  // namespace

namespace zk64::detail {

double NoiseDraw(std::mt19937& engine, double minimum, double maximum)
{
    // generate_canonical<double, 53> on a 32-bit engine: max(1, ceil(53 / 32))
    // = 2 draws, each weighted by the next power of 2^32.
    double sum = 0.0;
    double factor = 1.0;
    for (int draw = 0; draw < 2; ++draw) {
        sum += static_cast<double>(engine()) * factor;
        factor *= 4294967296.0;
    }
    return sum / factor * (maximum - minimum) + minimum;
}

NoiseGrid CreateNoise(std::mt19937& engine, unsigned long long rows, unsigned long long columns, double minimum,
                      double maximum)
{
    NoiseGrid grid = NewGrid<double>(rows);
    ZKContainer<double> const blankRow;
    for (unsigned long long i = 0; i < rows; ++i) {
        ZKContainer<double>& row = AppendRow(grid, blankRow, columns);
        for (unsigned long long j = 0; j < columns; ++j) row.PushBack(NoiseDraw(engine, minimum, maximum));
        FinishGrown(row);
    }
    FinishGrown(grid);
    return grid;
}

NoiseGrid SumOctaves(std::vector<double> const& base, unsigned long long rows, unsigned long long columns,
                     int octaves)
{
    int const count = octaves > 0 ? octaves : 0;
    // Octave o samples as octave o mod 32 does (the period's shift wraps).
    constexpr int kFrames = 32;
    int const frameCount = count < kFrames ? count : kFrames;
    Octave frames[kFrames];
    for (int k = 0; k < frameCount; ++k) frames[k] = OctaveOf(k);

    // The weights run from the coarsest octave down: 1/2, 1/4, ...; total is
    // their sum, 0 without octaves, and then every cell is 0.0 / 0.0.
    double total = 0.0;
    double amplitude = 1.0;
    for (int o = count; o-- > 0;) {
        amplitude *= 0.5;
        total += amplitude;
    }

    NoiseGrid result = NewGrid<double>(rows);
    ZKContainer<double> const blankRow;
    Span rowSpans[kFrames];
    for (unsigned long long i = 0; i < rows; ++i) {
        ZKContainer<double>& out = AppendRow(result, blankRow, columns);
        for (int k = 0; k < frameCount; ++k) rowSpans[k] = SpanOf(i, rows, frames[k]);
        for (unsigned long long j = 0; j < columns; ++j) {
            // Onto 0, each octave's weighted value in the order of the
            // weights, as a grid of zeros summed octave by octave would get.
            double cell = 0.0;
            double weight = 1.0;
            for (int o = count; o-- > 0;) {
                weight *= 0.5;
                Span const& r = rowSpans[o % kFrames];
                Span const c = SpanOf(j, columns, frames[o % kFrames]);
                double const* low = base.data() + r.low * columns;
                double const* high = base.data() + r.high * columns;
                cell += weight * BlendCell(low[c.low], high[c.low], low[c.high], high[c.high], r.blend, c.blend);
            }
            out.PushBack(cell / total);
        }
    }
    // The cells change after their push: the layers are added onto a grid of
    // zeros, so what any doubling left behind was zeros. Slot 0 of each row
    // is 0 already; the rows' container gets a row of zeros.
    if (result.GetMaxItemCount() > 512) {
        ZKContainer<double> zeros;
        for (unsigned long long j = 0; j < columns; ++j) zeros.PushBack(0.0);
        zk64::detail::FinishGrownWith(result, zeros);
    }
    return result;
}

}  // namespace zk64::detail

ZKContainer<ZKContainer<double>> CreateNoise(unsigned long long rows, unsigned long long columns,
                                             double const& minimum, double const& maximum)
{
    std::mt19937 engine(static_cast<std::mt19937::result_type>(DrawSeed()));
    return zk64::detail::CreateNoise(engine, rows, columns, minimum, maximum);
}

ZKContainer<ZKContainer<double>> SmoothNoise(ZKContainer<ZKContainer<double>> const& grid, int octave)
{
    unsigned long long const rows = grid.GetItemCount();
    NoiseGrid result = NewGrid<double>(rows);
    ZKContainer<double> const blankRow;
    Octave const frame = OctaveOf(octave);
    for (unsigned long long i = 0; i < rows; ++i) {
        unsigned long long const columns = ItemAt(grid, i).GetItemCount();
        ZKContainer<double>& out = AppendRow(result, blankRow, columns);
        Span const r = SpanOf(i, rows, frame);
        ZKContainer<double> const& low = ItemAt(grid, r.low);
        ZKContainer<double> const& high = ItemAt(grid, r.high);
        for (unsigned long long j = 0; j < columns; ++j) {
            Span const c = SpanOf(j, columns, frame);
            out.PushBack(BlendCell(ItemAt(low, c.low), ItemAt(high, c.low), ItemAt(low, c.high),
                                   ItemAt(high, c.high), r.blend, c.blend));
        }
        FinishGrown(out);
    }
    FinishGrown(result);
    return result;
}

ZKContainer<ZKContainer<double>> GeneratePerlinNoise(unsigned long long rows, unsigned long long columns, int octaves,
                                                     double const& minimum, double const& maximum)
{
    // The base grid is drawn exactly as CreateNoise draws it, but into one
    // flat array: it is only read, and the octaves are summed cell by cell
    // without building a grid per octave.
    if (columns != 0 && rows > std::numeric_limits<std::size_t>::max() / sizeof(double) / columns)
        throw std::bad_alloc();  // no grid of that many cells can be held
    std::mt19937 engine(static_cast<std::mt19937::result_type>(DrawSeed()));
    std::vector<double> base;
    base.reserve(rows * columns);
    for (unsigned long long k = 0; k < rows * columns; ++k)
        base.push_back(zk64::detail::NoiseDraw(engine, minimum, maximum));
    return zk64::detail::SumOctaves(base, rows, columns, octaves);
}
