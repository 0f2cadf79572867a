import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// The sum of one class of safety, in its colours. What comes back by itself has the uneven corner.
Pressable {
    id: root

    required property int safety
    required property string title
    required property string value
    required property string caption

    property bool isUneven: false
    property color shade: Qt.tint(Brand.safetyWash(root.safety),
                                   Brand.translucent(Brand.text, root.down ? 0.08 : root.hovered ? 0.04 : 0))

    implicitWidth: tile.implicitWidth
    implicitHeight: tile.implicitHeight
    focusPolicy: Qt.TabFocus
    Behavior on shade { ColorAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutQuad } }
    about: root.caption
    Accessible.name: root.title + ", " + root.value

    contentItem: StatTile {
        id: tile
        title: root.title
        value: root.value
        caption: root.caption
        symbol: SafetyDisplay.symbol(root.safety)
        tint: Brand.safetyTint(root.safety)
        wash: root.shade
        small: root.isUneven ? 6 : 22
        Accessible.ignored: true
    }
    FocusRing { visible: root.visualFocus; around: 22 }
}
