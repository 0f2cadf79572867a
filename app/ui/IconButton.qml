import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// A symbol to click. Its hint says what it does.
Pressable {
    id: root

    required property string symbol
    required property string hint
    property real symbolSize: 13

    implicitWidth: Brand.scaled(28)
    implicitHeight: Brand.scaled(28)
    Accessible.name: root.hint

    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            name: root.symbol
            size: root.symbolSize
            color: root.enabled ? Brand.text2 : Brand.text3
        }
    }
    background: Rectangle {
        radius: Brand.scaled(7)
        color: Brand.translucent(Brand.text, root.down ? 0.12 : root.hovered && root.enabled ? 0.06 : 0)
        Behavior on color { ColorAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutQuad } }
        FocusRing { visible: root.visualFocus; around: parent.radius }
    }
    Hint { text: root.hint; shown: root.hovered }
}
