#pragma once

#include <concepts>
#include <cstdlib>

namespace korvanti {

/// `a + b`. An overflow is a fault of the program or of the file system and ends the process: a wrong size
/// must never reach a decision about what to remove.
template <std::signed_integral Integer> [[nodiscard]] constexpr Integer addChecked(Integer a, Integer b) {
    Integer sum{};
    if (__builtin_add_overflow(a, b, &sum))
        std::abort();
    return sum;
}

/// `a * b`, with the same answer to an overflow.
template <std::signed_integral Integer>
[[nodiscard]] constexpr Integer multiplyChecked(Integer a, Integer b) {
    Integer product{};
    if (__builtin_mul_overflow(a, b, &product))
        std::abort();
    return product;
}

} // namespace korvanti
