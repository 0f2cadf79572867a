#pragma once

#include "shell/AppModel.h"
#include "ui/DateClock.h"

#include <QAbstractListModel>
#include <QList>
#include <QVariantMap>
#include <cstddef>
#include <functional>
#include <qqmlregistration.h>
#include <vector>

namespace korvanti {

/// The items that the filter lets through, by category in the order of `ItemCategory`, each ready to be
/// shown. A report with the same items, or with some of them gone, changes the list, which stays where it is;
/// one with others and a filter that changes make a new list.
class ItemListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    /// By the value of the role "section": "title", "symbol" and "sizeText", the sum of what can be selected.
    Q_PROPERTY(QVariantMap sections READ sections NOTIFY sectionsChanged)
    Q_PROPERTY(korvanti::DateClock* clock READ clock CONSTANT)

public:
    struct Row {
        CleanupItem item;
        bool isSelected = false;
        bool showInstructions = false;
        bool operator==(const Row&) const = default;
    };

    explicit ItemListModel(AppModel& model, Clock clock = currentInstant, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    [[nodiscard]] const QVariantMap& sections() const { return sections_; }

    /// Absent for a number that is no row.
    [[nodiscard]] const CleanupItem* item(int row) const;
    /// Opens the guide of a manual item, or closes it.
    void toggleInstructions(int row);
    [[nodiscard]] DateClock* clock() { return &clock_; }

signals:
    void sectionsChanged();

private:
    [[nodiscard]] std::vector<Row> currentRows() const;
    void startAgain();
    void update();
    /// Takes rows out so that just those of `rows` are left. False, and nothing done, where that is not
    /// enough or too much.
    bool shrinkTo(const std::vector<Row>& rows);
    /// What is new about the rows that stay.
    void setRows(std::vector<Row> rows);
    void updateSelection();
    /// Changes each row, and tells of those that it says are new.
    void changeRows(const QList<int>& roles, const std::function<bool(std::size_t row)>& change);
    void tellDates();
    void updateSections();

    AppModel& model_;
    DateClock clock_;
    std::vector<Row> rows_;
    QVariantMap sections_;
};

} // namespace korvanti
