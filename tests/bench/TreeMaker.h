#pragma once

#include <cstdint>
#include <expected>
#include <string>

/// Makes the trees that are measured. The same plan gives the same names, lengths and contents every time.
namespace korvanti::bench {

enum class TreeShape {
    realistic, ///< like the caches of a developer: up to twelve levels, folder sizes far apart
    flat,      ///< one folder that holds all files
    chain,     ///< each folder holds the next one and its share of the files
    hollow,    ///< nothing but folders: four that share all others
};

struct TreePlan {
    TreeShape shape = TreeShape::realistic;
    std::int64_t files = 0;
    std::int64_t folders = 0; ///< below the root; a flat tree has none
};

/// The folder of the tree, made in `cache` unless it stands there complete from an earlier run. Uses two
/// threads. On failure the text says what could not be done.
[[nodiscard]] std::expected<std::string, std::string> makeTree(const std::string& cache,
                                                               const TreePlan& plan);

} // namespace korvanti::bench
