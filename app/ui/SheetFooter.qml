import QtQuick
import Korvanti.Ui

/// The foot of a sheet: its buttons at the end, and at the beginning those that belong there.
Item {
    id: root

    default property alias buttons: ending.data
    property alias leading: beginning.data

    /// Without room for all in one line, those at the beginning stand below.
    readonly property bool breaks: beginning.width > 0 && 28 + beginning.width + 10 + ending.width + 28 > width

    implicitHeight: breaks ? ending.height + 10 + beginning.height + 40 : Math.max(72, ending.implicitHeight + 40)

    Rectangle {
        width: parent.width
        height: 1
        color: Brand.separator
    }
    Row {
        id: beginning
        x: root.breaks ? root.width - 28 - width : 28
        y: root.breaks ? root.height - 20 - height : Math.round((root.height - height) / 2)
        spacing: 10
    }
    Row {
        id: ending
        anchors.right: parent.right
        anchors.rightMargin: 28
        y: root.breaks ? 20 : Math.round((root.height - height) / 2)
        spacing: 10
    }
}
