#include "providers/OrphanedContainerProvider.h"

#include "analysis/InstalledApps.h"
#include "fs/PathTools.h"
#include "providers/MeasuredItems.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string_view>

namespace korvanti {
namespace {

constexpr std::int64_t smallestShown = 100'000'000;

/// `name` is the identifier or that of a helper of it.
bool belongsTo(std::string_view name, std::string_view identifier) {
    if (!name.starts_with(identifier))
        return false;
    return name.size() == identifier.size() || name[identifier.size()] == '.';
}

bool isOrphan(std::string_view name, const std::set<std::string>& installed) {
    if (name.starts_with("com.apple.") || !name.contains('.'))
        return false;
    return std::ranges::none_of(installed, [name](const std::string& identifier) {
        return belongsTo(name, identifier) || belongsTo(identifier, name);
    });
}

CleanupItem item(const std::string& container, std::int64_t bytes) {
    return CleanupItem::make(
        {.title = "Sisa data " + std::string(PathTools::lastComponent(container)),
         .detail = "App pemilik folder ini tidak ditemukan di Applications. Kemungkinan sisa app yang "
                   "sudah dihapus.",
         .path = container,
         .bytes = bytes,
         .category = ItemCategory::appCaches,
         .safety = Safety::review,
         .action = CleanupAction::trash(),
         .lastActivity = PathTools::modificationDate(container)});
}

} // namespace

std::vector<CleanupItem> OrphanedContainerProvider::items(const ScanContext& context) const {
    return items(context, InstalledApps::bundleIdentifiers());
}

std::vector<CleanupItem> OrphanedContainerProvider::items(const ScanContext& context,
                                                          const std::set<std::string>& installed) const {
    auto containers = PathTools::children(context.url("Library/Containers"));
    std::erase_if(containers, [&](const std::string& container) {
        return !isOrphan(PathTools::lastComponent(container), installed);
    });
    return measuredItems(containers, std::identity(), smallestShown, context, item);
}

} // namespace korvanti
