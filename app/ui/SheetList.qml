import QtQuick
import Korvanti.Ui

/// A list in a sheet, with its frame: as high as its rows, but no higher than there is room.
Rectangle {
    id: root

    required property real room
    required property string label ///< for those who can't see what the list is about
    property alias model: list.model
    property alias delegate: list.delegate
    property real bottomGap: 0

    height: Math.min(list.rows.contentHeight + root.bottomGap + 2, root.room)
    radius: 10
    color: Brand.innerList
    border.width: 1
    border.color: Brand.cardBorder

    RowsView {
        id: list
        anchors { fill: parent; margins: 1 }
        label: root.label
        rows.bottomMargin: root.bottomGap
    }
    FocusRing { around: root.radius; visible: list.showsFocus }
}
