#include "providers/AndroidSDKProvider.h"

#include "base/Text.h"
#include "fs/PathTools.h"
#include "providers/AndroidCandidate.h"

#include <algorithm>
#include <compare>
#include <cstdlib>

namespace korvanti {
namespace {

constexpr std::int64_t smallestShown = 20'000'000;

/// The variables may point anywhere, and in any spelling. A folder that holds the home folder or a project
/// root, or that is a repository, is none that this program takes for an SDK: its "sources" would be
/// somebody's own.
bool mayBeSdk(const std::string& folder, const ScanContext& context) {
    const auto isInside = [place = PathTools::resolved(folder)](const std::string& path) {
        return PathTools::isSameOrAncestor(place, PathTools::resolved(path));
    };
    return folder.starts_with('/') && PathTools::isDirectory(folder) && !isInside(context.home) &&
           std::ranges::none_of(context.devRoots, isInside) &&
           !PathTools::exists(PathTools::joined(folder, ".git"));
}

/// ANDROID_SDK_ROOT counts only where ANDROID_HOME is not set at all; where neither leads to an SDK, it is
/// where Android Studio puts it.
std::string sdkFolder(const ScanContext& context) {
    const char* given = std::getenv("ANDROID_HOME");
    if (!given)
        given = std::getenv("ANDROID_SDK_ROOT");
    std::string folder(PathTools::withoutTrailingSlashes(given ? given : ""));
    if (mayBeSdk(folder, context))
        return folder;
    return context.url("Library/Android/sdk");
}

std::string nameOf(const std::string& path) {
    return std::string(PathTools::lastComponent(path));
}

AndroidCandidate ndk(const std::string& path, const ProjectIndex& projects) {
    const auto name = nameOf(path);
    if (projects.buildFileText.contains(name))
        return {.path = path,
                .title = "NDK " + name,
                .detail = "Dirujuk `ndkVersion` proyek Anda.",
                .safety = Safety::keep,
                .action = CleanupAction::manual("Masih dipakai.")};
    return {.path = path,
            .title = "NDK " + name + " (tidak dirujuk)",
            .detail = "Tidak ada proyek yang merujuk versi ini. Bisa diunduh ulang lewat sdkmanager (±1 GB).",
            .safety = Safety::costly};
}

AndroidCandidate buildTools(const std::string& path, const ProjectIndex& projects) {
    const auto name = nameOf(path);
    return {.path = path,
            .title = "Build-tools " + name,
            .detail = projects.buildFileText.contains(name)
                          ? "Dirujuk proyek Anda."
                          : "Versi lama. AGP mengunduh ulang otomatis bila versinya dibutuhkan.",
            .safety = Safety::costly};
}

/// Without the newest, which is never offered; of two that are equal it is the first.
std::vector<std::string> withoutNewest(std::vector<std::string> versions) {
    const auto newest = std::ranges::max_element(versions, [](const auto& a, const auto& b) {
        return PathTools::compareVersions(PathTools::lastComponent(a), PathTools::lastComponent(b)) ==
               std::strong_ordering::less;
    });
    if (newest != versions.end())
        versions.erase(newest);
    return versions;
}

/// The 34 of "android-34"; 0 for a name that holds more than a number.
std::int64_t apiLevel(std::string name) {
    constexpr std::string_view prefix = "android-";
    for (auto found = name.find(prefix); found != std::string::npos; found = name.find(prefix, found))
        name.erase(found, prefix.size());
    return Text::integer(name).value_or(0);
}

AndroidCandidate platform(const std::string& path, const std::set<std::int64_t>& compileSdks) {
    const auto level = apiLevel(nameOf(path));
    const auto number = std::to_string(level);
    if (compileSdks.contains(level))
        return {.path = path,
                .title = "Platform Android " + number,
                .detail = "compileSdk proyek Anda.",
                .safety = Safety::keep,
                .action = CleanupAction::manual("Masih dipakai.")};
    return {.path = path,
            .title = "Platform Android " + number + " (tidak dipakai)",
            .detail =
                "Tidak ada proyek dengan compileSdk " + number + ". Diunduh ulang otomatis bila dibutuhkan.",
            .safety = Safety::costly,
            .recommended = true};
}

AndroidCandidate source(const std::string& path) {
    return {.path = path,
            .title = "Source Android (" + nameOf(path) + ")",
            .detail = "Hanya untuk navigasi kode di IDE; tidak dibutuhkan untuk build.",
            .safety = Safety::regenerable,
            .recommended = true};
}

AndroidCandidate systemImage(const std::string& path) {
    return {.path = path,
            .title = "System image emulator (" + nameOf(path) + ")",
            .detail = "Image emulator. Anda menguji di perangkat asli.",
            .safety = Safety::review,
            .action = CleanupAction::trash()};
}

AndroidCandidate emulator(const std::string& path) {
    return {.path = path,
            .title = "Android Emulator",
            .detail = "Program emulator. Tidak dibutuhkan bila selalu uji di perangkat asli.",
            .safety = Safety::costly};
}

} // namespace

std::vector<CleanupItem> AndroidSDKProvider::items(const ScanContext& context) const {
    const auto sdk = sdkFolder(context);
    const auto packages = [&](std::string_view kind) {
        return PathTools::subfolders(PathTools::joined(sdk, kind));
    };
    const auto compileSdks = context.projects.compileSdks();

    std::vector<AndroidCandidate> candidates;
    for (const auto& path : packages("ndk"))
        candidates.push_back(ndk(path, context.projects));
    for (const auto& path : withoutNewest(packages("build-tools")))
        candidates.push_back(buildTools(path, context.projects));
    for (const auto& path : packages("platforms"))
        candidates.push_back(platform(path, compileSdks));
    for (const auto& path : packages("sources"))
        candidates.push_back(source(path));
    for (const auto& path : packages("system-images"))
        candidates.push_back(systemImage(path));
    if (const auto path = PathTools::joined(sdk, "emulator"); PathTools::isDirectory(path))
        candidates.push_back(emulator(path));
    return itemsOf(candidates, context, smallestShown);
}

} // namespace korvanti
