import QtQuick
import Korvanti.Ui

/// A cache to choose, and where it points now.
Item {
    id: root

    required property int index
    required property string title
    required property string detail
    required property bool isChosen
    required property string targetText

    signal toggleRequested

    implicitHeight: words.y + words.height + Brand.scaled(9)

    Rectangle { width: root.width; height: 1; color: Brand.separator }
    TapHandler {
        gesturePolicy: TapHandler.WithinBounds
        onTapped: root.toggleRequested()
    }
    CheckMark {
        objectName: "cacheCheck"
        y: words.y + Math.round((titleText.type.lineHeight - height) / 2)
        marked: root.isChosen
        label: root.title
        about: root.detail
        onClicked: root.toggleRequested()
    }
    Column {
        id: words
        x: Brand.scaled(28)
        y: 1 + Brand.scaled(9)
        width: root.width - x

        BrandText {
            id: titleText
            width: parent.width
            style: BrandText.BodyMedium
            text: root.title
            wrapMode: Text.Wrap
        }
        BrandText {
            width: parent.width
            style: BrandText.Caption
            text: root.detail
            wrapMode: Text.Wrap
        }
        SymbolText {
            objectName: "cacheTarget"
            width: parent.width
            visible: root.targetText !== ""
            symbol: "checkmark.circle.fill"
            tint: Brand.green
            color: Brand.green
            text: root.targetText
        }
    }
}
