#pragma once

#include "scan/ItemProvider.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvanti {

/// What the providers of the Android tools find before it is measured.
struct AndroidCandidate {
    std::string path;
    std::string title;
    std::string detail;
    Safety safety = Safety::keep;
    bool recommended = false;
    CleanupAction action = CleanupAction::delete_();
};

/// Measures all candidates and makes an item of each that occupies at least `minBytes`, in their order.
[[nodiscard]] std::vector<CleanupItem> itemsOf(const std::vector<AndroidCandidate>& candidates,
                                               const ScanContext& context, std::int64_t minBytes);

} // namespace korvanti
