import QtQuick
import Korvanti.Ui

/// A surface with round corners, the lower left one of which may differ.
Item {
    id: root

    property color color: Brand.card
    property real radius: 22
    property real small: 6

    Rectangle {
        anchors.fill: parent
        radius: root.radius
        color: root.color
    }
    Rectangle {
        anchors.left: parent.left
        anchors.bottom: parent.bottom
        width: root.radius + root.small
        height: width
        visible: root.small < root.radius
        radius: root.small
        color: root.color
    }
}
