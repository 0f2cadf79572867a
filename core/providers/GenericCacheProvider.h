#pragma once

#include "scan/ItemProvider.h"

#include <string>
#include <vector>

namespace korvanti {

/// Whatever else lies in the caches and logs of the user's library.
class GenericCacheProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 20; }
    [[nodiscard]] std::string name() const override { return "Cache app"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;
};

} // namespace korvanti
