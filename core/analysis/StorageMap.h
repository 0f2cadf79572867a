#pragma once

#include "base/Instant.h"
#include "base/Json.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <vector>

namespace korvanti {

/// A folder on the map, or a large file that lies directly in a root.
struct MapNode {
    std::string name;            ///< for people
    std::string path;            ///< absolute
    std::int64_t bytes = 0;      ///< allocated by everything inside
    std::int64_t unreadable = 0; ///< folders inside that could not be read; above 0 `bytes` is a lower bound
    std::optional<std::vector<MapNode>> children; ///< largest first; absent where the tree ends

    [[nodiscard]] const std::string& id() const { return path; }
    bool operator==(const MapNode&) const = default;
};

/// Where the space went: one tree of at most three levels for each root.
struct StorageMap {
    Instant createdAt;
    std::vector<MapNode> roots; ///< largest first
    double duration = 0;        ///< seconds
    bool operator==(const StorageMap&) const = default;
};

[[nodiscard]] Json toJson(const MapNode& node);
[[nodiscard]] Json toJson(const StorageMap& map);
[[nodiscard]] std::expected<MapNode, JsonError> mapNodeFromJson(const Json& json);
[[nodiscard]] std::expected<StorageMap, JsonError> storageMapFromJson(const Json& json);

} // namespace korvanti
