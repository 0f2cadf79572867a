#include "ui/AppListModel.h"

#include "ui/AppIconProvider.h"
#include "ui/ListRoles.h"
#include "ui/ScreenText.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

QString dataText(const InstalledApp& app) {
    return app.dataBytes() >= 1 ? "data " + sizeText(app.dataBytes()) : QString();
}

QString lastActivityText(const InstalledApp& app, const DateClock& clock) {
    const auto date = app.lastActivity();
    return date ? clock.relative(*date) : "Tidak tercatat";
}

constexpr auto appRoles = std::to_array<ListRole<InstalledApp>>({
    {"name", [](const InstalledApp& app) -> QVariant { return screenText(app.name); }},
    {"path", [](const InstalledApp& app) -> QVariant { return screenText(app.path); }},
    {"icon", [](const InstalledApp& app) -> QVariant { return AppIconProvider::nameOf(app.path); }},
    {"advice", [](const InstalledApp& app) -> QVariant { return screenSentence(app.advice); }},
    {"isSuggested", [](const InstalledApp& app) -> QVariant { return app.suggested; }},
    {"role", [](const InstalledApp& app) -> QVariant { return screenText(label(app.role)); }},
    {"reason", [](const InstalledApp& app) -> QVariant { return screenText(app.reason); }},
    {"isNonWork", [](const InstalledApp& app) -> QVariant { return app.role == AppRole::nonWork; }},
    {"sizeText", [](const InstalledApp& app) -> QVariant { return sizeText(app.totalBytes()); }},
    {"dataText", [](const InstalledApp& app) -> QVariant { return dataText(app); }},
    {"lastActivity",
     [](const InstalledApp& app, const DateClock& clock) -> QVariant {
         return lastActivityText(app, clock);
     }},
    {"isRemovable", [](const InstalledApp& app) -> QVariant { return app.isRemovable(); }},
    {"spokenTitle",
     [](const InstalledApp& app) -> QVariant {
         QStringList texts = {screenText(app.name), app.suggested ? QString("Disarankan") : QString(),
                              screenText(label(app.role)), sizeText(app.totalBytes())};
         texts.removeAll("");
         return texts.join(", ");
     }},
    {"spokenDetail",
     [](const InstalledApp& app, const DateClock& clock) -> QVariant {
         QStringList texts = {screenText(app.advice), screenText(app.reason), dataText(app),
                              "Terakhir dipakai: " + lastActivityText(app, clock)};
         texts.removeAll("");
         return texts.join(", ");
     }},
});

} // namespace

AppListModel::AppListModel(AppModel& model, Clock clock, QObject* parent)
    : QAbstractListModel(parent), model_(model), clock_(std::move(clock)) {
    startAgain();
    connect(&clock_, &DateClock::ticked, this, &AppListModel::tellDates);
    connect(&model, &AppModel::appsChanged, this, &AppListModel::update);
}

int AppListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant AppListModel::data(const QModelIndex& index, int role) const {
    return ListRoles::value(appRoles, role, app(index.row()), clock_);
}

QHash<int, QByteArray> AppListModel::roleNames() const {
    return ListRoles::names(appRoles);
}

const InstalledApp* AppListModel::app(int row) const {
    return row >= 0 && row < rowCount() ? &rows_[static_cast<std::size_t>(row)] : nullptr;
}

void AppListModel::setFilter(AppFilter filter) {
    if (filter == filter_)
        return;
    filter_ = filter;
    startAgain();
}

AppListModel::Apps AppListModel::currentRows() const {
    Apps rows;
    std::ranges::copy_if(
        model_.apps(), std::back_inserter(rows),
        [this, now = clock_.now()](const InstalledApp& app) { return matches(filter_, app, now); });
    return rows;
}

void AppListModel::startAgain() {
    beginResetModel();
    rows_ = currentRows();
    endResetModel();
}

void AppListModel::update() {
    auto rows = currentRows();
    std::set<std::string_view> kept;
    for (const auto& row : rows)
        kept.insert(row.path);
    const auto isKept = [&](const InstalledApp& app) { return kept.contains(app.path); };
    Apps left;
    std::ranges::copy_if(rows_, std::back_inserter(left), isKept);
    if (!std::ranges::equal(left, rows, {}, &InstalledApp::path, &InstalledApp::path))
        return startAgain();
    for (int row = rowCount() - 1; row >= 0; --row) {
        if (isKept(*app(row)))
            continue;
        beginRemoveRows({}, row, row);
        rows_.erase(rows_.begin() + row);
        endRemoveRows();
    }
    rows_ = std::move(rows);
    if (!rows_.empty())
        emit dataChanged(index(0), index(rowCount() - 1));
}

void AppListModel::tellDates() {
    if (!rows_.empty())
        emit dataChanged(index(0), index(rowCount() - 1), ListRoles::dated(appRoles));
}

} // namespace korvanti
