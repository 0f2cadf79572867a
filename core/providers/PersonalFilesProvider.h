#pragma once

#include "scan/ItemProvider.h"

#include <string>
#include <vector>

namespace korvanti {

/// What belongs to the user and not to a tool: downloads, the Photos library, large files, the Trash.
class PersonalFilesProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 40; }
    [[nodiscard]] std::string name() const override { return "File pribadi"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;
};

} // namespace korvanti
