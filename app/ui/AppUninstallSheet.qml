pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// Asks what of an application is to go: the bundle, and whichever of its data.
Sheet {
    id: root

    required property UninstallModel model

    readonly property int margin: 28

    sheetHeight: Brand.scaled(540)
    shown: root.model.isOpen
    title: root.model.name
    defaultButton: confirmButton
    onDismissed: root.model.dismiss()

    ScrollPane {
        id: body

        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: footer.top }
        margin: root.margin
        topGap: 24
        bottomGap: 16
        spacing: 12

        Item {
            id: head

            width: parent.width
            height: Math.max(icon.height, words.height) + 6

            AppIcon {
                id: icon
                name: root.model.icon
                size: 56
            }
            Column {
                id: words
                anchors {
                    left: icon.right; leftMargin: Brand.scaled(16)
                    right: total.left; rightMargin: Brand.scaled(16)
                    verticalCenter: icon.verticalCenter
                }
                BrandText {
                    id: name
                    objectName: "sheetName"
                    width: parent.width
                    style: BrandText.Title
                    text: root.model.name
                    elide: Text.ElideRight
                    horizontalAlignment: Text.AlignLeft
                    maximumLineCount: 1
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                    HoverHandler { id: namePointer }
                    Hint { text: root.model.name; shown: namePointer.hovered && name.truncated }
                }
                BrandText {
                    objectName: "sheetOrigin"
                    width: parent.width
                    visible: text !== ""
                    style: BrandText.Callout
                    color: Brand.text2
                    text: root.model.origin
                    elide: Text.ElideRight
                    horizontalAlignment: Text.AlignLeft
                    maximumLineCount: 1
                }
            }
            Figure {
                id: total
                objectName: "sheetSize"
                anchors { right: parent.right; verticalCenter: icon.verticalCenter }
                style: BrandText.Title
                text: root.model.sizeText
            }
        }
        Callout {
            id: advice
            objectName: "sheetAdvice"
            width: parent.width
            visible: text !== ""
            symbol: root.model.isSuggested ? "star.fill" : "info.circle.fill"
            tint: root.model.isSuggested ? Brand.amber : Brand.accent
            text: root.model.advice
        }
        Item {
            id: running

            objectName: "running"
            visible: root.model.runningText !== ""
            width: parent.width
            height: Math.max(runningText.height, closeAppButton.height)

            Symbol {
                id: warning
                anchors.verticalCenter: parent.verticalCenter
                name: "exclamationmark.triangle.fill"
                size: 15
                color: Brand.amber
            }
            BrandText {
                id: runningText
                objectName: "runningText"
                anchors {
                    left: warning.right; leftMargin: Brand.scaled(8)
                    right: closeAppButton.left; rightMargin: 12
                    verticalCenter: parent.verticalCenter
                }
                style: BrandText.Callout
                color: Brand.warnText
                text: root.model.runningText
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignLeft
            }
            PlainButton {
                id: closeAppButton
                objectName: "closeAppButton"
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                text: "Tutup app"
                onClicked: root.model.closeApp()
            }
        }
        Rectangle {
            id: frame

            readonly property real free: body.height - body.topGap - body.bottomGap - head.height
                - (advice.visible ? advice.height + body.spacing : 0)
                - (running.visible ? running.height + body.spacing : 0) - promise.height - 2 * body.spacing
            readonly property real least: Brand.scaled(92)

            width: parent.width
            // Where there is no room for a list that scrolls, the whole sheet does.
            height: free < Math.min(least, list.contentHeight + 2) ? list.contentHeight + 2 : free
            radius: 10
            color: Brand.innerList
            border.width: 1
            border.color: Brand.cardBorder

            ScrollPane {
                id: list

                objectName: "choices"
                anchors { fill: parent; margins: 1 }
                margin: 0
                topGap: 0
                spacing: 0
                surrounding: Brand.scaled(14) // the whole row
                Accessible.role: Accessible.List
                Accessible.name: root.model.name

                Repeater {
                    model: root.model.rows
                    Item {
                        id: choice

                        required property int index
                        required property string title
                        required property string path
                        required property string sizeText
                        required property bool isChosen

                        readonly property int textX: Brand.scaled(42)

                        objectName: "choice" + choice.index
                        width: list.width
                        height: Brand.scaled(44)
                        Accessible.role: Accessible.ListItem
                        Accessible.name: choice.title + ", " + choice.path + ", " + choice.sizeText

                        Rectangle {
                            visible: choice.index > 0
                            x: choice.textX
                            width: parent.width - x
                            height: 1
                            color: Brand.separator
                        }
                        TapHandler {
                            gesturePolicy: TapHandler.WithinBounds
                            onTapped: root.model.toggle(choice.index)
                        }
                        CheckMark {
                            objectName: "choiceCheck" + choice.index
                            x: 14
                            anchors.verticalCenter: parent.verticalCenter
                            marked: choice.isChosen
                            label: choice.Accessible.name
                            onClicked: root.model.toggle(choice.index)
                        }
                        BrandText {
                            id: title
                            objectName: "choiceTitle" + choice.index
                            x: choice.textX
                            y: Math.round((parent.height - height - path.height) / 2)
                            width: size.x - Brand.scaled(12) - x
                            style: BrandText.BodyMedium
                            text: choice.title
                            elide: Text.ElideRight
                            horizontalAlignment: Text.AlignLeft
                            maximumLineCount: 1
                            Accessible.ignored: true
                        }
                        BrandText {
                            id: path
                            objectName: "choicePath" + choice.index
                            x: choice.textX
                            y: title.y + title.height
                            width: title.width
                            style: BrandText.Path
                            text: choice.path
                            elide: Text.ElideMiddle
                            horizontalAlignment: Text.AlignLeft
                            maximumLineCount: 1
                            Accessible.ignored: true
                            HoverHandler { id: pathPointer }
                            Hint { text: choice.path; shown: pathPointer.hovered && path.truncated }
                        }
                        Figure {
                            id: size
                            objectName: "choiceSize" + choice.index
                            anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
                            style: BrandText.Body
                            text: choice.sizeText
                            Accessible.ignored: true
                        }
                    }
                }
            }
        }
        Callout {
            id: promise
            objectName: "sheetPromise"
            width: parent.width
            symbol: "info.circle.fill"
            tint: Brand.accent
            text: "Semua yang dipilih masuk Tong Sampah, jadi masih bisa dikembalikan. Ruang baru bebas setelah Tong Sampah dikosongkan."
        }
    }
    SheetFooter {
        id: footer

        anchors.bottom: parent.bottom
        width: parent.width
        leading: PlainButton {
            objectName: "dataOnlyButton"
            visible: root.model.hasData
            size: 32
            text: "Hapus datanya saja"
            onClicked: root.model.confirmDataOnly()
        }
        PlainButton {
            objectName: "cancelUninstallButton"
            size: 32
            text: "Batal"
            onClicked: root.model.dismiss()
        }
        PillButton {
            id: confirmButton
            objectName: "uninstallButton"
            text: root.model.confirmText
            enabled: root.model.canConfirm
            onClicked: root.model.confirm()
        }
    }
}
