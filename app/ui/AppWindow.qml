pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// The window: sidebar and pane, and what lies over them.
ApplicationWindow {
    id: root

    required property FrameModel frame
    required property OverviewModel overview
    required property CleanupModel cleanup
    required property ConfirmModel confirm
    required property MapModel map
    required property AppsModel apps
    required property SsdModel ssd
    required property HistoryModel history

    width: 1140
    height: 760
    minimumWidth: 960
    minimumHeight: 620
    title: "Korvanti"
    color: Brand.window
    onVisibleChanged: if (root.visible) root.frame.windowOpened()

    Shortcut {
        sequence: "Ctrl+R"
        context: Qt.WindowShortcut
        enabled: !root.frame.isScanning
        onActivated: root.frame.scan()
    }
    Shortcut {
        sequence: "Ctrl+," // Command on a Mac
        onActivated: root.frame.openSettings()
    }
    Shortcut {
        sequence: "Ctrl+F"
        enabled: root.frame.pane === 1
        onActivated: cleanupView.focusSearch()
    }
    Repeater {
        model: root.frame.panes
        Item {
            id: command
            required property int index
            Shortcut {
                sequence: "Ctrl+" + (command.index + 1)
                onActivated: {
                    if (root.frame.pane === command.index)
                        return;
                    root.frame.choosePane(command.index);
                    sidebar.focusPanes();
                }
            }
        }
    }

    Sidebar {
        id: sidebar
        width: Math.min(Brand.scaled(220), Math.round(root.width * 0.4))
        height: root.height
        model: root.frame
    }
    Item {
        anchors.left: sidebar.right
        anchors.right: parent.right
        height: root.height

        BannerStack {
            id: banners
            width: parent.width
            model: root.frame
        }
        Item {
            id: pane
            anchors.top: banners.bottom
            anchors.bottom: parent.bottom
            width: parent.width

            OverviewView {
                anchors.fill: parent
                visible: root.frame.pane === 0
                frame: root.frame
                model: root.overview
            }
            CleanupView {
                id: cleanupView
                anchors.fill: parent
                visible: root.frame.pane === 1
                model: root.cleanup
            }
            StorageMapView {
                anchors.fill: parent
                visible: root.frame.pane === 2
                model: root.map
            }
            AppsView {
                anchors.fill: parent
                visible: root.frame.pane === 3
                model: root.apps
            }
            SSDView {
                anchors.fill: parent
                visible: root.frame.pane === 4
                model: root.ssd
            }
            HistoryView {
                anchors.fill: parent
                visible: root.frame.pane === 5
                model: root.history
            }
        }
    }
    ConfirmCleanupSheet {
        model: root.confirm
    }
    QuitSheet {
        model: root.frame
    }
}
