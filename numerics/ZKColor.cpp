#include "ZKColor.h"

#include <cmath>

#include "detail/ContainerExport.h"
#include "detail/GridAccess.h"

template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<ZKColor>;
template class ZKContainer<ZKContainer<ZKColor>>;

ZKString ZKColor::GetColorAsString() const
{
    return ZKString::FormatStr("%d,%d,%d,%d", static_cast<int>(r), static_cast<int>(g), static_cast<int>(b),
                               static_cast<int>(a));
}

void ZKColor::SetColorFromString(ZKString const& text)
{
    int red = 0, green = 0, blue = 0, alpha = 0;
    text.Scan("%d,%d,%d,%d", &red, &green, &blue, &alpha);
    r = static_cast<unsigned char>(red);
    g = static_cast<unsigned char>(green);
    b = static_cast<unsigned char>(blue);
    a = static_cast<unsigned char>(alpha);
}

#define ZK_COLOR(name, red, green, blue) \
    ZKColor ZKColor::name() { return ZKColor(red, green, blue, 255); }
#include "ZKColorTable.h"
#undef ZK_COLOR

namespace {

// The low 8 bits of a blend outside the byte's range: the truncated value
// modulo 256, taken in double, where it is exact, so that values beyond
// every integer type still wrap; a NaN gives 0.
[[gnu::noinline]] unsigned char WrapByte(double blended)
{
    double wrapped = std::fmod(std::trunc(blended), 256.0);
    if (std::isnan(wrapped)) return 0;
    if (wrapped < 0.0) wrapped += 256.0;
    return static_cast<unsigned char>(wrapped);
}

// The low 8 bits of a blend truncated towards zero. Blends inside the byte's
// range (the usual case, t in 0..1) convert directly.
inline unsigned char BlendByte(unsigned char from, unsigned char to, double t)
{
    double const blended = static_cast<double>(from) * (1.0 - t) + static_cast<double>(to) * t;
    if (blended > -1.0 && blended < 256.0) [[likely]]
        return static_cast<unsigned char>(static_cast<int>(blended));
    return WrapByte(blended);
}

inline ZKColor Blend(ZKColor const& from, ZKColor const& to, double t)
{
    return ZKColor(BlendByte(from.r, to.r, t), BlendByte(from.g, to.g, t), BlendByte(from.b, to.b, t), 255);
}

}  // namespace

ZKColor GradientToColor(ZKColor from, ZKColor to, double t)
{
    return Blend(from, to, t);
}

ZKContainer<ZKContainer<ZKColor>> MapGradient(ZKColor from, ZKColor to, ZKContainer<ZKContainer<double>> const& values)
{
    using namespace zk64::detail;
    unsigned long long const rows = values.GetItemCount();
    ZKContainer<ZKContainer<ZKColor>> result = NewGrid<ZKColor>(rows);
    ZKContainer<ZKColor> const blankRow;
    for (unsigned long long i = 0; i < rows; ++i) {
        ZKContainer<double> const& row = ItemAt(values, i);
        unsigned long long const columns = row.GetItemCount();
        ZKContainer<ZKColor>& out = AppendRow(result, blankRow, columns);
        for (unsigned long long j = 0; j < columns; ++j) out.PushBack(Blend(from, to, ItemAt(row, j)));
        FinishGrown(out);
    }
    FinishGrown(result);
    return result;
}
