import QtQuick
import Korvanti.Ui

/// One message above the pane, there while it has words. `dismissed` asks to take it away.
Item {
    id: root

    required property string text
    required property color tint
    property string symbol: "" ///< a spinner, if there is none
    property bool dismissable: true
    readonly property bool shown: root.text !== ""
    signal dismissed()

    implicitHeight: root.shown ? Math.max(Brand.scaled(40), words.implicitHeight + 2 * Brand.scaled(11)) : 0
    height: root.implicitHeight
    visible: height > 0
    clip: true
    Accessible.role: Accessible.AlertMessage
    Accessible.name: root.text
    Behavior on height { NumberAnimation { duration: Brand.openDuration; easing.type: Easing.OutCubic } }

    Rectangle {
        anchors.fill: parent
        color: Brand.translucent(root.tint, 0.1)
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: Brand.separator
        }
    }
    Item {
        anchors.fill: parent
        opacity: root.shown ? 1 : 0
        Behavior on opacity { NumberAnimation { duration: Brand.fadeDuration } }

        Symbol {
            x: 24
            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol !== ""
            name: root.symbol
            size: 16
            color: root.tint
        }
        Spinner {
            x: 24
            anchors.verticalCenter: parent.verticalCenter
            visible: root.shown && root.symbol === ""
            size: 14
        }
        BrandText {
            id: words
            objectName: "bannerText"
            x: 32 + Brand.scaled(16)
            anchors.verticalCenter: parent.verticalCenter
            width: root.width - x - (root.dismissable ? closing.width + 28 : 24)
            text: root.text
            style: BrandText.Callout
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
            HoverHandler { id: pointer }
            Hint { text: root.text; shown: pointer.hovered && words.truncated }
        }
        IconButton {
            id: closing
            objectName: "dismissBanner"
            anchors.right: parent.right
            anchors.rightMargin: 24 - (width - Brand.scaled(13)) / 2
            anchors.verticalCenter: parent.verticalCenter
            visible: root.dismissable
            symbol: "xmark"
            hint: "Tutup pesan"
            onClicked: root.dismissed()
        }
    }
}
