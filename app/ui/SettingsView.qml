pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Dialogs
import Korvanti.Ui

/// The settings in three groups. It scrolls when there are more folders than fit.
ScrollPane {
    id: root

    required property SettingsModel model

    readonly property int inset: 13

    topGap: 18
    margin: 24
    spacing: 16
    onVisibleChanged: if (root.visible) root.model.opened()

    component Line: Rectangle {
        x: root.inset
        width: parent.width - x - 1
        height: 1
        color: Brand.separator
    }
    component StepperRow: Item {
        id: stepperRow

        required property SteppedSetting setting
        property alias stepperName: stepper.objectName

        width: parent.width
        height: Math.max(Brand.scaled(38), words.height + 12)
        BrandText {
            id: words
            x: root.inset
            width: stepper.x - x - 12
            anchors.verticalCenter: parent.verticalCenter
            text: stepperRow.setting.text
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
        Stepper {
            id: stepper
            x: parent.width - width - root.inset
            anchors.verticalCenter: parent.verticalCenter
            setting: stepperRow.setting
        }
    }

    SettingsGroup {
        width: parent.width
        title: "Folder proyek"
        footer: "Korvanti mencari repo git & artefak build di folder ini. Folder lain tidak pernah dipindai sebagai proyek."
        warning: root.model.folderMessage

        Repeater {
            model: root.model.folders
            Item {
                id: folder

                required property int index
                required property string path
                required property string fullPath

                objectName: "folder:" + folder.path
                width: parent?.width ?? 0
                height: Math.max(Brand.scaled(36), folderText.height + 8)
                Symbol {
                    id: icon
                    x: root.inset
                    anchors.verticalCenter: parent.verticalCenter
                    name: "folder"
                    size: 16
                    color: Brand.text2
                }
                BrandText {
                    id: folderText
                    objectName: "folderPath"
                    anchors {
                        left: icon.right; leftMargin: 8
                        right: removeButton.left; rightMargin: 8
                        verticalCenter: parent.verticalCenter
                    }
                    text: folder.path
                    elide: Text.ElideMiddle
                    horizontalAlignment: Text.AlignLeft
                    HoverHandler { id: pointer }
                    Hint { text: folder.fullPath; shown: pointer.hovered && folderText.truncated }
                }
                IconButton {
                    id: removeButton
                    objectName: "remove:" + folder.path
                    x: parent.width - width - root.inset + Brand.scaled(6)
                    anchors.verticalCenter: parent.verticalCenter
                    symbol: "minus.circle"
                    symbolSize: 16
                    hint: "Keluarkan " + folder.path + " dari daftar"
                    onClicked: root.model.removeFolder(folder.index)
                }
                Line { anchors.bottom: parent.bottom }
            }
        }
        Item {
            width: parent.width
            height: Math.max(Brand.scaled(36), addButton.height + 8)
            LinkButton {
                id: addButton
                objectName: "addFolderButton"
                x: root.inset
                anchors.verticalCenter: parent.verticalCenter
                text: "Tambah folder…"
                onClicked: dialog.open()
            }
        }
    }
    SettingsGroup {
        width: parent.width
        title: "Penilaian"

        StepperRow {
            stepperName: "inactiveStepper"
            setting: root.model.inactiveDays
            Line { anchors.bottom: parent.bottom }
        }
        StepperRow {
            stepperName: "lowSpaceStepper"
            setting: root.model.lowSpace
        }
    }
    SettingsGroup {
        width: parent.width
        title: "Sistem"
        warning: root.model.loginMessage

        Item {
            width: parent.width
            height: Math.max(Brand.scaled(40), loginText.height + 12)
            BrandText {
                id: loginText
                x: root.inset
                width: loginToggle.x - x - 12
                anchors.verticalCenter: parent.verticalCenter
                text: "Buka Korvanti saat login (ikon menu bar)"
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            Toggle {
                id: loginToggle
                objectName: "loginToggle"
                x: parent.width - width - root.inset
                anchors.verticalCenter: parent.verticalCenter
                label: loginText.text
                marked: root.model.isLoginItem
                onClicked: root.model.setLoginItem(!root.model.isLoginItem)
            }
            Line { anchors.bottom: parent.bottom }
        }
        Item {
            width: parent.width
            height: buttons.height + 22
            Flow {
                id: buttons
                x: root.inset
                y: 11
                width: parent.width - 2 * x
                spacing: 8
                PlainButton {
                    objectName: "accessButton"
                    text: "Buka pengaturan Full Disk Access"
                    onClicked: root.model.openFullDiskAccessSettings()
                }
                PlainButton {
                    objectName: "logButton"
                    text: "Tampilkan log aktivitas"
                    onClicked: root.model.revealLog()
                }
            }
        }
    }

    FolderDialog {
        id: dialog
        objectName: "folderDialog"
        title: "Tambah folder…"
        parentWindow: root.Window.window
        currentFolder: root.model.homeFolder
        acceptLabel: "Tambahkan"
        rejectLabel: "Batal"
        onAccepted: root.model.addFolderUrls([dialog.selectedFolder])
    }
}
