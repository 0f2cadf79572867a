import QtQuick
import Korvanti.Ui

/// How full the disk is, and when that was looked into.
Column {
    id: root

    required property FrameModel frame
    required property OverviewModel model

    BrandText {
        style: BrandText.Overline
        text: "MACINTOSH HD"
    }
    Item {
        width: 1
        height: 4
    }
    BrandText {
        objectName: "capacityText"
        width: root.width
        style: BrandText.Capacity
        text: root.frame.capacityText
        color: root.frame.isLow ? Brand.coral : Brand.ink
        wrapMode: Text.WordWrap
    }
    Item {
        width: 1
        height: 11
    }
    CapacityBar {
        objectName: "capacityBar"
        width: root.width
        used: root.frame.usedBytes
        total: root.frame.totalBytes
        warning: root.frame.isLow
    }
    Item {
        width: 1
        height: 6
    }
    Row {
        spacing: 7
        Spinner {
            anchors.verticalCenter: status.verticalCenter
            visible: root.model.isScanning
        }
        BrandText {
            id: status
            objectName: "scanLine"
            width: Math.min(implicitWidth, root.width - x)
            style: BrandText.Caption
            text: root.model.isScanning ? root.model.scanStatus : root.model.scanLine
            elide: Text.ElideRight
        }
    }
}
