import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// A quiet button, with a symbol in front if it has one. While `busy` a spinner stands in place of its words. Where
/// it is narrower than its words, they end in dots.
Pressable {
    id: root

    property string symbol: ""
    property string hint: ""
    property bool opensMenu: false
    property bool busy: false
    property real size: 28 ///< height

    implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
    implicitHeight: Brand.scaled(root.size)
    leftPadding: Brand.scaled(12)
    rightPadding: Brand.scaled(12)
    about: root.hint

    contentItem: Item {
        id: content
        readonly property real aroundLabel: (mark.visible ? mark.width + words.spacing : 0)
                                            + (caret.visible ? caret.width + words.spacing : 0)
        implicitWidth: aroundLabel + label.implicitWidth
        implicitHeight: words.implicitHeight
        Row {
            id: words
            anchors.centerIn: parent
            spacing: Brand.scaled(6)
            opacity: root.busy ? 0 : root.enabled ? 1 : 0.75
            Symbol {
                id: mark
                visible: root.symbol !== ""
                anchors.verticalCenter: parent.verticalCenter
                name: root.symbol
                size: 15
                color: label.color
            }
            BrandText {
                id: label
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, Math.max(0, content.width - content.aroundLabel))
                text: root.text
                style: BrandText.CalloutMedium
                color: root.enabled ? Brand.text : Brand.text3
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            Symbol {
                id: caret
                visible: root.opensMenu
                anchors.verticalCenter: parent.verticalCenter
                name: "chevron.down"
                size: 10
                color: label.color
            }
        }
        Spinner {
            anchors.centerIn: parent
            visible: root.busy
            size: 14
        }
    }
    background: Rectangle {
        radius: Brand.scaled(7)
        color: !root.enabled && !root.busy ? Brand.translucent(Brand.control, 0)
             : root.down ? Brand.controlPressed : root.hovered ? Brand.controlHover : Brand.control
        border.width: 1
        border.color: root.enabled || root.busy ? Brand.controlBorder : Brand.cardBorder
        Behavior on color { ColorAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutQuad } }
        FocusRing { visible: root.visualFocus; around: parent.radius }
    }
    Hint { text: root.hint; shown: root.hovered }
}
