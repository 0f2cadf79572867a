#pragma once

#include "providers/ProjectArtifactCandidates.h"
#include "support/Git.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {

/// For messages of failing tests.
inline void PrintTo(const ProjectArtifactProvider::Candidate& candidate, std::ostream* stream) {
    *stream << candidate.url << " \"" << candidate.title << "\" kind " << std::to_underlying(candidate.kind)
            << " safety " << std::to_underlying(candidate.safety) << " from " << candidate.minBytes;
}

namespace testing {

inline const std::string protectedNames[] = {
    ".idea",   ".vscode",   ".vercel",   ".claude",          ".codex",     ".wrangler",
    ".env",    ".supabase", ".firebase", "local.properties", ".terraform", ".aws-sam",
    "secrets", "keystore",  "keystores", "signing",          "certs",      "certificates"};
inline const std::string protectedWords[] = {"secret", "keystore", "credential", "signing", "private"};

inline std::string upper(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

/// Projects that a test writes to the disk: real repositories, for the real git.
class ProjectArtifactFixture : public ::testing::Test {
protected:
    using Candidate = ProjectArtifactProvider::Candidate;
    using Kind = ProjectArtifactProvider::Kind;

    /// A new repository that the index knows. Each line of `ignored` is one of its ".gitignore".
    std::string repository(const std::string& relative, const std::string& ignored = "",
                           std::optional<Instant> lastActivity = std::nullopt) {
        home.file(relative + "/.gitignore", {.text = ignored});
        git(home.path(relative), {"init", "--quiet"});
        projects.repositories.push_back({home.path(relative), lastActivity});
        return home.path(relative);
    }

    std::string looseProject(const std::string& relative) {
        projects.looseProjects.push_back(home.folder(relative));
        return home.path(relative);
    }

    [[nodiscard]] std::vector<Candidate> candidates() const {
        return ProjectArtifactCandidates::of(projects);
    }

    /// The candidates where the activity of the project is not the point: that of a loose one is now.
    [[nodiscard]] std::vector<Candidate> withoutActivity() const {
        auto found = candidates();
        for (auto& candidate : found)
            candidate.repoActivity.reset();
        return found;
    }

    [[nodiscard]] std::vector<std::string> folders() const {
        std::vector<std::string> folders;
        std::ranges::transform(candidates(), std::back_inserter(folders), &Candidate::url);
        return folders;
    }

    [[nodiscard]] Candidate known(const std::string& relative, const std::string& title,
                                  Kind kind = Kind::buildOutput, Safety safety = Safety::regenerable) const {
        return {.url = home.path(relative),
                .title = title,
                .kind = kind,
                .safety = safety,
                .minBytes = 20'000'000};
    }

    [[nodiscard]] Candidate unknown(const std::string& relative, const std::string& title,
                                    std::int64_t minBytes = 100'000'000) const {
        return {.url = home.path(relative),
                .title = title,
                .kind = Kind::unknownIgnored,
                .safety = Safety::review,
                .minBytes = minBytes,
                .offloadable = true};
    }

    TempFolder home;
    GitWithoutSettings settings;
    ProjectIndex projects;
};

} // namespace testing
} // namespace korvanti
