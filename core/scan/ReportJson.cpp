#include "scan/ReportJson.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

/// How a kind of action is written: `{"key":{"payloadKey":"…"}}`.
struct ActionForm {
    std::string_view key;
    std::string_view payloadKey; ///< empty for a kind without payload
};

ActionForm form(CleanupAction::Kind kind) {
    switch (kind) {
    case CleanupAction::Kind::delete_:
        return {"delete", {}};
    case CleanupAction::Kind::trash:
        return {"trash", {}};
    case CleanupAction::Kind::emptyTrash:
        return {"emptyTrash", {}};
    case CleanupAction::Kind::simulatorErase:
        return {"simulatorErase", "udid"};
    case CleanupAction::Kind::simulatorDelete:
        return {"simulatorDelete", "udid"};
    case CleanupAction::Kind::simulatorRuntimeDelete:
        return {"simulatorRuntimeDelete", "identifier"};
    case CleanupAction::Kind::manual:
        return {"manual", "instructions"};
    }
    std::unreachable();
}

template <class Value> void setIfPresent(Json& object, const char* key, const std::optional<Value>& value) {
    if (value)
        object[key] = *value;
}

template <class Record> Json toArray(const std::vector<Record>& records) {
    Json array = Json::array();
    for (const auto& record : records)
        array.push_back(toJson(record));
    return array;
}

Safety takeSafety(JsonObjectReader& in) {
    const auto raw = in.integer("safety");
    for (const Safety safety : allCases<Safety>) {
        if (std::to_underlying(safety) == raw)
            return safety;
    }
    in.fail("safety has no case " + std::to_string(raw));
    return {};
}

ItemCategory takeCategory(JsonObjectReader& in) {
    const auto raw = in.text("category");
    for (const ItemCategory category : allCases<ItemCategory>) {
        if (rawValue(category) == raw)
            return category;
    }
    in.fail("category has no case \"" + raw + "\"");
    return {};
}

} // namespace

Json toJson(const CleanupAction& action) {
    const auto [key, payloadKey] = form(action.kind);
    Json payload = Json::object();
    if (!payloadKey.empty())
        payload[std::string(payloadKey)] = action.payload;
    Json json = Json::object();
    json[std::string(key)] = std::move(payload);
    return json;
}

Json toJson(const CleanupItem& item) {
    Json json = Json::object();
    json["title"] = item.title;
    json["detail"] = item.detail;
    json["path"] = item.path;
    json["bytes"] = item.bytes;
    json["category"] = rawValue(item.category);
    json["safety"] = std::to_underlying(item.safety);
    json["action"] = toJson(item.action);
    json["recommended"] = item.recommended;
    if (item.lastActivity)
        json["lastActivity"] = iso8601Text(*item.lastActivity);
    json["offloadable"] = item.offloadable;
    json["warnings"] = item.warnings;
    setIfPresent(json, "relatedPaths", item.relatedPaths);
    return json;
}

Json toJson(const SmartInfo& smart) {
    Json json = Json::object();
    setIfPresent(json, "percentageUsed", smart.percentageUsed);
    setIfPresent(json, "dataWrittenBytes", smart.dataWrittenBytes);
    setIfPresent(json, "powerOnHours", smart.powerOnHours);
    setIfPresent(json, "availableSpare", smart.availableSpare);
    setIfPresent(json, "status", smart.status);
    setIfPresent(json, "unsafeShutdowns", smart.unsafeShutdowns);
    return json;
}

Json toJson(const APFSVolumeUsage& volume) {
    Json json = Json::object();
    json["name"] = volume.name;
    json["role"] = volume.role;
    json["bytes"] = volume.bytes;
    return json;
}

Json toJson(const DiskSnapshot& disk) {
    Json json = Json::object();
    json["total"] = disk.total;
    json["available"] = disk.available;
    json["availableImportant"] = disk.availableImportant;
    json["apfsVolumes"] = toArray(disk.apfsVolumes);
    if (disk.smart)
        json["smart"] = toJson(*disk.smart);
    json["swapUsed"] = disk.swapUsed;
    json["physicalMemory"] = disk.physicalMemory;
    json["hasFullDiskAccess"] = disk.hasFullDiskAccess;
    return json;
}

Json toJson(const ScanReport& report) {
    Json json = Json::object();
    json["startedAt"] = iso8601Text(report.startedAt);
    json["duration"] = report.duration;
    json["items"] = toArray(report.items);
    json["disk"] = toJson(report.disk);
    json["notes"] = report.notes;
    return json;
}

std::expected<CleanupAction, JsonError> cleanupActionFromJson(const Json& json) {
    JsonObjectReader in(json);
    std::vector<CleanupAction::Kind> found;
    std::ranges::copy_if(
        allCases<CleanupAction::Kind>, std::back_inserter(found),
        [&](CleanupAction::Kind kind) { return in.optionalValue(form(kind).key) != nullptr; });
    if (found.size() != 1)
        in.fail("Invalid number of keys found, expected one.");
    if (in.failed())
        return in.finish(CleanupAction{});

    const auto [key, payloadKey] = form(found.front());
    JsonObjectReader payload(in.value(key));
    return payload.finish(
        CleanupAction{found.front(), payloadKey.empty() ? std::string() : payload.text(payloadKey)});
}

std::expected<CleanupItem, JsonError> cleanupItemFromJson(const Json& json) {
    JsonObjectReader in(json);
    CleanupItem item;
    item.title = in.text("title");
    item.detail = in.text("detail");
    item.path = in.text("path");
    item.bytes = in.integer("bytes");
    item.category = takeCategory(in);
    item.safety = takeSafety(in);
    item.action = in.record("action", cleanupActionFromJson);
    item.recommended = in.boolean("recommended");
    item.lastActivity = in.optionalInstant("lastActivity");
    item.offloadable = in.boolean("offloadable");
    item.warnings = in.texts("warnings");
    item.relatedPaths = in.optionalTexts("relatedPaths");
    return in.finish(std::move(item));
}

std::expected<SmartInfo, JsonError> smartInfoFromJson(const Json& json) {
    JsonObjectReader in(json);
    SmartInfo smart;
    smart.percentageUsed = in.optionalInteger("percentageUsed");
    smart.dataWrittenBytes = in.optionalInteger("dataWrittenBytes");
    smart.powerOnHours = in.optionalInteger("powerOnHours");
    smart.availableSpare = in.optionalInteger("availableSpare");
    smart.status = in.optionalText("status");
    smart.unsafeShutdowns = in.optionalInteger("unsafeShutdowns");
    return in.finish(std::move(smart));
}

std::expected<APFSVolumeUsage, JsonError> apfsVolumeUsageFromJson(const Json& json) {
    JsonObjectReader in(json);
    APFSVolumeUsage volume;
    volume.name = in.text("name");
    volume.role = in.text("role");
    volume.bytes = in.integer("bytes");
    return in.finish(std::move(volume));
}

std::expected<DiskSnapshot, JsonError> diskSnapshotFromJson(const Json& json) {
    JsonObjectReader in(json);
    DiskSnapshot disk;
    disk.total = in.integer("total");
    disk.available = in.integer("available");
    disk.availableImportant = in.integer("availableImportant");
    disk.apfsVolumes = in.records("apfsVolumes", apfsVolumeUsageFromJson);
    disk.smart = in.optionalRecord("smart", smartInfoFromJson);
    disk.swapUsed = in.integer("swapUsed");
    disk.physicalMemory = in.integer("physicalMemory");
    disk.hasFullDiskAccess = in.boolean("hasFullDiskAccess");
    return in.finish(std::move(disk));
}

std::expected<ScanReport, JsonError> scanReportFromJson(const Json& json) {
    JsonObjectReader in(json);
    ScanReport report;
    report.startedAt = in.instant("startedAt");
    report.duration = in.number("duration");
    report.items = in.records("items", cleanupItemFromJson);
    report.disk = in.record("disk", diskSnapshotFromJson);
    report.notes = in.texts("notes");
    return in.finish(std::move(report));
}

} // namespace korvanti
