import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// One column of blocks that scrolls when it is higher than its place. Dragging moves nothing, as everywhere on a
/// desktop; what gets the keyboard's focus comes into sight.
Flickable {
    id: root

    default property alias blocks: column.data
    property real margin: 24 ///< at both sides
    property real topGap: 6
    property real bottomGap: root.margin
    property real surrounding: root.margin ///< what comes into sight around what has the focus
    property real spacing: 18
    readonly property Item focusedItem: root.Window.activeFocusItem

    function scrollTo(y: real) {
        root.contentY = Math.max(0, Math.min(y, root.contentHeight - root.height));
    }
    function isInside(item: Item): bool {
        for (let above = item; above; above = above.parent) {
            if (above === column)
                return true;
        }
        return false;
    }
    function reveal(item: Item) {
        const top = item.mapToItem(root.contentItem, 0, 0).y;
        const bottom = top + item.height;
        if (top < root.contentY + root.topGap)
            root.scrollTo(top - root.surrounding);
        else if (bottom > root.contentY + root.height - root.topGap)
            root.scrollTo(bottom + root.surrounding - root.height);
    }

    clip: true
    interactive: false
    boundsBehavior: Flickable.StopAtBounds
    contentWidth: root.width
    contentHeight: root.topGap + column.height + root.bottomGap
    onHeightChanged: root.scrollTo(root.contentY)
    onContentHeightChanged: root.scrollTo(root.contentY)
    onFocusedItemChanged: {
        if (root.focusedItem && root.isInside(root.focusedItem))
            root.reveal(root.focusedItem);
    }
    Keys.onPressed: event => {
        const page = root.height - root.margin;
        switch (event.key) {
        case Qt.Key_PageUp: root.scrollTo(root.contentY - page); break;
        case Qt.Key_PageDown: root.scrollTo(root.contentY + page); break;
        case Qt.Key_Home: root.scrollTo(0); break;
        case Qt.Key_End: root.scrollTo(root.contentHeight); break;
        case Qt.Key_Up: root.scrollTo(root.contentY - root.margin * 2); break;
        case Qt.Key_Down: root.scrollTo(root.contentY + root.margin * 2); break;
        default: return;
        }
        event.accepted = true;
    }
    ScrollBar.vertical: SlimScrollBar { }

    WheelHandler {
        enabled: root.contentHeight > root.height // or else it is for what this lies in
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => {
            const pixels = event.pixelDelta.y !== 0 ? event.pixelDelta.y : event.angleDelta.y / 2;
            root.scrollTo(root.contentY - pixels);
        }
    }

    Column {
        id: column
        x: root.margin
        y: root.topGap
        width: root.width - 2 * root.margin
        spacing: root.spacing
    }
}
