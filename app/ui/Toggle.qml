import QtQuick
import Korvanti.Ui

/// A switch.
Checkable {
    id: root

    implicitWidth: Brand.scaled(36)
    implicitHeight: Brand.scaled(20)

    background: Rectangle {
        radius: height / 2
        color: root.marked ? (root.down ? Brand.fillPressed : root.hovered ? Brand.fillHover : Brand.fill)
             : root.down ? Brand.controlPressed : root.hovered ? Brand.controlHover : Brand.control
        border.width: root.marked ? 0 : 1
        border.color: Brand.checkboxBorder
        Behavior on color { ColorAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutQuad } }
        Rectangle {
            objectName: "knob"
            readonly property real gap: Brand.scaled(2)
            x: root.marked ? parent.width - width - gap : gap
            y: gap
            width: parent.height - 2 * gap
            height: width
            radius: width / 2
            color: root.marked ? Brand.white : Brand.checkboxBorder
            Behavior on x { NumberAnimation { duration: Brand.slideDuration; easing.type: Easing.OutCubic } }
        }
        FocusRing { visible: root.visualFocus; around: parent.radius }
    }
}
