pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// What opens from the item in the menu bar. It goes when it is no longer spoken to.
Window {
    id: root

    required property FrameModel frame
    readonly property int margin: 22 ///< around the panel, for its shadow
    readonly property int panelWidth: Brand.scaled(340)

    function leave(): void {
        root.visible = false;
    }

    objectName: "menuBarPanel"
    title: "Korvanti"
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint | Qt.NoDropShadowWindowHint
    color: "transparent"
    width: root.panelWidth + 2 * root.margin
    height: panel.implicitHeight + 2 * root.margin
    onActiveChanged: if (!root.active) root.leave()
    onVisibleChanged: if (root.visible) root.frame.panelOpened()

    DateWatch { clock: root.frame.clock }
    Shortcut {
        sequence: "Esc"
        onActivated: root.leave()
    }

    Rectangle {
        id: panel
        objectName: "panel"
        x: root.margin
        y: root.margin
        width: root.panelWidth
        implicitHeight: column.implicitHeight + 32
        height: implicitHeight
        radius: 12
        color: Brand.panel
        border.width: 1
        border.color: Brand.cardBorder
        Accessible.role: Accessible.Dialog
        Accessible.name: "Korvanti"

        Shadow { source: Qt.resolvedUrl("art/panel-shadow.png"); spread: 16; corner: 44; drop: 6; strength: 0.3 }

        Column {
            id: column
            x: 16
            y: 16
            width: parent.width - 32

            Item {
                width: parent.width
                height: Math.max(free.height, total.height)
                BrandText {
                    id: free
                    objectName: "panelFree"
                    text: root.frame.freeText
                    style: BrandText.PaneTitle
                    color: root.frame.isLow ? Brand.coral : Brand.text
                }
                BrandText {
                    id: total
                    objectName: "panelTotal"
                    anchors.right: parent.right
                    anchors.baseline: free.baseline
                    text: root.frame.totalText
                    style: BrandText.Caption
                }
            }
            Item { width: 1; height: 9 }
            CapacityBar {
                objectName: "panelCapacity"
                width: parent.width
                used: root.frame.usedBytes
                total: root.frame.totalBytes
                warning: root.frame.isLow
            }
            Item { width: 1; height: 12; visible: warning.visible }
            Callout {
                id: warning
                objectName: "panelWarning"
                width: parent.width
                visible: root.frame.isLow
                symbol: "exclamationmark.triangle.fill"
                tint: Brand.coral
                text: root.frame.lowSpaceText
            }
            Divider { visible: root.frame.hasReport || volumes.count > 0 }
            Item {
                width: parent.width
                height: visible ? ready.height + scanned.height : 0
                visible: root.frame.hasReport
                BrandText {
                    id: ready
                    width: parent.width - sum.width - 10
                    text: "Rekomendasi siap dibersihkan"
                    style: BrandText.BodyMedium
                    wrapMode: Text.Wrap
                }
                BrandText {
                    id: sum
                    objectName: "panelRecommended"
                    anchors.right: parent.right
                    text: root.frame.recommendedText
                    style: BrandText.RowSize
                }
                BrandText {
                    id: scanned
                    objectName: "panelScanned"
                    anchors.top: ready.bottom
                    width: parent.width
                    text: root.frame.scanText
                    style: BrandText.Caption
                    wrapMode: Text.Wrap
                }
            }
            Item { width: 1; height: 10; visible: root.frame.hasReport && volumes.count > 0 }
            Repeater {
                id: volumes
                model: root.frame.volumes
                Item {
                    id: volume
                    required property int index
                    required property string name
                    required property string free
                    width: column.width
                    height: Brand.scaled(24)
                    Symbol {
                        id: drive
                        anchors.verticalCenter: parent.verticalCenter
                        name: "externaldrive.fill"
                        size: 16
                        color: Brand.text2
                    }
                    BrandText {
                        id: volumeName
                        objectName: "panelVolume" + volume.index
                        anchors.left: drive.right
                        anchors.leftMargin: 8
                        anchors.right: volumeFree.left
                        anchors.rightMargin: 10
                        anchors.verticalCenter: parent.verticalCenter
                        text: volume.name
                        elide: Text.ElideRight
                        HoverHandler { id: pointer }
                        Hint { text: volume.name; shown: pointer.hovered && volumeName.truncated }
                    }
                    BrandText {
                        id: volumeFree
                        objectName: "panelVolumeFree" + volume.index
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        text: volume.free
                        style: BrandText.Callout
                        color: Brand.text2
                    }
                }
            }
            Divider {}
            PillButton {
                objectName: "panelClean"
                width: parent.width
                text: "Bersihkan…"
                enabled: root.frame.canClean
                onClicked: {
                    root.leave();
                    root.frame.cleanRecommended();
                }
            }
            Item { width: 1; height: 8 }
            Row {
                id: actions
                readonly property real share: (column.width - 16) / 292
                spacing: 8
                PlainButton {
                    objectName: "panelOpen"
                    width: Math.round(132 * actions.share)
                    text: "Buka Korvanti"
                    onClicked: {
                        root.leave();
                        root.frame.openOverview();
                    }
                }
                PlainButton {
                    objectName: "panelScan"
                    width: Math.round(80 * actions.share)
                    leftPadding: 4
                    rightPadding: 4
                    text: root.frame.scanAction
                    enabled: !root.frame.isScanning
                    onClicked: root.frame.scan()
                }
                PlainButton {
                    objectName: "panelQuit"
                    width: column.width - x
                    text: "Keluar"
                    onClicked: {
                        root.leave();
                        root.frame.quit();
                    }
                }
            }
        }
    }
    component Divider: Item {
        width: column.width
        height: 29
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            height: 1
            color: Brand.separator
        }
    }
}
