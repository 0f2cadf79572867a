#include "Require.h"
#include "analysis/StorageMap.h"
#include "terminal/MapText.h"

#include <algorithm>

namespace {

/// No name can break a line: but for the one in front of a root, there is no line end.
bool isOneLine(const std::string& line) {
    return std::ranges::count(line, '\n') == (line.starts_with('\n') ? 1 : 0);
}

} // namespace

/// The reader of the saved map: what it takes is written in a form that reads back to the same, and can be
/// printed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto json = korvanti::parseJson(textOf(data, size));
    const auto map = json ? korvanti::storageMapFromJson(*json) : std::unexpected(json.error());
    if (!map)
        return 0;
    const auto parsed = korvanti::parseJson(korvanti::compactJson(toJson(*map)));
    require(parsed.has_value());
    const auto again = korvanti::storageMapFromJson(*parsed);
    require(again && again->roots == map->roots && again->duration == map->duration);
    require(korvanti::iso8601Text(again->createdAt) == korvanti::iso8601Text(map->createdAt));

    const auto lines = korvanti::MapText::lines(*map);
    require(lines.size() >= map->roots.size() && std::ranges::all_of(lines, isOneLine));
    return 0;
}
