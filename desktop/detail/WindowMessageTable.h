#pragma once

// The table behind GetWindowsMessageIDStr, for the library's own tests.

#include <cstdint>
#include <span>

namespace zk64::detail {

struct WindowMessageName {
    std::uint32_t number;
    char const* name;
};

// Every row, in lookup order: the first row with a number wins.
std::span<WindowMessageName const> WindowMessageNames();

}  // namespace zk64::detail
