#include "drives/VolumeInfo.h"

#include "scan/ReportJson.h"

#include <utility>

namespace korvanti {
namespace {

template <class Value> void setIfPresent(Json& object, const char* key, const std::optional<Value>& value) {
    if (value)
        object[key] = *value;
}

} // namespace

Json toJson(const VolumeInfo& volume) {
    Json json = Json::object();
    json["name"] = volume.name;
    json["mountPath"] = volume.mountPath;
    setIfPresent(json, "uuid", volume.uuid);
    json["formatName"] = volume.formatName;
    json["fsType"] = volume.fsType;
    json["isInternal"] = volume.isInternal;
    json["isEjectable"] = volume.isEjectable;
    json["total"] = volume.total;
    json["free"] = volume.free;
    setIfPresent(json, "busProtocol", volume.busProtocol);
    setIfPresent(json, "solidState", volume.solidState);
    setIfPresent(json, "ownersEnabled", volume.ownersEnabled);
    setIfPresent(json, "encrypted", volume.encrypted);
    if (volume.smart)
        json["smart"] = toJson(*volume.smart);
    setIfPresent(json, "deviceIdentifier", volume.deviceIdentifier);
    return json;
}

std::expected<VolumeInfo, JsonError> volumeInfoFromJson(const Json& json) {
    JsonObjectReader in(json);
    VolumeInfo volume;
    volume.name = in.text("name");
    volume.mountPath = in.text("mountPath");
    volume.uuid = in.optionalText("uuid");
    volume.formatName = in.text("formatName");
    volume.fsType = in.text("fsType");
    volume.isInternal = in.boolean("isInternal");
    volume.isEjectable = in.boolean("isEjectable");
    volume.total = in.integer("total");
    volume.free = in.integer("free");
    volume.busProtocol = in.optionalText("busProtocol");
    volume.solidState = in.optionalBoolean("solidState");
    volume.ownersEnabled = in.optionalBoolean("ownersEnabled");
    volume.encrypted = in.optionalBoolean("encrypted");
    volume.smart = in.optionalRecord("smart", smartInfoFromJson);
    volume.deviceIdentifier = in.optionalText("deviceIdentifier");
    return in.finish(std::move(volume));
}

} // namespace korvanti
