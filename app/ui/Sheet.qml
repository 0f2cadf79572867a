pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import Korvanti.Ui

/// A sheet over the window, which has to be answered first. It is there while `shown` says so; Escape only
/// asks.
Popup {
    id: root

    property bool shown: false
    property real sheetWidth: 620
    property real sheetHeight: 520
    property string title: ""                ///< for those who can't see it
    property AbstractButton defaultButton: null ///< what Return presses
    property real rise: 0
    signal dismissed()

    /// Not by a key that is still held down from what opened the sheet.
    function pressDefault(event: KeyEvent): void {
        if (!event.isAutoRepeat && root.defaultButton !== null && root.defaultButton.enabled && root.defaultButton.visible)
            root.defaultButton.clicked();
    }

    /// What was clicked last may be gone from the sheet, and the focus with it.
    onDefaultButtonChanged: {
        if (root.opened)
            (root.defaultButton === null ? root.contentItem : root.defaultButton).forceActiveFocus(Qt.OtherFocusReason);
    }

    parent: T.Overlay.overlay
    x: Math.round(((parent?.width ?? 0) - width) / 2)
    y: Math.round(((parent?.height ?? 0) - height) / 2 - 12 + root.rise)
    width: Math.min(Brand.scaled(root.sheetWidth), (parent?.width ?? 0) - 48)
    height: Math.min(Brand.scaled(root.sheetHeight), (parent?.height ?? 0) - 48)
    visible: root.shown
    modal: true
    focus: true
    padding: 0
    closePolicy: Popup.NoAutoClose

    T.Overlay.modal: Rectangle {
        color: Brand.scrim
        Behavior on opacity { NumberAnimation { duration: Brand.scrimDuration } }
    }
    background: Item {
        Shadow { source: Qt.resolvedUrl("art/sheet-shadow.png"); spread: 28; corner: 72; drop: 12; strength: Theme.dark ? 0.6 : 0.34 }
        Rectangle {
            anchors.fill: parent
            radius: 16
            color: Brand.sheet
            border.width: Theme.dark ? 1 : 0
            border.color: Brand.cardBorder
        }
    }
    contentItem: FocusScope {
        focus: true
        Accessible.role: Accessible.Dialog
        Accessible.name: root.title
        Keys.onEscapePressed: root.dismissed()
        Keys.onReturnPressed: event => root.pressDefault(event)
        Keys.onEnterPressed: event => root.pressDefault(event)
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Brand.sheetDuration; easing.type: Easing.OutCubic }
        NumberAnimation { property: "rise"; from: Brand.sheetRise; to: 0; duration: Brand.sheetDuration; easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Brand.sheetOutDuration }
    }
}
