import QtQuick
import Korvanti.Ui

/// The external volumes, what may move to them and what has.
FocusScope {
    id: root

    required property SsdModel model

    PaneToolbar {
        width: parent.width
        title: "SSD Eksternal"
    }
}
