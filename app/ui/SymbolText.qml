import QtQuick
import Korvanti.Ui

/// A symbol and the words that say the same.
Item {
    id: root

    required property string symbol
    required property string text
    property color tint: Brand.text2 ///< of the symbol
    property color color: Brand.text2
    property int style: BrandText.Caption
    property real size: 13

    implicitWidth: words.x + words.implicitWidth
    implicitHeight: words.height

    Symbol {
        id: mark
        y: Math.round((words.type.lineHeight - height) / 2)
        name: root.symbol
        size: root.size
        color: root.tint
    }
    BrandText {
        id: words
        x: mark.width + Brand.scaled(6)
        width: Math.max(0, root.width - x)
        style: root.style
        color: root.color
        text: root.text
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignLeft
    }
}
