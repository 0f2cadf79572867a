#pragma once

#include "ui/FrameModel.h"

#include <QMenuBar>

namespace korvanti {

/// The program's commands in the menu bar at the top of the screen, on systems that have one. Nothing is seen
/// of it elsewhere, where the same keys work in the window. Needs a QApplication; the model must outlive it.
class CommandMenu {
public:
    explicit CommandMenu(FrameModel& frame);

    [[nodiscard]] const QMenuBar& bar() const { return bar_; }

private:
    QMenuBar bar_;
};

} // namespace korvanti
