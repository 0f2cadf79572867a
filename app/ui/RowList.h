#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QList>
#include <QVariantMap>
#include <qqmlregistration.h>

namespace korvanti {

/// A short list of rows that are told as a whole. A row that stays where it is keeps its item on the screen,
/// and with it the keyboard's focus.
class RowList : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the models")

public:
    using Row = QVariantMap; ///< by role

    explicit RowList(const QList<QByteArray>& roles, QObject* parent = nullptr);

    [[nodiscard]] const QList<Row>& rows() const { return rows_; }
    void setRows(const QList<Row>& rows);
    /// Rows that stand for somebody, whose name they hold under `key`: each keeps its item wherever it goes,
    /// and takes it along when it is gone, so that a click never meets the one behind it.
    void setRows(const QList<Row>& rows, const QString& key);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override { return roles_; }

private:
    /// The first row at or behind `from` with that value; -1 when there is none.
    [[nodiscard]] static qsizetype find(const QList<Row>& rows, const QString& key, const QVariant& value,
                                        qsizetype from = 0);

    QHash<int, QByteArray> roles_;
    QList<Row> rows_;
};

} // namespace korvanti
