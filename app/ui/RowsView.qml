pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// Rows under each other, at one stop of the Tab key: the arrow keys go from row to row. A row that is pressed
/// calls `choose`.
Control {
    id: root

    required property string label ///< for those who can't see what the list is about
    property alias model: list.model
    property alias delegate: list.delegate
    property alias role: list.role
    property alias topGap: list.topMargin
    property alias bottomGap: list.bottomMargin
    readonly property alias contentHeight: list.contentHeight
    readonly property alias currentIndex: list.currentIndex
    readonly property alias currentItem: list.currentItem
    /// Keys move through the list, so that it has to be seen where they are.
    readonly property bool showsFocus: root.visualFocus || list.activeFocus && list.usesKeys

    signal menuRequested(int row, Item item)

    function choose(row: int, item: Item): void {
        list.usesKeys = false;
        list.currentIndex = row;
        item.forceActiveFocus(Qt.MouseFocusReason);
    }
    function moveTo(row: int): void {
        if (list.count === 0)
            return;
        list.usesKeys = true;
        list.currentIndex = Math.max(0, Math.min(row, list.count - 1));
        list.positionViewAtIndex(list.currentIndex, ListView.Contain);
        list.currentItem.forceActiveFocus(Qt.TabFocusReason); // so that it is read out, too
    }
    function rowsOfAPage(): int {
        return Math.max(1, Math.floor(list.height / (list.currentItem?.height || list.height)) - 1);
    }

    focusPolicy: Qt.StrongFocus
    Accessible.name: root.label

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
            root.moveTo(list.currentIndex - root.rowsOfAPage());
        else if (event.key === Qt.Key_PageDown)
            root.moveTo(list.currentIndex + root.rowsOfAPage());
        else if (opensMenu && list.currentItem !== null)
            root.menuRequested(list.currentIndex, list.currentItem);
        else
            event.accepted = false;
    }

    contentItem: ListView {
        id: list

        property bool usesKeys: false
        property int role: Accessible.List

        objectName: "rows"
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
