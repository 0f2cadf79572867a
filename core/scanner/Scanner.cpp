#include "scanner/Scanner.h"

#include "analysis/DiskInspector.h"
#include "fs/PathTools.h"
#include "process/Toolchain.h"
#include "providers/CatalogProvider.h"

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <iterator>
#include <mutex>
#include <thread>

namespace korvanti {
namespace {

/// Runs each provider on a thread of its own and calls `finished(provider, items)` on this thread, in the
/// order in which they end.
template <class Finished>
void runSideBySide(const Scanner::Providers& providers, const ScanContext& context, Finished finished) {
    struct Result {
        const ItemProvider* provider;
        std::vector<CleanupItem> items;
    };
    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<Result> results;

    std::vector<std::thread> threads;
    for (const auto& provider : providers) {
        threads.emplace_back([&, provider = provider.get(), own = context] {
            auto items = provider->items(own);
            const std::scoped_lock lock(mutex);
            results.push_back({provider, std::move(items)});
            arrived.notify_one();
        });
    }
    for (std::size_t collected = 0; collected < providers.size(); ++collected) {
        std::unique_lock lock(mutex);
        arrived.wait(lock, [&] { return results.size() > collected; });
        auto result = std::move(results[collected]);
        lock.unlock();
        finished(*result.provider, std::move(result.items));
    }
    for (auto& thread : threads)
        thread.join();
}

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
    providers.push_back(std::make_unique<CatalogProvider>(Catalog::rules()));
    return providers;
}

ScanReport Scanner::run(const Providers& providers, const Progress& progress) const {
    const auto startedAt = currentInstant();
    progress("Mengindeks proyek…");
    const ScanContext context = {.home = home,
                                 .devRoots = settings.resolvedDevRoots(home),
                                 .inactiveDays = settings.inactiveDays,
                                 .now = startedAt,
                                 .projects = {}};

    std::vector<Found> found;
    runSideBySide(providers, context, [&](const ItemProvider& provider, std::vector<CleanupItem> items) {
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
