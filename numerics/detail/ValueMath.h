#pragma once

// Arithmetic shared by the rectangle and vector templates, for their six
// element types. Integer arithmetic wraps at the type's width (done in the
// unsigned type, so that signed overflow is never undefined); floating
// arithmetic is plain.

#include <cmath>
#include <limits>
#include <type_traits>

#include "../ZKMath.h"

namespace zk64::detail {

template <class T>
T WrapAdd(T a, T b)
{
    if constexpr (std::is_integral_v<T>) {
        using U = std::make_unsigned_t<T>;
        return static_cast<T>(static_cast<U>(static_cast<U>(a) + static_cast<U>(b)));
    } else {
        return a + b;
    }
}

template <class T>
T WrapSub(T a, T b)
{
    if constexpr (std::is_integral_v<T>) {
        using U = std::make_unsigned_t<T>;
        return static_cast<T>(static_cast<U>(static_cast<U>(a) - static_cast<U>(b)));
    } else {
        return a - b;
    }
}

template <class T>
T WrapMul(T a, T b)
{
    if constexpr (std::is_integral_v<T>) {
        using U = std::make_unsigned_t<T>;
        return static_cast<T>(static_cast<U>(static_cast<U>(a) * static_cast<U>(b)));
    } else {
        return a * b;
    }
}

// A non-negative length (distance or magnitude) computed in double, brought
// back to an integer type by truncation. A length the type cannot hold gives
// the type's largest value; NaN gives 0. Unsigned types convert as unsigned
// values, so 2^63 and above reach unsigned long long intact.
template <class T>
T LengthFromDouble(double length)
{
    static_assert(std::is_integral_v<T>);
    if (!(length >= 0.0)) return 0;
    // 2^digits is the first value past the type's range, exact in double.
    double const limit = std::ldexp(1.0, std::numeric_limits<T>::digits);
    if (length >= limit) return std::numeric_limits<T>::max();
    return static_cast<T>(length);
}

// double to float as IEEE 754 rounds it: values past float's range become
// infinities (a plain cast of such a value is undefined in C++).
inline float NarrowToFloat(double value)
{
    // FLT_MAX plus half a unit in its last place: from here on (ties go to
    // the even neighbour, which is infinity) the rounded result is infinite.
    constexpr double kOverflow = 0x1.ffffffp127;
    if (value >= kOverflow) return std::numeric_limits<float>::infinity();
    if (value <= -kOverflow) return -std::numeric_limits<float>::infinity();
    return static_cast<float>(value);
}

// 2^-52: the epsilon of the floating equality of rectangles and vectors.
inline constexpr float kFieldEpsilon = 0x1p-52f;

// Field equality of rectangles and vectors: exact for integers; for floating
// types, each field narrowed to float and compared as essentially equal with
// epsilon 2^-52, which is exact equality in practice, except that a field
// beyond float's range narrows to an infinity and is unequal to itself.
template <class T>
bool FieldEqual(T a, T b)
{
    if constexpr (std::is_same_v<T, double>) {
        float const fa = NarrowToFloat(a);
        float const fb = NarrowToFloat(b);
        return AreFloatEssentiallyEqual(fa, fb, kFieldEpsilon);
    } else if constexpr (std::is_same_v<T, float>) {
        return AreFloatEssentiallyEqual(a, b, kFieldEpsilon);
    } else {
        return a == b;
    }
}

}  // namespace zk64::detail
