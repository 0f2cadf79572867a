import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// Takes a number down and up by steps. The number itself stands in the words beside it.
Item {
    id: root

    required property SteppedSetting setting
    readonly property string label: root.setting.text
    // What is asked for by those who can't see it.
    readonly property int value: root.setting.number
    readonly property int minimumValue: root.setting.lowest
    readonly property int maximumValue: root.setting.highest

    implicitWidth: Brand.scaled(48)
    implicitHeight: Brand.scaled(22)
    activeFocusOnTab: true
    Accessible.role: Accessible.SpinBox
    Accessible.name: root.label
    Accessible.focusable: true
    Accessible.onIncreaseAction: root.setting.raise()
    Accessible.onDecreaseAction: root.setting.lower()
    Keys.onUpPressed: root.setting.raise()
    Keys.onDownPressed: root.setting.lower()
    Keys.onPressed: event => {
        event.accepted = true;
        if (event.key === Qt.Key_Plus)
            root.setting.raise();
        else if (event.key === Qt.Key_Minus)
            root.setting.lower();
        else
            event.accepted = false;
    }

    component Half: Pressable {
        id: half

        required property string symbol

        width: parent.width / 2
        height: parent.height
        focusPolicy: Qt.NoFocus
        autoRepeat: true
        background: Rectangle {
            anchors { fill: parent; margins: 1 }
            radius: Brand.scaled(6)
            color: half.down ? Brand.controlPressed : half.hovered && half.enabled ? Brand.controlHover
                                                                                    : Brand.translucent(Brand.controlHover, 0)
            Behavior on color { ColorAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutQuad } }
        }
        contentItem: Item {
            Symbol {
                anchors.centerIn: parent
                name: half.symbol
                size: 12
                color: half.enabled ? Brand.text2 : Brand.translucent(Brand.text3, 0.5)
            }
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: Brand.scaled(7)
        color: Brand.control
        border.width: 1
        border.color: Brand.controlBorder
        FocusRing { visible: root.activeFocus; around: parent.radius } // a click gives it none
    }
    Half {
        objectName: "lower"
        text: "Kurangi"
        symbol: "minus"
        about: root.label
        enabled: root.setting.canLower
        onClicked: root.setting.lower()
    }
    Rectangle {
        anchors.centerIn: parent
        width: 1
        height: parent.height - Brand.scaled(10)
        color: Brand.controlBorder
    }
    Half {
        objectName: "raise"
        x: parent.width - width
        text: "Tambah"
        symbol: "plus"
        about: root.label
        enabled: root.setting.canRaise
        onClicked: root.setting.raise()
    }
}
