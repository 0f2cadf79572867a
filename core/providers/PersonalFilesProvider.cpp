#include "providers/PersonalFilesProvider.h"

#include "base/Text.h"
#include "fs/PathTools.h"
#include "providers/FileKinds.h"
#include "providers/LargeFileFinder.h"
#include "providers/MeasuredItems.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <optional>
#include <string_view>

namespace korvanti {
namespace {

constexpr std::int64_t smallestInstaller = 5'000'000;
constexpr std::int64_t smallestArchive = 20'000'000;
constexpr std::int64_t smallestDownload = 100'000'000;
constexpr std::int64_t smallestPhotoLibrary = 200'000'000;
constexpr std::int64_t smallestTrash = 10'000'000;

struct Verdict {
    std::string detail;
    bool offloadable;
};

/// What the first rule that fits says of an entry of the Downloads folder. Absent where it is too small.
std::optional<Verdict> verdict(std::string_view name, std::int64_t bytes, std::int64_t days) {
    const auto extension = Text::lowercased(PathTools::pathExtension(name));
    const bool isInstaller = FileKinds::installers().contains(extension);
    const bool isArchive = FileKinds::archivesAndPackages().contains(extension) || name.ends_with(".app");
    const auto age = "(" + std::to_string(days) + " hari).";
    if (isInstaller && bytes >= smallestInstaller)
        return Verdict{
            "Installer di Unduhan " + age + " Biasanya tidak dibutuhkan lagi setelah app terpasang.", false};
    if (isArchive && bytes >= smallestArchive)
        return Verdict{"Arsip/paket di Unduhan " + age, true};
    if (bytes >= smallestDownload)
        return Verdict{"Isi Unduhan berukuran besar " + age, true};
    return std::nullopt;
}

std::vector<CleanupItem> downloads(const ScanContext& context) {
    const auto entries = PathTools::children(context.url("Downloads"));
    const auto sizes = context.sizes->measureAll(entries, {.trackNewest = true, .concurrency = 6});
    std::vector<CleanupItem> items;
    for (const auto& entry : entries) {
        const std::string name(PathTools::lastComponent(entry));
        const auto bytes = sizes.at(entry).bytes;
        const auto lastActivity = PathTools::modificationDate(entry);
        const auto fitting = verdict(name, bytes, context.daysSince(lastActivity).value_or(0));
        if (!fitting)
            continue;
        items.push_back(CleanupItem::make({.title = name,
                                           .detail = fitting->detail,
                                           .path = entry,
                                           .bytes = bytes,
                                           .category = ItemCategory::personal,
                                           .safety = Safety::review,
                                           .action = CleanupAction::trash(),
                                           .lastActivity = lastActivity,
                                           .offloadable = fitting->offloadable}));
    }
    return items;
}

CleanupItem photoLibrary(const std::string& path, std::int64_t bytes) {
    return CleanupItem::make(
        {.title = "Library Photos (" + std::string(PathTools::stem(path)) + ")",
         .detail = "Kelola lewat app Photos agar sinkron iCloud tetap benar.",
         .path = path,
         .bytes = bytes,
         .category = ItemCategory::personal,
         .safety = Safety::managed,
         .action = CleanupAction::manual(
             "Photos › Settings › iCloud › 'Optimize Mac Storage', atau pindahkan library ke SSD: tutup "
             "Photos, salin .photoslibrary ke SSD, lalu buka sambil menahan Option."),
         .lastActivity = PathTools::modificationDate(path)});
}

std::vector<CleanupItem> photoLibraries(const ScanContext& context) {
    auto entries = PathTools::children(context.url("Pictures"));
    std::erase_if(
        entries, [](const std::string& entry) { return PathTools::pathExtension(entry) != "photoslibrary"; });
    return measuredItems(entries, std::identity(), smallestPhotoLibrary, context, photoLibrary);
}

std::vector<CleanupItem> largeFiles(const ScanContext& context) {
    return LargeFileFinder::find(context, LargeFileFinder::threshold);
}

std::vector<CleanupItem> trash(const ScanContext& context) {
    const auto folder = context.url(".Trash");
    const auto size = context.sizes->measure(folder);
    if (size.bytes < smallestTrash)
        return {};
    return {CleanupItem::make(
        {.title = "Isi Tong Sampah",
         .detail = std::to_string(size.files) + " file. Mengosongkan Tong Sampah menghapus permanen isinya.",
         .path = folder,
         .bytes = size.bytes,
         .category = ItemCategory::personal,
         .safety = Safety::review,
         .action = CleanupAction::emptyTrash()})};
}

} // namespace

std::vector<CleanupItem> PersonalFilesProvider::items(const ScanContext& context) const {
    std::vector<CleanupItem> items;
    for (auto* part : {downloads, photoLibraries, largeFiles, trash})
        std::ranges::move(part(context), std::back_inserter(items));
    return items;
}

} // namespace korvanti
