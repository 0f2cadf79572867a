import QtQuick
import Korvanti.Ui

/// What can go at one click. The actions stand beside the words, or below them where that would leave too
/// little room.
UnevenCard {
    id: root

    required property string sizeText
    required property string promise
    required property bool canClean
    signal cleanRequested()
    signal detailsRequested()

    readonly property real sideGap: 24
    readonly property real besideWidth: actions.x0 - 32 - words.x
    readonly property bool isStacked: probe.width < Brand.scaled(200) || probe.lineCount > 3

    implicitHeight: root.isStacked ? words.y + words.height + 16 + actions.height + 22
                                   : Math.max(words.height + 46, actions.height + 44, sticker.height + 48)
    color: Brand.heroFill

    Sticker {
        id: sticker
        x: root.sideGap
        y: root.sideGap
        size: 54
        symbol: "sparkles.fill"
        background: Brand.capacityCyan
        foreground: Brand.heroSymbol
    }
    BrandText {
        id: probe
        visible: false
        width: Math.max(1, Math.min(Brand.scaled(500), root.besideWidth))
        style: BrandText.Callout
        text: root.promise
        wrapMode: Text.WordWrap
    }
    Column {
        id: words
        x: sticker.x + sticker.width + 20
        y: 22
        width: root.isStacked ? root.width - x - root.sideGap : probe.width

        BrandText {
            width: parent.width
            style: BrandText.Overline
            color: Brand.heroOverline
            text: "SIAP DIBERSIHKAN"
            wrapMode: Text.WordWrap
        }
        Item {
            width: 1
            height: 3
        }
        BrandText {
            objectName: "recommendedText"
            width: parent.width
            style: BrandText.HeroNumber
            text: root.sizeText
            wrapMode: Text.WordWrap
        }
        Item {
            width: 1
            height: 2
        }
        BrandText {
            objectName: "recommendedPromise"
            width: parent.width
            style: BrandText.Callout
            color: Brand.heroText
            text: root.promise
            wrapMode: Text.WordWrap
        }
    }
    Column {
        id: actions

        readonly property real x0: root.width - root.sideGap - width

        x: root.isStacked ? words.x : x0
        y: root.isStacked ? words.y + words.height + 16 : (root.height - height) / 2
        spacing: 10

        PillButton {
            objectName: "cleanRecommendedButton"
            anchors.horizontalCenter: parent.horizontalCenter
            kind: PillButton.Hero
            size: 36
            text: "Bersihkan rekomendasi"
            enabled: root.canClean
            onClicked: root.cleanRequested()
        }
        LinkButton {
            hero: true
            objectName: "detailsButton"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Lihat rinciannya"
            onClicked: root.detailsRequested()
        }
    }
}
