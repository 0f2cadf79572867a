#include "providers/InstalledAppsProvider.h"

#include "analysis/InstalledApps.h"
#include "base/ByteText.h"

#include <cstdint>

namespace korvanti {
namespace {

constexpr std::int64_t smallestShown = 5'000'000;

/// The kinds of the first few, with commas between.
std::string kinds(const std::vector<AppDataLocation>& data) {
    constexpr std::size_t most = 3;
    std::string text;
    for (std::size_t i = 0; i < data.size() && i < most; ++i)
        text += (i == 0 ? "" : ", ") + data[i].kind;
    return text;
}

std::vector<std::string> warnings(const InstalledApp& app) {
    std::vector<std::string> warnings;
    if (app.fromAppStore)
        warnings.emplace_back("Dari App Store: macOS mungkin meminta password admin saat dihapus.");
    if (!app.data.empty())
        warnings.push_back("Termasuk " + std::to_string(app.data.size()) + " lokasi data (" +
                           bytesText(app.dataBytes()) + "): " + kinds(app.data));
    return warnings;
}

std::vector<std::string> dataPaths(const InstalledApp& app) {
    std::vector<std::string> paths;
    paths.reserve(app.data.size());
    for (const auto& location : app.data)
        paths.push_back(location.path);
    return paths;
}

CleanupItem item(const InstalledApp& app) {
    return CleanupItem::make({.title = app.name,
                              .detail = app.advice,
                              .path = app.path,
                              .bytes = app.totalBytes(),
                              .category = ItemCategory::apps,
                              .safety = Safety::review,
                              .action = CleanupAction::trash(),
                              .recommended = false,
                              .lastActivity = app.lastUsed,
                              .offloadable = false,
                              .warnings = warnings(app),
                              .relatedPaths = dataPaths(app)});
}

} // namespace

std::vector<CleanupItem> InstalledAppsProvider::items(const ScanContext& context) const {
    return items(InstalledApps::list(context.home, context.now, *context.sizes));
}

std::vector<CleanupItem> InstalledAppsProvider::items(const std::vector<InstalledApp>& apps) {
    std::vector<CleanupItem> items;
    for (const auto& app : apps) {
        if (app.suggested && app.totalBytes() >= smallestShown)
            items.push_back(item(app));
    }
    return items;
}

} // namespace korvanti
