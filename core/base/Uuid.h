#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvanti {

/// A universally unique identifier.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    /// A fresh one out of random bits.
    [[nodiscard]] static Uuid random();

    /// Reads the canonical form only: hexadecimal groups of 8, 4, 4, 4 and 12 digits in any case, with
    /// hyphens between them and nothing around.
    [[nodiscard]] static std::optional<Uuid> parse(std::string_view text);

    /// The canonical form in capitals.
    [[nodiscard]] std::string text() const;

    bool operator==(const Uuid&) const = default;
};

} // namespace korvanti
