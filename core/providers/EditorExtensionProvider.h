#pragma once

#include "scan/ItemProvider.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// Old versions of editor extensions beside the one in use.
class EditorExtensionProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 80; }
    [[nodiscard]] std::string name() const override { return "Ekstensi editor"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;

    struct Named {
        std::string id;
        std::string version;
        bool operator==(const Named&) const = default;
    };
    /// Reads the name of an extension's folder: "publisher.name-1.2.3" or
    /// "publisher.name-1.2.3-darwin-arm64".
    [[nodiscard]] static std::optional<Named> named(std::string_view folder);
};

} // namespace korvanti
