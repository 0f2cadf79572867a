import QtQuick
import Korvanti.Ui

/// Asks before work under way is left, and then waits for what must end.
Sheet {
    id: root

    required property FrameModel model

    shown: root.model.asksToQuit || root.model.isQuitting
    sheetWidth: 440
    sheetHeight: 24 + heading.height + 10 + words.height + 24 + footer.height
    title: heading.text
    page: root.model.isQuitting ? 1 : 0
    defaultButton: leave
    onDismissed: root.model.stay()

    BrandText {
        id: heading
        x: 28
        y: 24
        width: parent.width - 56
        text: root.model.isQuitting ? "Menyelesaikan pekerjaan terakhir…" : "Keluar dari Korvanti?"
        style: BrandText.Title
        wrapMode: Text.Wrap
    }
    BrandText {
        id: words
        objectName: "quitText"
        x: 28
        anchors.top: heading.bottom
        anchors.topMargin: 10
        width: parent.width - 56
        text: root.model.isQuitting ? "Korvanti keluar sesudahnya." : root.model.quitText
        color: Brand.text2
        wrapMode: Text.Wrap
    }
    SheetFooter {
        id: footer
        anchors.bottom: parent.bottom
        width: parent.width
        visible: !root.model.isQuitting
        PlainButton {
            objectName: "stayButton"
            text: "Batal"
            size: 32
            onClicked: root.model.stay()
        }
        PillButton {
            id: leave
            objectName: "quitButton"
            text: "Keluar"
            onClicked: root.model.confirmQuit()
        }
    }
}
