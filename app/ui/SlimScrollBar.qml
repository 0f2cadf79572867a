import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// A narrow bar at the edge of what scrolls, to be seen only when there is more.
ScrollBar {
    id: root

    policy: root.size < 1 ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
    padding: 3
    contentItem: Rectangle {
        implicitWidth: 5
        implicitHeight: 5
        radius: 2.5
        color: Brand.translucent(Brand.text2, root.pressed ? 0.8 : root.hovered ? 0.65 : 0.45)
    }
    background: null
}
