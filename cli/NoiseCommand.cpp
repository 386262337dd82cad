// noise: Perlin noise through a colour gradient, written as a PNG picture.

#include <png.h>

#include <random>
#include <vector>

#include "Commands.h"

namespace zk {

namespace {

// The library's weighted mean of octaves over a grid drawn from a seed: the
// library's own generator draws from the system's randomness, which cannot
// be repeated.
ZKContainer<ZKContainer<double>> SeededNoise(unsigned size, int octaves, unsigned long long seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    ZKContainer<ZKContainer<double>> grid;
    for (unsigned row = 0; row < size; ++row) {
        ZKContainer<double> cells;
        for (unsigned column = 0; column < size; ++column) cells.PushBack(unit(random));
        grid.PushBack(cells);
    }
    std::vector<double> sum(static_cast<size_t>(size) * size, 0.0);
    double total = 0;
    for (int octave = 0; octave < octaves; ++octave) {
        double const weight = 1.0 / static_cast<double>(2ull << (octaves - 1 - octave));  // coarsest: 1/2
        ZKContainer<ZKContainer<double>> smooth = SmoothNoise(grid, octave);
        for (unsigned row = 0; row < size; ++row)
            for (unsigned column = 0; column < size; ++column)
                sum[row * size + column] += weight * smooth.GetItem(row).GetItem(column);
        total += weight;
    }
    for (unsigned row = 0; row < size; ++row)
        for (unsigned column = 0; column < size; ++column)
            grid.GetItem(row).GetItem(column) = sum[row * size + column] / total;
    return grid;
}

}  // namespace

Value NoisePicture(std::string const& path, unsigned size, int octaves, long long seed, ZKColor const& from,
                   ZKColor const& to)
{
    ZKContainer<ZKContainer<double>> const noise =
        seed < 0 ? GeneratePerlinNoise(size, size, octaves, 0.0, 1.0)
                 : SeededNoise(size, octaves, static_cast<unsigned long long>(seed));
    ZKContainer<ZKContainer<ZKColor>> colors = MapGradient(from, to, noise);
    std::vector<unsigned char> pixels;
    pixels.reserve(static_cast<size_t>(size) * size * 4);
    for (unsigned row = 0; row < size; ++row)
        for (unsigned column = 0; column < size; ++column) {
            ZKColor const& c = colors.GetItem(row).GetItem(column);
            pixels.insert(pixels.end(), {c.r, c.g, c.b, c.a});
        }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = size;
    image.height = size;
    image.format = PNG_FORMAT_RGBA;
    if (!png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr)) {
        std::string const reason = image.message;
        png_image_free(&image);
        throw Failure(path + ": the picture cannot be written (" + reason + ")");
    }
    Value report = Value::Record();
    return report.Add("file", Value::Text(path))
        .Add("width", Value::Unsigned(size))
        .Add("height", Value::Unsigned(size))
        .Add("octaves", Value::Number(octaves))
        .Add("seed", seed < 0 ? Value::Text("random") : Value::Number(seed));
}

void AddNoise(CLI::App& app, Options& options)
{
    auto* noise = app.add_subcommand("noise", "Perlin noise through a colour gradient, written as a PNG picture");
    static unsigned size = 256;
    static int octaves = 6;
    static long long seed = -1;
    static std::string from = "Black", to = "White", output;
    noise->add_option("--size", size, "width and height in pixels")
        ->check(CLI::Range(1u, 4096u))
        ->capture_default_str();
    noise->add_option("--octaves", octaves, "octaves, the coarsest 2^(K-1) pixels wide")
        ->check(CLI::Range(1, 16))
        ->capture_default_str();
    noise->add_option("--seed", seed, "the same seed draws the same picture (default: a new one each time)")
        ->check(CLI::NonNegativeNumber);
    noise->add_option("--from", from, "the colour of 0 (a name or r,g,b[,a])")->capture_default_str();
    noise->add_option("--to", to, "the colour of 1")->capture_default_str();
    noise->add_option("-o,--output", output, "the PNG file to write")->required();
    noise->callback([&options] {
        Emit(options, NoisePicture(output, size, octaves, seed, ColorFromText(from), ColorFromText(to)));
    });
}

}  // namespace zk
