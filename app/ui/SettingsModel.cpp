#include "ui/SettingsModel.h"

namespace korvanti {

SettingsModel::SettingsModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {}

} // namespace korvanti
