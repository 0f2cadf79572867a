#include "scanner/Scanner.h"

#include "analysis/DiskInspector.h"
#include "fs/PathTools.h"
#include "process/SideBySide.h"
#include "process/Toolchain.h"
#include "providers/AndroidSDKProvider.h"
#include "providers/CatalogProvider.h"
#include "providers/CodexSessionProvider.h"
#include "providers/DeviceSupportProvider.h"
#include "providers/EditorExtensionProvider.h"
#include "providers/GenericCacheProvider.h"
#include "providers/GradleProvider.h"
#include "providers/InstalledAppsProvider.h"
#include "providers/OrphanedContainerProvider.h"
#include "providers/PersonalFilesProvider.h"
#include "providers/ProjectArtifactProvider.h"
#include "providers/SimulatorProvider.h"
#include "providers/SystemProvider.h"
#include "providers/ToolchainProvider.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <mutex>

namespace korvanti {
namespace {

std::vector<std::string> allPaths(const CleanupItem& item) {
    std::vector<std::string> paths = {item.path};
    if (item.relatedPaths)
        paths.insert(paths.end(), item.relatedPaths->begin(), item.relatedPaths->end());
    return paths;
}

bool conflict(const std::string& a, const std::string& b) {
    return PathTools::isSameOrAncestor(a, b) || PathTools::isSameOrAncestor(b, a);
}

std::vector<std::string> notes(const DiskSnapshot& disk) {
    std::vector<std::string> notes;
    if (!disk.hasFullDiskAccess) {
        notes.emplace_back(
            "Full Disk Access belum aktif: Tong Sampah, Containers, dan media WhatsApp/Telegram tidak "
            "bisa diukur. Aktifkan di System Settings › Privacy & Security › Full Disk Access.");
    }
    if (!Toolchain::developerDir())
        notes.emplace_back("Xcode tidak ditemukan, jadi simulator & runtime dilewati.");
    return notes;
}

} // namespace

Scanner::Providers Scanner::defaultProviders() {
    Providers providers;
    providers.push_back(std::make_unique<SimulatorProvider>());
    providers.push_back(std::make_unique<DeviceSupportProvider>());
    providers.push_back(std::make_unique<GradleProvider>());
    providers.push_back(std::make_unique<AndroidSDKProvider>());
    providers.push_back(std::make_unique<ToolchainProvider>());
    providers.push_back(std::make_unique<EditorExtensionProvider>());
    providers.push_back(std::make_unique<CodexSessionProvider>());
    providers.push_back(std::make_unique<ProjectArtifactProvider>());
    providers.push_back(std::make_unique<CatalogProvider>(Catalog::rules()));
    providers.push_back(std::make_unique<PersonalFilesProvider>());
    providers.push_back(std::make_unique<InstalledAppsProvider>());
    providers.push_back(std::make_unique<OrphanedContainerProvider>());
    providers.push_back(std::make_unique<GenericCacheProvider>());
    providers.push_back(std::make_unique<SystemProvider>());
    return providers;
}

ScanReport Scanner::run(const Providers& providers, const Progress& progress) const {
    const auto startedAt = currentInstant();
    progress("Mengindeks proyek…");
    constexpr int deepest = 6; // folders below a project root
    auto devRoots = settings.resolvedDevRoots(home);
    for (auto& root : devRoots) // in one spelling, by which what is found twice is told to be the same
        root = PathTools::standardized(root);
    const ScanContext context = {.home = home,
                                 .devRoots = devRoots,
                                 .inactiveDays = settings.inactiveDays,
                                 .now = startedAt,
                                 .projects = ProjectIndex::build(devRoots, deepest)};

    std::mutex mutex;
    std::vector<Found> found;
    runSideBySide(providers.size(), providers.size(), [&](std::size_t place) {
        const auto& provider = *providers[place];
        auto items = provider.items(context);
        const std::scoped_lock lock(mutex);
        progress("Selesai: " + provider.name());
        found.emplace_back(provider.priority(), std::move(items));
    });

    ScanReport report;
    report.startedAt = startedAt;
    report.items = merge(std::move(found));
    progress("Membaca kondisi disk…");
    report.disk = DiskInspector::snapshot(home, {.includeSmart = true});
    report.notes = notes(report.disk);
    report.duration = secondsBetween(startedAt, currentInstant());
    return report;
}

std::vector<CleanupItem> Scanner::merge(std::vector<Found> found) {
    std::ranges::stable_sort(found, std::greater(), &Found::first);
    std::vector<CleanupItem> kept;
    std::vector<std::string> claims;
    for (auto& [priority, items] : found) {
        std::ranges::stable_sort(items, std::greater(), &CleanupItem::bytes);
        for (auto& item : items) {
            auto paths = allPaths(item);
            const bool claimed = std::ranges::any_of(paths, [&](const std::string& path) {
                return std::ranges::any_of(claims,
                                           [&](const std::string& claim) { return conflict(path, claim); });
            });
            if (claimed)
                continue;
            std::ranges::move(paths, std::back_inserter(claims));
            kept.push_back(std::move(item));
        }
    }
    std::ranges::stable_sort(kept, [](const CleanupItem& a, const CleanupItem& b) {
        return a.safety != b.safety ? a.safety < b.safety : a.bytes > b.bytes;
    });
    return kept;
}

} // namespace korvanti
