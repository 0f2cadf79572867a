import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// The settings, in a window of their own.
ApplicationWindow {
    id: root

    required property SettingsModel model

    width: 520
    height: 460
    minimumWidth: 420
    minimumHeight: 320
    title: "Pengaturan"
    color: Brand.window

    SettingsView {
        anchors.fill: parent
        model: root.model
    }
    Shortcut {
        sequences: [StandardKey.Close, "Escape"]
        onActivated: root.close()
    }
}
