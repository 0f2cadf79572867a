import QtQuick
import Korvanti.Ui

/// The head of a pane: its title, and its controls at the end.
Item {
    id: root

    required property string title
    default property alias controls: row.data

    implicitHeight: Math.max(58, row.implicitHeight + 30)
    implicitWidth: 24 + name.implicitWidth + 18 + row.implicitWidth + 24

    BrandText {
        id: name
        objectName: "paneTitle"
        x: 24
        anchors.verticalCenter: parent.verticalCenter
        width: Math.max(0, row.x - 18 - x)
        text: root.title
        style: BrandText.PaneTitle
        elide: Text.ElideRight
        Accessible.role: Accessible.Heading
        Accessible.name: root.title
    }
    Row {
        id: row
        anchors.right: parent.right
        anchors.rightMargin: 24
        anchors.verticalCenter: parent.verticalCenter
        spacing: 8
    }
}
