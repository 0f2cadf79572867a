#include "ui/MapModel.h"

namespace korvanti {

MapModel::MapModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {}

} // namespace korvanti
