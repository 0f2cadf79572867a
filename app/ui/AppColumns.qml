import QtQuick
import Korvanti.Ui

/// Where the columns of the applications stand.
QtObject {
    id: root

    required property real width ///< of the whole list

    readonly property int margin: 24
    readonly property int iconSize: Brand.scaled(28)
    readonly property int nameX: margin + iconSize + Brand.scaled(12)
    readonly property int roleWidth: Brand.scaled(80)
    readonly property int totalWidth: Brand.scaled(100)
    readonly property int usedWidth: Brand.scaled(140)
    readonly property int actionWidth: Brand.scaled(60)
    readonly property real actionX: root.width - margin - actionWidth
    readonly property real usedX: actionX - usedWidth
    readonly property real totalX: usedX - 24 - totalWidth
    readonly property real roleX: totalX - roleWidth
    readonly property real nameWidth: roleX - Brand.scaled(20) - nameX
    /// With large type the columns stand under each other.
    readonly property bool isNarrow: nameWidth < Brand.scaled(160)
}
