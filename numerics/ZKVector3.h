#pragma once

// __ZKVector3<T>: a three-component vector with value semantics, provided
// for double, float, int, long long, unsigned int and unsigned long long.
//
// Per type:
//   operator==    double: each component narrowed to float and compared as
//                 AreFloatEssentiallyEqual with epsilon 2^-52 (a component
//                 beyond float's range makes the vector unequal to itself);
//                 float: the same without narrowing; integers: exact.
//   GetMagnitude  sqrt of the sum of pow(component, 2). double: in double;
//                 float: all in single precision; integers: components
//                 widened to double (unsigned ones as unsigned values), the
//                 result truncated to T. An integer magnitude the type cannot
//                 hold (components near the type's limits) gives the type's
//                 largest value.
//   Normalize     divides each component by the magnitude when it is above 0
//                 (not 0, for the unsigned types); a zero vector stays. The
//                 integer types divide by the truncated magnitude, so (3, 4, 0)
//                 becomes (0, 0, 0) and (0, 5, 0) becomes (0, 1, 0).
// Integer arithmetic (+, -, Scale, DotProduct) wraps at the type's width.

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"

template <class T>
class __ZKVector3 {
public:
    T x;
    T y;
    T z;

    __ZKVector3();
    __ZKVector3(T newX);  // y and z 0
    __ZKVector3(T newX, T newY);   // z 0
    __ZKVector3(T newX, T newY, T newZ);

    // The components not named become 0, as with the constructors.
    void SetVector(T newX);
    void SetVector(T newX, T newY);
    void SetVector(T newX, T newY, T newZ);

    // Per-type rule above. There is no operator!=.
    bool operator==(__ZKVector3 const& other) const;
    __ZKVector3& operator+=(__ZKVector3 const& other);
    __ZKVector3& operator-=(__ZKVector3 const& other);
    // *this on the left.
    __ZKVector3 operator+(__ZKVector3 const& other);
    __ZKVector3 operator-(__ZKVector3 const& other);

    void Normalize();
    T GetMagnitude();
    void Scale(T factor);  // each component times factor
    // a.x * b.x + a.y * b.y + a.z * b.z in T.
    static T DotProduct(__ZKVector3 const& a, __ZKVector3 const& b);
    T DotProduct(__ZKVector3 const& other) const;
};

template <class T>
__ZKVector3<T> operator+(__ZKVector3<T> const& a, __ZKVector3<T> const& b);
template <class T>
__ZKVector3<T> operator-(__ZKVector3<T> const& a, __ZKVector3<T> const& b);

// Moves `position` along a compass heading in degrees (0 towards negative y,
// 90 towards positive x, clockwise: y grows downwards) at `speed` units per
// second for `elapsedMilliseconds`, after copying it to `previous`. z stays.
// double: a cosine or sine within 2^-52 of 0 or 1 (as AreDoubleEssentiallyEqual
// judges it) snaps to exactly 0 or 1, so axis-aligned moves are exact.
// float: the snaps use AreFloatEssentiallyEqual, which has no absolute
// tolerance, so they only change values that already are 0 or 1, and
// axis-aligned moves keep a tiny sideways term.
ZK_API void UpdateVectorPosition(__ZKVector3<double>& position, __ZKVector3<double>& previous, double speed,
                                 double heading, unsigned int elapsedMilliseconds);
ZK_API void UpdateVectorPosition(__ZKVector3<float>& position, __ZKVector3<float>& previous, float speed,
                                 float heading, unsigned int elapsedMilliseconds);

extern template class ZK_API __ZKVector3<double>;
extern template class ZK_API __ZKVector3<float>;
extern template class ZK_API __ZKVector3<int>;
extern template class ZK_API __ZKVector3<long long>;
extern template class ZK_API __ZKVector3<unsigned int>;
extern template class ZK_API __ZKVector3<unsigned long long>;

#define ZK_VECTOR3_FREE_OPERATORS(T)                                                        \
    extern template ZK_API __ZKVector3<T> operator+(__ZKVector3<T> const&, __ZKVector3<T> const&); \
    extern template ZK_API __ZKVector3<T> operator-(__ZKVector3<T> const&, __ZKVector3<T> const&);
ZK_VECTOR3_FREE_OPERATORS(double)
ZK_VECTOR3_FREE_OPERATORS(float)
ZK_VECTOR3_FREE_OPERATORS(int)
ZK_VECTOR3_FREE_OPERATORS(long long)
ZK_VECTOR3_FREE_OPERATORS(unsigned int)
ZK_VECTOR3_FREE_OPERATORS(unsigned long long)
#undef ZK_VECTOR3_FREE_OPERATORS

// Containers of vectors; Windows callers instantiate them themselves (see
// ZKString.h for why).
#if !defined(_WIN32)
extern template class ZK_API ZKContainer<__ZKVector3<double>>;
extern template class ZK_API ZKContainer<__ZKVector3<float>>;
extern template class ZK_API ZKContainer<__ZKVector3<int>>;
extern template class ZK_API ZKContainer<__ZKVector3<long long>>;
extern template class ZK_API ZKContainer<__ZKVector3<unsigned int>>;
extern template class ZK_API ZKContainer<__ZKVector3<unsigned long long>>;
#endif
