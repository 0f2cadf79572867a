pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// Something is under way. Nothing turns: the light goes from spoke to spoke.
Item {
    id: root

    property real size: 14
    property color color: Brand.text2
    property int step: 0

    implicitWidth: Brand.scaled(root.size)
    implicitHeight: Brand.scaled(root.size)
    Accessible.role: Accessible.Indicator
    Accessible.name: "Sedang berjalan"

    Timer {
        interval: 900 / 8
        repeat: true
        running: root.visible
        onTriggered: root.step = (root.step + 1) % 8
    }
    Repeater {
        model: 8
        Item {
            id: spoke
            required property int index
            anchors.centerIn: root
            width: Math.max(1.5, root.height * 0.12)
            height: root.height
            rotation: 45 * spoke.index
            opacity: 0.2 + 0.8 * (1 - ((root.step - spoke.index + 8) % 8) / 7)
            Rectangle {
                width: parent.width
                height: root.height * 0.3
                radius: width / 2
                color: root.color
                antialiasing: true
            }
        }
    }
}
