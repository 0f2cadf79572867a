#pragma once

#include "shell/AppModel.h"

#include <QObject>
#include <qqmlregistration.h>

namespace korvanti {

/// External volumes, the redirected caches, and what was moved to a volume.
class SsdModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

public:
    explicit SsdModel(AppModel& model, QObject* parent = nullptr);

private:
    AppModel& model_;
};

} // namespace korvanti
