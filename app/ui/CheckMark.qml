import QtQuick
import Korvanti.Ui

/// A checkbox.
Checkable {
    id: root

    implicitWidth: Brand.scaled(16)
    implicitHeight: Brand.scaled(16)
    containmentMask: Item { // easier to hit than it is large
        parent: root
        x: -6
        y: -6
        width: root.width + 12
        height: root.height + 12
    }

    background: Rectangle {
        radius: Brand.scaled(4.5)
        color: !root.enabled ? Brand.checkboxDisabled
             : root.marked ? (root.down ? Brand.fillPressed : root.hovered ? Brand.fillHover : Brand.fill)
             : root.down ? Brand.controlPressed : root.hovered ? Brand.controlHover : Brand.control
        border.width: root.marked && root.enabled ? 0 : 1
        border.color: root.enabled ? Brand.checkboxBorder : Brand.cardBorder
        Symbol {
            anchors.centerIn: parent
            visible: root.marked && root.enabled
            name: "checkmark"
            size: 12
            color: Brand.white
        }
        FocusRing { visible: root.visualFocus; around: parent.radius }
    }
}
