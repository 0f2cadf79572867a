#include "providers/DeviceSupportProvider.h"

#include "base/Regex.h"
#include "fs/PathTools.h"
#include "providers/MeasuredItems.h"
#include "providers/NewestVersions.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <utility>

namespace korvanti {
namespace {

constexpr std::array platforms = {"iOS", "watchOS", "tvOS", "visionOS", "macOS"};
constexpr std::int64_t smallestShown = 50'000'000;
constexpr std::int64_t daysInUse = 120;

/// One folder of symbols.
struct Entry {
    std::string url;
    std::string model;
    std::string version;
};

std::vector<Entry> entriesIn(const std::string& folder) {
    std::vector<Entry> entries;
    for (auto& url : PathTools::subfolders(folder)) {
        if (auto named = DeviceSupportProvider::named(PathTools::lastComponent(url)))
            entries.push_back({std::move(url), std::move(named->model), std::move(named->version)});
    }
    return entries;
}

/// Why the symbols are not needed any more; empty when they are.
std::string reason(bool isNewest, std::int64_t days, const std::string& platform) {
    if (!isNewest)
        return "Perangkat sudah memakai " + platform + " yang lebih baru.";
    if (days > daysInUse)
        return "Perangkat ini tidak dicolok lebih dari 4 bulan.";
    return {};
}

CleanupItem item(const Entry& entry, std::int64_t bytes, bool isNewest, const std::string& platform,
                 const ScanContext& context) {
    CleanupItem item;
    item.path = entry.url;
    item.bytes = bytes;
    item.category = ItemCategory::xcode;
    item.action = CleanupAction::delete_();
    item.lastActivity = PathTools::modificationDate(entry.url);
    const auto days = context.daysSince(item.lastActivity).value_or(0);
    const auto named = (entry.model.empty() ? platform : entry.model) + " " + platform + " " + entry.version;
    if (const auto why = reason(isNewest, days, platform); !why.empty()) {
        item.title = "Simbol debug lama " + named;
        item.detail = why + " Aman dihapus; disalin ulang otomatis bila dibutuhkan.";
        item.safety = Safety::regenerable;
        item.recommended = true;
    } else {
        item.title = "Simbol debug " + named;
        item.detail = "Dipakai saat debug di perangkat ini. Jika dihapus, Xcode menyalin ulang (±5–15 menit) "
                      "saat perangkat dicolok.";
        item.safety = Safety::costly;
    }
    return CleanupItem::make(std::move(item));
}

std::vector<CleanupItem> itemsOf(const std::string& platform, const ScanContext& context) {
    const auto entries = entriesIn(context.url("Library/Developer/Xcode/" + platform + " DeviceSupport"));
    const auto newest = newestVersions(entries, &Entry::model, &Entry::version);
    return measuredItems(entries, &Entry::url, smallestShown, context,
                         [&](const Entry& entry, std::int64_t bytes) {
                             const bool isNewest = newest.at(entry.model) == &entry;
                             return item(entry, bytes, isNewest, platform, context);
                         });
}

} // namespace

std::vector<CleanupItem> DeviceSupportProvider::items(const ScanContext& context) const {
    std::vector<CleanupItem> items;
    for (const char* platform : platforms)
        std::ranges::move(itemsOf(platform, context), std::back_inserter(items));
    return items;
}

std::optional<DeviceSupportProvider::Named> DeviceSupportProvider::named(std::string_view folder) {
    static const Regex pattern(R"(^(?:(\S+) )?(\d+(?:\.\d+)*)(?: \(([^)]+)\))?)");
    const auto match = pattern.first(folder);
    return match ? std::optional(Named{match->groups[1].value_or(""), match->groups[2].value_or("")})
                 : std::nullopt;
}

} // namespace korvanti
