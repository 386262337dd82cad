#include "ZKVector3.h"

#include <cmath>
#include <type_traits>

#include "detail/ContainerExport.h"
#include "detail/ValueMath.h"

using zk64::detail::WrapAdd;
using zk64::detail::WrapMul;
using zk64::detail::WrapSub;

template <class T>
__ZKVector3<T>::__ZKVector3() : x(0), y(0), z(0)
{
}

template <class T>
__ZKVector3<T>::__ZKVector3(T newX) : x(newX), y(0), z(0)
{
}

template <class T>
__ZKVector3<T>::__ZKVector3(T newX, T newY) : x(newX), y(newY), z(0)
{
}

template <class T>
__ZKVector3<T>::__ZKVector3(T newX, T newY, T newZ) : x(newX), y(newY), z(newZ)
{
}

template <class T>
void __ZKVector3<T>::SetVector(T newX)
{
    SetVector(newX, 0, 0);
}

template <class T>
void __ZKVector3<T>::SetVector(T newX, T newY)
{
    SetVector(newX, newY, 0);
}

template <class T>
void __ZKVector3<T>::SetVector(T newX, T newY, T newZ)
{
    x = newX;
    y = newY;
    z = newZ;
}

template <class T>
bool __ZKVector3<T>::operator==(__ZKVector3 const& other) const
{
    using zk64::detail::FieldEqual;
    return FieldEqual(x, other.x) && FieldEqual(y, other.y) && FieldEqual(z, other.z);
}

template <class T>
__ZKVector3<T>& __ZKVector3<T>::operator+=(__ZKVector3 const& other)
{
    x = WrapAdd(x, other.x);
    y = WrapAdd(y, other.y);
    z = WrapAdd(z, other.z);
    return *this;
}

template <class T>
__ZKVector3<T>& __ZKVector3<T>::operator-=(__ZKVector3 const& other)
{
    x = WrapSub(x, other.x);
    y = WrapSub(y, other.y);
    z = WrapSub(z, other.z);
    return *this;
}

template <class T>
__ZKVector3<T> __ZKVector3<T>::operator+(__ZKVector3 const& other)
{
    __ZKVector3 result(*this);
    return result += other;
}

template <class T>
__ZKVector3<T> __ZKVector3<T>::operator-(__ZKVector3 const& other)
{
    __ZKVector3 result(*this);
    return result -= other;
}

template <class T>
T __ZKVector3<T>::GetMagnitude()
{
    if constexpr (std::is_same_v<T, float>) {
        return std::sqrt(std::pow(x, 2.0f) + std::pow(y, 2.0f) + std::pow(z, 2.0f));
    } else {
        double const dx = static_cast<double>(x), dy = static_cast<double>(y), dz = static_cast<double>(z);
        double const magnitude = std::sqrt(std::pow(dx, 2.0) + std::pow(dy, 2.0) + std::pow(dz, 2.0));
        if constexpr (std::is_same_v<T, double>) return magnitude;
        else return zk64::detail::LengthFromDouble<T>(magnitude);
    }
}

template <class T>
void __ZKVector3<T>::Normalize()
{
    // Above 0 for the floating and signed types (a NaN magnitude fails it
    // too), not 0 for the unsigned ones: the same test for every type.
    T const magnitude = GetMagnitude();
    if (!(magnitude > 0)) return;
    x /= magnitude;
    y /= magnitude;
    z /= magnitude;
}

template <class T>
void __ZKVector3<T>::Scale(T factor)
{
    x = WrapMul(x, factor);
    y = WrapMul(y, factor);
    z = WrapMul(z, factor);
}

template <class T>
T __ZKVector3<T>::DotProduct(__ZKVector3 const& a, __ZKVector3 const& b)
{
    return WrapAdd(WrapAdd(WrapMul(a.x, b.x), WrapMul(a.y, b.y)), WrapMul(a.z, b.z));
}

template <class T>
T __ZKVector3<T>::DotProduct(__ZKVector3 const& other) const
{
    return DotProduct(*this, other);
}

template <class T>
__ZKVector3<T> operator+(__ZKVector3<T> const& a, __ZKVector3<T> const& b)
{
    __ZKVector3<T> result(a);
    return result += b;
}

template <class T>
__ZKVector3<T> operator-(__ZKVector3<T> const& a, __ZKVector3<T> const& b)
{
    __ZKVector3<T> result(a);
    return result -= b;
}

namespace {

// The common end of both UpdateVectorPosition forms: snap the cosine and the
// sine towards 0, then towards 1, as `equal` judges with epsilon 2^-52;
// remember the position; move it for t seconds, y growing downwards.
template <class F, class Equal>
void MoveAlongHeading(__ZKVector3<F>& position, __ZKVector3<F>& previous, F c, F s, F speed, F t, F epsilon,
                      Equal equal)
{
    if (equal(c, F(0), epsilon)) c = F(0);
    if (equal(c, F(1), epsilon)) c = F(1);
    if (equal(s, F(0), epsilon)) s = F(0);
    if (equal(s, F(1), epsilon)) s = F(1);
    previous.x = position.x;
    previous.y = position.y;
    previous.z = position.z;
    position.x = position.x + c * speed * t;
    position.y = position.y - s * speed * t;
}

}  // namespace

void UpdateVectorPosition(__ZKVector3<double>& position, __ZKVector3<double>& previous, double speed,
                          double heading, unsigned int elapsedMilliseconds)
{
    double const angle = std::fmod(90.0 - heading + 360.0, 360.0) * 0.017453292519943295;
    double const t = elapsedMilliseconds / 1000.0;
    MoveAlongHeading(position, previous, std::cos(angle), std::sin(angle), speed, t, 2.220446049250313e-16,
                     AreDoubleEssentiallyEqual);
}

void UpdateVectorPosition(__ZKVector3<float>& position, __ZKVector3<float>& previous, float speed,
                          float heading, unsigned int elapsedMilliseconds)
{
    // The angle in float, the radian factor applied in double; the snaps
    // have no absolute tolerance, so they only keep values that already are
    // 0 or 1.
    float const degrees = std::fmod(90.0f - heading + 360.0f, 360.0f);
    float const angle = zk64::detail::NarrowToFloat(static_cast<double>(degrees) * 0.017453292519943295);
    float const t = static_cast<float>(elapsedMilliseconds) / 1000.0f;
    MoveAlongHeading(position, previous, std::cos(angle), std::sin(angle), speed, t, zk64::detail::kFieldEpsilon,
                     AreFloatEssentiallyEqual);
}

template class __ZKVector3<double>;
template class __ZKVector3<float>;
template class __ZKVector3<int>;
template class __ZKVector3<long long>;
template class __ZKVector3<unsigned int>;
template class __ZKVector3<unsigned long long>;

#define ZK_VECTOR3_FREE_OPERATORS(T)                                                           \
    template __ZKVector3<T> operator+(__ZKVector3<T> const&, __ZKVector3<T> const&); \
    template __ZKVector3<T> operator-(__ZKVector3<T> const&, __ZKVector3<T> const&);
ZK_VECTOR3_FREE_OPERATORS(double)
ZK_VECTOR3_FREE_OPERATORS(float)
ZK_VECTOR3_FREE_OPERATORS(int)
ZK_VECTOR3_FREE_OPERATORS(long long)
ZK_VECTOR3_FREE_OPERATORS(unsigned int)
ZK_VECTOR3_FREE_OPERATORS(unsigned long long)
#undef ZK_VECTOR3_FREE_OPERATORS

template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKVector3<double>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKVector3<float>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKVector3<int>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKVector3<long long>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKVector3<unsigned int>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKVector3<unsigned long long>>;
