pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import Korvanti.Ui

/// A sheet over the window, which has to be answered first. It is there while `shown` says so; Escape only
/// asks. Each page begins afresh: with the focus on the sheet, and for a moment deaf, so that nobody answers by
/// the second half of a double click what they have not read.
Popup {
    id: root

    property bool shown: false
    property real sheetWidth: 620
    property real sheetHeight: Brand.scaled(520)
    property string title: ""                ///< for those who can't see it
    property int page: 0                        ///< which of its pages is seen
    property AbstractButton defaultButton: null ///< what Return presses on this page
    property Item firstFocus: null              ///< what has the focus once it is settled; or else the sheet itself
    readonly property bool settled: !reading.running
    property real rise: 0
    signal dismissed()

    function begin(): void {
        reading.restart();
        root.contentItem.focus = true;
    }
    /// Not by a key that is still held down from what opened the sheet.
    function pressDefault(event: KeyEvent): void {
        const button = root.defaultButton;
        if (root.settled && !event.isAutoRepeat && button !== null && button.enabled && button.visible)
            button.clicked();
    }

    onAboutToShow: root.begin()
    onPageChanged: root.begin()

    parent: T.Overlay.overlay
    x: Math.round(((parent?.width ?? 0) - width) / 2)
    y: Math.round(((parent?.height ?? 0) - height) / 2 - 12 + root.rise)
    width: Math.min(Brand.scaled(root.sheetWidth), (parent?.width ?? 0) - 48)
    height: Math.min(root.sheetHeight, (parent?.height ?? 0) - 48)
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
    contentItem: Item { // no scope, which would remember what had the focus in it
        focus: true
        Accessible.role: Accessible.Dialog
        Accessible.name: root.title
        Keys.onEscapePressed: event => {
            if (!event.isAutoRepeat)
                root.dismissed();
        }
        Keys.onReturnPressed: event => root.pressDefault(event)
        Keys.onEnterPressed: event => root.pressDefault(event)
        Keys.onPressed: event => event.accepted = !root.settled

        MouseArea {
            objectName: "sheetGuard"
            z: 1
            anchors.fill: parent
            visible: !root.settled
        }
    }

    Timer {
        id: reading
        interval: 500
        onTriggered: {
            if (root.contentItem.activeFocus)
                root.firstFocus?.forceActiveFocus(Qt.OtherFocusReason);
        }
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Brand.sheetDuration; easing.type: Easing.OutCubic }
        NumberAnimation { property: "rise"; from: Brand.sheetRise; to: 0; duration: Brand.sheetDuration; easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Brand.sheetOutDuration }
    }
}
