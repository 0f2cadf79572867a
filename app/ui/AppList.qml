pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// The rows of the applications. One stop of the Tab key: the arrow keys go from row to row, and Return opens
/// the sheet of the one that it is at.
Control {
    id: root

    required property AppsModel model
    required property AppColumns columns
    /// Keys move through the list, so that it has to be seen where they are.
    readonly property bool showsFocus: root.visualFocus || list.activeFocus && list.usesKeys

    focusPolicy: Qt.StrongFocus
    Accessible.name: "Aplikasi"

    Keys.onUpPressed: list.moveTo(list.currentIndex - 1)
    Keys.onDownPressed: list.moveTo(list.currentIndex + 1)
    Keys.onSpacePressed: root.model.openUninstall(list.currentIndex)
    Keys.onReturnPressed: root.model.openUninstall(list.currentIndex)
    Keys.onEnterPressed: root.model.openUninstall(list.currentIndex)
    Keys.onPressed: event => {
        event.accepted = true;
        if (event.key === Qt.Key_Home)
            list.moveTo(0);
        else if (event.key === Qt.Key_End)
            list.moveTo(list.count - 1);
        else if (event.key === Qt.Key_PageUp)
            list.moveByPage(-1);
        else if (event.key === Qt.Key_PageDown)
            list.moveByPage(1);
        else
            event.accepted = false;
    }

    Connections {
        target: root.model.rows
        function onModelReset() { // another list, seen from its beginning
            list.currentIndex = 0;
            list.positionViewAtBeginning();
        }
    }

    Hint { // one for all rows
        id: hint
        property Item about: null
        objectName: "rowHint"
        parent: about ?? root
        shown: about !== null
    }

    contentItem: ListView {
        id: list

        property bool usesKeys: false

        function moveTo(row: int): void {
            if (row < 0 || row >= count)
                return;
            usesKeys = true;
            positionViewAtIndex(row, ListView.Contain);
            currentIndex = row;
            currentItem.forceActiveFocus(Qt.TabFocusReason); // so that it is read out, too
        }
        function moveByPage(direction: int): void {
            const end = (currentItem?.y ?? 0) + direction * height;
            let row = Math.max(0, currentIndex);
            while (row + direction >= 0 && row + direction < count
                   && direction * ((itemAtIndex(row + direction)?.y ?? end) - end) < 0)
                row += direction;
            moveTo(row === currentIndex ? row + direction : row);
        }

        objectName: "apps"
        clip: true
        reuseItems: true
        cacheBuffer: 400
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        model: root.model.rows
        Accessible.role: Accessible.List
        Accessible.name: "Aplikasi"
        delegate: AppRow {
            id: row
            width: list.width
            columns: root.columns
            isCurrent: ListView.isCurrentItem
            showsFocus: root.showsFocus
            // Out of sight is not enough: it would still be read out.
            ListView.onPooled: row.visible = false
            ListView.onReused: row.visible = true
            onPressed: {
                list.usesKeys = false;
                list.currentIndex = row.index;
                row.forceActiveFocus(Qt.MouseFocusReason);
            }
            onRemoveRequested: root.model.openUninstall(row.index)
            onHintRequested: (about, text) => {
                hint.about = about;
                hint.text = about !== null ? text : "";
            }
        }
        ScrollBar.vertical: SlimScrollBar {}
    }
}
