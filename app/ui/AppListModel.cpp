#include "ui/AppListModel.h"

#include "base/Formatters.h"
#include "ui/AppIconProvider.h"
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

QString lastActivityText(const InstalledApp& app) {
    const auto date = app.lastActivity();
    return date ? screenText(Formatters::relative(*date, currentInstant())) : QString("Tidak tercatat");
}

struct Role {
    std::string_view name;
    QVariant (*value)(const InstalledApp& app);
};

constexpr auto roles = std::to_array<Role>({
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
    {"lastActivity", [](const InstalledApp& app) -> QVariant { return lastActivityText(app); }},
    {"isRemovable", [](const InstalledApp& app) -> QVariant { return app.isRemovable(); }},
    {"spokenTitle",
     [](const InstalledApp& app) -> QVariant {
         QStringList texts = {screenText(app.name), app.suggested ? QString("Disarankan") : QString(),
                              screenText(label(app.role)), sizeText(app.totalBytes())};
         texts.removeAll("");
         return texts.join(", ");
     }},
    {"spokenDetail",
     [](const InstalledApp& app) -> QVariant {
         QStringList texts = {screenText(app.advice), screenText(app.reason), dataText(app),
                              "Terakhir dipakai: " + lastActivityText(app)};
         texts.removeAll("");
         return texts.join(", ");
     }},
});

constexpr int firstRole = Qt::UserRole + 1;

} // namespace

AppListModel::AppListModel(AppModel& model, QObject* parent) : QAbstractListModel(parent), model_(model) {
    startAgain();
    connect(&model, &AppModel::appsChanged, this, &AppListModel::update);
}

int AppListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant AppListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount() || role < firstRole ||
        role >= firstRole + static_cast<int>(roles.size()))
        return {};
    return roles[static_cast<std::size_t>(role - firstRole)].value(
        rows_[static_cast<std::size_t>(index.row())]);
}

QHash<int, QByteArray> AppListModel::roleNames() const {
    QHash<int, QByteArray> names;
    for (int number = firstRole; const auto& role : roles)
        names.insert(number++, QByteArray(role.name.data(), static_cast<qsizetype>(role.name.size())));
    return names;
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
        [this, now = currentInstant()](const InstalledApp& app) { return matches(filter_, app, now); });
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
        emit dataChanged(index(0), index(rowCount() - 1)); // dates are told from today, so all may be new
}

} // namespace korvanti
