import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// An action as a link.
Pressable {
    id: root

    property bool hero: false
    readonly property color linkColor: root.hero
        ? (root.down ? Brand.heroLinkPressed : root.hovered ? Brand.white : Brand.heroLink) : Brand.accent

    implicitWidth: Math.ceil(implicitContentWidth)
    implicitHeight: implicitContentHeight
    Accessible.role: Accessible.Link
    HoverHandler { cursorShape: root.enabled ? Qt.PointingHandCursor : Qt.ArrowCursor }

    contentItem: BrandText {
        text: root.text
        style: BrandText.CalloutMedium
        color: root.enabled ? root.linkColor : Brand.text3
        font.underline: root.enabled && (root.hero || root.hovered)
        opacity: root.down && !root.hero ? 0.7 : 1
        Accessible.ignored: true
    }
    FocusRing { visible: root.visualFocus; around: Brand.scaled(2); hero: root.hero }
}
