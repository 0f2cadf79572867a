import QtQuick
import Korvanti.Ui

/// The head of a section of a list: a symbol, a title and a sum.
Rectangle {
    id: root

    required property string title
    required property string symbol
    required property string sizeText

    implicitHeight: Math.max(Brand.scaled(34), words.height)
    color: Brand.window
    Accessible.role: Accessible.Heading
    Accessible.name: root.title + ", " + root.sizeText

    Rectangle { width: parent.width; height: 1; color: Brand.separator }
    Rectangle { width: parent.width; height: 1; y: parent.height - 1; color: Brand.separator }
    Symbol {
        anchors { left: parent.left; leftMargin: 24; verticalCenter: parent.verticalCenter }
        name: root.symbol
        size: 16
        color: Brand.accent
    }
    BrandText {
        id: words
        anchors {
            left: parent.left; leftMargin: 24 + Brand.scaled(28)
            right: sum.left; rightMargin: Brand.scaled(12)
            verticalCenter: parent.verticalCenter
        }
        style: BrandText.Callout
        font.weight: Font.DemiBold
        text: root.title
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    Figure {
        id: sum
        anchors { right: parent.right; rightMargin: 24; verticalCenter: parent.verticalCenter }
        style: BrandText.CalloutMedium
        color: Brand.text2
        text: root.sizeText
        Accessible.ignored: true
    }
}
