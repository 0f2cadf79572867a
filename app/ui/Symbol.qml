import QtQuick
import Korvanti.Ui

/// A symbol in one colour; it grows with the text. A word beside it says the same.
Image {
    id: root

    property string name: ""
    property real size: 18
    property color color: Brand.text

    width: Brand.scaled(root.size)
    height: width
    sourceSize.width: width
    sourceSize.height: height
    source: root.name === "" ? "" : "image://symbol/" + root.name + "/" + root.color.toString().slice(1)
    Accessible.ignored: true
}
