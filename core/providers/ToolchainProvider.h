#pragma once

#include "scan/ItemProvider.h"

#include <string>
#include <vector>

namespace korvanti {

/// Installed Node and Rust versions, against what the projects pin.
class ToolchainProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 85; }
    [[nodiscard]] std::string name() const override { return "Toolchain"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;
};

} // namespace korvanti
