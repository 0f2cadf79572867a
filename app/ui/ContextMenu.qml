import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// What a right click opens: entries are `ContextMenuEntry`, with a `ContextMenuDivider` between their groups.
Menu {
    id: root

    /// Whoever works with keys is at the first entry at once.
    function popupByKey(item: Item, x: real, y: real): void {
        root.popup(item, x, y);
        root.currentIndex = 0;
    }

    padding: 5
    implicitWidth: Math.max(Brand.scaled(200), contentItem.implicitWidth + 2 * padding)
    overlap: 0
    margins: 8
    contentItem: ListView {
        implicitHeight: contentHeight
        implicitWidth: {
            let widest = 0;
            for (let index = 0; index < root.count; ++index)
                widest = Math.max(widest, root.itemAt(index)?.implicitWidth ?? 0);
            return widest;
        }
        model: root.contentModel
        interactive: false
        currentIndex: root.currentIndex
    }
    background: Rectangle {
        radius: Brand.scaled(8)
        color: Brand.panel
        border.width: 1
        border.color: Brand.controlBorder
        Shadow { source: "art/panel-shadow.png"; spread: 16; corner: 44; drop: 6; strength: 0.3 }
    }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Brand.fadeDuration } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Brand.fadeDuration } }
}
