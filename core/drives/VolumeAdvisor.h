#pragma once

#include "drives/VolumeInfo.h"

#include <optional>
#include <string>
#include <vector>

namespace korvanti {

/// One line that says how fit a volume is for a developer's work.
struct Advice {
    enum class Level { good, info, warning };
    Level level = Level::info;
    std::string title;
    std::string detail;
    std::optional<std::string> command = std::nullopt; ///< for the user to copy; the program never runs it

    [[nodiscard]] const std::string& id() const { return title; }
    bool operator==(const Advice&) const = default;
};

namespace VolumeAdvisor {

/// In the order of the rules: format, ownership, drive kind, connection, encryption, fill, wear.
[[nodiscard]] std::vector<Advice> advice(const VolumeInfo& volume);

} // namespace VolumeAdvisor
} // namespace korvanti
