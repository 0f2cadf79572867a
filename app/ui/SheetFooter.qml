import QtQuick
import Korvanti.Ui

/// The foot of a sheet: its buttons at the end, and at the beginning those that belong there.
Item {
    id: root

    default property alias buttons: ending.data
    property alias leading: beginning.data

    implicitHeight: Math.max(72, ending.implicitHeight + 40)

    Rectangle {
        width: parent.width
        height: 1
        color: Brand.separator
    }
    Row {
        id: beginning
        x: 28
        anchors.verticalCenter: parent.verticalCenter
        spacing: 10
    }
    Row {
        id: ending
        anchors.right: parent.right
        anchors.rightMargin: 28
        anchors.verticalCenter: parent.verticalCenter
        spacing: 10
    }
}
