pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Korvanti.Ui

/// The first pane: how full the disk is, what can go at once, and how the Mac is doing.
Item {
    id: root

    required property FrameModel frame
    required property OverviewModel model

    property real growth: 1 ///< of the bars

    DateWatch { clock: root.model.clock }

    // Once, when a scan has brought new numbers.
    Connections {
        target: root.model
        function onIsScanningChanged() {
            if (!root.model.isScanning)
                grow.restart();
        }
    }
    NumberAnimation {
        id: grow
        target: root
        property: "growth"
        from: 0
        to: 1
        duration: Brand.growDuration
        easing.type: Easing.OutCubic
    }

    PaneToolbar {
        id: toolbar
        width: root.width
        title: "Ringkasan"

        PlainButton {
            objectName: "rescanButton"
            symbol: "arrow.clockwise"
            text: "Pindai ulang"
            hint: root.model.rescanHint
            busy: root.model.isScanning
            enabled: !root.model.isScanning
            onClicked: root.model.scan()
        }
    }

    EmptyState {
        objectName: "emptyState"
        anchors.fill: root
        anchors.topMargin: toolbar.height
        visible: !root.model.hasReport
        symbol: "magnifyingglass"
        title: "Belum dipindai"
        body: "Korvanti membaca folder Xcode, Android, proyek, dan cache untuk menilai mana yang aman dihapus."
        buttonText: "Pindai sekarang"
        buttonEnabled: !root.model.isScanning
        statusText: root.model.isScanning ? root.model.scanStatus : ""
        onTriggered: root.model.scan()
    }

    ScrollPane {
        id: pane
        objectName: "overviewScroll"
        anchors.fill: root
        anchors.topMargin: toolbar.height
        visible: root.model.hasReport

        readonly property real room: pane.width - 2 * pane.margin

        OverviewCapacity {
            width: pane.room
            frame: root.frame
            model: root.model
        }
        OverviewAccess {
            objectName: "accessBanner"
            width: pane.room
            visible: root.model.asksForAccess
            onSettingsRequested: root.model.openFullDiskAccessSettings()
        }
        OverviewHero {
            objectName: "hero"
            width: pane.room
            sizeText: root.model.recommendedText
            promise: root.model.recommendedPromise
            canClean: root.model.canClean
            onCleanRequested: root.model.cleanRecommended()
            onDetailsRequested: root.model.showDetails()
        }
        GridLayout {
            width: pane.room
            columns: pane.room < 4 * Brand.scaled(160) ? 2 : 4
            columnSpacing: 12
            rowSpacing: 12

            Repeater {
                model: root.model.tiles

                SafetyTile {
                    required property string key
                    objectName: "tile:" + key
                    Layout.preferredWidth: 1 // all alike
                    isUneven: key === "regenerable" || key === "costly"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    onClicked: root.model.tileTapped(key)
                }
            }
        }
        GridLayout {
            id: columns

            readonly property bool isWide: pane.room >= Brand.scaled(640)

            width: pane.room
            columns: columns.isWide ? 2 : 1
            columnSpacing: 18
            rowSpacing: 18

            Card {
                objectName: "categoriesCard"
                gap: 0
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignTop

                BrandText {
                    width: parent.width
                    style: BrandText.Headline
                    text: "Bisa dibersihkan per kategori"
                    wrapMode: Text.WordWrap
                }
                Item {
                    width: 1
                    height: 6
                }
                Repeater {
                    model: root.model.categories

                    OverviewCategoryRow {
                        required property string key
                        objectName: "category:" + key
                        width: parent?.width ?? 0
                        growth: root.growth
                        onClicked: root.model.categoryTapped(key)
                    }
                }
            }
            OverviewHealth {
                objectName: "healthCard"
                model: root.model
                Layout.alignment: Qt.AlignTop
                Layout.fillWidth: !columns.isWide
                Layout.preferredWidth: Math.max(Brand.scaled(280), Math.min(Math.round(0.4 * pane.room), Brand.scaled(360)))
            }
        }
        Repeater {
            model: root.model.notes

            Callout {
                required property int index
                objectName: "note:" + index
                width: pane.room
                symbol: "info.circle.fill"
                tint: Brand.accent
            }
        }
    }
}
