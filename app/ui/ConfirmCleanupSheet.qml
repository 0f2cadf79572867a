pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// The one step that every cleanup goes through: what will go, then its progress, then what came of it.
Sheet {
    id: root

    required property ConfirmModel model

    readonly property bool confirms: root.model.state === ConfirmModel.Confirm
    readonly property bool runs: root.model.state === ConfirmModel.Running
    readonly property bool tells: root.model.state === ConfirmModel.Result
    readonly property int margin: 28

    shown: root.model.isOpen
    title: root.confirms ? confirmTitle.text : root.runs ? runningTitle.text : resultTitle.text
    // Warnings that come late are to be read, too.
    page: root.confirms && root.model.isReady ? ConfirmModel.Result + 1 : root.model.state
    defaultButton: root.confirms ? confirmButton : root.tells ? closeButton : null
    firstFocus: root.tells ? closeButton : null
    onDismissed: root.model.dismiss()

    Item {
        id: confirmPage

        anchors.fill: parent
        visible: root.confirms

        Flickable {
            id: body

            anchors { left: parent.left; right: parent.right; top: parent.top; bottom: confirmFooter.top }
            contentHeight: Math.max(height, bodyColumn.height + 24 + 16)
            interactive: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            ScrollBar.vertical: SlimScrollBar {}

            Column {
                id: bodyColumn

                x: root.margin
                y: 24
                width: body.width - 2 * root.margin

                BrandText {
                    id: confirmTitle
                    width: parent.width
                    style: BrandText.Title
                    text: "Konfirmasi pembersihan"
                    wrapMode: Text.Wrap
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }
                Item { width: 1; height: 4 }
                BrandText {
                    objectName: "headline"
                    width: parent.width
                    style: BrandText.Headline
                    text: root.model.headline
                    wrapMode: Text.Wrap
                }
                Item { width: 1; height: 16 }
                Rectangle {
                    visible: root.model.warnings.length > 0
                    width: parent.width
                    height: warningColumn.height + 2 * Brand.scaled(10)
                    radius: 10
                    color: Brand.translucent(Brand.amber, 0.1)
                    Column {
                        id: warningColumn
                        x: Brand.scaled(12)
                        y: Brand.scaled(10)
                        width: parent.width - 2 * x
                        spacing: 8
                        Repeater {
                            model: root.model.warnings
                            Item {
                                id: warning
                                required property string modelData
                                width: warningColumn.width
                                height: warningText.height
                                Symbol {
                                    y: Math.round((Brand.types[BrandText.Callout].lineHeight - height) / 2)
                                    name: "exclamationmark.triangle.fill"
                                    size: 16
                                    color: Brand.amber
                                }
                                BrandText {
                                    id: warningText
                                    x: Brand.scaled(26)
                                    width: parent.width - x
                                    style: BrandText.Callout
                                    text: warning.modelData
                                    wrapMode: Text.Wrap
                                }
                            }
                        }
                    }
                }
                Item { width: 1; height: 16; visible: root.model.warnings.length > 0 }
                SheetList {
                    objectName: "confirmList"
                    width: parent.width
                    room: Math.min(Brand.scaled(220), Math.max(Brand.scaled(92), body.height - 24 - 16 - y))
                    label: confirmTitle.text
                    model: root.model.rows
                    bottomGap: Brand.scaled(4) // as far from the frame as the first words
                    delegate: SheetListRow {
                        id: entry

                        required property int index
                        required property bool isHeader
                        required property string title
                        required property string text
                        required property string paths
                        required property bool showsPaths

                        readonly property int above: entry.isHeader && entry.index > 0 ? 5 : 0
                        readonly property real lineHeight: Brand.scaled(entry.isHeader ? 32 : 28)

                        objectName: "entry" + entry.index
                        height: above + lineHeight + (entry.showsPaths ? paths.height + Brand.scaled(4) : 0)
                        Accessible.role: entry.isHeader ? Accessible.Heading : Accessible.ListItem
                        Accessible.name: entry.title + ", " + entry.text
                        Accessible.description: entry.paths

                        Rectangle {
                            visible: entry.above > 0
                            y: entry.above - 1
                            width: parent.width
                            height: 1
                            color: Brand.separator
                        }
                        BrandText {
                            anchors { left: parent.left; leftMargin: 14; right: amount.left; rightMargin: 12 }
                            y: entry.above + Math.round((entry.lineHeight - height) / 2)
                            style: entry.isHeader ? BrandText.CaptionMedium : BrandText.Body
                            font.weight: entry.isHeader ? Font.DemiBold : Font.Normal
                            text: entry.title
                            elide: Text.ElideRight
                            horizontalAlignment: Text.AlignLeft
                            Accessible.ignored: true
                        }
                        Figure {
                            id: amount
                            anchors { right: parent.right; rightMargin: 14 }
                            y: entry.above + Math.round((entry.lineHeight - height) / 2)
                            width: Math.max(Brand.scaled(80), implicitWidth)
                            style: entry.isHeader ? BrandText.CaptionMedium : BrandText.Body
                            text: entry.text
                            Accessible.ignored: true
                        }
                        BrandText {
                            id: paths
                            x: 14
                            y: entry.above + entry.lineHeight - Brand.scaled(4)
                            width: parent.width - 28
                            visible: entry.showsPaths
                            style: BrandText.Path
                            text: entry.paths
                            wrapMode: Text.WrapAnywhere // all of it is what goes
                            horizontalAlignment: Text.AlignLeft
                            Accessible.ignored: true
                        }
                        HoverHandler { id: pointer }
                        Hint { text: entry.paths; shown: pointer.hovered && !entry.showsPaths }
                    }
                }
            }
        }
        SheetFooter {
            id: confirmFooter
            anchors.bottom: parent.bottom
            width: parent.width
            leading: Spinner {
                visible: !root.model.isReady && confirmPage.visible
            }
            PlainButton {
                objectName: "cancelButton"
                size: 32
                text: "Batal"
                onClicked: root.model.dismiss()
            }
            PillButton {
                id: confirmButton
                objectName: "confirmButton"
                kind: PillButton.Destructive
                enabled: root.model.isReady
                text: root.model.confirmText
                onClicked: root.model.confirm()
            }
        }
    }

    Column {
        anchors.centerIn: parent
        visible: root.runs
        width: parent.width - 2 * root.margin
        spacing: 16

        BrandText {
            id: runningTitle
            width: parent.width
            style: BrandText.Title
            text: "Membersihkan…"
            horizontalAlignment: Text.AlignHCenter
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Rectangle {
            objectName: "cleanProgress"
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(parent.width, Brand.scaled(400))
            height: 6
            radius: 3
            color: Brand.capacityTrack
            Accessible.role: Accessible.ProgressBar
            Accessible.name: runningTitle.text
            Accessible.description: Math.floor(100 * root.model.progress) + " %"
            Rectangle {
                width: Math.max(height, parent.width * root.model.progress)
                height: parent.height
                radius: 3
                color: Brand.accent
                Behavior on width { NumberAnimation { duration: Brand.openDuration; easing.type: Easing.OutCubic } }
            }
        }
        BrandText {
            objectName: "cleanCurrent"
            width: parent.width
            height: Brand.types[BrandText.Caption].lineHeight // kept free while there is nothing to say
            style: BrandText.Caption
            text: root.model.current
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideMiddle
        }
    }

    Item {
        anchors.fill: parent
        visible: root.tells

        Column {
            id: verdict

            readonly property bool isAlone: root.model.skippedText === ""

            x: root.margin
            y: isAlone ? Math.max(24, (resultFooter.y - height) / 2) : 34
            width: parent.width - 2 * root.margin
            Symbol {
                anchors.horizontalCenter: parent.horizontalCenter
                name: "checkmark.seal.fill"
                size: 56
                color: Brand.green
            }
            Item { width: 1; height: 12 }
            BrandText {
                id: resultTitle
                objectName: "freedText"
                width: parent.width
                style: BrandText.ResultTitle
                text: root.model.freedText
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            Item { width: 1; height: 6 }
            BrandText {
                objectName: "freeText"
                width: parent.width
                style: BrandText.Headline
                color: Brand.text2
                text: root.model.freeText
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
        }
        BrandText {
            id: skippedTitle
            objectName: "skippedText"
            x: root.margin
            y: verdict.y + verdict.height + 28
            width: verdict.width
            visible: !verdict.isAlone
            style: BrandText.CalloutMedium
            font.weight: Font.DemiBold
            text: root.model.skippedText
        }
        SheetList {
            objectName: "skippedList"
            x: root.margin
            y: skippedTitle.y + skippedTitle.height + 8
            width: verdict.width
            room: resultFooter.y - y - 16
            visible: !verdict.isAlone
            label: skippedTitle.text
            model: root.model.skipped
            delegate: SheetListRow {
                id: failure

                required property int index
                required property string title
                required property string text

                height: failureTexts.height + 2 * Brand.scaled(10)
                Accessible.name: failure.title + ", " + failure.text

                Rectangle {
                    visible: failure.index > 0
                    x: 14
                    width: parent.width - x
                    height: 1
                    color: Brand.separator
                }
                Column {
                    id: failureTexts
                    x: 14
                    y: Brand.scaled(10)
                    width: parent.width - 28
                    BrandText {
                        width: parent.width
                        style: BrandText.BodyMedium
                        text: failure.title
                        elide: Text.ElideRight
                        horizontalAlignment: Text.AlignLeft
                        Accessible.ignored: true
                    }
                    BrandText {
                        width: parent.width
                        style: BrandText.Caption
                        text: failure.text
                        wrapMode: Text.Wrap
                        horizontalAlignment: Text.AlignLeft
                        Accessible.ignored: true
                    }
                }
            }
        }
        SheetFooter {
            id: resultFooter
            anchors.bottom: parent.bottom
            width: parent.width
            PlainButton {
                objectName: "rescanButton"
                size: 32
                text: "Pindai ulang"
                onClicked: root.model.rescan()
            }
            PillButton {
                id: closeButton
                objectName: "closeButton"
                text: "Tutup"
                about: [root.model.freedText, root.model.freeText, root.model.skippedText].filter(words => words !== "").join(", ")
                onClicked: root.model.dismiss()
            }
        }
    }
}
