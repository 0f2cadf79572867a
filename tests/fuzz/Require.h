#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// What a fuzz target holds must be true: libFuzzer keeps the input that ends the process.
inline void require(bool holds) {
    if (!holds)
        std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}
