#include "providers/AndroidCandidate.h"

#include "fs/PathTools.h"
#include "providers/MeasuredItems.h"

namespace korvanti {

std::vector<CleanupItem> itemsOf(const std::vector<AndroidCandidate>& candidates, const ScanContext& context,
                                 std::int64_t minBytes) {
    const auto item = [](const AndroidCandidate& candidate, std::int64_t bytes) {
        return CleanupItem::make({.title = candidate.title,
                                  .detail = candidate.detail,
                                  .path = candidate.path,
                                  .bytes = bytes,
                                  .category = ItemCategory::android,
                                  .safety = candidate.safety,
                                  .action = candidate.action,
                                  .recommended = candidate.recommended,
                                  .lastActivity = PathTools::modificationDate(candidate.path)});
    };
    return measuredItems(candidates, &AndroidCandidate::path, minBytes, context, item);
}

} // namespace korvanti
