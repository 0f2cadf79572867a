#include "ui/HistoryModel.h"

namespace korvanti {

HistoryModel::HistoryModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {}

} // namespace korvanti
