import QtQuick
import Korvanti.Ui

/// Stands for a pane that is still to come.
Item {
    id: root

    required property FrameModel model

    PaneToolbar {
        id: toolbar
        width: parent.width
        title: root.model.paneTitle
    }
    EmptyState {
        anchors.top: toolbar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        symbol: root.model.paneSymbol
        title: root.model.paneTitle
        body: "Belum ada di build ini."
    }
}
