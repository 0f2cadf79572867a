#pragma once

#include "scan/DiskSnapshot.h"
#include "scan/ItemProvider.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// Where space went that the user can't free: system assets, other APFS volumes, local snapshots.
class SystemProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 10; }
    [[nodiscard]] std::string name() const override { return "Sistem"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;

    /// The parts of `items`, in its order.
    [[nodiscard]] static std::vector<CleanupItem> assets(const std::string& folder,
                                                         const ScanContext& context);
    [[nodiscard]] static std::vector<CleanupItem> volumes(const std::vector<APFSVolumeUsage>& volumes);
    /// `listing` is what `tmutil listlocalsnapshots` printed.
    [[nodiscard]] static std::vector<CleanupItem> snapshots(std::string_view listing);
};

} // namespace korvanti
