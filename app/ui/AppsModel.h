#pragma once

#include "shell/AppModel.h"

#include <QObject>
#include <qqmlregistration.h>

namespace korvanti {

/// The inventory of applications, and the sheet that removes one with chosen parts of its data.
class AppsModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

public:
    explicit AppsModel(AppModel& model, QObject* parent = nullptr);

private:
    AppModel& model_;
};

} // namespace korvanti
