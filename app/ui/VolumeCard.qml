pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// One volume: how full it is, how fit for work, and what can be done with it.
Card {
    id: root

    required property int index
    required property string name
    required property bool isWorkVolume
    required property string freeText
    required property string formatText
    required property double used
    required property double total
    required property bool isAlmostFull
    required property RowList advice
    required property string speedText
    required property string workText
    required property bool canBecomeWorkVolume
    required property string testText
    required property bool canTest

    signal workVolumeRequested
    signal testRequested
    signal revealRequested
    signal ejectRequested
    signal copyRequested(int advice)

    gap: 0
    Accessible.role: Accessible.Grouping
    Accessible.name: root.name

    Item {
        id: head

        readonly property real badgeRoom: root.isWorkVolume ? badge.width + 10 : 0
        /// Without room for the name, what is free stands under it.
        readonly property bool isNarrow: width - words.x - badgeRoom - free.implicitWidth - 20 < Brand.scaled(120)

        width: parent.width
        height: words.height

        Symbol {
            id: drive
            y: Math.round((words.height - height) / 2)
            name: "externaldrive.fill"
            size: 28
            color: Brand.accent
        }
        Column {
            id: words
            x: drive.width + 14
            width: parent.width - x

            Item {
                width: parent.width
                height: nameText.height
                BrandText {
                    id: nameText
                    objectName: "name"
                    width: Math.min(implicitWidth, Math.max(0, parent.width - head.badgeRoom
                                                            - (head.isNarrow ? 0 : free.implicitWidth + 20)))
                    style: BrandText.Title
                    text: root.name
                    elide: Text.ElideRight
                    horizontalAlignment: Text.AlignLeft
                    maximumLineCount: 1
                    Accessible.role: Accessible.Heading
                    Accessible.name: root.name
                    HoverHandler { id: namePointer }
                    Hint { text: root.name; shown: namePointer.hovered && nameText.truncated }
                }
                Rectangle {
                    id: badge
                    objectName: "workBadge"
                    anchors { left: nameText.right; leftMargin: 10; verticalCenter: parent.verticalCenter }
                    visible: root.isWorkVolume
                    width: badgeText.implicitWidth + 2 * Brand.scaled(7)
                    height: Brand.scaled(20)
                    radius: height / 2
                    color: Brand.limeWash
                    SymbolText {
                        id: badgeText
                        anchors.centerIn: parent
                        style: BrandText.CaptionMedium
                        symbol: "checkmark.circle.fill"
                        size: 12
                        tint: Brand.green
                        color: Brand.text
                        text: "SSD kerja"
                    }
                }
            }
            BrandText {
                objectName: "format"
                width: parent.width
                style: BrandText.Caption
                text: root.formatText
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignLeft
            }
            Item {
                width: 1
                height: head.isNarrow ? free.height + 4 : 0
            }
        }
        BrandText {
            id: free
            objectName: "free"
            x: head.isNarrow ? words.x : parent.width - width
            y: head.isNarrow ? words.height - height : Math.floor((nameText.height - height) / 2)
            width: Math.min(implicitWidth, words.width)
            style: BrandText.BodyMedium
            text: root.freeText
            wrapMode: Text.Wrap
        }
    }
    Item { width: 1; height: 12 }
    CapacityBar {
        objectName: "capacity"
        width: parent.width
        used: root.used
        total: root.total
        warning: root.isAlmostFull
    }
    Item { width: 1; height: 16 }
    Column {
        width: parent.width
        spacing: 12
        Repeater {
            model: root.advice
            VolumeAdvice {
                id: line
                objectName: "advice" + line.index
                width: parent?.width ?? 0
                onCopyRequested: root.copyRequested(line.index)
            }
        }
    }
    Item { width: 1; height: 16 }
    Rectangle { width: parent.width; height: 1; color: Brand.separator }
    Item { width: 1; height: 14 }
    Item {
        id: actions

        readonly property bool isNarrow: buttons.naturalWidth + 18 + speed.implicitWidth > width

        width: parent.width
        height: speed.visible && isNarrow ? speed.y + speed.height : buttons.height

        Flow {
            id: buttons

            readonly property real naturalWidth: work.width + test.width + reveal.width + eject.width + 3 * spacing

            width: parent.width
            spacing: 8
            PlainButton {
                id: work
                objectName: "workButton"
                text: root.workText
                Accessible.description: root.name
                enabled: root.canBecomeWorkVolume
                onClicked: root.workVolumeRequested()
            }
            PlainButton {
                id: test
                objectName: "testButton"
                text: root.testText
                Accessible.description: root.name
                enabled: root.canTest
                onClicked: root.testRequested()
            }
            PlainButton {
                id: reveal
                objectName: "revealButton"
                text: "Tampilkan"
                Accessible.description: root.name
                onClicked: root.revealRequested()
            }
            PlainButton {
                id: eject
                objectName: "ejectButton"
                text: "Keluarkan"
                Accessible.description: root.name
                onClicked: root.ejectRequested()
            }
        }
        SymbolText {
            id: speed
            objectName: "speed"
            visible: root.speedText !== ""
            x: actions.isNarrow ? 0 : parent.width - width
            y: actions.isNarrow ? buttons.height + 12 : Math.round((buttons.height - height) / 2)
            width: Math.min(implicitWidth, parent.width)
            style: BrandText.Callout
            symbol: "speedometer"
            size: 16
            text: root.speedText
        }
    }
}
