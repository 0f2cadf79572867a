#pragma once

#include "base/Json.h"
#include "scan/ScanReport.h"

#include <expected>

/// The JSON form of the records of a scan. Keys are the field names; optional fields that are absent are left
/// out. Reading is strict: one missing or wrong field fails the whole.
namespace korvanti {

[[nodiscard]] Json toJson(const CleanupAction& action);
[[nodiscard]] Json toJson(const CleanupItem& item);
[[nodiscard]] Json toJson(const SmartInfo& smart);
[[nodiscard]] Json toJson(const APFSVolumeUsage& volume);
[[nodiscard]] Json toJson(const DiskSnapshot& disk);
[[nodiscard]] Json toJson(const ScanReport& report);

[[nodiscard]] std::expected<CleanupAction, JsonError> cleanupActionFromJson(const Json& json);
[[nodiscard]] std::expected<CleanupItem, JsonError> cleanupItemFromJson(const Json& json);
[[nodiscard]] std::expected<SmartInfo, JsonError> smartInfoFromJson(const Json& json);
[[nodiscard]] std::expected<APFSVolumeUsage, JsonError> apfsVolumeUsageFromJson(const Json& json);
[[nodiscard]] std::expected<DiskSnapshot, JsonError> diskSnapshotFromJson(const Json& json);
[[nodiscard]] std::expected<ScanReport, JsonError> scanReportFromJson(const Json& json);

} // namespace korvanti
