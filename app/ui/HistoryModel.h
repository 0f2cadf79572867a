#pragma once

#include "base/Instant.h"
#include "shell/AppModel.h"

#include <QAbstractListModel>
#include <functional>
#include <qqmlregistration.h>
#include <vector>

namespace korvanti {

/// What was removed and moved, newest first. New entries come in above the others, which stay.
class HistoryModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY isEmptyChanged)

public:
    using Clock = std::function<Instant()>;

    explicit HistoryModel(AppModel& model, QObject* parent = nullptr, Clock now = currentInstant);

    [[nodiscard]] bool isEmpty() const { return entries_.empty(); }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// The pane comes into sight: the dates keep up with the clock.
    Q_INVOKABLE void opened();

signals:
    void isEmptyChanged();

private:
    void update();

    AppModel& model_;
    Clock now_;
    std::vector<ActivityEntry> entries_;
};

} // namespace korvanti
