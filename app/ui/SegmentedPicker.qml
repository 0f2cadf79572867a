pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// One of a few. Shows what its owner says; `activated` asks for another one.
Control {
    id: root

    required property list<string> model
    required property int currentIndex
    property string label: "" ///< for those who can't see it
    signal activated(int index)

    function choose(index: int): void {
        if (index >= 0 && index < root.model.length && index !== root.currentIndex)
            root.activated(index);
    }

    implicitWidth: row.wanted + leftPadding + rightPadding
    implicitHeight: Brand.scaled(28)
    padding: 2
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Grouping
    Accessible.name: root.label
    Keys.onLeftPressed: root.choose(root.currentIndex - 1)
    Keys.onRightPressed: root.choose(root.currentIndex + 1)

    background: Rectangle {
        radius: Brand.scaled(8)
        color: Brand.segmentedTrack
        FocusRing { visible: root.visualFocus; around: parent.radius }
    }
    contentItem: Item {
        Row {
            id: row
            // What the segments want, shared out when there is less.
            readonly property real share: Math.min(1, root.availableWidth / Math.max(1, row.wanted))
            property real wanted: 0
            height: parent.height
            Repeater {
                id: segments
                model: root.model
                onItemAdded: (index, item) => row.wanted += item.implicitWidth
                onItemRemoved: (index, item) => row.wanted -= item.implicitWidth
                AbstractButton {
                    id: segment
                    required property int index
                    required property string modelData
                    readonly property bool chosen: segment.index === root.currentIndex
                    objectName: "segment" + segment.index
                    text: segment.modelData
                    implicitWidth: bold.implicitWidth + Brand.scaled(24)
                    width: segment.implicitWidth * row.share
                    height: row.height
                    focusPolicy: Qt.NoFocus
                    Accessible.role: Accessible.RadioButton
                    Accessible.name: segment.text
                    Accessible.checked: segment.chosen
                    onClicked: root.choose(segment.index)

                    background: Rectangle {
                        radius: Brand.scaled(6)
                        color: segment.chosen ? Brand.control
                             : Brand.translucent(Brand.text, segment.down ? 0.08 : segment.hovered ? 0.04 : 0)
                        border.width: segment.chosen ? 1 : 0
                        border.color: Brand.controlBorder
                    }
                    contentItem: Item {
                        BrandText { // so that nothing moves when the weight changes
                            id: bold
                            visible: false
                            text: segment.text
                            style: BrandText.Callout
                            font.weight: Font.DemiBold
                        }
                        BrandText {
                            anchors.fill: parent
                            text: segment.text
                            style: BrandText.Callout
                            font.weight: segment.chosen ? Font.DemiBold : Font.Normal
                            color: root.enabled ? (segment.chosen ? Brand.text : Brand.text2) : Brand.text3
                            horizontalAlignment: Text.AlignHCenter
                            verticalAlignment: Text.AlignVCenter
                            elide: Text.ElideRight
                            Accessible.ignored: true
                        }
                    }
                    Hint { text: segment.text; shown: segment.hovered && row.share < 1 }
                }
            }
        }
    }
}
