#include "ui/HistoryModel.h"

#include "fs/PathTools.h"
#include "ui/ListRoles.h"
#include "ui/ScreenText.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace korvanti {
namespace {

/// What a tool said may have several lines and be of any length.
QString messageText(const ActivityEntry& entry) {
    constexpr qsizetype longest = 600;
    const auto text = QString::fromStdString(Text::repaired(entry.message)).simplified();
    return screenText((text.size() > longest ? text.first(longest) + "…" : text).toStdString());
}

constexpr auto historyRoles = std::to_array<ListRole<ActivityEntry>>({
    {"success", [](const ActivityEntry& entry) -> QVariant { return entry.success; }},
    {"title", [](const ActivityEntry& entry) -> QVariant { return screenText(entry.title); }},
    {"path",
     [](const ActivityEntry& entry) -> QVariant {
         return screenText(PathTools::abbreviatingHome(entry.path));
     }},
    {"fullPath", [](const ActivityEntry& entry) -> QVariant { return screenText(entry.path); }},
    {"message", [](const ActivityEntry& entry) -> QVariant { return messageText(entry); }},
    {"sizeText", [](const ActivityEntry& entry) -> QVariant { return sizeText(entry.bytes); }},
    {"dateText",
     [](const ActivityEntry& entry, const DateClock& clock) -> QVariant {
         return clock.relative(entry.date);
     }},
    {"spokenText",
     [](const ActivityEntry& entry) -> QVariant {
         QStringList texts = {screenText(entry.title), entry.success ? "berhasil" : "gagal",
                              messageText(entry), sizeText(entry.bytes)};
         texts.removeAll("");
         return texts.join(", ");
     }},
});

} // namespace

HistoryModel::HistoryModel(AppModel& model, Clock clock, QObject* parent)
    : QAbstractListModel(parent), model_(model), clock_(std::move(clock)), entries_(model.activity()) {
    connect(&clock_, &DateClock::ticked, this, &HistoryModel::tellDates);
    connect(&model, &AppModel::activityChanged, this, &HistoryModel::update);
}

void HistoryModel::update() {
    const auto& fresh = model_.activity();
    const bool wasEmpty = isEmpty();
    // The log only grows: the entries known are those behind the new ones, but for the oldest, which fall
    // out.
    const auto known = entries_.empty() ? fresh.end() : std::ranges::find(fresh, entries_.front());
    const auto kept = fresh.end() - known;
    if (kept > 0 && kept <= rowCount() && std::equal(known, fresh.end(), entries_.begin())) {
        if (kept < rowCount()) {
            beginRemoveRows({}, static_cast<int>(kept), rowCount() - 1);
            entries_.erase(entries_.begin() + kept, entries_.end());
            endRemoveRows();
        }
        if (known != fresh.begin()) {
            beginInsertRows({}, 0, static_cast<int>(known - fresh.begin()) - 1);
            entries_.insert(entries_.begin(), fresh.begin(), known);
            endInsertRows();
        }
    } else {
        beginResetModel();
        entries_ = fresh;
        endResetModel();
    }
    if (isEmpty() != wasEmpty)
        emit isEmptyChanged();
}

void HistoryModel::tellDates() {
    if (!entries_.empty())
        emit dataChanged(index(0), index(rowCount() - 1), ListRoles::dated(historyRoles));
}

int HistoryModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant HistoryModel::data(const QModelIndex& index, int role) const {
    const auto* entry = index.row() >= 0 && index.row() < rowCount()
                            ? &entries_[static_cast<std::size_t>(index.row())]
                            : nullptr;
    return ListRoles::value(historyRoles, role, entry, clock_);
}

QHash<int, QByteArray> HistoryModel::roleNames() const {
    return ListRoles::names(historyRoles);
}

} // namespace korvanti
