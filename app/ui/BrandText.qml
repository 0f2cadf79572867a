import QtQuick
import Korvanti.Ui

/// Text as Korvanti sets it. What it says is never taken for markup.
Text {
    id: root

    enum Style {
        HeroNumber, Capacity, TileValue, ResultTitle, Title, BrandName, PaneTitle, Headline, Body, BodyMedium,
        RowSize, Callout, CalloutMedium, Caption, CaptionMedium, Overline, Path
    }

    property int style: BrandText.Body
    readonly property TypeStyle type: Brand.types[root.style]

    textFormat: Text.PlainText
    renderType: Text.NativeRendering
    color: root.type.color
    font.family: root.type.family
    font.pixelSize: root.type.pixelSize
    font.weight: root.type.weight
    font.letterSpacing: root.type.letterSpacing
    font.hintingPreference: Font.PreferNoHinting
    lineHeight: root.type.lineHeight
    lineHeightMode: Text.FixedHeight
    // Qt lays text at the top of its line, unless it is to be in the middle of the whole.
    topPadding: root.verticalAlignment === Text.AlignTop ? root.type.lead : 0
    bottomPadding: -root.topPadding
    Accessible.ignored: root.text === ""
    Accessible.name: root.text // what is attached to says nothing of itself
}
