#include "ZKRect.h"

#include <cmath>
#include <type_traits>

#include "detail/ContainerExport.h"
#include "detail/ValueMath.h"

using zk64::detail::WrapAdd;
using zk64::detail::WrapSub;

template <class T>
__ZKRect<T>::__ZKRect() : x(0), y(0), width(0), height(0)
{
}

template <class T>
__ZKRect<T>::__ZKRect(T newX, T newY) : x(newX), y(newY), width(0), height(0)
{
}

template <class T>
__ZKRect<T>::__ZKRect(T newX, T newY, T newWidth, T newHeight)
    : x(newX), y(newY), width(newWidth), height(newHeight)
{
}

template <class T>
bool __ZKRect<T>::operator==(__ZKRect const& other) const
{
    using zk64::detail::FieldEqual;
    return FieldEqual(x, other.x) && FieldEqual(y, other.y) && FieldEqual(width, other.width) &&
           FieldEqual(height, other.height);
}

template <class T>
void __ZKRect<T>::Clear()
{
    x = y = width = height = 0;
}

template <class T>
bool __ZKRect<T>::IsCoordRectInBounds(__ZKRect other) const
{
    return other.x >= x && WrapAdd(x, width) >= WrapAdd(other.x, other.width) && other.y >= y &&
           WrapAdd(y, height) >= WrapAdd(other.y, other.height);
}

template <class T>
bool __ZKRect<T>::IsCoordRectOverLap(__ZKRect other) const
{
    return WrapAdd(other.x, other.width) >= x && WrapAdd(x, width) > other.x &&
           WrapAdd(other.y, other.height) >= y && WrapAdd(y, height) > other.y;
}

template <class T>
void __ZKRect<T>::GetCenterPoint(T& cx, T& cy) const
{
    if constexpr (std::is_same_v<T, double>) {
        cx = width * 0.5 + x;
        cy = height * 0.5 + y;
    } else if constexpr (std::is_same_v<T, float>) {
        using zk64::detail::NarrowToFloat;
        cx = NarrowToFloat(static_cast<double>(width) * 0.5 + static_cast<double>(x));
        cy = NarrowToFloat(static_cast<double>(height) * 0.5 + static_cast<double>(y));
    } else if constexpr (std::is_signed_v<T>) {
        cx = WrapAdd(static_cast<T>(width / 2), x);
        cy = WrapAdd(static_cast<T>(height / 2), y);
    } else {
        cx = WrapAdd(static_cast<T>(width >> 1), x);
        cy = WrapAdd(static_cast<T>(height >> 1), y);
    }
}

template <class T>
__ZKRect<T> __ZKRect<T>::CalculateSlope(__ZKRect a, __ZKRect b)
{
    return __ZKRect(WrapSub(b.x, a.x), WrapSub(b.y, a.y), 0, 0);
}

template <class T>
__ZKRect<T> __ZKRect<T>::CalculateSlope(__ZKRect other)
{
    return CalculateSlope(*this, other);
}

template <class T>
T __ZKRect<T>::CalculateDistance(__ZKRect a, __ZKRect b)
{
    // The differences are taken in T, and only then widened.
    double const dy = static_cast<double>(WrapSub(b.y, a.y));
    double const dx = static_cast<double>(WrapSub(b.x, a.x));
    double const distance = std::sqrt(std::pow(dy, 2.0) + std::pow(dx, 2.0));
    if constexpr (std::is_same_v<T, double>) {
        return distance;
    } else if constexpr (std::is_same_v<T, float>) {
        return zk64::detail::NarrowToFloat(distance);
    } else {
        return zk64::detail::LengthFromDouble<T>(distance);
    }
}

template <class T>
T __ZKRect<T>::CalculateDistance(__ZKRect other)
{
    return CalculateDistance(*this, other);
}

template class __ZKRect<double>;
template class __ZKRect<float>;
template class __ZKRect<int>;
template class __ZKRect<long long>;
template class __ZKRect<unsigned int>;
template class __ZKRect<unsigned long long>;

template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKRect<double>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKRect<float>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKRect<int>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKRect<long long>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKRect<unsigned int>>;
template class ZK_EXPORTED_CONTAINER_INSTANCE ZKContainer<__ZKRect<unsigned long long>>;
