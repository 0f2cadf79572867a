pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import Korvanti.Ui

/// The panes to choose from, and below them how full the disk is.
Rectangle {
    id: root

    required property FrameModel model

    color: Brand.sidebar

    /// The keys are here from now on, so that the pane is read out.
    function focusPanes(): void {
        list.forceActiveFocus(Qt.ShortcutFocusReason);
    }

    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: Brand.separator
    }
    BrandMark {
        id: mark
        x: 16
        y: 14
    }
    BrandText {
        anchors.left: mark.right
        anchors.leftMargin: 10
        anchors.right: settingsButton.left
        anchors.rightMargin: 10
        anchors.verticalCenter: mark.verticalCenter
        text: "Korvanti"
        style: BrandText.BrandName
        elide: Text.ElideRight
    }
    IconButton {
        id: settingsButton
        objectName: "settingsButton"
        anchors.right: parent.right
        anchors.rightMargin: 11
        anchors.verticalCenter: mark.verticalCenter
        symbol: "gearshape.fill"
        symbolSize: 16
        hint: "Pengaturan"
        onClicked: root.model.openSettings()
    }
    ListView {
        id: list
        objectName: "paneList"
        x: 10
        anchors.top: mark.bottom
        anchors.topMargin: 20
        anchors.bottom: footer.top
        width: parent.width - 21
        spacing: 2
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        keyNavigationEnabled: false
        model: root.model.panes
        currentIndex: root.model.pane // which has the focus inside the list
        Accessible.role: Accessible.List
        Accessible.name: "Bagian"
        Keys.onUpPressed: root.model.choosePane(root.model.pane - 1)
        Keys.onDownPressed: root.model.choosePane(root.model.pane + 1)
        Keys.onPressed: event => {
            event.accepted = event.key === Qt.Key_Home || event.key === Qt.Key_End;
            if (event.accepted)
                root.model.choosePane(event.key === Qt.Key_Home ? 0 : list.count - 1);
        }
        ScrollBar.vertical: SlimScrollBar {}

        delegate: T.ItemDelegate { // whose own role is the one that it has here
            id: row
            required property int index
            required property string title
            required property string symbol
            required property string chosenSymbol
            required property string badge
            readonly property bool chosen: row.index === root.model.pane

            objectName: "pane" + row.index
            width: list.width
            implicitHeight: Brand.scaled(32)
            focusPolicy: Qt.NoFocus
            text: row.title
            Accessible.name: row.badge === "" ? row.title : row.title + ", " + row.badge
            Accessible.selected: row.chosen
            onClicked: root.model.choosePane(row.index)

            background: Rectangle {
                radius: 8
                color: row.chosen ? Brand.sidebarSelected
                     : row.down || row.hovered ? Brand.sidebarHover : Brand.translucent(Brand.sidebarHover, 0)
                Rectangle { // the ring lies inside, where the list doesn't cut it off
                    anchors.fill: parent
                    visible: row.chosen && list.activeFocus
                    radius: parent.radius
                    color: "transparent"
                    border.width: 2
                    border.color: Brand.focusRing
                }
            }
            contentItem: Item {
                Symbol {
                    id: icon
                    x: 10
                    anchors.verticalCenter: parent.verticalCenter
                    name: row.chosen ? row.chosenSymbol : row.symbol
                    size: 18
                    color: row.chosen ? Brand.accent : Brand.text2
                }
                BrandText {
                    id: name
                    anchors.left: icon.right
                    anchors.leftMargin: 10
                    anchors.right: badge.left
                    anchors.rightMargin: badge.text === "" ? 0 : 6
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.title
                    style: BrandText.BodyMedium
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }
                BrandText {
                    id: badge
                    objectName: "paneBadge" + row.index
                    anchors.right: parent.right
                    anchors.rightMargin: 10
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.badge
                    style: BrandText.CaptionMedium
                    Accessible.ignored: true
                }
            }
            Hint { text: row.title; shown: row.hovered && name.truncated }
        }
    }
    Column {
        id: footer
        x: 16
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        width: parent.width - 33
        spacing: 8
        BrandText {
            width: parent.width
            text: "Macintosh HD"
            style: BrandText.CalloutMedium
            font.weight: Font.DemiBold
            elide: Text.ElideRight
        }
        CapacityBar {
            objectName: "sidebarCapacity"
            width: parent.width
            used: root.model.usedBytes
            total: root.model.totalBytes
            warning: root.model.isLow
        }
        BrandText {
            objectName: "sidebarCapacityText"
            width: parent.width
            text: root.model.capacityText
            style: BrandText.Caption
            color: root.model.isLow ? Brand.coral : Brand.text2
            wrapMode: Text.Wrap
        }
    }
}
