import QtQuick
import Korvanti.Ui

/// The head of one category in the list of items.
SectionHeader {
    id: root

    required property string section
    readonly property ItemListModel items: ListView.view?.model ?? null

    objectName: "section:" + root.section
    width: ListView.view?.width ?? 0
    title: root.items?.sections[root.section]?.title ?? ""
    symbol: root.items?.sections[root.section]?.symbol ?? ""
    sizeText: root.items?.sections[root.section]?.sizeText ?? ""
}
