import QtQuick
import Korvanti.Ui

/// A list in a sheet, with its frame: as high as its rows, but no higher than there is room.
Rectangle {
    id: root

    required property real room
    required property string label ///< for those who can't see what the list is about
    property alias model: rows.model
    property alias delegate: rows.delegate
    property alias bottomGap: rows.rows.bottomMargin

    height: Math.min(rows.rows.contentHeight + root.bottomGap + 2, root.room)
    radius: 10
    color: Brand.innerList
    border.width: 1
    border.color: Brand.cardBorder

    RowsView {
        id: rows
        anchors { fill: parent; margins: 1 }
        label: root.label
    }
    FocusRing { around: root.radius; visible: rows.showsFocus }
}
