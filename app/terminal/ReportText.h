#pragma once

#include "base/Instant.h"
#include "scan/ScanReport.h"

#include <string>
#include <vector>

namespace korvanti::ReportText {

struct Options {
    bool allItems = false; ///< every item with its path, instead of the first twelve of a category
};

/// The report as the terminal shows it, one element a print call; some begin with an empty line. `now` is the
/// present reading of the clock. Names from the disk are made printable.
[[nodiscard]] std::vector<std::string> lines(const ScanReport& report, Instant now, Options options = {});

} // namespace korvanti::ReportText
