pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// The applications as a table, with what speaks for removing some of them.
FocusScope {
    id: root

    required property AppsModel model

    readonly property int margin: 24

    DateWatch { clock: root.model.rows.clock }

    PaneToolbar {
        id: toolbar

        width: parent.width
        title: "Aplikasi"
        PlainButton {
            objectName: "reloadButton"
            symbol: "arrow.clockwise"
            text: "Muat ulang"
            enabled: !root.model.isLoading
            busy: root.model.isLoading && !root.model.isFirstLoading
            onClicked: root.model.reload()
        }
    }

    Item {
        id: filterRow

        readonly property real available: width - 2 * root.margin
        /// The sum stands below where there is no room beside the picker.
        readonly property bool breaks: filter.width + 18 + summary.implicitWidth > available

        anchors.top: toolbar.bottom
        width: parent.width
        height: (breaks && summary.visible ? summary.y + summary.height : filter.y + filter.height) + 16

        SegmentedPicker {
            id: filter
            objectName: "filterPicker"
            x: root.margin
            y: 4
            width: Math.min(implicitWidth, Brand.scaled(420), filterRow.available)
            label: "Tampilkan"
            model: root.model.filters
            currentIndex: root.model.filterIndex
            onActivated: index => root.model.filterIndex = index
        }
        BrandText {
            id: summary
            objectName: "summary"
            x: filterRow.breaks ? root.margin : parent.width - root.margin - width
            y: filterRow.breaks ? filter.y + filter.height + 8
                                : filter.y + Math.round((filter.height - height) / 2)
            width: Math.min(implicitWidth, filterRow.available)
            visible: text !== ""
            style: BrandText.Caption
            text: root.model.summary
            wrapMode: Text.Wrap
        }
    }

    Rectangle {
        id: body

        readonly property bool showsList: !root.model.isFirstLoading && !root.model.isEmpty

        anchors { top: filterRow.bottom; topMargin: -1; bottom: parent.bottom }
        width: parent.width
        color: showsList ? Brand.list : Brand.window

        AppColumns {
            id: columns
            width: body.width
        }

        component HeaderText: BrandText {
            anchors.verticalCenter: parent.verticalCenter
            style: BrandText.Caption
            elide: Text.ElideRight
        }
        Rectangle {
            id: header

            objectName: "header"
            visible: body.showsList && !columns.isNarrow
            width: parent.width
            height: visible ? Math.max(Brand.scaled(30), Brand.types[BrandText.Caption].lineHeight) + 1 : 0
            color: Brand.window

            HeaderText {
                x: columns.margin
                width: columns.roleX - x
                text: "Aplikasi"
            }
            HeaderText {
                x: columns.roleX
                width: columns.roleWidth
                text: "Peran"
            }
            HeaderText {
                x: columns.totalX
                width: columns.totalWidth
                horizontalAlignment: Text.AlignRight
                text: "Total"
            }
            HeaderText {
                x: columns.usedX
                width: columns.usedWidth
                text: "Terakhir dipakai"
            }
            Rectangle { width: parent.width; height: 1; y: parent.height - 1; color: Brand.separator }
        }
        AppList {
            objectName: "appList"
            anchors { top: header.bottom; bottom: parent.bottom }
            width: parent.width
            visible: body.showsList
            apps: root.model
            columns: columns
        }
        Row {
            objectName: "loading"
            anchors { centerIn: parent; verticalCenterOffset: -34 }
            visible: root.model.isFirstLoading
            spacing: Brand.scaled(8)
            Spinner { anchors.verticalCenter: parent.verticalCenter }
            BrandText {
                style: BrandText.Callout
                color: Brand.text2
                text: "Mengukur aplikasi & datanya…"
            }
        }
        EmptyState {
            objectName: "emptyState"
            anchors.fill: parent
            visible: root.model.isEmpty
            symbol: "checkmark.circle"
            title: root.model.emptyTitle
            body: root.model.emptyText
        }
        Rectangle { width: parent.width; height: 1; color: Brand.separator }
    }

    AppUninstallSheet {
        model: root.model.uninstall
    }
}
