#include "ui/HistoryModel.h"

#include "base/Formatters.h"
#include "fs/PathTools.h"
#include "ui/ScreenText.h"

#include <QStringList>
#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace korvanti {
namespace {

enum Role {
    successRole = Qt::UserRole + 1,
    titleRole,
    pathRole,
    fullPathRole,
    messageRole,
    sizeTextRole,
    dateTextRole,
    spokenTextRole
};

/// What a tool said may have several lines and be of any length.
QString messageText(const ActivityEntry& entry) {
    constexpr qsizetype longest = 600;
    const auto text = QString::fromStdString(Text::repaired(entry.message)).simplified();
    return screenText((text.size() > longest ? text.first(longest) + "…" : text).toStdString());
}

} // namespace

HistoryModel::HistoryModel(AppModel& model, QObject* parent, Clock now)
    : QAbstractListModel(parent), model_(model), now_(std::move(now)), entries_(model.activity()) {
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
        opened();
    } else {
        beginResetModel();
        entries_ = fresh;
        endResetModel();
    }
    if (isEmpty() != wasEmpty)
        emit isEmptyChanged();
}

void HistoryModel::opened() {
    if (!entries_.empty())
        emit dataChanged(index(0), index(rowCount() - 1), {dateTextRole});
}

int HistoryModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant HistoryModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const auto& entry = entries_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case successRole:
        return entry.success;
    case titleRole:
        return screenText(entry.title);
    case pathRole:
        return screenText(PathTools::abbreviatingHome(entry.path));
    case fullPathRole:
        return screenText(entry.path);
    case messageRole:
        return messageText(entry);
    case sizeTextRole:
        return sizeText(entry.bytes);
    case dateTextRole:
        return screenText(Formatters::relative(entry.date, now_()));
    case spokenTextRole: {
        QStringList texts = {screenText(entry.title), entry.success ? "berhasil" : "gagal",
                             messageText(entry), sizeText(entry.bytes)};
        texts.removeAll("");
        return texts.join(", ");
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> HistoryModel::roleNames() const {
    return {{successRole, "success"},   {titleRole, "title"},          {pathRole, "path"},
            {fullPathRole, "fullPath"}, {messageRole, "message"},      {sizeTextRole, "sizeText"},
            {dateTextRole, "dateText"}, {spokenTextRole, "spokenText"}};
}

} // namespace korvanti
