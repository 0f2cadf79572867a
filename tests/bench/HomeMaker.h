#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <vector>

namespace korvanti::bench {

struct HomePlan {
    std::int64_t files = 0; ///< in all that a scan measures
    int repositories = 0;
};

struct BenchHome {
    std::string path;
    std::vector<std::string> measured; ///< the folders that a scan measures, none of them in another
};

/// The home of a developer: caches of build tools, package managers and browsers, containers without an
/// application, and repositories with one commit and their dependencies ignored. Made in `cache` unless it
/// stands there complete. On failure the text says what could not be done.
[[nodiscard]] std::expected<BenchHome, std::string> makeHome(const std::string& cache, const HomePlan& plan);

} // namespace korvanti::bench
