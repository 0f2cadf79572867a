pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// The rows of the cleanup pane under the heads of their sections. Space chooses the one that the keys are at.
RowsView {
    id: root

    required property CleanupModel cleanup

    signal rowMenuRequested(ItemRow row, real x, real y)

    label: "Pembersihan"
    headHeight: Brand.scaled(34)
    model: root.cleanup.items
    rows.objectName: "items"
    rows.section.property: "section"
    rows.section.labelPositioning: ViewSection.InlineLabels | ViewSection.CurrentLabelAtStart
    // Made from a file of its own: Qt 6.4 makes no section from a component that is bound to this one.
    rows.section.delegate: Qt.createComponent("ItemSection.qml", Component.PreferSynchronous, root)

    Keys.onSpacePressed: root.cleanup.toggle(root.currentIndex)
    onMenuRequested: (row, item) => root.rowMenuRequested(item as ItemRow, Brand.scaled(52), Brand.scaled(32))

    delegate: ItemRow {
        id: row
        width: ListView.view.width
        isCurrent: ListView.isCurrentItem
        showsFocus: root.showsFocus
        spokenPlace: root.placeOf(row.index)
        endsSection: ListView.nextSection !== ListView.section
        // Out of sight is not enough: it would still be read out.
        ListView.onPooled: row.visible = false
        ListView.onReused: {
            row.visible = true;
            row.startAgain();
        }
        onPressed: root.choose(row.index, row)
        onToggleRequested: root.cleanup.toggle(row.index)
        onGuideRequested: root.cleanup.toggleInstructions(row.index)
        onMenuRequested: (x, y) => root.rowMenuRequested(row, x, y)
        onHintRequested: (about, text) => root.tell(about, text)
    }
}
