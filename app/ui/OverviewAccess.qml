import QtQuick
import Korvanti.Ui

/// Asks for the access without which much stays unseen.
Rectangle {
    id: root

    signal settingsRequested()

    implicitHeight: words.height + 36
    radius: 16
    color: Brand.peachWash

    Sticker {
        id: sticker
        x: 18
        y: 18
        size: 44
        symbol: "lock.shield"
        background: Brand.amber
        foreground: Theme.dark ? Brand.peachWash : Brand.white
    }
    Column {
        id: words
        x: sticker.x + sticker.width + 16
        y: 18
        width: root.width - x - 18

        BrandText {
            width: parent.width
            style: BrandText.Headline
            text: "Beri Korvanti akses penuh ke disk"
            wrapMode: Text.WordWrap
        }
        BrandText {
            width: parent.width
            style: BrandText.Callout
            color: Brand.text2
            text: "Tanpa Full Disk Access, Tong Sampah, Containers, dan media WhatsApp/Telegram tidak terlihat (bisa puluhan GB). Klik tombol di bawah, lalu seret Korvanti dari Finder ke daftar Full Disk Access dan nyalakan."
            wrapMode: Text.WordWrap
        }
        Item {
            width: 1
            height: 14
        }
        PillButton {
            objectName: "accessButton"
            size: 28
            text: "Buka pengaturan Full Disk Access"
            onClicked: root.settingsRequested()
        }
    }
}
