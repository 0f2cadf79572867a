import QtQuick
import Korvanti.Ui

/// The applications as a table, with what speaks for removing some of them.
FocusScope {
    id: root

    required property AppsModel model

    PaneToolbar {
        width: parent.width
        title: "Aplikasi"
    }
}
