pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// Which caches the next builds write to the work volume.
Card {
    id: root

    required property SsdModel model

    gap: 0

    BrandText {
        width: parent.width
        style: BrandText.Headline
        text: "Cache dev langsung ke SSD"
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    BrandText {
        width: parent.width
        style: BrandText.Callout
        color: Brand.text2
        text: "Build berikutnya menulis cache ke SSD kerja, bukan ke disk internal. Jika SSD dicabut, Gradle & npm otomatis kembali ke lokasi bawaan; Xcode akan meminta SSD dipasang (atau kembalikan di sini)."
        wrapMode: Text.Wrap
    }
    Item { width: 1; height: 14 }
    Callout {
        objectName: "chooseCallout"
        width: parent.width
        visible: !root.model.hasWorkVolume
        symbol: "hand.tap"
        tint: Brand.accent
        text: "Pilih salah satu SSD di atas sebagai 'SSD kerja' dulu."
    }
    Column {
        width: parent.width
        visible: root.model.hasWorkVolume

        Repeater {
            model: root.model.caches
            CacheRow {
                id: cache
                objectName: "cache" + cache.index
                width: parent?.width ?? 0
                onToggleRequested: root.model.toggleCache(cache.index)
            }
        }
        Rectangle { width: parent.width; height: 1; color: Brand.separator }
        Item { width: 1; height: 14 }
        Flow {
            width: parent.width
            spacing: 8
            PlainButton {
                objectName: "relocateButton"
                width: Math.min(implicitWidth, parent.width)
                text: root.model.relocateText
                enabled: root.model.canRelocate
                onClicked: root.model.relocate()
            }
            PlainButton {
                objectName: "revertButton"
                text: "Kembalikan ke Mac"
                enabled: root.model.canRevert
                onClicked: root.model.revertRelocation()
            }
        }
        Item { width: 1; height: 10; visible: root.model.needsOtherFormat }
        SymbolText {
            objectName: "formatWarning"
            width: parent.width
            visible: root.model.needsOtherFormat
            symbol: "exclamationmark.triangle.fill"
            tint: Brand.amber
            color: Brand.warnText
            text: "Butuh SSD berformat APFS."
        }
    }
}
