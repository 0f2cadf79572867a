#pragma once

#include "analysis/StorageMap.h"

#include <QAbstractListModel>
#include <qqmlregistration.h>
#include <string>
#include <unordered_set>
#include <vector>

namespace korvanti {

/// The nodes of a map that can be seen: the roots, and below each expanded node its children. A saved map may
/// be of any depth and width; nothing here calls itself, and a click touches the rows that come and go only.
class MapTree : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

public:
    using QAbstractListModel::QAbstractListModel;

    /// Shows a map that stays as it is until the next call, or none. What was expanded is again, by its path;
    /// rows that stay where they are keep their items on the screen, and with them the keyboard's focus.
    void setMap(const StorageMap* map);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Null for a number that is no row.
    [[nodiscard]] const MapNode* node(int row) const;
    /// The row that this one lies below; -1 for a root.
    Q_INVOKABLE int parentRow(int row) const;
    /// True when that changed anything.
    Q_INVOKABLE bool expand(int row);
    Q_INVOKABLE bool collapse(int row);

    struct Row {
        const MapNode* node = nullptr;
        int depth = 0;
        bool isExpanded = false;
    };

private:
    /// These nodes, and what is expanded below them.
    [[nodiscard]] std::vector<Row> rowsOf(const std::vector<MapNode>& nodes, int depth) const;
    /// The first row behind this one and all below it.
    [[nodiscard]] int endOf(int row) const;
    void setExpanded(int row, bool isExpanded);

    std::vector<Row> rows_;
    double largest_ = 1; ///< bytes: what all bars are measured by
    std::unordered_set<std::string> expanded_;
};

} // namespace korvanti
