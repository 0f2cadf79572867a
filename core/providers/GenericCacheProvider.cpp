#include "providers/GenericCacheProvider.h"

#include "fs/PathTools.h"

#include <string_view>
#include <utility>

namespace korvanti {
namespace {

struct Kind {
    std::string_view label; ///< before the name
    const char* detail;
    std::int64_t minBytes;
    bool recommended;
};
constexpr Kind cacheKind = {.label = "Cache app: ",
                            .detail = "Cache app. Dibuat ulang otomatis; tutup app-nya dulu.",
                            .minBytes = 100'000'000,
                            .recommended = false};
constexpr Kind logKind = {
    .label = "Log ", .detail = "Log lama aplikasi.", .minBytes = 30'000'000, .recommended = true};

struct Candidate {
    const Kind* kind;
    std::string path;
};

std::vector<Candidate> candidates(const ScanContext& context) {
    std::vector<Candidate> candidates;
    for (auto& path : PathTools::children(context.url("Library/Caches"))) {
        if (!PathTools::lastComponent(path).starts_with("com.apple."))
            candidates.push_back({&cacheKind, std::move(path)});
    }
    for (auto& path : PathTools::children(context.url("Library/Logs"))) {
        const auto name = PathTools::lastComponent(path);
        if (name != "DiagnosticReports" && name != "CoreSimulator") // the catalog's
            candidates.push_back({&logKind, std::move(path)});
    }
    return candidates;
}

CleanupItem item(const Candidate& candidate, std::int64_t bytes) {
    const auto& [kind, path] = candidate;
    return CleanupItem::make({.title = std::string(kind->label).append(PathTools::lastComponent(path)),
                              .detail = kind->detail,
                              .path = path,
                              .bytes = bytes,
                              .category = ItemCategory::appCaches,
                              .safety = Safety::regenerable,
                              .action = CleanupAction::delete_(),
                              .recommended = kind->recommended,
                              .lastActivity = PathTools::modificationDate(path)});
}

} // namespace

std::vector<CleanupItem> GenericCacheProvider::items(const ScanContext& context) const {
    const auto found = candidates(context);
    std::vector<std::string> paths;
    paths.reserve(found.size());
    for (const auto& candidate : found)
        paths.push_back(candidate.path);

    const auto sizes = context.sizes->measureAll(paths, {.trackNewest = false, .concurrency = 6});

    std::vector<CleanupItem> items;
    for (const auto& candidate : found) {
        const auto bytes = sizes.at(candidate.path).bytes;
        if (bytes >= candidate.kind->minBytes)
            items.push_back(item(candidate, bytes));
    }
    return items;
}

} // namespace korvanti
