pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// One application: what it is, what speaks for removing it, how large it is, when it was used, and the way to
/// remove it.
RowItem {
    id: root

    required property int index
    required property string name
    required property string path
    required property string icon
    required property string advice
    required property bool isSuggested
    required property string role
    required property string reason
    required property bool isNonWork
    required property string sizeText
    required property string dataText
    required property string lastActivity
    required property bool isRemovable
    required property string spokenTitle
    required property string spokenDetail

    required property AppColumns columns
    property bool isCurrent: false
    property bool showsFocus: false ///< the current row, while keys are used
    property string spokenPlace: "" ///< among the others

    signal pressed
    signal removeRequested
    signal hintRequested(Item about, string text) ///< about nothing: no longer

    readonly property int padding: Brand.scaled(13)
    readonly property bool isNarrow: root.columns.isNarrow
    readonly property real middle: root.height / 2

    objectName: "row:" + root.path
    activeFocusOnTab: root.isCurrent || root.activeFocus // which must not lose it
    implicitHeight: root.isNarrow ? stacked.y + stacked.height + root.padding
                                  : Math.max(words.height, figures.height, usedText.height) + 2 * root.padding
    Accessible.role: Accessible.ListItem
    Accessible.name: root.spokenTitle
    Accessible.description: root.spokenDetail + ", " + root.spokenPlace
    Accessible.focusable: true
    Accessible.focused: root.activeFocus

    Rectangle {
        anchors { fill: parent; bottomMargin: 1 }
        color: tap.pressed ? Brand.rowPressed : Brand.rowHover
        opacity: pointer.hovered || tap.pressed ? 1 : 0
        Behavior on opacity { NumberAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutCubic } }
    }
    Rectangle {
        anchors { left: parent.left; leftMargin: root.columns.nameX; right: parent.right; bottom: parent.bottom }
        height: 1
        color: Brand.separator
    }
    HoverHandler { id: pointer }
    TapHandler {
        id: tap
        gesturePolicy: TapHandler.WithinBounds
        onPressedChanged: if (pressed) root.pressed()
    }

    AppIcon {
        x: root.columns.margin
        y: root.isNarrow ? root.padding : Math.round(root.middle - height / 2)
        name: root.icon
    }

    // Laid out by bindings: a positioner would know its height too late, and the list would jump.
    Item {
        id: words

        x: root.columns.nameX
        y: root.isNarrow ? root.padding : Math.round(root.middle - height / 2)
        width: root.isNarrow ? root.width - x - root.columns.margin : root.columns.nameWidth
        height: nameText.height + (adviceText.visible ? adviceText.height : 0)

        BrandText {
            id: nameText
            objectName: "name"
            width: Math.min(implicitWidth, Math.max(0, words.width - (star.visible ? star.width + 6 : 0)))
            style: BrandText.BodyMedium
            text: root.name
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignLeft
            maximumLineCount: 1
            HoverHandler { id: namePointer }
        }
        Symbol {
            id: star
            objectName: "star"
            anchors { left: nameText.right; leftMargin: 6; verticalCenter: nameText.verticalCenter }
            visible: root.isSuggested
            name: "star.fill"
            size: 11
            color: Brand.amber
            Accessible.ignored: !visible
            Accessible.role: Accessible.Graphic
            Accessible.name: "Disarankan"
            HoverHandler { id: starPointer }
        }
        BrandText {
            id: adviceText
            objectName: "advice"
            y: nameText.height
            visible: root.advice !== ""
            width: parent.width
            style: BrandText.Caption
            text: root.advice
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignLeft
            HoverHandler { id: advicePointer }
        }
    }

    /// Where the columns stand when they are under the words.
    Item {
        id: stacked

        readonly property real roleY: figures.height + Brand.scaled(2)
        readonly property real linkY: roleY + Math.max(roleText.height, usedText.height) + Brand.scaled(2)

        x: words.x
        y: words.y + words.height + Brand.scaled(4)
        height: linkY + (removeButton.visible ? removeButton.height : 0)
    }

    BrandText {
        id: roleText
        objectName: "role"
        x: root.isNarrow ? stacked.x : root.columns.roleX
        y: root.isNarrow ? stacked.y + stacked.roleY : Math.round(root.middle - height / 2)
        width: root.isNarrow ? implicitWidth : root.columns.roleWidth
        style: BrandText.Callout
        color: root.isNonWork ? Brand.warnText : Brand.text2
        text: root.role
        elide: Text.ElideRight
        Accessible.description: root.reason
        HoverHandler { id: rolePointer }
    }
    Item {
        id: figures

        x: root.isNarrow ? stacked.x : root.columns.totalX
        y: root.isNarrow ? stacked.y : Math.round(root.middle - height / 2)
        width: root.isNarrow ? words.width : root.columns.totalWidth
        height: dataFigure.visible ? dataFigure.y + dataFigure.height : sizeFigure.height

        Figure {
            id: sizeFigure
            objectName: "size"
            x: root.isNarrow ? 0 : parent.width - width
            text: root.sizeText
        }
        Figure {
            id: dataFigure
            objectName: "data"
            visible: root.dataText !== ""
            x: root.isNarrow ? 0 : parent.width - width
            y: sizeFigure.height
            style: BrandText.Caption
            text: root.dataText
        }
    }
    BrandText {
        id: usedText
        objectName: "used"
        x: root.isNarrow ? roleText.x + roleText.width + Brand.scaled(16) : root.columns.usedX
        y: root.isNarrow ? roleText.y : Math.round(root.middle - height / 2)
        width: (root.isNarrow ? root.width - root.columns.margin : root.columns.actionX - Brand.scaled(8)) - x
        style: BrandText.Callout
        color: Brand.text2
        text: root.lastActivity
        wrapMode: Text.Wrap
    }
    LinkButton {
        id: removeButton
        objectName: "remove:" + root.path
        x: root.isNarrow ? stacked.x : root.width - root.columns.margin - width
        y: root.isNarrow ? stacked.y + stacked.linkY : Math.round(root.middle - height / 2)
        visible: root.isRemovable
        activeFocusOnTab: root.isCurrent || removeButton.activeFocus
        text: "Hapus…"
        about: root.name
        onClicked: root.removeRequested()
    }

    /// What the pointer rests on that has more to say.
    readonly property Item hinted: namePointer.hovered && nameText.truncated ? nameText
                                 : starPointer.hovered ? star
                                 : advicePointer.hovered && adviceText.truncated ? adviceText
                                 : rolePointer.hovered ? roleText : null
    onHintedChanged: root.hintRequested(root.hinted, root.hinted === nameText ? root.name
                                                   : root.hinted === star ? star.Accessible.name
                                                   : root.hinted === adviceText ? root.advice
                                                   : root.reason)

    FocusRing {
        anchors.margins: 4
        around: 2
        visible: root.isCurrent && root.showsFocus
    }
}
