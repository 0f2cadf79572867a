#include "providers/CatalogProvider.h"

#include "analysis/InstalledApps.h"
#include "fs/PathTools.h"

#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

struct Candidate {
    const CatalogRule* rule;
    std::string location;
};

bool applies(const CatalogRule::AppCondition& condition, const std::set<std::string>& installed) {
    switch (condition.kind) {
    case CatalogRule::AppCondition::Kind::appAbsent:
        return !installed.contains(condition.bundleIdentifier);
    case CatalogRule::AppCondition::Kind::appPresent:
        return installed.contains(condition.bundleIdentifier);
    case CatalogRule::AppCondition::Kind::always:
        return true;
    }
    std::unreachable();
}

/// The locations that a row stands for. A link counts only where a pattern finds it: what was moved away and
/// left a link behind is not there any more.
std::vector<std::string> expanded(const CatalogRule& rule, const ScanContext& context) {
    const std::string location = context.url(rule.path);
    const std::string_view pattern = PathTools::lastComponent(location);
    if (!pattern.contains('*')) {
        if (PathTools::exists(location) && !PathTools::isSymlink(location))
            return {location};
        return {};
    }
    auto entries = PathTools::children(std::string(PathTools::parent(location)));
    std::erase_if(entries, [pattern](const std::string& entry) {
        return !PathTools::matches(PathTools::lastComponent(entry), pattern);
    });
    return entries;
}

/// What must not be cleaned is shown for information, however small, unless there is nothing in it.
bool isWorthShowing(const CatalogRule& rule, std::int64_t bytes) {
    return bytes >= rule.minBytes || (!isDeletable(rule.safety) && bytes >= 1);
}

std::string title(const CatalogRule& rule, std::string_view location) {
    if (!rule.path.contains('*'))
        return rule.title;
    return rule.title + " (" + std::string(PathTools::lastComponent(location)) + ")";
}

std::vector<std::string> warnings(const SizeResult& size) {
    if (size.mountPoints.empty())
        return {};
    return {"Berisi volume ter-mount; bagian itu dilewati."};
}

CleanupItem item(const Candidate& candidate, const SizeResult& size) {
    const auto& [rule, location] = candidate;
    return CleanupItem::make({.title = title(*rule, location),
                              .detail = rule->detail,
                              .path = location,
                              .bytes = size.bytes,
                              .category = rule->category,
                              .safety = rule->safety,
                              .action = rule->action,
                              .recommended = rule->recommended,
                              .lastActivity = PathTools::modificationDate(location),
                              .offloadable = rule->offloadable,
                              .warnings = warnings(size)});
}

} // namespace

CatalogProvider::CatalogProvider(std::vector<CatalogRule> rules) : rules_(std::move(rules)) {}

std::vector<CleanupItem> CatalogProvider::items(const ScanContext& context) const {
    return items(context, InstalledApps::bundleIdentifiers());
}

std::vector<CleanupItem> CatalogProvider::items(const ScanContext& context,
                                                const std::set<std::string>& installed) const {
    std::vector<Candidate> candidates;
    std::vector<std::string> locations;
    for (const CatalogRule& rule : rules_) {
        if (!applies(rule.condition, installed))
            continue;
        for (auto& location : expanded(rule, context)) {
            locations.push_back(location);
            candidates.push_back({&rule, std::move(location)});
        }
    }

    const auto sizes = context.sizes->measureAll(locations, {.trackNewest = false, .concurrency = 6});

    std::vector<CleanupItem> items;
    for (const Candidate& candidate : candidates) {
        const auto& size = sizes.at(candidate.location);
        if (isWorthShowing(*candidate.rule, size.bytes))
            items.push_back(item(candidate, size));
    }
    return items;
}

} // namespace korvanti
