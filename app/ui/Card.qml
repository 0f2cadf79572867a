import QtQuick
import Korvanti.Ui

/// A surface for a short summary: what is in it stands in a column and fills its width.
Rectangle {
    id: root

    default property alias content: column.data
    property color fill: Brand.card
    property real gap: 10
    property real padding: 18
    property bool bordered: true

    implicitWidth: column.implicitWidth + 2 * root.padding
    implicitHeight: column.implicitHeight + 2 * root.padding
    radius: 16
    color: root.fill
    border.width: root.bordered ? 1 : 0
    border.color: Brand.cardBorder

    Column {
        id: column
        x: root.padding
        y: root.padding
        width: root.width - 2 * root.padding
        spacing: root.gap
    }
}
