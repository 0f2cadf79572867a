#include "ui/SsdModel.h"

namespace korvanti {

SsdModel::SsdModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {}

} // namespace korvanti
