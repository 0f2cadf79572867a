import QtQuick
import Korvanti.Ui

/// The map of the disk as a tree.
FocusScope {
    id: root

    required property MapModel model

    PaneToolbar {
        width: parent.width
        title: "Peta Storage"
    }
}
