#include "process/SimulatorLists.h"

#include "base/Json.h"
#include "base/Text.h"

#include <expected>
#include <fmt/format.h>
#include <utility>

namespace korvanti::SimulatorLists {
namespace {

std::expected<Device, JsonError> deviceFromJson(const Json& json) {
    JsonObjectReader in(json);
    Device device;
    device.udid = in.text("udid");
    device.name = in.text("name");
    device.state = in.text("state");
    device.isAvailable = in.optionalBoolean("isAvailable");
    device.dataPath = in.optionalText("dataPath");
    device.dataPathSize = in.optionalInteger("dataPathSize");
    device.lastUsedAt = in.optionalText("lastUsedAt");
    device.availabilityError = in.optionalText("availabilityError");
    return in.finish(std::move(device));
}

std::expected<Runtime, JsonError> runtimeFromJson(const Json& json) {
    JsonObjectReader in(json);
    Runtime runtime;
    runtime.identifier = in.text("identifier");
    runtime.version = in.optionalText("version");
    runtime.build = in.optionalText("build");
    runtime.sizeBytes = in.optionalInteger("sizeBytes");
    runtime.lastUsedAt = in.optionalText("lastUsedAt");
    runtime.deletable = in.optionalBoolean("deletable");
    runtime.runtimeIdentifier = in.optionalText("runtimeIdentifier");
    runtime.path = in.optionalText("path");
    return in.finish(std::move(runtime));
}

/// The elements of a list or the values of an object, each by way of `decode` (Json -> std::expected).
template <class Record, class Decode>
std::optional<std::vector<Record>> records(const Json& all, Decode decode) {
    std::vector<Record> records;
    for (const Json& element : all) {
        auto record = decode(element);
        if (!record)
            return std::nullopt;
        records.push_back(std::move(*record));
    }
    return records;
}

} // namespace

std::optional<DeviceList> devices(std::string_view json) {
    const auto document = parseJson(json);
    if (!document)
        return std::nullopt;
    const Json* const groups = JsonObjectReader(*document).optionalValue("devices");
    if (!groups || !groups->is_object())
        return std::nullopt;
    DeviceList list;
    for (const auto& [runtime, group] : groups->get_ref<const Json::object_t&>()) {
        auto devices = group.is_array() ? records<Device>(group, deviceFromJson) : std::nullopt;
        if (!devices)
            return std::nullopt;
        list.devices.push_back({runtime, std::move(*devices)});
    }
    return list;
}

std::optional<std::vector<Runtime>> runtimes(std::string_view json) {
    const auto document = parseJson(json);
    return document && document->is_object() ? records<Runtime>(*document, runtimeFromJson) : std::nullopt;
}

std::string runtimeName(std::string_view identifier) {
    const auto parts = Text::pieces(identifier, '.');
    if (parts.empty())
        return std::string(identifier);
    const auto last = parts.back();
    const auto pieces = Text::pieces(last, '-');
    if (pieces.empty())
        return std::string(last);
    // The blank stands also where no version follows.
    return fmt::format("{} {}", pieces.front(), fmt::join(pieces.begin() + 1, pieces.end(), "."));
}

} // namespace korvanti::SimulatorLists
