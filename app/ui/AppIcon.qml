import QtQuick
import Korvanti.Ui

/// The icon of an application, whose name stands beside it.
Image {
    id: root

    required property string name ///< what the models give as "icon"
    property real size: 28

    width: Brand.scaled(root.size)
    height: width
    sourceSize.width: width
    sourceSize.height: height
    source: root.name === "" ? "" : "image://app/" + root.name + "/" + Brand.text2.toString().slice(1) + "/"
                                    + Brand.iceFill.toString().slice(1)
    Accessible.ignored: true
}
