import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// A field to search by. `edited` tells what the user has written; Escape takes it away.
TextField {
    id: root

    signal edited(string text)

    implicitWidth: Brand.scaled(240)
    implicitHeight: Brand.scaled(28)
    leftPadding: Brand.scaled(30)
    rightPadding: clear.visible ? Brand.scaled(30) : Brand.scaled(10)
    topPadding: 0
    bottomPadding: 0
    verticalAlignment: TextInput.AlignVCenter
    font.family: Brand.types[BrandText.Callout].family
    font.pixelSize: Brand.types[BrandText.Callout].pixelSize
    font.hintingPreference: Font.PreferNoHinting
    renderType: Text.NativeRendering
    color: Brand.text
    placeholderTextColor: Brand.text3
    selectionColor: Brand.fill
    selectedTextColor: Brand.white
    selectByMouse: true
    Accessible.role: Accessible.EditableText
    Accessible.name: root.placeholderText
    onTextEdited: root.edited(root.text)
    Keys.onEscapePressed: event => {
        event.accepted = root.text !== "";
        root.empty();
    }

    function empty(): void {
        root.text = "";
        root.edited("");
    }

    background: Rectangle {
        radius: Brand.scaled(7)
        color: root.hovered && !root.activeFocus ? Brand.controlHover : Brand.control
        border.width: 1
        border.color: root.activeFocus ? Brand.focusRing : Brand.controlBorder
        FocusRing {
            visible: root.activeFocus && root.focusReason !== Qt.MouseFocusReason
            around: parent.radius
        }
    }
    Symbol {
        x: Brand.scaled(9)
        anchors.verticalCenter: parent.verticalCenter
        name: "magnifyingglass"
        size: 14
        color: Brand.text2
    }
    IconButton {
        id: clear
        objectName: "clearSearchButton"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: root.text !== ""
        focusPolicy: Qt.NoFocus
        symbol: "xmark"
        symbolSize: 10
        hint: "Kosongkan pencarian"
        onClicked: root.empty()
    }
}
