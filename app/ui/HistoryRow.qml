import QtQuick
import Korvanti.Ui

/// One thing that was done: whether it went well, what and where, and at the right how much and when.
RowItem {
    id: root

    required property int index
    required property bool success
    required property string title
    required property string path
    required property string fullPath
    required property string message
    required property string sizeText
    required property string dateText
    required property string spokenText

    property bool isCurrent: false
    property bool showsFocus: false ///< the current row, while keys are used
    property string spokenPlace: "" ///< among the others

    signal pressed
    signal hintRequested(Item about, string text) ///< about nothing: no longer

    readonly property int padding: Brand.scaled(12)
    readonly property int margin: 24
    readonly property int textLeft: root.margin + Brand.scaled(30)
    readonly property int figuresWidth: Math.max(Brand.scaled(160), figure.implicitWidth)
    readonly property int beside: root.width - root.textLeft - 20 - root.figuresWidth - root.margin
    /// With large type the figures stand under the words.
    readonly property bool isNarrow: root.beside < Brand.scaled(200)
    readonly property int wordsWidth: root.isNarrow ? root.width - root.textLeft - root.margin : root.beside

    objectName: "entry" + root.index
    activeFocusOnTab: root.isCurrent || root.activeFocus // which must not lose it
    implicitHeight: Math.max(words.height, figures.y - root.padding + figures.height) + 2 * root.padding
    Accessible.role: Accessible.ListItem
    Accessible.name: root.spokenText
    Accessible.description: root.path + ", " + root.dateText + ", " + root.spokenPlace
    Accessible.focusable: true
    Accessible.focused: root.activeFocus

    Rectangle {
        anchors.fill: parent
        anchors.bottomMargin: 1
        color: Brand.rowHover
        opacity: pointer.hovered ? 1 : 0
        Behavior on opacity { NumberAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutCubic } }
    }
    Rectangle {
        anchors { left: parent.left; leftMargin: root.textLeft; right: parent.right; bottom: parent.bottom }
        height: 1
        color: Brand.separator
    }
    HoverHandler { id: pointer }
    TapHandler {
        gesturePolicy: TapHandler.WithinBounds
        onPressedChanged: if (pressed) root.pressed()
    }

    Symbol {
        objectName: "mark"
        x: root.margin
        y: root.padding + Math.round((titleText.height - height) / 2)
        name: root.success ? "checkmark.circle.fill" : "xmark.octagon.fill"
        size: 18
        color: root.success ? Brand.green : Brand.coral
    }
    // Laid out by bindings: a positioner would know its height too late, and the list would jump.
    Item {
        id: words
        x: root.textLeft
        y: root.padding
        width: root.wordsWidth
        height: messageText.visible ? messageText.y + messageText.height : pathText.y + pathText.height
        BrandText {
            id: titleText
            objectName: "title"
            width: parent.width
            style: BrandText.BodyMedium
            text: root.title
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignLeft
            maximumLineCount: 1
            Accessible.ignored: true
            HoverHandler { id: titlePointer }
        }
        BrandText {
            id: pathText
            objectName: "path"
            y: titleText.height + 2
            width: parent.width
            style: BrandText.Path
            text: root.path
            elide: Text.ElideMiddle
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
            HoverHandler { id: pathPointer }
        }
        BrandText {
            id: messageText
            objectName: "message"
            y: pathText.y + pathText.height + 2
            visible: root.message !== ""
            width: parent.width
            style: BrandText.Caption
            text: root.message
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
    }
    Item {
        id: figures
        x: root.isNarrow ? root.textLeft : root.width - width - root.margin
        y: root.padding + (root.isNarrow ? words.height + 4 : 0)
        width: root.isNarrow ? words.width : root.figuresWidth
        height: dateText.y + dateText.height
        Figure {
            id: figure
            objectName: "size"
            x: root.isNarrow ? 0 : parent.width - width
            style: BrandText.RowSize
            text: root.sizeText
            Accessible.ignored: true
        }
        BrandText {
            id: dateText
            objectName: "date"
            y: figure.height
            width: parent.width
            style: BrandText.Caption
            text: root.dateText
            wrapMode: Text.Wrap
            horizontalAlignment: root.isNarrow ? Text.AlignLeft : Text.AlignRight
            Accessible.ignored: true
        }
    }

    /// What the pointer rests on that has more to say.
    readonly property Item hinted: titlePointer.hovered && titleText.truncated ? titleText
                                 : pathPointer.hovered && pathText.truncated ? pathText : null
    onHintedChanged: root.hintRequested(root.hinted, root.hinted === titleText ? root.title : root.fullPath)

    FocusRing {
        anchors.margins: 4
        around: 2
        visible: root.isCurrent && root.showsFocus
    }
}
