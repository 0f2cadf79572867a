#pragma once

#include "shell/AppFilter.h"
#include "shell/AppModel.h"
#include "ui/DateClock.h"

#include <QAbstractListModel>
#include <qqmlregistration.h>
#include <vector>

namespace korvanti {

/// The applications that a filter lets through, each ready to be shown. Those that go are taken out of the
/// list, which stays where it is; another filter or another order makes a new list.
class AppListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(korvanti::DateClock* clock READ clock CONSTANT)

public:
    explicit AppListModel(AppModel& model, Clock clock = currentInstant, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Absent for a number that is no row.
    [[nodiscard]] const InstalledApp* app(int row) const;
    [[nodiscard]] AppFilter filter() const { return filter_; }
    void setFilter(AppFilter filter);
    [[nodiscard]] DateClock* clock() { return &clock_; }

private:
    using Apps = std::vector<InstalledApp>;

    [[nodiscard]] Apps currentRows() const;
    void startAgain();
    void update();
    void tellDates();

    AppModel& model_;
    DateClock clock_;
    AppFilter filter_ = AppFilter::suggested;
    Apps rows_;
};

} // namespace korvanti
