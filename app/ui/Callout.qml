import QtQuick
import Korvanti.Ui

/// A note in its colour.
Rectangle {
    id: root

    required property string symbol
    required property color tint
    required property string text

    implicitWidth: 320
    implicitHeight: words.implicitHeight + 2 * Brand.scaled(10)
    radius: 10
    color: Brand.translucent(root.tint, 0.1)
    Accessible.role: Accessible.Note
    Accessible.name: root.text

    Symbol {
        id: mark
        x: 12
        y: words.y + Math.round((Brand.types[BrandText.Callout].lineHeight - height) / 2)
        name: root.symbol
        size: 16
        color: root.tint
    }
    BrandText {
        id: words
        objectName: "calloutText"
        x: mark.x + mark.width + 10
        y: Brand.scaled(10)
        width: root.width - x - 12
        // Lines break at blanks only: a word joiner stands behind what they could break at besides.
        text: root.text.replace(/[\/-]/g, "$&\u2060")
        style: BrandText.Callout
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
