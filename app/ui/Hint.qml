import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// What a thing is or does, told when the pointer rests on it.
ToolTip {
    id: root

    property bool shown: false
    readonly property real widest: Brand.scaled(420)

    delay: 600
    visible: root.shown && root.text !== ""
    leftPadding: Brand.scaled(8)
    rightPadding: Brand.scaled(8)
    topPadding: Brand.scaled(4)
    bottomPadding: Brand.scaled(4)
    margins: 6
    width: Math.min(measure.implicitWidth + 1, root.widest) + leftPadding + rightPadding

    contentItem: BrandText {
        text: root.text
        style: BrandText.Caption
        color: Brand.text
        wrapMode: Text.Wrap
        Accessible.ignored: true
        BrandText {
            id: measure
            visible: false
            text: root.text
            style: BrandText.Caption
        }
    }
    background: Rectangle {
        radius: Brand.scaled(6)
        color: Brand.panel
        border.width: 1
        border.color: Brand.controlBorder
    }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Brand.fadeDuration } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Brand.fadeDuration } }
}
