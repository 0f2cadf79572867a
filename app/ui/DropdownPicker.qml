pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import Korvanti.Ui

/// One of many, from a list that opens. Shows what its owner says; `activated` asks for another one.
ComboBox {
    id: root

    property string label: "" ///< for those who can't see it
    property list<string> symbols ///< one a choice, if any

    implicitWidth: Brand.scaled(168)
    implicitHeight: Brand.scaled(28)
    leftPadding: Brand.scaled(11)
    rightPadding: Brand.scaled(28)
    topPadding: 0
    bottomPadding: 0
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.ComboBox
    // The focus stays here while the list is open, so here is told what the keys are at.
    Accessible.name: root.popup.visible && root.highlightedIndex >= 0
                     ? root.label + ", " + root.textAt(root.highlightedIndex) : root.label
    Accessible.description: root.displayText + (root.popup.visible ? ", terbuka" : ", tertutup")

    contentItem: BrandText {
        text: root.displayText
        style: BrandText.CalloutMedium
        color: root.enabled ? Brand.text : Brand.text3
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    indicator: Symbol {
        x: root.width - width - Brand.scaled(8)
        anchors.verticalCenter: root.verticalCenter
        name: "chevron.up.chevron.down"
        size: 13
        color: root.enabled ? Brand.text2 : Brand.text3
    }
    background: Rectangle {
        radius: Brand.scaled(7)
        color: root.down ? Brand.controlPressed : root.hovered ? Brand.controlHover : Brand.control
        border.width: 1
        border.color: root.enabled ? Brand.controlBorder : Brand.cardBorder
        Behavior on color { ColorAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutQuad } }
        FocusRing { visible: root.visualFocus; around: parent.radius }
    }
    delegate: T.ItemDelegate { // whose own role is the one that it has here
        id: choice
        required property int index
        required property string modelData
        readonly property bool chosen: choice.index === root.currentIndex
        objectName: "choice" + choice.index
        width: ListView.view?.width ?? 0
        height: Brand.scaled(26)
        text: choice.modelData
        Accessible.name: choice.text
        Accessible.selected: choice.chosen
        contentItem: Item {
            Symbol {
                x: Brand.scaled(8)
                anchors.verticalCenter: parent.verticalCenter
                visible: choice.chosen
                name: "checkmark"
                size: 11
                color: words.color
            }
            Symbol {
                id: picture
                readonly property string own: root.symbols[choice.index] ?? ""
                x: Brand.scaled(26)
                anchors.verticalCenter: parent.verticalCenter
                visible: own !== ""
                name: own
                size: 15
                color: root.highlightedIndex === choice.index ? Brand.white : Brand.accent
            }
            BrandText {
                id: words
                x: Brand.scaled(picture.visible ? 49 : 26)
                width: parent.width - x - Brand.scaled(8)
                anchors.verticalCenter: parent.verticalCenter
                text: choice.text
                style: BrandText.Callout
                color: root.highlightedIndex === choice.index ? Brand.white : Brand.text
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        background: Rectangle {
            radius: Brand.scaled(5)
            color: root.highlightedIndex === choice.index ? Brand.fill : "transparent"
        }
    }
    popup: Popup {
        y: root.height + 4
        width: Math.max(root.width, Brand.scaled(root.symbols.length > 0 ? 230 : 200))
        height: Math.min(list.contentHeight + 2 * padding, Brand.scaled(320))
        padding: 5
        contentItem: ListView {
            id: list
            clip: true
            model: root.popup.visible ? root.delegateModel : null
            currentIndex: root.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: SlimScrollBar {}
        }
        background: Rectangle {
            radius: Brand.scaled(8)
            color: Brand.panel
            border.width: 1
            border.color: Brand.controlBorder
            Shadow { source: Qt.resolvedUrl("art/panel-shadow.png"); spread: 16; corner: 44; drop: 6; strength: 0.3 }
        }
        enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Brand.fadeDuration } }
        exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Brand.fadeDuration } }
    }
}
