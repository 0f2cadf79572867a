#include "scan/ItemProvider.h"

#include "base/Formatters.h"
#include "fs/PathTools.h"

namespace korvanti {

std::optional<std::int64_t> ScanContext::daysSince(std::optional<Instant> date) const {
    return Formatters::days(date, now);
}

bool ScanContext::isInactive(std::optional<Instant> date) const {
    const auto days = daysSince(date);
    return !days || *days > inactiveDays;
}

std::string ScanContext::url(std::string_view relative) const {
    return PathTools::joined(home, relative);
}

} // namespace korvanti
