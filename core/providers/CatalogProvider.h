#pragma once

#include "providers/Catalog.h"
#include "scan/ItemProvider.h"

#include <set>
#include <string>
#include <vector>

namespace korvanti {

/// Evaluates a table of known locations against one home folder.
class CatalogProvider final : public ItemProvider {
public:
    explicit CatalogProvider(std::vector<CatalogRule> rules);

    [[nodiscard]] int priority() const override { return 50; }
    [[nodiscard]] std::string name() const override { return "Katalog lokasi dikenal"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;
    /// The same for a given set of installed bundle identifiers.
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context,
                                                 const std::set<std::string>& installed) const;

private:
    std::vector<CatalogRule> rules_;
};

} // namespace korvanti
