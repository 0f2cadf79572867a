import QtQuick
import QtQuick.Templates as T
import Korvanti.Ui

/// A switch that shows what its owner says: a click only asks.
T.CheckBox { // what it is for those who can't see it
    id: root

    required property bool isOn
    required property string label

    implicitWidth: Brand.scaled(36)
    implicitHeight: Brand.scaled(20)
    focusPolicy: Qt.StrongFocus
    checked: root.isOn
    nextCheckState: () => root.isOn ? Qt.Checked : Qt.Unchecked
    Accessible.name: root.label
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    background: Rectangle {
        radius: height / 2
        color: root.isOn ? (root.down ? Brand.fillPressed : root.hovered ? Brand.fillHover : Brand.fill)
             : root.down ? Brand.controlPressed : root.hovered ? Brand.controlHover : Brand.control
        border.width: root.isOn ? 0 : 1
        border.color: Brand.checkboxBorder
        Behavior on color { ColorAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutQuad } }
        Rectangle {
            readonly property real gap: Brand.scaled(2)
            x: root.isOn ? parent.width - width - gap : gap
            y: gap
            width: parent.height - 2 * gap
            height: width
            radius: width / 2
            color: root.isOn ? Brand.white : Brand.checkboxBorder
            Behavior on x { NumberAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutCubic } }
        }
        FocusRing { visible: root.visualFocus; around: parent.radius }
    }
}
