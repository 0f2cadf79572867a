#pragma once

#include "base/Instant.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace korvanti {

/// A folder with a ".git" entry.
struct Repository {
    std::string root;
    std::optional<Instant> lastActivity;
    bool operator==(const Repository&) const = default;
};

/// What the user's projects are and what they ask for. Built once a scan, read-only afterwards.
struct ProjectIndex {
    std::vector<Repository> repositories;      ///< in the order found
    std::vector<std::string> looseProjects;    ///< project folders outside any repository
    std::set<std::string> gradleDistributions; ///< names such as gradle-8.7-bin, from wrapper files
    std::string buildFileText;                 ///< all Gradle build files, joined
    std::set<std::string> rustToolchains;      ///< versions such as 1.75.0
    std::set<std::string> nodeVersions;        ///< versions such as 20.11.0, or names such as lts/iron

    /// The versions in the names of the distributions: gradle-8.7-bin gives 8.7.
    [[nodiscard]] std::set<std::string> gradleVersions() const;
    /// The two-digit API levels that the build files compile against.
    [[nodiscard]] std::set<std::int64_t> compileSdks() const;

    /// Walks the roots, `maxDepth` levels down. Blocks and never fails: what can't be read is missing.
    [[nodiscard]] static ProjectIndex build(const std::vector<std::string>& roots, int maxDepth);
    /// The later of the last commit and the last change of git's index; absent when there is neither.
    [[nodiscard]] static std::optional<Instant> lastActivityOfRepository(const std::string& root);
    /// The folder holds a file that only the top of a project has.
    [[nodiscard]] static bool isProjectRoot(const std::string& folder);

    bool operator==(const ProjectIndex&) const = default;
};

} // namespace korvanti
