#include "ui/RowList.h"

#include <algorithm>

namespace korvanti {

RowList::RowList(const QList<QByteArray>& roles, QObject* parent) : QAbstractListModel(parent) {
    for (const auto& role : roles)
        roles_.insert(Qt::UserRole + static_cast<int>(roles_.size()), role);
}

void RowList::setRows(const QList<Row>& rows) {
    const auto kept = std::min(rows_.size(), rows.size());
    if (rows_.size() > kept) {
        beginRemoveRows({}, static_cast<int>(kept), static_cast<int>(rows_.size()) - 1);
        rows_.resize(kept);
        endRemoveRows();
    }
    for (qsizetype row = 0; row < kept; ++row) {
        if (rows_[row] == rows[row])
            continue;
        rows_[row] = rows[row];
        const auto changed = index(static_cast<int>(row));
        emit dataChanged(changed, changed);
    }
    if (rows.size() > kept) {
        beginInsertRows({}, static_cast<int>(kept), static_cast<int>(rows.size()) - 1);
        rows_.append(rows.mid(kept));
        endInsertRows();
    }
}

void RowList::setRows(const QList<Row>& rows, const QString& key) {
    for (auto row = rows_.size() - 1; row >= 0; --row) {
        if (find(rows, key, rows_[row].value(key)) >= 0)
            continue;
        beginRemoveRows({}, static_cast<int>(row), static_cast<int>(row));
        rows_.removeAt(row);
        endRemoveRows();
    }
    for (qsizetype row = 0; row < rows.size(); ++row) {
        const auto place = static_cast<int>(row);
        const auto found = find(rows_, key, rows[row].value(key), row);
        if (found < 0) {
            beginInsertRows({}, place, place);
            rows_.insert(row, rows[row]);
            endInsertRows();
        } else if (found > row) {
            beginMoveRows({}, static_cast<int>(found), static_cast<int>(found), {}, place);
            rows_.move(found, row);
            endMoveRows();
        }
    }
    setRows(rows); // what is new about them, and without those named twice before
}

qsizetype RowList::find(const QList<Row>& rows, const QString& key, const QVariant& value, qsizetype from) {
    for (auto row = from; row < rows.size(); ++row)
        if (rows[row].value(key) == value)
            return row;
    return -1;
}

int RowList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant RowList::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows_.size())
        return {};
    return rows_[index.row()].value(roles_.value(role));
}

} // namespace korvanti
