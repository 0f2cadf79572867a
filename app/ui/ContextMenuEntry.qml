import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// An entry of a context menu. One that is not `shown` takes no room and is passed over by the arrow keys.
MenuItem {
    id: root

    property bool shown: true
    property bool possible: true

    visible: root.shown
    enabled: root.shown && root.possible
    height: root.shown ? implicitHeight : 0
    implicitWidth: words.implicitWidth + 2 * Brand.scaled(12)
    implicitHeight: Math.max(Brand.scaled(26), words.implicitHeight)
    padding: 0
    Accessible.role: Accessible.MenuItem
    Accessible.name: root.text

    arrow: null
    indicator: null
    contentItem: Item {
        BrandText {
            id: words
            x: Brand.scaled(12)
            width: parent.width - 2 * x
            anchors.verticalCenter: parent.verticalCenter
            style: BrandText.Callout
            text: root.text
            color: !root.enabled ? Brand.text3 : root.highlighted ? Brand.white : Brand.text
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Brand.scaled(5)
        color: root.highlighted && root.enabled ? Brand.fill : "transparent"
    }
}
