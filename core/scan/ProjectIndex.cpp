#include "scan/ProjectIndex.h"

#include "base/Text.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "process/GitOutput.h"
#include "process/SideBySide.h"
#include "process/Toolchain.h"
#include "scan/ProjectFiles.h"
#include "scan/ProjectMarkers.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

using namespace std::chrono_literals;
using Platform::EntryKind;

/// Of a file that belongs to somebody's project no more than this is read: such files are small, and one that
/// is not, by mistake or on purpose, must not fill the memory.
constexpr std::int64_t mostRead = std::int64_t{4} * 1024 * 1024;

/// No further build file is read once there is this much text of them.
constexpr std::size_t mostBuildFileText = std::size_t{64} * 1024 * 1024;

std::string startOf(const std::string& path) {
    return Text::repaired(FileContents::readStart(path, mostRead).value_or(""));
}

bool isOneOf(const auto& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

bool isMarker(const PathTools::Entry& entry) {
    return isOneOf(ProjectMarkers::markers, entry.name) ||
           std::ranges::any_of(ProjectMarkers::markerEndings,
                               [&](std::string_view ending) { return entry.name.ends_with(ending); });
}

bool isEntered(std::string_view folderName) {
    if (isOneOf(ProjectMarkers::skippedFolders, folderName))
        return false;
    return !folderName.starts_with('.') || folderName == ".claude"; // which holds worktrees
}

void insert(std::optional<std::string> found, std::set<std::string>& all) {
    if (found)
        all.insert(*std::move(found));
}

/// Goes down the roots and fills the index with what it meets.
class Walk {
public:
    Walk(ProjectIndex& index, int maxDepth) : index_(index), maxDepth_(maxDepth) {}

    /// `inside`: what lies above is a repository or a project already. Nests no deeper than `maxDepth`.
    void enter(const std::string& folder, int depth = 0, bool inside = false) {
        const auto entries = PathTools::entries(folder);
        inside = record(folder, entries, inside);
        for (const auto& [name, kind] : entries) {
            if (kind == EntryKind::link)
                continue;
            if (kind != EntryKind::folder)
                read(folder, name);
            else if (depth < maxDepth_ && isEntered(name))
                enter(PathTools::joined(folder, name), depth + 1, inside);
        }
    }

private:
    /// Tells whether the folder's children are inside of something.
    bool record(const std::string& folder, const std::vector<PathTools::Entry>& entries, bool inside) {
        if (std::ranges::find(entries, ".git", &PathTools::Entry::name) != entries.end()) {
            index_.repositories.push_back({.root = folder, .lastActivity = {}});
            return true;
        }
        if (inside || std::ranges::none_of(entries, isMarker))
            return inside;
        index_.looseProjects.push_back(folder);
        return true;
    }

    void read(const std::string& folder, const std::string& name) {
        const auto text = [&] { return startOf(PathTools::joined(folder, name)); };

        if (isOneOf(ProjectMarkers::gradleWrapperFiles, name))
            insert(ProjectFiles::gradleDistribution(text()), index_.gradleDistributions);
        else if (isOneOf(ProjectMarkers::gradleBuildFiles, name) &&
                 index_.buildFileText.size() < mostBuildFileText)
            index_.buildFileText += text() + '\n';
        else if (isOneOf(ProjectMarkers::rustToolchainFiles, name))
            insert(ProjectFiles::rustToolchain(text()), index_.rustToolchains);
        else if (isOneOf(ProjectMarkers::nodeVersionFiles, name))
            insert(ProjectFiles::nodeVersion(text()), index_.nodeVersions);
    }

    ProjectIndex& index_;
    int maxDepth_;
};

std::optional<Instant> lastCommit(const std::string& repository) {
    const auto log = Toolchain::git({"log", "-1", "--format=%ct"}, repository, 20s);
    return log.ok() ? GitOutput::commitTime(log.out) : std::nullopt;
}

/// Where git keeps a repository's own files: ".git", or where a file of that name leads.
std::string gitFolder(const std::string& repository) {
    auto entry = PathTools::joined(repository, ".git");
    if (PathTools::isDirectory(entry))
        return entry;
    const auto text = FileContents::readStart(entry, mostRead).value_or(""); // a path need not be UTF-8
    return GitOutput::gitFolder(text, repository).value_or(entry);
}

} // namespace

std::set<std::string> ProjectIndex::gradleVersions() const {
    std::set<std::string> versions;
    for (const auto& distribution : gradleDistributions) {
        if (const auto pieces = Text::pieces(distribution, '-'); pieces.size() >= 2)
            versions.emplace(pieces[1]);
    }
    return versions;
}

std::set<std::int64_t> ProjectIndex::compileSdks() const {
    return ProjectFiles::compileSdks(buildFileText);
}

ProjectIndex ProjectIndex::build(const std::vector<std::string>& roots, int maxDepth) {
    ProjectIndex index;
    Walk walk(index, maxDepth);
    for (const auto& given : roots) {
        const std::string root(PathTools::withoutTrailingSlashes(given));
        // Every path that comes out of the index is absolute.
        if (root.starts_with('/') && PathTools::isDirectory(root))
            walk.enter(root);
    }

    constexpr std::size_t gitsAtOnce = 8;
    runSideBySide(index.repositories.size(), gitsAtOnce, [&](std::size_t place) {
        auto& repository = index.repositories[place];
        repository.lastActivity = lastActivityOfRepository(repository.root);
    });

    std::erase_if(index.looseProjects, [&](const std::string& project) {
        return std::ranges::any_of(index.repositories, [&](const Repository& repository) {
            return PathTools::isSameOrAncestor(repository.root, project);
        });
    });
    return index;
}

std::optional<Instant> ProjectIndex::lastActivityOfRepository(const std::string& root) {
    const auto lastChangeOfIndex = PathTools::modificationDate(PathTools::joined(gitFolder(root), "index"));
    return std::max(lastCommit(root), lastChangeOfIndex);
}

bool ProjectIndex::isProjectRoot(const std::string& folder) {
    return std::ranges::any_of(PathTools::entries(folder), isMarker);
}

} // namespace korvanti
