import QtQuick
import Korvanti.Ui

/// What was removed and moved.
FocusScope {
    id: root

    required property HistoryModel model

    PaneToolbar {
        width: parent.width
        title: "Riwayat"
    }
}
