#include "providers/SystemProvider.h"

#include "analysis/DiskInspector.h"
#include "base/Text.h"
#include "fs/PathTools.h"
#include "process/Shell.h"
#include "providers/MeasuredItems.h"
#include "providers/SystemAssets.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <iterator>
#include <utility>

namespace korvanti {
namespace {

using SystemAssets::Explanation;

constexpr const char* assetFolder = "/System/Library/AssetsV2";
constexpr std::int64_t smallestAsset = 300'000'000;

/// Completes what macOS manages and the program only explains.
CleanupItem managed(CleanupItem fields, const Explanation& explanation) {
    fields.title = explanation.title;
    fields.category = ItemCategory::system;
    fields.safety = Safety::managed;
    fields.action = CleanupAction::manual(explanation.instructions);
    return CleanupItem::make(std::move(fields));
}

Explanation assetExplanation(std::string_view name) {
    const auto& known = SystemAssets::groups();
    if (const auto group = known.find(name); group != known.end())
        return group->second;
    const auto label = Text::replaced(Text::replaced(name, "com_apple_MobileAsset_", ""), "_", " ");
    return {.title = "Aset macOS: " + label, .instructions = "Dikelola macOS; tidak bisa dihapus manual."};
}

Explanation volumeExplanation(const APFSVolumeUsage& volume) {
    const auto& known = SystemAssets::volumes();
    if (const auto role = known.find(volume.role); role != known.end())
        return role->second;
    return {.title = "Volume " + volume.name, .instructions = "Dikelola macOS."};
}

} // namespace

std::vector<CleanupItem> SystemProvider::items(const ScanContext& context) const {
    auto items = assets(assetFolder, context);
    const auto disk = DiskInspector::snapshot(context.home, {.includeSmart = false});
    std::ranges::move(volumes(disk.apfsVolumes), std::back_inserter(items));
    const auto listing =
        Shell::run("/usr/bin/tmutil", {"listlocalsnapshots", "/"}, {.timeout = std::chrono::seconds(20)});
    std::ranges::move(snapshots(listing.out), std::back_inserter(items));
    return items;
}

std::vector<CleanupItem> SystemProvider::assets(const std::string& folder, const ScanContext& context) {
    const auto item = [](const std::string& group, std::int64_t bytes) {
        return managed({.detail = "Aset unduhan macOS/Xcode di /System/Library/AssetsV2.",
                        .path = group,
                        .bytes = bytes},
                       assetExplanation(PathTools::lastComponent(group)));
    };
    return measuredItems(PathTools::children(folder), std::identity(), smallestAsset, context, item);
}

std::vector<CleanupItem> SystemProvider::volumes(const std::vector<APFSVolumeUsage>& volumes) {
    std::vector<CleanupItem> items;
    for (const auto& volume : volumes) {
        if (volume.role != "Data" && volume.bytes >= 1)
            items.push_back(managed({.detail = "Volume APFS terpisah di disk internal.",
                                     .path = "apfs:" + volume.name + ":" + volume.role,
                                     .bytes = volume.bytes},
                                    volumeExplanation(volume)));
    }
    return items;
}

std::vector<CleanupItem> SystemProvider::snapshots(std::string_view listing) {
    const auto count = std::ranges::count_if(
        Text::pieces(listing, '\n'), [](std::string_view line) { return line.contains("com.apple"); });
    if (count == 0)
        return {};
    return {managed(
        {.detail = "Snapshot menahan ruang file yang sudah dihapus.", .path = "tmutil:localsnapshots"},
        {.title = "Snapshot lokal Time Machine (" + std::to_string(count) + ")",
         .instructions = "Jalankan di Terminal: tmutil thinlocalsnapshots / 999999999999 4"})};
}

} // namespace korvanti
