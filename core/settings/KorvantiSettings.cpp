#include "settings/KorvantiSettings.h"

#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"
#include "settings/AppPaths.h"

#include <utility>

namespace korvanti {

KorvantiSettings KorvantiSettings::defaults() {
    KorvantiSettings settings;
    const auto home = Platform::homeFolder();
    for (const auto root : candidateRoots) {
        if (PathTools::isDirectory(home + std::string(root.substr(1))))
            settings.devRoots.emplace_back(root);
    }
    return settings;
}

KorvantiSettings KorvantiSettings::load() {
    const auto bytes = FileContents::read(AppPaths::settings());
    if (!bytes)
        return defaults();
    const auto json = parseJson(*bytes);
    if (!json)
        return defaults();
    auto settings = settingsFromJson(*json);
    return settings ? *std::move(settings) : defaults();
}

void KorvantiSettings::save() const {
    static_cast<void>(FileContents::writeAtomically(AppPaths::settings(), prettySortedJson(toJson(*this))));
}

std::vector<std::string> KorvantiSettings::resolvedDevRoots(std::string_view home) const {
    std::vector<std::string> paths;
    paths.reserve(devRoots.size());
    for (const auto& root : devRoots)
        paths.push_back(root.starts_with('~') ? std::string(home) + root.substr(1) : root);
    return paths;
}

Json toJson(const KorvantiSettings& settings) {
    Json json = Json::object();
    json["devRoots"] = settings.devRoots;
    json["inactiveDays"] = settings.inactiveDays;
    json["lowSpaceWarningGB"] = settings.lowSpaceWarningGB;
    if (settings.workVolumeUUID)
        json["workVolumeUUID"] = *settings.workVolumeUUID;
    json["relocations"] = settings.relocations;
    return json;
}

std::expected<KorvantiSettings, JsonError> settingsFromJson(const Json& json) {
    JsonObjectReader in(json);
    KorvantiSettings settings;
    settings.devRoots = in.texts("devRoots");
    settings.inactiveDays = in.integer("inactiveDays");
    settings.lowSpaceWarningGB = in.integer("lowSpaceWarningGB");
    settings.workVolumeUUID = in.optionalText("workVolumeUUID");
    settings.relocations = in.textMap("relocations");
    return in.finish(std::move(settings));
}

} // namespace korvanti
