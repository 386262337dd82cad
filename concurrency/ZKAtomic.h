#pragma once

// __ZKAtomic<T>: a sequentially consistent flag, for bool and for
// unsigned long long. Those two are the only forms: the primary template is
// declared and never defined, so any other T fails to compile.
//
// The 64-bit form is a flag wider than a byte: its Load tells whether the
// value is non-zero, and the number itself cannot be read back. There is no
// exchange, compare-and-swap or increment.

#include <atomic>

#include "../foundation/ZKExport.h"

template <class T>
class __ZKAtomic;

template <>
class ZK_API __ZKAtomic<bool> {
public:
    __ZKAtomic() : value(false) {}
    __ZKAtomic(bool initial) : value(initial) {}

    // An atomic exchange whose old value is dropped.
    void Store(bool next) { value.exchange(next); }
    bool Load() const { return value.load(); }

private:
    std::atomic<bool> value;
};

template <>
class ZK_API __ZKAtomic<unsigned long long> {
public:
    __ZKAtomic() : value(0) {}
    __ZKAtomic(unsigned long long initial) : value(initial) {}

    void Store(unsigned long long next) { value.exchange(next); }
    // True when the value is not zero.
    bool Load() const { return value.load() != 0; }

private:
    std::atomic<unsigned long long> value;
};
