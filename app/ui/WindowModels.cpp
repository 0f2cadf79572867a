#include "ui/WindowModels.h"

#include <QVariant>

namespace korvanti {

WindowModels::WindowModels(AppModel& model)
    : frame(model), overview(model), cleanup(model), confirm(model), map(model), apps(model), ssd(model),
      history(model) {}

QVariantMap WindowModels::properties() {
    return {{"frame", QVariant::fromValue(&frame)},     {"overview", QVariant::fromValue(&overview)},
            {"cleanup", QVariant::fromValue(&cleanup)}, {"confirm", QVariant::fromValue(&confirm)},
            {"map", QVariant::fromValue(&map)},         {"apps", QVariant::fromValue(&apps)},
            {"ssd", QVariant::fromValue(&ssd)},         {"history", QVariant::fromValue(&history)}};
}

} // namespace korvanti
