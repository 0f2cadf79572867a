#pragma once

#include "scan/ItemProvider.h"

#include <set>
#include <string>
#include <vector>

namespace korvanti {

/// Sandbox containers without an application.
class OrphanedContainerProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 30; }
    [[nodiscard]] std::string name() const override { return "Sisa app"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;
    /// The same for a given set of installed bundle identifiers.
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context,
                                                 const std::set<std::string>& installed) const;
};

} // namespace korvanti
