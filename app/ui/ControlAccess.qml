import QtQuick
import QtQuick.Templates as T

/// How every control is used by keys and told to those who can't see it.
Item {
    id: root

    required property T.AbstractButton control
    property string about: ""
    readonly property string description: [root.about, root.control.enabled ? "" : "tidak tersedia"]
                                              .filter(words => words !== "").join(", ")

    function press(): void {
        if (root.control.enabled)
            root.control.clicked();
    }

    // A key that is held down presses but once: its owner means what was there when it went down.
    Keys.onPressed: event => {
        const isReturn = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
        if (isReturn && !event.isAutoRepeat)
            root.press();
        event.accepted = isReturn || event.key === Qt.Key_Space && event.isAutoRepeat;
    }
    Keys.onReleased: event => event.accepted = event.key === Qt.Key_Space && event.isAutoRepeat
}
