#include "ui/MapModel.h"

#include "base/Formatters.h"
#include "ui/Clipboard.h"
#include "ui/ScreenText.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace korvanti {
namespace {

/// Without its fraction. A saved map may hold any number.
std::int64_t wholeSeconds(double seconds) {
    constexpr double most = 1e15;
    return static_cast<std::int64_t>(std::clamp(seconds, -most, most));
}

} // namespace

MapModel::MapModel(AppModel& model, QObject* parent, Clock now)
    : QObject(parent), model_(model), now_(std::move(now)) {
    connect(&model, &AppModel::storageMapChanged, this, &MapModel::updateMap);
    connect(&model, &AppModel::isMappingChanged, this, &MapModel::isMappingChanged);
    connect(&model, &AppModel::mapStatusChanged, this, &MapModel::mapStatusChanged);
    updateMap();
}

void MapModel::updateMap() {
    tree_.setMap(model_.storageMap() ? &*model_.storageMap() : nullptr);
    emit mapChanged();
    emit captionChanged();
}

QString MapModel::caption() const {
    const auto& map = model_.storageMap();
    if (!map)
        return "Menelusuri home, Applications, Library, aset macOS, dan Homebrew (±1 menit).";
    return screenText("Dipetakan " + Formatters::relative(map->createdAt, now_()) + " · " +
                      std::to_string(wholeSeconds(map->duration)) + " dtk");
}

QString MapModel::mapStatus() const {
    return screenText(model_.mapStatus());
}

void MapModel::generate() {
    model_.generateMap();
}

void MapModel::openMenu(int row) {
    if (const auto* node = tree_.node(row))
        menuPath_ = node->path;
}

void MapModel::reveal() {
    model_.reveal(menuPath_);
}

void MapModel::copyPath() {
    copyToClipboard(menuPath_);
}

} // namespace korvanti
