#pragma once

#include "shell/AppModel.h"

#include <QObject>
#include <qqmlregistration.h>

namespace korvanti {

/// The user's settings; each change is saved at once.
class SettingsModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

public:
    explicit SettingsModel(AppModel& model, QObject* parent = nullptr);

private:
    AppModel& model_;
};

} // namespace korvanti
