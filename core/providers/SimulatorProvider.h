#pragma once

#include "scan/ItemProvider.h"

#include <string>
#include <vector>

namespace korvanti {

/// What the simulator tool says of its devices and runtimes: which may be reset or removed.
class SimulatorProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 100; }
    [[nodiscard]] std::string name() const override { return "Simulator"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;
};

} // namespace korvanti
