import QtQuick
import Korvanti.Ui

/// The class of an item: symbol and word on its wash. `safety` is the class's place in the order of classes.
Rectangle {
    id: root

    required property int safety

    implicitWidth: words.x + words.implicitWidth + Brand.scaled(7)
    implicitHeight: Brand.scaled(20)
    radius: height / 2
    color: Brand.safetyWash(root.safety)
    Accessible.role: Accessible.StaticText
    Accessible.name: words.text

    Symbol {
        id: mark
        x: Brand.scaled(7)
        anchors.verticalCenter: parent.verticalCenter
        name: SafetyDisplay.symbol(root.safety)
        size: 12
        color: Brand.safetyTint(root.safety)
    }
    BrandText {
        id: words
        x: mark.x + mark.width + Brand.scaled(4)
        anchors.verticalCenter: parent.verticalCenter
        text: SafetyDisplay.label(root.safety)
        style: BrandText.CaptionMedium
        color: Brand.text
        Accessible.ignored: true
    }
}
