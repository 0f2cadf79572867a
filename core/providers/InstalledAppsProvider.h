#pragma once

#include "analysis/InstalledApp.h"
#include "scan/ItemProvider.h"

#include <string>
#include <vector>

namespace korvanti {

/// The installed applications whose removal is suggested.
class InstalledAppsProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 60; }
    [[nodiscard]] std::string name() const override { return "Aplikasi"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;
    /// The same for applications that are listed already.
    [[nodiscard]] static std::vector<CleanupItem> items(const std::vector<InstalledApp>& apps);
};

} // namespace korvanti
