import QtQuick
import Korvanti.Ui

/// Tells a clock whether what this lies in can be seen.
Item {
    id: root

    required property DateClock clock

    readonly property bool isSeen: root.visible && root.Window.visibility !== Window.Hidden
                                   && root.Window.visibility !== Window.Minimized

    onIsSeenChanged: root.clock.isShown = root.isSeen
    Component.onCompleted: root.clock.isShown = root.isSeen
    Component.onDestruction: root.clock.isShown = false
}
