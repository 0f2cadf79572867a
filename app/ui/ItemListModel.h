#pragma once

#include "shell/AppModel.h"

#include <QAbstractListModel>
#include <QVariantMap>
#include <cstddef>
#include <qqmlregistration.h>
#include <vector>

namespace korvanti {

/// The items that the filter lets through, by category in the order of `ItemCategory`, each ready to be
/// shown. Items that go are taken out of the list, which stays where it is; a filter that changes makes a new
/// list.
class ItemListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    /// By the value of the role "section": "title", "symbol" and "sizeText", the sum of what can be selected.
    Q_PROPERTY(QVariantMap sections READ sections NOTIFY sectionsChanged)

public:
    struct Row {
        CleanupItem item;
        bool isSelected = false;
        bool showInstructions = false;
    };

    explicit ItemListModel(AppModel& model, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    [[nodiscard]] const QVariantMap& sections() const { return sections_; }

    /// Absent for a number that is no row.
    [[nodiscard]] const CleanupItem* item(int row) const;
    /// Opens the guide of a manual item, or closes it.
    void toggleInstructions(int row);

signals:
    void sectionsChanged();

private:
    [[nodiscard]] std::vector<Row> currentRows() const;
    void startAgain();
    void update();
    /// Takes rows out so that just `rows` are left. False, and nothing done, where there would be more to do.
    bool shrinkTo(const std::vector<Row>& rows);
    void updateSelection();
    void updateSections();

    AppModel& model_;
    std::vector<Row> rows_;
    QVariantMap sections_;
};

} // namespace korvanti
