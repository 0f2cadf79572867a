import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// What all buttons share.
AbstractButton {
    id: root

    property string about: "" ///< more than its name, for those who can't see it

    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: root.text
    Accessible.description: access.description
    Accessible.onPressAction: access.press()
    Keys.forwardTo: ControlAccess { id: access; control: root; about: root.about }
}
