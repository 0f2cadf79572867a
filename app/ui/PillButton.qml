import QtQuick
import QtQuick.Controls.Basic
import Korvanti.Ui

/// The one filled button of its region.
Pressable {
    id: root

    enum Kind { Filled, Hero, Destructive }

    property int kind: PillButton.Filled
    property real size: 32 ///< height
    readonly property bool hero: root.kind === PillButton.Hero
    readonly property bool destructive: root.kind === PillButton.Destructive
    readonly property color atRest: root.hero ? Brand.heroControl : root.destructive ? Brand.danger : Brand.fill
    readonly property color whenHovered: root.hero ? Brand.heroControlHover
                                              : root.destructive ? Brand.dangerHover : Brand.fillHover
    readonly property color whenPressed: root.hero ? Brand.heroControlPressed
                                              : root.destructive ? Brand.dangerPressed : Brand.fillPressed
    readonly property color whenDisabled: root.hero ? Brand.heroDisabledFill : Brand.disabledFill

    implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
    implicitHeight: Brand.scaled(root.size)
    leftPadding: Brand.scaled(18)
    rightPadding: Brand.scaled(18)

    contentItem: BrandText {
        text: root.text
        style: BrandText.RowSize
        font.pixelSize: root.size < 32 ? Brand.types[BrandText.Callout].pixelSize : type.pixelSize
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        color: root.enabled ? (root.hero ? Brand.heroControlText : Brand.white)
                            : (root.hero ? Brand.heroDisabledText : Brand.text3)
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: height / 2
        color: !root.enabled ? root.whenDisabled : root.down ? root.whenPressed
             : root.hovered ? root.whenHovered : root.atRest
        Behavior on color { ColorAnimation { duration: Brand.hoverDuration; easing.type: Easing.OutQuad } }
        FocusRing { visible: root.visualFocus; around: parent.radius; hero: root.hero }
    }
}
