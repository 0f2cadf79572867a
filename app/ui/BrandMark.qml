import QtQuick
import Korvanti.Ui

/// The mark of Korvanti: a flower with a spark on a round square.
Image {
    id: root

    property real size: 30

    width: Brand.scaled(root.size)
    height: width
    sourceSize.width: width
    sourceSize.height: height
    source: Qt.resolvedUrl("art/mark.svg")
    Accessible.ignored: true
}
