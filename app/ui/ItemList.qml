pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// The rows of the cleanup pane under the heads of their sections. One stop of the Tab key: the arrow keys go
/// from row to row.
Control {
    id: root

    required property CleanupModel model
    /// Keys move through the list, so that it has to be seen where they are.
    readonly property bool showsFocus: root.visualFocus || list.activeFocus && list.usesKeys

    signal menuRequested(ItemRow row, real x, real y)

    focusPolicy: Qt.StrongFocus
    Accessible.name: "Pembersihan"

    Keys.onUpPressed: list.moveTo(list.currentIndex - 1)
    Keys.onDownPressed: list.moveTo(list.currentIndex + 1)
    Keys.onSpacePressed: root.model.toggle(list.currentIndex)
    Keys.onPressed: event => {
        const opensMenu = event.key === Qt.Key_Menu
            || event.key === Qt.Key_F10 && (event.modifiers & Qt.ShiftModifier) !== 0;
        event.accepted = true;
        if (event.key === Qt.Key_Home)
            list.moveTo(0);
        else if (event.key === Qt.Key_End)
            list.moveTo(list.count - 1);
        else if (event.key === Qt.Key_PageUp)
            list.moveByPage(-1);
        else if (event.key === Qt.Key_PageDown)
            list.moveByPage(1);
        else if (opensMenu && list.currentItem !== null)
            root.menuRequested(list.currentItem as ItemRow, Brand.scaled(52), Brand.scaled(32));
        else
            event.accepted = false;
    }

    Connections {
        target: root.model.items
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
        readonly property int sectionHeight: Brand.scaled(34)

        function moveTo(row: int): void {
            if (row < 0 || row >= count)
                return;
            usesKeys = true;
            if (Math.abs(row - currentIndex) > 1)
                positionViewAtIndex(row, ListView.Contain);
            currentIndex = row;
            forceLayout();
            // What the head of the section covers can't be seen, either.
            const top = currentItem.y - sectionHeight;
            const bottom = currentItem.y + currentItem.height;
            if (top < contentY)
                contentY = top;
            else if (bottom > contentY + height)
                contentY = bottom - height;
            currentItem.forceActiveFocus(Qt.TabFocusReason); // so that it is read out, too
        }
        function moveByPage(direction: int): void {
            const distance = direction * (height - sectionHeight);
            let row = Math.max(0, currentIndex);
            const end = (itemAtIndex(row)?.y ?? 0) + distance;
            while (row + direction >= 0 && row + direction < count
                   && direction * ((itemAtIndex(row + direction)?.y ?? end) - end) < 0)
                row += direction;
            moveTo(row === currentIndex ? row + direction : row);
        }

        objectName: "items"
        clip: true
        reuseItems: true
        cacheBuffer: 400
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        model: root.model.items
        Accessible.role: Accessible.List
        Accessible.name: "Pembersihan"
        section.property: "section"
        section.labelPositioning: ViewSection.InlineLabels | ViewSection.CurrentLabelAtStart
        // Made from a file of its own: Qt 6.4 makes no section from a component that is bound to this one.
        section.delegate: Qt.createComponent("ItemSection.qml", Component.PreferSynchronous, list)
        delegate: ItemRow {
            id: row
            width: list.width
            isCurrent: ListView.isCurrentItem
            showsFocus: root.showsFocus
            endsSection: ListView.nextSection !== ListView.section
            // Out of sight is not enough: it would still be read out.
            ListView.onPooled: row.visible = false
            ListView.onReused: {
                row.visible = true;
                row.startAgain();
            }
            onPressed: {
                list.usesKeys = false;
                list.currentIndex = row.index;
                row.forceActiveFocus(Qt.MouseFocusReason);
            }
            onToggleRequested: root.model.toggle(row.index)
            onGuideRequested: root.model.toggleInstructions(row.index)
            onMenuRequested: (x, y) => root.menuRequested(row, x, y)
            onHintRequested: (about, text) => {
                hint.about = about;
                hint.text = about !== null ? text : "";
            }
        }
        ScrollBar.vertical: SlimScrollBar {}
    }
}
