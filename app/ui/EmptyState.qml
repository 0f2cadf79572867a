import QtQuick
import Korvanti.Ui

/// Stands in the middle of what has nothing to show, and says what to do about it.
Item {
    id: root

    required property string symbol
    required property string title
    required property string body
    property string buttonText: ""
    property bool buttonEnabled: true
    property string statusText: "" ///< of what is under way
    signal triggered()

    Column {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -34
        width: Math.min(Brand.scaled(400), root.width - 48)

        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            width: Brand.scaled(64)
            height: width
            radius: Brand.scaled(18)
            color: Brand.iceFill
            Symbol {
                anchors.centerIn: parent
                name: root.symbol
                size: 30
                color: Brand.accent
            }
        }
        Item { width: 1; height: 18 }
        BrandText {
            objectName: "emptyTitle"
            width: parent.width
            text: root.title
            style: BrandText.Title
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        Item { width: 1; height: 8 }
        BrandText {
            objectName: "emptyBody"
            width: parent.width
            visible: root.body !== ""
            text: root.body
            style: BrandText.Callout
            color: Brand.text2
            font.pixelSize: Brand.types[BrandText.Body].pixelSize
            lineHeight: Brand.scaled(20)
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        Item { width: 1; height: 20; visible: button.visible }
        PillButton {
            id: button
            objectName: "emptyButton"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: root.buttonText !== ""
            text: root.buttonText
            size: 36
            enabled: root.buttonEnabled
            onClicked: root.triggered()
        }
        Item { width: 1; height: 16; visible: button.visible }
        Item { // kept free, so that nothing jumps when there is something to say
            width: parent.width
            height: Brand.types[BrandText.Caption].lineHeight
            visible: button.visible
            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                visible: root.statusText !== ""
                spacing: 8
                Spinner {
                    anchors.verticalCenter: parent.verticalCenter
                    size: 13
                }
                BrandText {
                    objectName: "emptyStatus"
                    width: Math.min(implicitWidth, Brand.scaled(360))
                    text: root.statusText
                    style: BrandText.Caption
                    elide: Text.ElideRight
                }
            }
        }
    }
}
