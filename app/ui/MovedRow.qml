import QtQuick
import Korvanti.Ui

/// A folder that was moved, and what can be done with it.
FocusScope {
    id: root

    required property int index
    required property string title
    required property string path
    required property string sizeLine
    required property string statusText
    required property string statusSymbol
    required property bool isAvailable
    property bool isLast: false

    signal menuRequested(Item button)

    /// Within its pane: what the keyboard is at elsewhere stays.
    function takeFocus(): void {
        root.focus = true;
    }

    readonly property real endRoom: status.implicitWidth + 20 + actions.width
    /// Without room for the words, status and menu stand under them.
    readonly property bool isNarrow: root.width - root.endRoom - 20 < Brand.scaled(200)

    implicitHeight: (root.isNarrow ? actions.y + actions.height : words.y + words.height)
        + (root.isLast ? 0 : Brand.scaled(12))
    Accessible.role: Accessible.Grouping
    Accessible.name: root.title

    Rectangle {
        width: root.width
        height: 1
        visible: root.index > 0
        color: Brand.separator
    }
    Column {
        id: words
        y: 1 + Brand.scaled(root.index > 0 ? 12 : 8)
        width: root.isNarrow ? root.width : root.width - root.endRoom - 20

        BrandText {
            id: titleText
            objectName: "movedTitle"
            width: parent.width
            style: BrandText.BodyMedium
            text: root.title
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignLeft
            maximumLineCount: 1
            HoverHandler { id: titlePointer }
            Hint { text: root.title; shown: titlePointer.hovered && titleText.truncated }
        }
        Item { width: 1; height: 2 }
        BrandText {
            id: pathText
            objectName: "movedPath"
            width: parent.width
            style: BrandText.Path
            text: root.path
            elide: Text.ElideMiddle
            horizontalAlignment: Text.AlignLeft
            maximumLineCount: 1
            HoverHandler { id: pathPointer }
            Hint { text: root.path; shown: pathPointer.hovered && pathText.truncated }
        }
        Item { width: 1; height: 2 }
        BrandText {
            objectName: "movedSize"
            width: parent.width
            style: BrandText.Caption
            text: root.sizeLine
            wrapMode: Text.Wrap
        }
    }
    SymbolText {
        id: status
        objectName: "movedStatus"
        x: root.isNarrow ? 0 : actions.x - 20 - width
        y: actions.y + Math.round((actions.height - height) / 2)
        width: Math.min(implicitWidth, root.width - actions.width - 20)
        style: BrandText.Callout
        symbol: root.statusSymbol
        size: 15
        tint: root.isAvailable ? Brand.green : Brand.amber
        color: root.isAvailable ? Brand.green : Brand.warnText
        text: root.statusText
    }
    PlainButton {
        id: actions
        objectName: "movedActions"
        focus: true
        x: root.width - width
        y: root.isNarrow ? words.y + words.height + 8
                         : words.y + Math.round((words.height - height) / 2)
        text: "Aksi"
        opensMenu: true
        about: root.title
        onClicked: root.menuRequested(actions)
    }
}
