pragma ComponentBehavior: Bound
import QtQuick
import Korvanti.Ui

/// What was moved to a volume, and whether it is still to be reached.
Card {
    id: root

    required property SsdModel model

    signal menuRequested(int record, Item button)

    gap: 0

    BrandText {
        width: parent.width
        style: BrandText.Headline
        text: "Data yang dipindah ke SSD"
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    BrandText {
        objectName: "nothingMoved"
        width: parent.width
        visible: !root.model.hasMoved
        style: BrandText.Callout
        color: Brand.text2
        text: "Belum ada. Di Pembersihan, klik kanan item bertanda 'Periksa dulu' (arsip, output, riwayat) › Pindahkan ke SSD."
        wrapMode: Text.Wrap
    }
    Item { width: 1; height: 4; visible: root.model.hasMoved }
    Column {
        id: records
        width: parent.width

        Repeater {
            id: rows
            model: root.model.moved
            // The keyboard goes on from where the record was.
            onItemRemoved: (index, item) => {
                if (item.focus)
                    Qt.callLater(root.focusNear, index);
            }

            MovedRow {
                id: record
                objectName: "moved" + record.index
                width: records.width
                isLast: record.index === rows.count - 1
                onMenuRequested: button => root.menuRequested(record.index, button)
            }
        }
    }

    function focusNear(index: int): void {
        (rows.itemAt(Math.min(index, rows.count - 1)) as MovedRow)?.takeFocus();
    }
}
