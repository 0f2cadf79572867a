#pragma once

#include "base/Instant.h"

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
    bool operator==(const ProjectIndex&) const = default;
};

} // namespace korvanti
