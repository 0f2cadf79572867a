#pragma once

#include "shell/AppModel.h"

#include <QObject>
#include <qqmlregistration.h>

namespace korvanti {

/// What was removed and moved, newest first.
class HistoryModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

public:
    explicit HistoryModel(AppModel& model, QObject* parent = nullptr);

private:
    AppModel& model_;
};

} // namespace korvanti
