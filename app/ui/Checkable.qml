import QtQuick
import QtQuick.Templates as T
import Korvanti.Ui

/// What shows whether something is chosen, as its owner says: a click only asks.
T.CheckBox { // a button with another role has its own again once somebody listens
    id: root

    required property bool marked
    required property string label ///< what is chosen, for those who can't see it
    property string about: ""   ///< and what else there is to it

    focusPolicy: Qt.StrongFocus
    checked: root.marked
    nextCheckState: () => root.marked ? Qt.Checked : Qt.Unchecked
    Accessible.name: root.label
    Accessible.description: access.description
    Keys.forwardTo: ControlAccess { id: access; control: root; about: root.about }
}
