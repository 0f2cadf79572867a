pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// The map of the disk as a tree: how old it is and the way to a new one above it.
FocusScope {
    id: root

    required property MapModel model

    readonly property int margin: 24

    DateWatch { clock: root.model.clock }

    PaneToolbar {
        id: toolbar
        width: parent.width
        title: "Peta Storage"
    }
    Item {
        id: head

        anchors.top: toolbar.bottom
        width: parent.width
        height: Math.max(62, words.height + 24, generateButton.height + 24)

        Column {
            id: words
            anchors {
                left: parent.left; leftMargin: root.margin
                right: status.visible ? status.left : generateButton.left; rightMargin: 20
                top: parent.top; topMargin: 3
            }
            BrandText {
                width: parent.width
                style: BrandText.Headline
                text: "Peta penyimpanan"
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            BrandText {
                objectName: "mapCaption"
                width: parent.width
                style: BrandText.Caption
                text: root.model.caption
                wrapMode: Text.Wrap
            }
        }
        Row {
            id: status
            anchors { right: generateButton.left; rightMargin: 16; verticalCenter: generateButton.verticalCenter }
            visible: root.model.isMapping
            spacing: 8
            Spinner {
                anchors.verticalCenter: parent.verticalCenter
                size: 13
            }
            BrandText {
                objectName: "mapStatus"
                width: Math.min(implicitWidth, Math.round(head.width * 0.35))
                style: BrandText.Caption
                text: root.model.mapStatus
                elide: Text.ElideMiddle
            }
        }
        PlainButton {
            id: generateButton
            objectName: "generateButton"
            anchors { right: parent.right; rightMargin: root.margin; verticalCenter: words.verticalCenter }
            text: root.model.actionText
            enabled: !root.model.isMapping
            onClicked: root.model.generate()
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: Brand.separator
        }
    }
    Rectangle {
        anchors { top: head.bottom; bottom: parent.bottom }
        width: parent.width
        color: root.model.hasMap ? Brand.list : Brand.window

        EmptyState {
            anchors.fill: parent
            visible: !root.model.hasMap
            symbol: "square.grid.3x3.square"
            title: "Belum ada peta"
            body: "Peta menunjukkan folder mana yang paling besar, termasuk yang bukan cache."
        }
        RowsView {
            id: tree

            function goLeft(): void {
                if (!root.model.tree.collapse(currentIndex)) {
                    const parentRow = root.model.tree.parentRow(currentIndex);
                    if (parentRow >= 0)
                        moveTo(parentRow);
                }
            }
            function goRight(): void {
                if (!root.model.tree.expand(currentIndex) && root.model.tree.parentRow(currentIndex + 1) === currentIndex)
                    moveTo(currentIndex + 1);
            }
            function toggle(row: int): void {
                if (!root.model.tree.collapse(row))
                    root.model.tree.expand(row);
            }

            objectName: "mapTree"
            anchors.fill: parent
            visible: root.model.hasMap
            label: "Peta penyimpanan"
            role: Accessible.Tree
            rows.topMargin: 6
            rows.bottomMargin: 12
            model: root.model.tree
            Keys.onRightPressed: goRight()
            Keys.onLeftPressed: goLeft()
            Keys.onSpacePressed: toggle(currentIndex)
            onMenuRequested: (row, item) => {
                root.model.openMenu(row);
                menu.popupByKey(item, Brand.scaled(42), Brand.scaled(28));
            }
            delegate: MapRow {
                id: row
                width: ListView.view.width
                isCurrent: ListView.isCurrentItem
                showsFocus: tree.showsFocus
                spokenPlace: tree.placeOf(row.index)
                // Out of sight is not enough: it would still be read out.
                ListView.onPooled: row.visible = false
                ListView.onReused: row.visible = true
                onPressed: tree.choose(row.index, row)
                onToggleRequested: tree.toggle(row.index)
                onMenuRequested: (x, y) => {
                    root.model.openMenu(row.index);
                    menu.popup(row, x, y);
                }
                onHintRequested: (about, text) => tree.tell(about, text)
            }
        }
    }
    ContextMenu {
        id: menu
        objectName: "mapMenu"

        ContextMenuEntry {
            objectName: "revealEntry"
            text: "Tampilkan di Finder"
            onTriggered: root.model.reveal()
        }
        ContextMenuEntry {
            objectName: "copyPathEntry"
            text: "Salin path"
            onTriggered: root.model.copyPath()
        }
    }
}
