#pragma once

#include "scan/ItemProvider.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// The debug symbols that Xcode copies from devices; the newest of each model stays.
class DeviceSupportProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 95; }
    [[nodiscard]] std::string name() const override { return "Device Support"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;

    struct Named {
        std::string model; ///< empty when the name has none
        std::string version;
        bool operator==(const Named&) const = default;
    };
    /// Reads the name of a folder of symbols, which begins as "iPhone15,2 17.5 (21F79)" or "17.5 (21F79)"
    /// does.
    [[nodiscard]] static std::optional<Named> named(std::string_view folder);
};

} // namespace korvanti
