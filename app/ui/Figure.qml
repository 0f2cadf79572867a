import QtQuick
import Korvanti.Ui

/// A number in a column: every digit as wide as any other, so that figures stand under each other. Its end is
/// where its right edge is; whoever listens hears it as one text.
Item {
    id: root

    property string text: ""
    property int style: BrandText.RowSize
    property color color: root.type.color
    readonly property TypeStyle type: Brand.types[root.style]

    implicitWidth: row.implicitWidth
    implicitHeight: root.type.lineHeight
    Accessible.role: Accessible.StaticText
    Accessible.name: root.text

    Row {
        id: row
        anchors.right: parent.right
        Repeater {
            model: root.text.match(/[0-9]|\s|[^0-9\s]+/g) ?? []
            BrandText {
                required property string modelData
                readonly property bool isDigit: /^[0-9]$/.test(modelData)
                readonly property bool isBlank: /^\s$/.test(modelData)
                style: root.style
                text: modelData
                color: root.color
                // Before the unit there is room that is seen between digits so far apart, too.
                width: isDigit ? root.type.digitWidth
                     : isBlank ? Math.max(implicitWidth, Math.ceil(root.type.pixelSize * 0.3)) : implicitWidth
                horizontalAlignment: isDigit ? Text.AlignHCenter : Text.AlignLeft
                Accessible.ignored: true
            }
        }
    }
}
