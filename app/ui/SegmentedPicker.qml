pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// One of a few. Shows what its owner says; `activated` asks for another one. The chosen segment is the one
/// stop of the Tab key.
FocusScope {
    id: root

    required property list<string> model
    required property int currentIndex
    property string label: "" ///< for those who can't see it
    signal activated(int index)

    function choose(index: int): void {
        if (index >= 0 && index < root.model.length && index !== root.currentIndex)
            root.activated(index);
    }

    readonly property int padding: 2

    implicitWidth: row.wanted + 2 * padding
    implicitHeight: Brand.scaled(28)
    Accessible.role: Accessible.Grouping
    Accessible.name: root.label
    Accessible.description: root.model[root.currentIndex] ?? ""
    Keys.onLeftPressed: root.choose(root.currentIndex - 1)
    Keys.onRightPressed: root.choose(root.currentIndex + 1)

    Rectangle {
        anchors.fill: parent
        radius: Brand.scaled(8)
        color: Brand.segmentedTrack
        FocusRing { visible: root.activeFocus; around: parent.radius } // a click doesn't bring the focus here
    }
    Row {
        id: row
        // What the segments want, shared out when there is less.
        readonly property real share: Math.min(1, (root.width - 2 * root.padding) / Math.max(1, row.wanted))
        property real wanted: 0
        x: root.padding
        y: root.padding
        height: root.height - 2 * root.padding
        Repeater {
            model: root.model
            onItemAdded: (index, item) => row.wanted += item.implicitWidth
            onItemRemoved: (index, item) => row.wanted -= item.implicitWidth
            Item {
                id: segment
                required property int index
                required property string modelData
                readonly property bool chosen: segment.index === root.currentIndex
                objectName: "segment" + segment.index
                implicitWidth: bold.implicitWidth + Brand.scaled(24)
                width: segment.implicitWidth * row.share
                height: row.height
                focus: segment.chosen
                activeFocusOnTab: segment.chosen || segment.activeFocus
                Accessible.role: Accessible.RadioButton
                Accessible.name: segment.modelData
                Accessible.focusable: true
                Accessible.checkable: true
                Accessible.checked: segment.chosen
                Accessible.onPressAction: root.choose(segment.index)
                Accessible.onToggleAction: root.choose(segment.index)

                HoverHandler { id: pointer }
                TapHandler {
                    id: tap
                    gesturePolicy: TapHandler.ReleaseWithinBounds
                    onTapped: root.choose(segment.index)
                }
                Rectangle {
                    anchors.fill: parent
                    radius: Brand.scaled(6)
                    color: segment.chosen ? Brand.control
                         : Brand.translucent(Brand.text, tap.pressed ? 0.08 : pointer.hovered ? 0.04 : 0)
                    border.width: segment.chosen ? 1 : 0
                    border.color: Brand.controlBorder
                }
                BrandText { // so that nothing moves when the weight changes
                    id: bold
                    visible: false
                    text: segment.modelData
                    style: BrandText.Callout
                    font.weight: Font.DemiBold
                }
                BrandText {
                    anchors.fill: parent
                    text: segment.modelData
                    style: BrandText.Callout
                    font.weight: segment.chosen ? Font.DemiBold : Font.Normal
                    color: root.enabled ? (segment.chosen ? Brand.text : Brand.text2) : Brand.text3
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }
                Hint { text: segment.modelData; shown: pointer.hovered && row.share < 1 }
            }
        }
    }
}
