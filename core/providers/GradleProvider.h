#pragma once

#include "scan/ItemProvider.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// Version folders under the Gradle home, against the versions that the projects use.
class GradleProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 90; }
    [[nodiscard]] std::string name() const override { return "Gradle"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;

    /// The name of a folder of caches begins as a version does: "8.7", "8.11-rc-1".
    [[nodiscard]] static bool isVersion(std::string_view cacheFolder);
};

} // namespace korvanti
