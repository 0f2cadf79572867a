pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// Rows under each other, at one stop of the Tab key, which is the current row: the arrow keys go from row to
/// row. Rows are `RowItem`s. One that is pressed calls `choose`; one that wants to tell more calls `tell`.
FocusScope {
    id: root

    required property string label ///< for those who can't see what the list is about
    property alias model: list.model
    property alias delegate: list.delegate
    property alias role: list.role
    property alias rows: list
    readonly property alias currentIndex: list.currentIndex
    readonly property alias currentItem: list.currentItem
    /// Of the head of a section, which lies over the rows.
    property int headHeight: 0
    /// Keys move through the list, so that it has to be seen where they are.
    readonly property bool showsFocus: list.activeFocus && list.usesKeys

    signal menuRequested(int row, Item item)

    function choose(row: int, item: Item): void {
        list.usesKeys = false;
        list.currentIndex = row;
        item.forceActiveFocus(Qt.MouseFocusReason);
    }
    function tell(about: Item, text: string): void {
        hint.about = about;
        hint.text = about !== null ? text : "";
    }
    /// Where a row stands, for those who can't see it.
    function placeOf(row: int): string {
        return (row + 1) + " dari " + list.count;
    }
    function moveTo(row: int): void {
        if (list.count === 0)
            return;
        const next = Math.max(0, Math.min(row, list.count - 1));
        if (root.headHeight === 0 || Math.abs(next - list.currentIndex) > 1)
            list.positionViewAtIndex(next, ListView.Contain);
        list.currentIndex = next;
        list.showBelowHead();
        list.usesKeys = true;
        list.currentItem.forceActiveFocus(Qt.TabFocusReason); // so that it is read out, too
    }
    function moveByPage(direction: int): void {
        let row = Math.max(0, list.currentIndex);
        const end = (list.itemAtIndex(row)?.y ?? 0) + direction * (list.height - root.headHeight);
        while (row + direction >= 0 && row + direction < list.count
               && direction * ((list.itemAtIndex(row + direction)?.y ?? end) - end) < 0)
            row += direction;
        root.moveTo(row === list.currentIndex ? row + direction : row);
    }
    /// Another list, seen from its beginning.
    function startAgain(): void {
        list.currentIndex = 0;
        list.positionViewAtBeginning();
    }

    Keys.onUpPressed: root.moveTo(list.currentIndex - 1)
    Keys.onDownPressed: root.moveTo(list.currentIndex + 1)
    Keys.onPressed: event => {
        const opensMenu = event.key === Qt.Key_Menu
            || event.key === Qt.Key_F10 && (event.modifiers & Qt.ShiftModifier) !== 0;
        event.accepted = true;
        if (event.key === Qt.Key_Home)
            root.moveTo(0);
        else if (event.key === Qt.Key_End)
            root.moveTo(list.count - 1);
        else if (event.key === Qt.Key_PageUp)
            root.moveByPage(-1);
        else if (event.key === Qt.Key_PageDown)
            root.moveByPage(1);
        else if (opensMenu && list.currentItem !== null)
            root.menuRequested(list.currentIndex, list.currentItem);
        else
            event.accepted = false;
    }

    Connections {
        target: root.model
        function onModelReset() { root.startAgain(); }
    }
    Connections {
        target: list.currentItem
        function onReachedByKey() {
            list.usesKeys = true;
            list.positionViewAtIndex(list.currentIndex, ListView.Contain);
            list.showBelowHead();
        }
    }
    Hint { // one for all rows
        id: hint
        property Item about: null
        objectName: "rowHint"
        parent: about ?? root
        shown: about !== null
    }
    ListView {
        id: list

        property bool usesKeys: false
        property int role: Accessible.List

        /// What the head of the section covers can't be seen.
        function showBelowHead(): void {
            if (root.headHeight === 0)
                return;
            forceLayout();
            const top = currentItem.y - root.headHeight;
            const bottom = currentItem.y + currentItem.height;
            if (top < contentY)
                contentY = top;
            else if (bottom > contentY + height)
                contentY = bottom - height;
        }

        objectName: "rows"
        anchors.fill: parent
        focus: true
        clip: true
        reuseItems: true
        cacheBuffer: 400
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        Accessible.role: role
        Accessible.name: root.label
        ScrollBar.vertical: SlimScrollBar {}
    }
}
