#pragma once

#include "shell/AppModel.h"

#include <QObject>
#include <qqmlregistration.h>

namespace korvanti {

/// The saved map of the disk as a tree of rows.
class MapModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

public:
    explicit MapModel(AppModel& model, QObject* parent = nullptr);

private:
    AppModel& model_;
};

} // namespace korvanti
