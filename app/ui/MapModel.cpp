#include "ui/MapModel.h"

#include "ui/Clipboard.h"
#include "ui/ScreenText.h"

#include <utility>

namespace korvanti {

MapModel::MapModel(AppModel& model, Clock clock, QObject* parent)
    : QObject(parent), model_(model), clock_(std::move(clock)) {
    connect(&clock_, &DateClock::ticked, this, &MapModel::captionChanged);
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
    return "Dipetakan " + clock_.relative(map->createdAt) + " · " + secondsText(map->duration);
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
