pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// The items of the last scan: filters above, the list, and below what is selected and the way to clean it.
FocusScope {
    id: root

    required property CleanupModel model

    function focusSearch(): void {
        search.forceActiveFocus(Qt.ShortcutFocusReason);
        search.selectAll();
    }

    /// The button that had the focus can't have it any more, once what was chosen has gone.
    function passFocusOn(): void {
        if (cleanButton.focus && !cleanButton.enabled)
            (list.visible ? list : filter).focus = true;
    }

    readonly property int margin: 24

    DateWatch { clock: root.model.items.clock }

    PaneToolbar {
        id: toolbar

        width: parent.width
        title: "Pembersihan"
        SearchField {
            id: search
            objectName: "searchField"
            width: Math.max(180, Math.min(implicitWidth, toolbar.width / 2))
            placeholderText: "Cari nama atau path"
            Binding on text { value: root.model.search }
            onEdited: text => root.model.search = text
            Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)
        }
    }

    Item {
        id: filterRow

        /// The links stand below where there is no room beside the pickers.
        readonly property bool breaks: width < 800
            || pickers.naturalWidth + links.width + 2 * root.margin + 18 > width
        readonly property real available: width - 2 * root.margin

        anchors.top: toolbar.bottom
        width: parent.width
        height: (breaks ? links.y + links.height : pickers.y + pickers.height) + 16

        Flow {
            id: pickers

            readonly property real naturalWidth: filter.width + spacing + category.width

            x: root.margin
            y: 4
            width: filterRow.breaks ? filterRow.available : naturalWidth
            spacing: 12
            SegmentedPicker {
                id: filter
                objectName: "filterPicker"
                width: Math.min(implicitWidth, Brand.scaled(460), filterRow.available)
                label: "Tampilkan"
                model: root.model.filters
                currentIndex: root.model.filterIndex
                onActivated: index => root.model.filterIndex = index
            }
            DropdownPicker {
                id: category
                objectName: "categoryPicker"
                width: Math.min(implicitWidth, Brand.scaled(220), filterRow.available)
                label: "Kategori"
                model: root.model.categories
                symbols: root.model.categorySymbols
                currentIndex: root.model.categoryIndex
                onActivated: index => root.model.categoryIndex = index
            }
        }
        Row {
            id: links

            x: filterRow.breaks ? root.margin : parent.width - width - root.margin
            y: filterRow.breaks ? pickers.y + pickers.height + 8
                                : pickers.y + Math.round((pickers.height - height) / 2)
            spacing: Brand.scaled(18)
            LinkButton {
                objectName: "selectRecommendedButton"
                text: "Pilih rekomendasi"
                onClicked: root.model.selectRecommended()
            }
            LinkButton {
                objectName: "clearSelectionButton"
                text: "Kosongkan pilihan"
                onClicked: root.model.clearSelection()
            }
        }
    }

    Rectangle {
        anchors { top: filterRow.bottom; topMargin: -1; bottom: actionBar.top }
        width: parent.width
        color: root.model.isEmpty ? Brand.window : Brand.list

        ItemList {
            id: list
            objectName: "itemList"
            anchors.fill: parent
            visible: !root.model.isEmpty
            cleanup: root.model
            onRowMenuRequested: (row, x, y) => {
                root.model.openMenu(row.index);
                if (row.isCurrent && list.showsFocus)
                    menu.popupByKey(row, x, y);
                else
                    menu.popup(row, x, y);
            }
        }
        EmptyState {
            objectName: "emptyState"
            anchors.fill: parent
            visible: root.model.isEmpty
            symbol: root.model.emptySymbol
            title: root.model.emptyTitle
            body: root.model.emptyText
        }
        Rectangle { width: parent.width; height: 1; color: Brand.separator }
    }

    Rectangle {
        id: actionBar

        anchors.bottom: parent.bottom
        width: parent.width
        height: Math.max(64, sums.height + 24, cleanButton.height + 24)
        color: Brand.window

        Rectangle { width: parent.width; height: 1; color: Brand.separator }
        Column {
            id: sums
            anchors {
                left: parent.left; leftMargin: root.margin
                right: cleanButton.left; rightMargin: 20
                verticalCenter: parent.verticalCenter
            }
            BrandText {
                objectName: "selectedText"
                width: parent.width
                style: BrandText.Headline
                text: root.model.selectedText
                wrapMode: Text.Wrap
            }
            BrandText {
                objectName: "selectedSizeText"
                width: parent.width
                style: BrandText.Caption
                text: root.model.selectedSizeText
                wrapMode: Text.Wrap
            }
        }
        PillButton {
            id: cleanButton
            objectName: "cleanButton"
            anchors { right: parent.right; rightMargin: root.margin; verticalCenter: parent.verticalCenter }
            text: "Bersihkan…"
            enabled: root.model.canClean
            onEnabledChanged: Qt.callLater(root.passFocusOn)
            onClicked: root.model.requestCleanup()
        }
    }

    ContextMenu {
        id: menu
        objectName: "itemMenu"

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
        ContextMenuDivider { shown: root.model.isOffloadable }
        ContextMenuEntry {
            objectName: "offloadEntry"
            shown: root.model.isOffloadable
            possible: root.model.canOffload
            text: root.model.offloadText
            onTriggered: root.model.offload()
        }
        ContextMenuDivider { shown: root.model.cleanText !== "" }
        ContextMenuEntry {
            objectName: "cleanOneEntry"
            shown: root.model.cleanText !== ""
            text: root.model.cleanText
            onTriggered: root.model.cleanOne()
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
