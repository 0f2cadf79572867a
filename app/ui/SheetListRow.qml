import QtQuick
import Korvanti.Ui

/// A row of a list in a sheet; keys go from one to the next.
Item {
    id: root

    width: ListView.view?.width ?? 0
    Accessible.role: Accessible.ListItem
    Accessible.focusable: true
    Accessible.focused: root.activeFocus

    Rectangle {
        anchors.fill: parent
        visible: root.activeFocus
        color: Brand.rowHover
    }
}
