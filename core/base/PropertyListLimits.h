#pragma once

#include <cstddef>

/// How much of a property list is taken. No list that the program reads comes near; a hostile one can be
/// small and unfold to any size.
namespace korvanti::PropertyListLimits {

inline constexpr std::size_t bytes = 64UL * 1024 * 1024;
inline constexpr std::size_t depth = 512;        ///< arrays and dictionaries inside one another
inline constexpr std::size_t values = 1'000'000; ///< all of them, each as often as it is referred to

} // namespace korvanti::PropertyListLimits
