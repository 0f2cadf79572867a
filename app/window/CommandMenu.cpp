#include "window/CommandMenu.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

namespace korvanti {

CommandMenu::CommandMenu(FrameModel& frame) {
    auto* const file = bar_.addMenu("File");
    auto* const scan = file->addAction("Pindai Ulang");
    scan->setShortcut(QKeySequence("Ctrl+R")); // Command on a Mac
    scan->setEnabled(!frame.isScanning());
    QObject::connect(scan, &QAction::triggered, &frame, &FrameModel::scan);
    QObject::connect(&frame, &FrameModel::isScanningChanged, scan,
                     [scan, &frame] { scan->setEnabled(!frame.isScanning()); });

    auto* const settings = file->addAction("Pengaturan…");
    settings->setShortcut(QKeySequence("Ctrl+,"));
    settings->setMenuRole(QAction::PreferencesRole); // where the system has a place of its own for it
    QObject::connect(settings, &QAction::triggered, &frame, &FrameModel::openSettings);
}

} // namespace korvanti
