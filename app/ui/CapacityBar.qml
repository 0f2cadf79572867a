import QtQuick
import Korvanti.Ui

/// How full something is.
Item {
    id: root

    required property double used  ///< bytes
    required property double total ///< bytes
    property bool warning: false
    readonly property double fraction: root.total < 1 ? 0 : Math.max(0, Math.min(1, root.used / root.total))
    // Not from the fraction: 0.29 times 100 is less than 29.
    readonly property int percent: root.total < 1 ? 0 : Math.max(0, Math.min(100, Math.floor(100 * root.used / root.total)))
    property double shownFraction: root.fraction

    implicitWidth: 200
    implicitHeight: 12
    Accessible.role: Accessible.ProgressBar
    Accessible.name: "Terpakai " + root.percent + " persen"
    Behavior on shownFraction { NumberAnimation { duration: Brand.growDuration; easing.type: Easing.OutCubic } }

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Brand.capacityTrack
    }
    Rectangle {
        objectName: "capacityFill"
        width: Math.min(root.width, Math.max(6, root.shownFraction * root.width))
        height: root.height
        radius: Math.min(width, height) / 2
        visible: root.total >= 1
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop {
                position: 0
                color: root.warning ? Brand.translucent(Brand.coral, 0.8) : Brand.capacityCyan
            }
            GradientStop { position: 0.5; color: root.warning ? Brand.translucent(Brand.coral, 0.9) : Brand.sky }
            GradientStop { position: 1; color: root.warning ? Brand.coral : Brand.accent }
        }
    }
}
