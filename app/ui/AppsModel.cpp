#include "ui/AppsModel.h"

namespace korvanti {

AppsModel::AppsModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {}

} // namespace korvanti
