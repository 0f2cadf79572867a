import QtQuick
import Korvanti.Ui

/// One sum on its wash.
Item {
    id: root

    required property string title
    required property string value
    required property string caption
    required property color tint
    required property color wash
    property string symbol: ""
    property real small: 22 ///< radius of the lower left corner
    readonly property real side: root.width < Brand.scaled(190) ? 14 : 18

    implicitWidth: 209
    implicitHeight: column.implicitHeight + 34
    Accessible.role: Accessible.StaticText
    Accessible.name: root.title + ", " + root.value
    Accessible.description: root.caption

    UnevenCard {
        anchors.fill: parent
        color: root.wash
        small: root.small
    }
    Column {
        id: column
        x: root.side
        y: 15
        width: root.width - 2 * root.side
        Item {
            width: parent.width
            height: title.height
            Symbol {
                id: mark
                y: Math.round((title.type.lineHeight - height) / 2)
                visible: root.symbol !== ""
                name: root.symbol
                size: 15
                color: root.tint
            }
            BrandText {
                id: title
                anchors.left: mark.visible ? mark.right : parent.left
                anchors.leftMargin: mark.visible ? 6 : 0
                anchors.right: parent.right
                text: root.title
                style: BrandText.CalloutMedium
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
        Item { width: 1; height: 4 }
        BrandText {
            width: parent.width
            text: root.value
            style: BrandText.TileValue
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 12
            Accessible.ignored: true
        }
        Item { width: 1; height: 2 }
        BrandText {
            width: parent.width
            text: root.caption
            style: BrandText.Caption
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
}
