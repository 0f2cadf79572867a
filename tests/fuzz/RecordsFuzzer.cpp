#include "Require.h"
#include "scan/ReportJson.h"
#include "settings/KorvantiSettings.h"

#include <expected>

namespace {

/// What was read is written in a form that reads back to the same; fractions of a second go the first time.
template <class Read> void checkRoundTrip(const korvanti::Json& json, Read read) {
    const auto record = read(json);
    if (!record)
        return;
    const auto written = korvanti::compactJson(toJson(*record));
    const auto parsed = korvanti::parseJson(written);
    const auto again = parsed ? read(*parsed) : std::unexpected(parsed.error());
    require(again && korvanti::compactJson(toJson(*again)) == written);
}

} // namespace

/// The readers of the report and of the settings file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto json = korvanti::parseJson(textOf(data, size));
    if (!json)
        return 0;
    checkRoundTrip(*json, korvanti::cleanupItemFromJson);
    checkRoundTrip(*json, korvanti::scanReportFromJson);
    checkRoundTrip(*json, korvanti::settingsFromJson);
    return 0;
}
