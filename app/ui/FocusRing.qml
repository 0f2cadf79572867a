import QtQuick
import Korvanti.Ui

/// Shows which control the keyboard speaks to; it follows the control's corners.
Rectangle {
    id: root

    required property real around ///< radius of the control
    property bool hero: false

    anchors.fill: parent
    anchors.margins: -4
    radius: root.around + 4
    color: "transparent"
    border.width: 2
    border.color: root.hero ? Brand.white : Brand.focusRing
}
