import QtQuick
import Korvanti.Ui

/// One line on how fit a volume is, and a command to copy if there is one.
Item {
    id: root

    required property int index
    required property string title
    required property string detail
    required property string command
    required property int level ///< in the order good, info, warning
    required property string symbol

    signal copyRequested

    implicitHeight: words.height

    Symbol {
        y: Math.round((titleText.type.lineHeight - height) / 2)
        name: root.symbol
        size: 15
        color: root.level === 0 ? Brand.green : root.level === 1 ? Brand.accent : Brand.amber
    }
    Column {
        id: words
        x: Brand.scaled(26)
        width: root.width - x
        spacing: 2

        BrandText {
            id: titleText
            objectName: "adviceTitle"
            width: parent.width
            style: BrandText.CalloutMedium
            text: root.title
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignLeft
        }
        BrandText {
            width: parent.width
            style: BrandText.Caption
            text: root.detail
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignLeft
        }
        Item {
            width: parent.width
            height: ground.height + 1
            visible: root.command !== ""

            Rectangle {
                id: ground
                y: 1
                width: Math.min(Math.ceil(natural.advanceWidth) + 1 + 2 * Brand.scaled(8), parent.width - copy.width - 12)
                height: commandText.height + Brand.scaled(7)
                radius: 6
                color: Brand.segmentedTrack
                TextMetrics {
                    id: natural
                    font: commandText.font
                    text: root.command
                }
                BrandText {
                    id: commandText
                    objectName: "command"
                    x: Brand.scaled(8)
                    y: Brand.scaled(3)
                    width: parent.width - 2 * x
                    style: BrandText.Path
                    color: Brand.text
                    text: root.command
                    wrapMode: Text.Wrap
                    horizontalAlignment: Text.AlignLeft
                }
            }
            LinkButton {
                id: copy
                objectName: "copyButton"
                anchors { left: ground.right; leftMargin: 12; verticalCenter: ground.verticalCenter }
                text: "Salin"
                about: root.command
                onClicked: root.copyRequested()
            }
        }
    }
}
