pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// What to buy, and what to put on it.
Card {
    id: root

    gap: 0

    BrandText {
        width: parent.width
        style: BrandText.Headline
        text: "Panduan: Mac 256 GB + SSD eksternal"
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Item { width: 1; height: 8 }
    Column {
        id: lines
        width: parent.width
        spacing: 6

        Repeater {
            model: [
                "Pakai enclosure NVMe Thunderbolt/USB4 (40 Gbps) + SSD NVMe TLC 1–2 TB. Hindari flashdisk & SSD SATA lama untuk build.",
                "Format APFS (Encrypted bila berisi kode & keystore). Jangan exFAT untuk data dev.",
                "Biarkan di disk internal: macOS, app (Xcode, Android Studio), runtime simulator, keychain, dan proyek yang sedang aktif dikerjakan.",
                "Arahkan ke SSD: DerivedData, Gradle home, arsip .xcarchive, folder output/screenshot, riwayat sesi AI, media, dan proyek lama.",
                "Sisakan minimal 30–40 GB kosong di disk internal untuk swap & update macOS.",
                "Selalu Eject sebelum mencabut SSD agar cache tidak rusak."
            ]
            Item {
                id: line
                required property int index
                required property string modelData
                width: lines.width
                height: words.height
                Accessible.role: Accessible.StaticText
                Accessible.name: (line.index + 1) + ". " + line.modelData
                BrandText {
                    style: BrandText.Callout
                    color: Brand.text2
                    text: (line.index + 1) + "."
                    Accessible.ignored: true
                }
                BrandText {
                    id: words
                    objectName: "guideLine"
                    x: Brand.scaled(20)
                    width: parent.width - x
                    style: BrandText.Callout
                    text: line.modelData
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
            }
        }
    }
}
