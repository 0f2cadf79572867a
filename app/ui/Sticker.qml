import QtQuick
import Korvanti.Ui

/// A symbol on a coloured square.
Rectangle {
    id: root

    required property string symbol
    required property color background
    required property color foreground
    property real size: 44

    implicitWidth: Brand.scaled(root.size)
    implicitHeight: Brand.scaled(root.size)
    radius: 0.28 * height
    color: root.background
    Symbol {
        anchors.centerIn: parent
        name: root.symbol
        size: 0.55 * root.size
        color: root.foreground
    }
}
