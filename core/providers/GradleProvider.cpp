#include "providers/GradleProvider.h"

#include "base/Regex.h"
#include "fs/PathTools.h"
#include "providers/AndroidCandidate.h"

#include <optional>
#include <set>

namespace korvanti {
namespace {

constexpr std::int64_t smallestShown = 10'000'000;

using Names = std::set<std::string>;

/// Absent for a folder that others deal with.
std::optional<AndroidCandidate> cache(const std::string& path, const Names& usedVersions) {
    const std::string name(PathTools::lastComponent(path));
    if (GradleProvider::isVersion(name)) {
        if (usedVersions.contains(name))
            return {{.path = path,
                     .title = "Cache Gradle " + name,
                     .detail = "Dipakai proyek Anda. Dihapus = build berikutnya lebih lama.",
                     .safety = Safety::costly}};
        return {{.path = path,
                 .title = "Cache Gradle " + name + " (tidak dipakai)",
                 .detail = "Tidak ada proyek yang memakai Gradle " + name + ".",
                 .safety = Safety::regenerable,
                 .recommended = true}};
    }
    if (name.starts_with("build-cache"))
        return {{.path = path,
                 .title = "Build cache Gradle",
                 .detail = "Hasil task yang di-cache. Dibuat ulang saat build.",
                 .safety = Safety::regenerable,
                 .recommended = true}};
    if (name.starts_with("transforms")) // not recommended: the next build is slow without it
        return {{.path = path,
                 .title = "Transform Gradle (" + name + ")",
                 .detail = "Hasil transform dependency. Dibuat ulang saat build (build pertama lebih lama).",
                 .safety = Safety::regenerable}};
    return std::nullopt;
}

AndroidCandidate distribution(const std::string& path, const Names& usedDistributions) {
    const std::string name(PathTools::lastComponent(path));
    if (usedDistributions.contains(name))
        return {.path = path,
                .title = "Distribusi " + name,
                .detail = "Dipakai proyek Anda. Diunduh ulang (±150 MB) bila dihapus.",
                .safety = Safety::costly};
    return {.path = path,
            .title = "Distribusi " + name + " (tidak dipakai)",
            .detail = "Tidak ada proyek yang merujuk " + name + ".",
            .safety = Safety::regenerable,
            .recommended = true};
}

} // namespace

std::vector<CleanupItem> GradleProvider::items(const ScanContext& context) const {
    std::vector<AndroidCandidate> candidates;
    const auto usedVersions = context.projects.gradleVersions();
    for (const auto& path : PathTools::subfolders(context.url(".gradle/caches"))) {
        if (auto candidate = cache(path, usedVersions))
            candidates.push_back(std::move(*candidate));
    }
    for (const auto& path : PathTools::subfolders(context.url(".gradle/wrapper/dists")))
        candidates.push_back(distribution(path, context.projects.gradleDistributions));
    return itemsOf(candidates, context, smallestShown);
}

bool GradleProvider::isVersion(std::string_view cacheFolder) {
    static const Regex pattern(R"(^\d+(\.\d+)+)");
    return pattern.first(cacheFolder).has_value();
}

} // namespace korvanti
