import QtQuick
import Korvanti.Ui

/// A row of a list in a sheet; keys go from one to the next.
RowItem {
    id: root

    width: ListView.view?.width ?? 0
    activeFocusOnTab: root.ListView.isCurrentItem || root.activeFocus // which must not lose it
    Accessible.role: Accessible.ListItem
    Accessible.focusable: true
    Accessible.focused: root.activeFocus

    Rectangle {
        anchors.fill: parent
        visible: root.activeFocus
        color: Brand.rowHover
    }
}
