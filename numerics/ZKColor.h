#pragma once

// ZKColor: an RGBA colour of four bytes, with 451 named colours as static
// factories (ZKColorTable.h), and gradients between two colours.
//
// operator!= is deliberately not the negation of operator==: it is true only
// when all four components differ. Two colours that differ only in red are
// neither equal nor unequal.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

class ZK_API ZKColor {
public:
    unsigned char r;
    unsigned char g;
    unsigned char b;
    unsigned char a;

    // Default: opaque black. The values are stored as given.
    ZKColor(unsigned char red = 0, unsigned char green = 0, unsigned char blue = 0, unsigned char alpha = 255)
        : r(red), g(green), b(blue), a(alpha)
    {
    }
    // All of these copy the four bytes; a move leaves the source as it was.
    ZKColor(ZKColor const& other) : r(other.r), g(other.g), b(other.b), a(other.a) {}
    ZKColor(ZKColor&& other) : ZKColor(static_cast<ZKColor const&>(other)) {}
    ZKColor& operator=(ZKColor const& other)
    {
        r = other.r;
        g = other.g;
        b = other.b;
        a = other.a;
        return *this;
    }
    ZKColor& operator=(ZKColor&& other) { return *this = static_cast<ZKColor const&>(other); }
    virtual ~ZKColor() {}

    // All four equal.
    bool operator==(ZKColor const& other) const
    {
        return r == other.r && g == other.g && b == other.b && a == other.a;
    }
    // All four differ.
    bool operator!=(ZKColor const& other) const
    {
        return r != other.r && g != other.g && b != other.b && a != other.a;
    }

    // "r,g,b,a" in decimal, e.g. "255,0,0,255".
    ZKString GetColorAsString() const;
    // Reads "%d,%d,%d,%d" into four integers that start at 0 and stores the
    // low 8 bits of each, with no range check and no failure: text that does
    // not parse gives 0,0,0,0 (alpha 0), "255" gives 255,0,0,0 and
    // "300,-1,0,0" gives 44,255,0,0.
    void SetColorFromString(ZKString const& text);

    // The named colours, each opaque: static ZKColor <Name>();
#define ZK_COLOR(name, red, green, blue) static ZKColor name();
#include "ZKColorTable.h"
#undef ZK_COLOR
};

// For each of r, g, b: from * (1.0 - t) + to * t in double, truncated towards
// zero, stored as its low 8 bits; alpha is always 255. t is not clamped, so
// values outside 0..1 wrap the byte: the truncated value is taken modulo 256
// exactly, however large, and a NaN gives 0.
ZK_API ZKColor GradientToColor(ZKColor from, ZKColor to, double t);
// GradientToColor over every value of a grid; the result has the grid's
// shape, ragged rows included, and an empty grid gives an empty result. It
// is in the state that pushing row after row onto default containers leaves,
// stale slots included, at a cost linear in the number of cells.
ZK_API ZKContainer<ZKContainer<ZKColor>> MapGradient(ZKColor from, ZKColor to,
                                                     ZKContainer<ZKContainer<double>> const& values);

// Windows callers instantiate it themselves (see ZKString.h for why).
#if !defined(_WIN32)
extern template class ZK_API ZKContainer<ZKColor>;
#endif
