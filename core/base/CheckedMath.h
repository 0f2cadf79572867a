#pragma once

#include <concepts>
#include <cstdint>
#include <cstdlib>
#include <optional>

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

/// A size as an outside tool told it; absent when it is negative or more than any disk holds (a petabyte), so
/// that no sum of such can overflow.
[[nodiscard]] constexpr std::optional<std::int64_t> plausibleBytes(std::optional<std::int64_t> told) {
    constexpr std::int64_t most = 1'000'000'000'000'000;
    return told && *told >= 0 && *told <= most ? told : std::nullopt;
}

} // namespace korvanti
