import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// One category: how much it holds beside the largest one.
Pressable {
    id: root

    required property string symbol
    required property string title
    required property string sizeText
    required property real share ///< of the largest
    property real growth: 1 ///< 0 to 1 while the bar grows

    readonly property real gap: 10

    implicitHeight: Math.max(30, label.implicitHeight + 11)
    focusPolicy: Qt.TabFocus
    Accessible.name: root.title + ", " + root.sizeText

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.leftMargin: -8
            anchors.rightMargin: -8
            radius: 7
            color: root.down ? Brand.rowPressed : root.hovered ? Brand.rowHover : Brand.translucent(Brand.rowHover, 0)
            Behavior on color { ColorAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutQuad } }
            FocusRing { visible: root.visualFocus; around: 7; anchors.margins: -2 }
        }
    }

    Symbol {
        id: icon
        x: Brand.scaled(10) - width / 2
        anchors.verticalCenter: parent.verticalCenter
        name: root.symbol
        size: 18
        color: Brand.accent
    }
    BrandText {
        id: label
        x: Brand.scaled(20) + root.gap
        anchors.verticalCenter: parent.verticalCenter
        width: Brand.scaled(150)
        text: root.title
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    Rectangle {
        id: track
        x: label.x + label.width + root.gap
        anchors.verticalCenter: parent.verticalCenter
        width: Math.max(0, size.x - root.gap - x)
        height: 8
        radius: 4
        color: Brand.iceFill

        Rectangle {
            objectName: "bar"
            width: Math.max(4, track.width * root.share * root.growth)
            height: 8
            radius: Math.min(4, width / 2)
            color: Brand.accent
        }
    }
    Figure {
        id: size
        x: root.width - width
        anchors.verticalCenter: parent.verticalCenter
        width: Brand.scaled(80)
        style: BrandText.BodyMedium
        text: root.sizeText
        Accessible.ignored: true
    }
}
