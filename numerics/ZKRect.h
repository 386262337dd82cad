#pragma once

// __ZKRect<T>: an axis-aligned rectangle given by a corner, a width and a
// height, covering x .. x + width and y .. y + height. No invariant is kept:
// negative sizes of the signed types are stored and used as they are.
//
// The library provides six instantiations: double, float, int, long long,
// unsigned int and unsigned long long. They differ in:
//   operator==       double: each field narrowed to float, then compared as
//                    AreFloatEssentiallyEqual with epsilon 2^-52 (exact
//                    equality of the float images; a field beyond float's
//                    range makes the rectangle unequal even to itself).
//                    float: the same without the narrowing. Integers: exact.
//   GetCenterPoint   double: width * 0.5 + x. float: that formula in double,
//                    narrowed to float. Signed integers: width / 2 + x
//                    (division towards zero). Unsigned: (width >> 1) + x.
//   CalculateDistance  the corner differences are taken in T (integers wrap,
//                    so an unsigned b left of a is very far away), then
//                    sqrt(pow(dy, 2.0) + pow(dx, 2.0)) in double, brought
//                    back to T: float narrowed, integers truncated. An
//                    integer distance the type cannot hold (possible only
//                    with wrapped differences near the type's limits) gives
//                    the type's largest value.
// Integer arithmetic (x + width, the differences) wraps at the type's width.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"

template <class T>
class __ZKRect {
public:
    T x;
    T y;
    T width;
    T height;

    __ZKRect();
    // The corner; width and height 0.
    __ZKRect(T newX, T newY);
    __ZKRect(T newX, T newY, T newWidth, T newHeight);

    // Per-type rule above. There is no operator!=.
    bool operator==(__ZKRect const& other) const;
    void Clear();

    // other lies wholly inside this rectangle, edges included.
    bool IsCoordRectInBounds(__ZKRect other) const;
    // One-sided at the edges: other touching this rectangle's low edge
    // (other.x + other.width == x) overlaps, touching its high edge
    // (other.x == x + width) does not; likewise on y. Not symmetric.
    bool IsCoordRectOverLap(__ZKRect other) const;
    void GetCenterPoint(T& cx, T& cy) const;

    // No division in spite of the name: (b.x - a.x, b.y - a.y, 0, 0).
    static __ZKRect CalculateSlope(__ZKRect a, __ZKRect b);
    __ZKRect CalculateSlope(__ZKRect other);  // *this as a
    // Distance between the two corners; sizes play no part.
    static T CalculateDistance(__ZKRect a, __ZKRect b);
    T CalculateDistance(__ZKRect other);  // *this as a
};

extern template class ZK_API __ZKRect<double>;
extern template class ZK_API __ZKRect<float>;
extern template class ZK_API __ZKRect<int>;
extern template class ZK_API __ZKRect<long long>;
extern template class ZK_API __ZKRect<unsigned int>;
extern template class ZK_API __ZKRect<unsigned long long>;

// Containers of rectangles; Windows callers instantiate them themselves (see
// ZKString.h for why).
#if !defined(_WIN32)
extern template class ZK_API ZKContainer<__ZKRect<double>>;
extern template class ZK_API ZKContainer<__ZKRect<float>>;
extern template class ZK_API ZKContainer<__ZKRect<int>>;
extern template class ZK_API ZKContainer<__ZKRect<long long>>;
extern template class ZK_API ZKContainer<__ZKRect<unsigned int>>;
extern template class ZK_API ZKContainer<__ZKRect<unsigned long long>>;
#endif
