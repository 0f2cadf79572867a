#include "providers/Catalog.h"

#include "providers/CatalogRows.h"

#include <algorithm>
#include <iterator>

namespace korvanti {
namespace {

CatalogRule electronCacheRow(const std::string& application, const std::string& folder) {
    return {.path = "Library/Application Support/" + application + "/" + folder,
            .title = application + " · " + folder,
            .detail = "Cache editor/app berbasis Electron. Dibuat ulang otomatis saat app dibuka.",
            .category = ItemCategory::aiTools, // for all of them: the group stays together
            .safety = Safety::regenerable,
            .action = CleanupAction::delete_(),
            .recommended = true,
            .minBytes = 30'000'000};
}

std::vector<CatalogRule> electronCaches() {
    const auto folders = CatalogRows::electronCacheFolders();
    std::vector<CatalogRule> rows;
    for (const auto& application : CatalogRows::electronApplications()) {
        for (const auto& folder : folders)
            rows.push_back(electronCacheRow(application, folder));
    }
    return rows;
}

std::vector<CatalogRule> allRows() {
    std::vector<CatalogRule> rows;
    for (auto* group : {CatalogRows::xcode, CatalogRows::android, CatalogRows::toolchains,
                        CatalogRows::aiTools, electronCaches, CatalogRows::applications})
        std::ranges::move(group(), std::back_inserter(rows));
    return rows;
}

} // namespace

const std::vector<CatalogRule>& Catalog::rules() {
    static const auto rules = allRows();
    return rules;
}

} // namespace korvanti
