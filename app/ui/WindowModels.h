#pragma once

#include "ui/AppsModel.h"
#include "ui/CleanupModel.h"
#include "ui/ConfirmModel.h"
#include "ui/FrameModel.h"
#include "ui/HistoryModel.h"
#include "ui/MapModel.h"
#include "ui/OverviewModel.h"
#include "ui/SsdModel.h"

#include <QVariantMap>

namespace korvanti {

/// What stands behind the parts of the window, all over one model, which must outlive it.
struct WindowModels {
    explicit WindowModels(AppModel& model);

    FrameModel frame;
    OverviewModel overview;
    CleanupModel cleanup;
    ConfirmModel confirm;
    MapModel map;
    AppsModel apps;
    SsdModel ssd;
    HistoryModel history;

    /// What AppWindow.qml asks for.
    [[nodiscard]] QVariantMap properties();
};

} // namespace korvanti
