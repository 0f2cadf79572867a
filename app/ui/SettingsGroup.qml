import QtQuick
import Korvanti.Ui

/// Settings that belong together: rows in a box, with a title above and words below.
Column {
    id: root

    required property string title
    property string footer: ""
    property string warning: "" ///< what went wrong here
    default property alias rows: column.data

    BrandText {
        x: 4
        width: parent.width - 8
        style: BrandText.CalloutMedium
        font.weight: Font.DemiBold
        text: root.title
        wrapMode: Text.Wrap
        bottomPadding: 7 - type.lead
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Rectangle {
        width: parent.width
        height: column.height
        radius: 10
        color: Brand.card
        border.width: 1
        border.color: Brand.cardBorder
        Column {
            id: column
            width: parent.width
        }
    }
    BrandText {
        objectName: "groupWarning"
        x: 4
        visible: root.warning !== ""
        width: parent.width - 8
        style: BrandText.Caption
        color: Brand.warnText
        text: root.warning
        wrapMode: Text.Wrap
        topPadding: 5 + type.lead
        bottomPadding: -type.lead
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    BrandText {
        x: 4
        visible: root.footer !== ""
        width: parent.width - 8
        style: BrandText.Caption
        text: root.footer
        wrapMode: Text.Wrap
        topPadding: 5 + type.lead
        bottomPadding: -type.lead
    }
}
