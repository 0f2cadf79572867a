#pragma once

#include "shell/AppModel.h"
#include "ui/DateClock.h"

#include <QAbstractListModel>
#include <qqmlregistration.h>
#include <vector>

namespace korvanti {

/// What was removed and moved, newest first. New entries come in above the others, which stay.
class HistoryModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY isEmptyChanged)
    Q_PROPERTY(korvanti::DateClock* clock READ clock CONSTANT)

public:
    explicit HistoryModel(AppModel& model, Clock clock = currentInstant, QObject* parent = nullptr);

    [[nodiscard]] bool isEmpty() const { return entries_.empty(); }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] DateClock* clock() { return &clock_; }

signals:
    void isEmptyChanged();

private:
    void update();
    void tellDates();

    AppModel& model_;
    DateClock clock_;
    std::vector<ActivityEntry> entries_;
};

} // namespace korvanti
