#pragma once

#include "scan/ItemProvider.h"

#include <string>
#include <vector>

namespace korvanti {

/// Transcripts of past months.
class CodexSessionProvider final : public ItemProvider {
public:
    [[nodiscard]] int priority() const override { return 80; }
    [[nodiscard]] std::string name() const override { return "Riwayat Codex"; }
    [[nodiscard]] std::vector<CleanupItem> items(const ScanContext& context) const override;
};

} // namespace korvanti
