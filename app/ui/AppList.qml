pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// The rows of the applications. Return opens the sheet of the one that the keys are at.
RowsView {
    id: root

    required property AppsModel apps
    required property AppColumns columns

    label: "Aplikasi"
    rows.objectName: "apps"
    model: root.apps.rows

    Keys.onSpacePressed: root.apps.openUninstall(root.currentIndex)
    Keys.onReturnPressed: root.apps.openUninstall(root.currentIndex)
    Keys.onEnterPressed: root.apps.openUninstall(root.currentIndex)

    delegate: AppRow {
        id: row
        width: ListView.view.width
        columns: root.columns
        isCurrent: ListView.isCurrentItem
        showsFocus: root.showsFocus
        spokenPlace: root.placeOf(row.index)
        // Out of sight is not enough: it would still be read out.
        ListView.onPooled: row.visible = false
        ListView.onReused: row.visible = true
        onPressed: root.choose(row.index, row)
        onRemoveRequested: root.apps.openUninstall(row.index)
        onHintRequested: (about, text) => root.tell(about, text)
    }
}
