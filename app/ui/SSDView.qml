pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// The external volumes, what may move to them and what has.
FocusScope {
    id: root

    required property SsdModel model


    DateWatch { clock: root.model.clock }

    PaneToolbar {
        id: toolbar
        width: root.width
        title: "SSD Eksternal"

        PlainButton {
            objectName: "reloadButton"
            symbol: "arrow.clockwise"
            text: "Muat ulang"
            onClicked: root.model.reload()
        }
    }

    ScrollPane {
        id: pane
        objectName: "ssdScroll"
        anchors.fill: root
        anchors.topMargin: toolbar.height
        spacing: 16

        readonly property real room: pane.width - 2 * pane.margin

        Card {
            objectName: "noVolumes"
            width: pane.room
            visible: !root.model.hasVolumes
            gap: 4

            SymbolText {
                width: parent.width
                style: BrandText.Headline
                symbol: "externaldrive.badge.questionmark"
                size: 18
                tint: Brand.accent
                color: Brand.text
                text: "Belum ada SSD eksternal yang terpasang"
            }
            BrandText {
                width: parent.width
                style: BrandText.Callout
                color: Brand.text2
                text: "Colokkan SSD; Korvanti otomatis mendeteksinya, memeriksa format & kecepatannya, lalu bisa memindahkan arsip dan cache dev ke sana."
                wrapMode: Text.Wrap
            }
        }
        Repeater {
            model: root.model.volumes

            VolumeCard {
                id: volume
                objectName: "volume" + volume.index
                width: pane.room
                onWorkVolumeRequested: root.model.makeWorkVolume(volume.index)
                onTestRequested: root.model.testSpeed(volume.index)
                onRevealRequested: root.model.reveal(volume.index)
                onEjectRequested: root.model.eject(volume.index)
                onCopyRequested: row => root.model.copyCommand(volume.index, row)
            }
        }
        CacheCard {
            objectName: "cacheCard"
            width: pane.room
            model: root.model
        }
        MovedData {
            objectName: "movedData"
            width: pane.room
            model: root.model
            onMenuRequested: (record, button) => {
                root.model.openMenu(record);
                menu.popup(button, button.width - menu.width, button.height + 4);
            }
        }
        SsdGuide {
            objectName: "guide"
            width: pane.room
        }
    }

    ContextMenu {
        id: menu
        objectName: "movedMenu"
        // Where it was opened may be gone; the keyboard goes on in the pane.
        onClosed: {
            const focused = root.Window.activeFocusItem;
            if (!focused || focused === root.Window.contentItem)
                root.forceActiveFocus(Qt.PopupFocusReason);
        }

        ContextMenuEntry {
            objectName: "revealMovedEntry"
            text: "Tampilkan di Finder"
            onTriggered: root.model.revealMoved()
        }
        ContextMenuEntry {
            objectName: "restoreEntry"
            possible: root.model.canRestore
            text: root.model.restoreText
            onTriggered: root.model.restore()
        }
        ContextMenuDivider { }
        ContextMenuEntry {
            objectName: "forgetEntry"
            text: "Lupakan catatan (file tidak disentuh)"
            onTriggered: root.model.forget()
        }
    }
    Connections {
        target: root.model
        function onMenuChanged() {
            if (!root.model.hasMenu)
                menu.close();
        }
    }
}
