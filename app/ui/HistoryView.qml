pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// What was removed and moved.
FocusScope {
    id: root

    required property HistoryModel model

    DateWatch { clock: root.model.clock }

    PaneToolbar {
        id: toolbar
        width: parent.width
        title: "Riwayat"
    }
    Rectangle {
        anchors { top: toolbar.bottom; topMargin: -1; bottom: parent.bottom }
        width: parent.width
        color: root.model.isEmpty ? Brand.window : Brand.list

        EmptyState {
            anchors.fill: parent
            visible: root.model.isEmpty
            symbol: "clock"
            title: "Belum ada aktivitas"
            body: "Semua penghapusan & pemindahan tercatat di sini."
        }
        RowsView {
            id: list
            objectName: "historyList"
            anchors { fill: parent; topMargin: 1 }
            visible: !root.model.isEmpty
            label: "Riwayat"
            model: root.model
            /// What is new stands first. What somebody looks at stays where it is.
            function beginAtNewest(): void {
                if (list.visible)
                    list.rows.currentIndex = 0;
                else
                    list.startAgain();
            }
            Connections {
                target: root.model
                enabled: !list.activeFocus
                function onRowsInserted() { Qt.callLater(list.beginAtNewest); } // once the list knows of it
            }
            delegate: HistoryRow {
                id: row
                width: ListView.view.width
                isCurrent: ListView.isCurrentItem
                showsFocus: list.showsFocus
                spokenPlace: list.placeOf(row.index)
                // Out of sight is not enough: it would still be read out.
                ListView.onPooled: row.visible = false
                ListView.onReused: row.visible = true
                onPressed: list.choose(row.index, row)
                onHintRequested: (about, text) => list.tell(about, text)
            }
        }
        Rectangle {
            visible: !root.model.isEmpty
            width: parent.width
            height: 1
            color: Brand.separator
        }
    }
}
