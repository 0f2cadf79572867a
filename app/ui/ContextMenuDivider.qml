import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// A line between two groups of entries.
MenuSeparator {
    id: root

    property bool shown: true

    visible: root.shown
    height: root.shown ? implicitHeight : 0
    implicitWidth: 0
    padding: 0
    topPadding: 4
    bottomPadding: 4
    contentItem: Rectangle { implicitHeight: 1; color: Brand.separator }
}
