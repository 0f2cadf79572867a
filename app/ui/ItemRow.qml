pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// One item: a checkbox, what it is and where it lies, and at the right its size and what cleaning does to it.
RowItem {
    id: root

    required property int index
    required property string title
    required property string detail
    required property string path
    required property string fullPath
    required property list<string> warnings
    required property string sizeText
    required property string lastActivity
    required property string verb
    required property int safety
    required property string spokenTitle
    required property string spokenDetail
    required property bool isSelectable
    required property bool isSelected
    required property bool isRecommended
    required property bool isManual
    required property string instructions
    required property bool showInstructions

    property bool isCurrent: false
    property bool showsFocus: false ///< the current row, while keys are used
    property string spokenPlace: "" ///< among the others
    property bool endsSection: false

    signal pressed
    signal toggleRequested
    signal guideRequested
    signal menuRequested(real x, real y)
    signal hintRequested(Item about, string text) ///< about nothing: no longer

    /// A recycled row is another one, and does not move into its shape.
    function startAgain(): void {
        guide.moves = false;
    }

    readonly property int padding: Brand.scaled(12)
    readonly property int margin: 24
    readonly property int textLeft: root.margin + Brand.scaled(28)
    readonly property int figuresWidth: Brand.scaled(168)
    readonly property int beside: root.width - root.textLeft - Brand.scaled(20) - root.figuresWidth - root.margin
    /// With large type the figures stand under the words.
    readonly property bool isNarrow: root.beside < Brand.scaled(200)

    objectName: "row:" + root.fullPath
    activeFocusOnTab: root.isCurrent || root.activeFocus // which must not lose it
    implicitHeight: Math.max(words.height, figures.y - root.padding + figures.height) + 2 * root.padding
        + (root.endsSection ? 0 : 1)
    Accessible.role: Accessible.CheckBox
    Accessible.name: root.spokenTitle
    Accessible.description: [root.spokenDetail, root.lastActivity, root.spokenPlace].filter(text => text !== "").join(", ")
    Accessible.checkable: root.isSelectable
    Accessible.checked: root.isSelected
    Accessible.onPressAction: root.toggleRequested()
    Accessible.onToggleAction: root.toggleRequested()
    Accessible.focusable: true
    Accessible.focused: root.activeFocus

    Rectangle {
        anchors.fill: parent
        anchors.bottomMargin: root.endsSection ? 0 : 1
        color: tap.pressed ? Brand.rowPressed : Brand.rowHover
        opacity: pointer.hovered || tap.pressed ? 1 : 0
        Behavior on opacity { NumberAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutCubic } }
    }
    Rectangle {
        visible: !root.endsSection
        anchors { left: parent.left; leftMargin: root.textLeft; right: parent.right; bottom: parent.bottom }
        height: 1
        color: Brand.separator
    }
    HoverHandler { id: pointer }
    TapHandler {
        id: tap
        gesturePolicy: TapHandler.WithinBounds
        onPressedChanged: if (pressed) root.pressed()
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        gesturePolicy: TapHandler.WithinBounds
        onPressedChanged: {
            if (pressed) {
                root.pressed();
                root.menuRequested(point.position.x, point.position.y);
            }
        }
    }

    CheckMark {
        objectName: "check:" + root.fullPath
        x: root.margin
        y: root.padding + Math.round((titleLine.height - height) / 2) - 1
        marked: root.isSelected
        enabled: root.isSelectable
        label: root.title
        focusPolicy: Qt.NoFocus // Space on the row does the same
        Accessible.ignored: true // the row says it
        onClicked: root.toggleRequested()
    }

    // Laid out by bindings: a positioner would know its height too late, and the list would jump.
    Item {
        id: words

        x: root.textLeft
        y: root.padding
        width: root.isNarrow ? root.width - x - root.margin : root.beside
        height: guide.y + guide.height

        Item {
            id: titleLine

            readonly property real beside: (hand.visible ? hand.width + 8 : 0) + badge.width + 8

            width: parent.width
            height: Math.max(titleText.height, badge.height)
            BrandText {
                id: titleText
                objectName: "title"
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, Math.max(0, words.width - titleLine.beside))
                style: BrandText.BodyMedium
                text: root.title
                elide: Text.ElideRight
                horizontalAlignment: Text.AlignLeft
                maximumLineCount: 1
                HoverHandler { id: titlePointer }
            }
            Symbol {
                id: hand
                objectName: "hand"
                anchors { left: titleText.right; leftMargin: 8; verticalCenter: parent.verticalCenter }
                visible: root.isRecommended
                name: "hand.point.right.fill"
                size: 11
                color: Brand.accent
                Accessible.ignored: !visible
                Accessible.role: Accessible.Graphic
                Accessible.name: "Direkomendasikan"
                HoverHandler { id: handPointer }
            }
            SafetyBadge {
                id: badge
                anchors {
                    left: hand.visible ? hand.right : titleText.right; leftMargin: 8
                    verticalCenter: parent.verticalCenter
                }
                safety: root.safety
            }
        }
        BrandText {
            id: detailText
            y: titleLine.height + 2
            visible: root.detail !== ""
            width: parent.width
            style: BrandText.Callout
            color: Brand.text2
            text: root.detail
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignLeft
        }
        TextInput {
            id: pathText

            readonly property TypeStyle type: Brand.types[BrandText.Path]

            objectName: "path"
            y: (detailText.visible ? detailText.y + detailText.height : titleLine.height) + 2
            width: parent.width
            height: type.lineHeight
            verticalAlignment: TextInput.AlignVCenter
            readOnly: true
            selectByMouse: true
            clip: true
            // What is selected is taken out of the whole path.
            text: activeFocus ? root.path : elided.elidedText
            color: Brand.text3
            selectionColor: Brand.fill
            selectedTextColor: Brand.white
            font.family: type.family
            font.pixelSize: type.pixelSize
            font.hintingPreference: Font.PreferNoHinting
            renderType: TextInput.NativeRendering
            horizontalAlignment: TextInput.AlignLeft
            activeFocusOnTab: false
            onActiveFocusChanged: if (!activeFocus) deselect()
            Accessible.role: Accessible.StaticText
            Accessible.name: root.path
            TextMetrics {
                id: elided
                font: pathText.font
                text: root.path
                elide: Text.ElideMiddle
                elideWidth: pathText.width - 1
            }
            HoverHandler { id: pathPointer; cursorShape: Qt.IBeamCursor }
        }
        Repeater {
            id: warnings
            model: root.warnings
            Item {
                id: warning
                required property int index
                required property string modelData
                readonly property Item above: warning.index > 0 ? warnings.itemAt(warning.index - 1) : pathText
                objectName: "warning"
                y: (above?.y ?? 0) + (above?.height ?? 0) + 4
                width: words.width
                height: warningText.height
                Symbol {
                    id: mark
                    y: Math.round((Brand.types[BrandText.Caption].lineHeight - height) / 2)
                    name: "exclamationmark.triangle.fill"
                    size: 13
                    color: Brand.amber
                }
                BrandText {
                    id: warningText
                    x: mark.width + Brand.scaled(6)
                    width: parent.width - x
                    style: BrandText.Caption
                    color: Brand.warnText
                    text: warning.modelData
                    wrapMode: Text.Wrap
                    horizontalAlignment: Text.AlignLeft
                }
            }
        }
        Item {
            id: guide

            property bool moves: false
            readonly property Item above: warnings.count > 0 ? warnings.itemAt(warnings.count - 1) : pathText
            readonly property int gap: Brand.scaled(8)
            readonly property bool isOpen: root.isManual && root.showInstructions

            y: (above?.y ?? 0) + (above?.height ?? 0)
            width: parent.width
            height: isOpen ? guideText.height + gap : 0
            visible: height > 0
            clip: true
            Behavior on height {
                enabled: guide.moves
                NumberAnimation { duration: Brand.openDuration; easing.type: Easing.OutCubic }
            }
            Callout {
                id: guideText
                objectName: "guide"
                y: guide.gap
                width: parent.width
                symbol: "hand.point.right.fill"
                tint: Brand.accent
                text: root.instructions
            }
        }
    }

    Item {
        id: figures

        x: root.isNarrow ? root.textLeft : root.width - width - root.margin
        y: root.padding + (root.isNarrow ? words.height + 4 : 0)
        width: root.isNarrow ? words.width : root.figuresWidth
        height: last.y + last.height

        readonly property Item last: guideButton.visible ? guideButton : verbText.visible ? verbText
                                   : dateText.visible ? dateText : sizeFigure

        Figure {
            id: sizeFigure
            objectName: "size"
            x: root.isNarrow ? 0 : parent.width - width
            style: BrandText.RowSize
            text: root.sizeText
        }
        BrandText {
            id: dateText
            y: sizeFigure.height
            visible: root.lastActivity !== ""
            width: parent.width
            style: BrandText.Caption
            text: root.lastActivity
            wrapMode: Text.Wrap
            horizontalAlignment: root.isNarrow ? Text.AlignLeft : Text.AlignRight
        }
        BrandText {
            id: verbText
            objectName: "verb"
            y: (dateText.visible ? dateText.y + dateText.height : sizeFigure.height) + 1
            visible: root.verb !== ""
            width: parent.width
            style: BrandText.Caption
            color: Brand.text3
            text: root.verb
            wrapMode: Text.Wrap
            horizontalAlignment: root.isNarrow ? Text.AlignLeft : Text.AlignRight
        }
        LinkButton {
            id: guideButton
            objectName: "guideButton:" + root.fullPath
            y: verbText.y
            x: root.isNarrow ? 0 : parent.width - width
            visible: root.isManual
            activeFocusOnTab: root.isCurrent || guideButton.activeFocus
            text: root.showInstructions ? "Tutup panduan" : "Cara membersihkan"
            onClicked: {
                guide.moves = true;
                root.guideRequested();
            }
        }
    }

    /// What the pointer rests on that has more to say.
    readonly property Item hinted: titlePointer.hovered && titleText.truncated ? titleText
                                 : handPointer.hovered ? hand
                                 : pathPointer.hovered && elided.elidedText !== root.path ? pathText : null
    onHintedChanged: root.hintRequested(root.hinted, root.hinted === titleText ? root.title
                                                   : root.hinted === hand ? hand.Accessible.name
                                                   : root.path)

    FocusRing {
        anchors.margins: 4
        around: 2
        visible: root.isCurrent && root.showsFocus
    }
}
