#include "providers/ToolchainProvider.h"

#include "base/Text.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "providers/MeasuredItems.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <iterator>
#include <set>
#include <string_view>

namespace korvanti {
namespace {

constexpr std::int64_t smallestShown = 20'000'000;
constexpr std::int64_t longestAliasFile = std::int64_t{4} * 1024 * 1024;

struct Candidate {
    std::string location;
    std::string title;
    std::string detail;
    Safety safety;
};

/// A Node folder's name without its "v".
std::string_view versionOf(std::string_view folder) {
    return PathTools::lastComponent(folder).substr(1);
}

bool isPinned(std::string_view version, const std::set<std::string>& pins) {
    return std::ranges::any_of(pins, [&](const std::string& pin) { return version.starts_with(pin); });
}

/// What nvm uses unless told otherwise, such as "20" or "20.11.0"; empty when that is not known.
std::string defaultAlias(const ScanContext& context) {
    const auto bytes = FileContents::read(context.url(".nvm/alias/default"), longestAliasFile);
    if (!bytes || Text::repaired(*bytes) != *bytes)
        return {};
    return std::string(Text::trimmed(Text::trimmed(*bytes), "v"));
}

/// The newest of the folders that the alias stands for; empty when there is none.
std::string activeNode(const std::vector<std::string>& folders, const std::string& alias) {
    if (alias.empty())
        return {};
    std::string active;
    for (const auto& folder : folders) {
        if (versionOf(folder).starts_with(alias) &&
            (active.empty() || PathTools::compareVersions(versionOf(folder), versionOf(active)) ==
                                   std::strong_ordering::greater))
            active = folder;
    }
    return active;
}

std::vector<Candidate> nodeVersions(const ScanContext& context) {
    const auto folders = PathTools::subfolders(context.url(".nvm/versions/node"));
    const auto active = activeNode(folders, defaultAlias(context));
    std::vector<Candidate> candidates;
    for (const auto& folder : folders) {
        const auto title = "Node " + std::string(PathTools::lastComponent(folder));
        if (folder == active)
            candidates.push_back({folder, title, "Versi default nvm.", Safety::keep});
        else if (isPinned(versionOf(folder), context.projects.nodeVersions))
            candidates.push_back({folder, title, "Dipin oleh .nvmrc proyek.", Safety::keep});
        else
            candidates.push_back({folder, title + " (bukan default)",
                                  "Tidak dipakai sebagai default dan tidak dipin proyek. Pasang ulang dengan "
                                  "`nvm install` bila perlu.",
                                  Safety::costly});
    }
    return candidates;
}

bool isMainRust(std::string_view name) {
    return name.starts_with("stable") || name.starts_with("beta") || name.starts_with("nightly");
}

std::vector<Candidate> rustToolchains(const ScanContext& context) {
    std::vector<Candidate> candidates;
    for (const auto& folder : PathTools::subfolders(context.url(".rustup/toolchains"))) {
        const std::string name(PathTools::lastComponent(folder));
        const auto title = "Rust " + name;
        if (isMainRust(name))
            candidates.push_back({folder, title, "Toolchain utama rustup.", Safety::keep});
        else if (isPinned(name, context.projects.rustToolchains))
            candidates.push_back(
                {folder, title, "Dipin oleh rust-toolchain.toml proyek Anda.", Safety::keep});
        else
            candidates.push_back(
                {folder, title + " (tidak dipin)",
                 "Tidak ada proyek yang mem-pin versi ini. Pasang ulang via rustup bila perlu.",
                 Safety::costly});
    }
    return candidates;
}

CleanupItem item(const Candidate& candidate, std::int64_t bytes) {
    return CleanupItem::make({.title = candidate.title,
                              .detail = candidate.detail,
                              .path = candidate.location,
                              .bytes = bytes,
                              .category = ItemCategory::toolchains,
                              .safety = candidate.safety,
                              .action = candidate.safety == Safety::keep
                                            ? CleanupAction::manual("Masih dipakai.")
                                            : CleanupAction::delete_(),
                              .lastActivity = PathTools::modificationDate(candidate.location)});
}

} // namespace

std::vector<CleanupItem> ToolchainProvider::items(const ScanContext& context) const {
    auto candidates = nodeVersions(context);
    std::ranges::move(rustToolchains(context), std::back_inserter(candidates));
    return measuredItems(candidates, &Candidate::location, smallestShown, context, item);
}

} // namespace korvanti
