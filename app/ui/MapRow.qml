pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// One folder of the map: what it is called, how large it is beside the largest root, and its size.
RowItem {
    id: root

    required property int index
    required property string name
    required property string path
    required property int depth
    required property bool isExpandable
    required property bool isExpanded
    required property double fraction
    required property string sizeText
    required property string lockText
    required property string spokenText
    required property string spokenState

    property bool isCurrent: false
    property bool showsFocus: false ///< the current row, while keys are used
    property string spokenPlace: "" ///< among the others

    signal pressed
    signal toggleRequested
    signal menuRequested(real x, real y)
    signal hintRequested(Item about, string text) ///< about nothing: no longer

    readonly property int margin: 24
    readonly property int sizeWidth: Math.max(Brand.scaled(90), figure.implicitWidth)
    /// However deep a folder lies, there is room for its name.
    readonly property real indent: Math.min(root.depth * 20, Math.max(0, bar.x - 12 - Brand.scaled(120) - root.margin))

    objectName: "row:" + root.path
    activeFocusOnTab: root.isCurrent || root.activeFocus // which must not lose it
    implicitHeight: Math.max(Brand.scaled(34), nameText.height + 8)
    Accessible.role: Accessible.TreeItem
    Accessible.name: root.spokenText
    Accessible.description: root.spokenState + ", " + root.spokenPlace
    Accessible.focusable: true
    Accessible.focused: root.activeFocus
    Accessible.onPressAction: root.toggleRequested()

    Rectangle {
        anchors { fill: parent; leftMargin: 12; rightMargin: 12 }
        radius: 7
        color: tap.pressed ? Brand.rowPressed : Brand.rowHover
        opacity: pointer.hovered || tap.pressed ? 1 : 0
        Behavior on opacity { NumberAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutCubic } }
    }
    HoverHandler { id: pointer }
    TapHandler {
        id: tap
        gesturePolicy: TapHandler.WithinBounds
        onPressedChanged: if (pressed) root.pressed()
        onTapped: if (point.pressPosition.x < nameText.x) root.toggleRequested()
        onDoubleTapped: if (point.pressPosition.x >= nameText.x) root.toggleRequested()
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

    Symbol {
        id: caret
        objectName: "caret:" + root.path
        x: root.margin - 2 + root.indent
        anchors.verticalCenter: parent.verticalCenter
        visible: root.isExpandable
        name: root.isExpanded ? "chevron.down" : "chevron.right"
        size: 12
        color: Brand.text2
    }
    BrandText {
        id: nameText
        objectName: "name"
        x: root.margin + root.indent + Brand.scaled(18)
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, Math.max(0, bar.x - 12 - x - (lock.visible ? lock.width + 8 : 0)))
        style: root.depth === 0 ? BrandText.RowSize : BrandText.Body
        text: root.name
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignLeft
        maximumLineCount: 1
        Accessible.ignored: true
        HoverHandler { id: namePointer }
    }
    Symbol {
        id: lock
        objectName: "lock:" + root.path
        anchors { left: nameText.right; leftMargin: 8; verticalCenter: parent.verticalCenter }
        visible: root.lockText !== ""
        name: "lock.fill"
        size: 13
        color: Brand.amber
        HoverHandler { id: lockPointer }
    }
    Rectangle {
        id: bar
        objectName: "bar:" + root.path
        x: root.width - root.margin - root.sizeWidth - 12 - width
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(160, Math.round(root.width * 0.22))
        height: 6
        radius: 3
        color: Brand.iceFill
        Rectangle {
            objectName: "fill:" + root.path
            width: Math.max(2, root.fraction * parent.width)
            height: parent.height
            radius: Math.min(width, height) / 2
            color: Brand.translucent(Brand.accent, 0.6)
        }
    }
    Figure {
        id: figure
        objectName: "size:" + root.path
        anchors { right: parent.right; rightMargin: root.margin; verticalCenter: parent.verticalCenter }
        style: BrandText.BodyMedium
        text: root.sizeText
        Accessible.ignored: true
    }

    /// What the pointer rests on that has more to say.
    readonly property Item hinted: lockPointer.hovered ? lock
                                 : namePointer.hovered && nameText.truncated ? nameText : null
    onHintedChanged: root.hintRequested(root.hinted, root.hinted === lock ? root.lockText : root.name)

    FocusRing {
        anchors { leftMargin: 12; rightMargin: 12; topMargin: 1; bottomMargin: 1 }
        around: 3
        visible: root.isCurrent && root.showsFocus
    }
}
