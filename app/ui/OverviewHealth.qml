pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// How the Mac's storage and memory are doing.
Card {
    id: root

    required property OverviewModel model

    gap: 0

    BrandText {
        width: parent.width
        style: BrandText.Headline
        text: "Kesehatan Mac"
        wrapMode: Text.WordWrap
    }
    Item {
        width: 1
        height: 6
    }
    Repeater {
        model: root.model.health

        Item {
            id: row

            required property string label
            required property string value

            objectName: "health:" + row.label
            width: parent?.width ?? 0
            height: Math.max(30, words.height + 11)
            Accessible.role: Accessible.StaticText
            Accessible.name: row.label + ": " + row.value

            BrandText {
                id: words
                anchors.verticalCenter: parent.verticalCenter
                width: figure.x - 10
                color: Brand.text2
                text: row.label
                wrapMode: Text.WordWrap
                Accessible.ignored: true
            }
            Figure {
                id: figure
                x: parent.width - width
                anchors.verticalCenter: parent.verticalCenter
                width: implicitWidth
                style: BrandText.BodyMedium
                text: row.value
                Accessible.ignored: true
            }
        }
    }
    Item {
        width: 1
        height: 10
        visible: root.model.swapIsLarge
    }
    Callout {
        objectName: "swapCallout"
        width: parent.width
        visible: root.model.swapIsLarge
        symbol: "memorychip"
        tint: Brand.amber
        text: "Swap besar: macOS memakai SSD sebagai RAM saat Xcode, Gradle, simulator, dan browser jalan bersamaan. Ini memakan ruang (volume VM) dan mempercepat keausan SSD. Di Mac berikutnya, RAM lebih penting daripada storage internal."
    }
}
