#pragma once

#include "scan/ItemProvider.h"

#include <string>
#include <vector>

namespace korvanti {

/// Packages of the Android SDK, against what the build files refer to.
class AndroidSDKProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 90; }
    [[nodiscard]] std::string name() const override { return "Android SDK"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;
};

} // namespace korvanti
