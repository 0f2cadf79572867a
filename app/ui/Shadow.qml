import QtQuick
import Korvanti.Ui

/// The soft shadow under what its parent is. The picture is a blurred square with round corners.
BorderImage {
    id: root

    required property real spread ///< of the blur to each side, as in the picture
    required property real corner ///< the part of the picture that is never stretched
    required property real drop
    required property real strength

    z: -1
    x: -root.spread
    y: root.drop - root.spread
    width: parent.width + 2 * root.spread
    height: parent.height + 2 * root.spread
    opacity: root.strength
    border.left: root.corner
    border.right: root.corner
    border.top: root.corner
    border.bottom: root.corner
}
