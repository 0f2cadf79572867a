#include "ui/ItemListModel.h"

#include "base/CheckedMath.h"
#include "ui/ListRoles.h"
#include "ui/ScreenText.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

using Row = ItemListModel::Row;

/// Without the path at its end, which the row shows by itself.
QString detailText(const CleanupItem& item) {
    std::string_view detail = item.detail;
    const auto path = "\n" + item.displayPath();
    if (detail.ends_with(path))
        detail.remove_suffix(path.size());
    return screenLines(detail);
}

/// All that the row shows but for its title and its date.
QString spokenDetail(const CleanupItem& item) {
    QStringList texts = {item.recommended ? "Direkomendasikan" : "",
                         item.isSelectable() ? screenText(item.action.verb()) : "tidak bisa dipilih",
                         detailText(item).replace('\n', ", "), screenText(item.displayPath())};
    std::ranges::transform(item.warnings, std::back_inserter(texts), screenText);
    texts.removeAll("");
    return texts.join(", ");
}

constexpr auto itemRoles = std::to_array<ListRole<Row>>({
    {"section", [](const Row& row) -> QVariant { return screenText(rawValue(row.item.category)); }},
    {"title", [](const Row& row) -> QVariant { return screenText(row.item.title); }},
    {"detail", [](const Row& row) -> QVariant { return detailText(row.item); }},
    {"path", [](const Row& row) -> QVariant { return screenText(row.item.displayPath()); }},
    {"fullPath", [](const Row& row) -> QVariant { return screenText(row.item.path); }},
    {"warnings",
     [](const Row& row) -> QVariant {
         QStringList warnings;
         std::ranges::transform(row.item.warnings, std::back_inserter(warnings), screenText);
         return warnings;
     }},
    {"sizeText", [](const Row& row) -> QVariant { return sizeText(row.item.bytes); }},
    {"lastActivity",
     [](const Row& row, const DateClock& clock) -> QVariant {
         const auto date = row.item.lastActivity;
         return date ? clock.relative(*date) : QString();
     }},
    {"verb",
     [](const Row& row) -> QVariant {
         return row.item.isSelectable() ? screenText(row.item.action.verb()) : QString();
     }},
    {"safety", [](const Row& row) -> QVariant { return std::to_underlying(row.item.safety); }},
    {"isSelectable", [](const Row& row) -> QVariant { return row.item.isSelectable(); }},
    {"isSelected", [](const Row& row) -> QVariant { return row.isSelected; }},
    {"isRecommended", [](const Row& row) -> QVariant { return row.item.recommended; }},
    {"isManual", [](const Row& row) -> QVariant { return !row.item.action.isAutomatic(); }},
    {"instructions",
     [](const Row& row) -> QVariant {
         return QString::fromStdString(Text::repaired(row.item.action.instructions().value_or("")));
     }},
    {"showInstructions", [](const Row& row) -> QVariant { return row.showInstructions; }},
    {"spokenTitle",
     [](const Row& row) -> QVariant {
         return QStringList{screenText(row.item.title), screenText(label(row.item.safety)),
                            sizeText(row.item.bytes)}
             .join(", ");
     }},
    {"spokenDetail", [](const Row& row) -> QVariant { return spokenDetail(row.item); }},
});

/// The same one in another report, in the same section.
bool isSame(const Row& one, const Row& other) {
    return one.item.id() == other.item.id() && one.item.category == other.item.category;
}

} // namespace

ItemListModel::ItemListModel(AppModel& model, Clock clock, QObject* parent)
    : QAbstractListModel(parent), model_(model), clock_(std::move(clock)) {
    startAgain();
    connect(&clock_, &DateClock::ticked, this, &ItemListModel::tellDates);
    connect(&model, &AppModel::reportChanged, this, &ItemListModel::update);
    connect(&model, &AppModel::filterChanged, this, &ItemListModel::startAgain);
    connect(&model, &AppModel::categoryFilterChanged, this, &ItemListModel::startAgain);
    connect(&model, &AppModel::searchChanged, this, &ItemListModel::startAgain);
    connect(&model, &AppModel::selectionChanged, this, &ItemListModel::updateSelection);
}

int ItemListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ItemListModel::data(const QModelIndex& index, int role) const {
    const bool isThere = index.row() >= 0 && index.row() < rowCount();
    const auto* row = isThere ? &rows_[static_cast<std::size_t>(index.row())] : nullptr;
    return ListRoles::value(itemRoles, role, row, clock_);
}

QHash<int, QByteArray> ItemListModel::roleNames() const {
    return ListRoles::names(itemRoles);
}

const CleanupItem* ItemListModel::item(int row) const {
    return row >= 0 && row < rowCount() ? &rows_[static_cast<std::size_t>(row)].item : nullptr;
}

void ItemListModel::toggleInstructions(int row) {
    const auto* shown = item(row);
    if (shown == nullptr || shown->action.isAutomatic())
        return;
    auto& open = rows_[static_cast<std::size_t>(row)].showInstructions;
    open = !open;
    emit dataChanged(index(row), index(row), {ListRoles::number(itemRoles, "showInstructions")});
}

std::vector<Row> ItemListModel::currentRows() const {
    std::set<std::string_view> open;
    for (const auto& row : rows_) {
        if (row.showInstructions)
            open.insert(row.item.id());
    }
    auto items = model_.filteredItems();
    std::vector<Row> rows;
    rows.reserve(items.size());
    for (const ItemCategory category : allCases<ItemCategory>) {
        for (auto& item : items) {
            if (item.category != category)
                continue;
            const bool isSelected = model_.selection().contains(item.id());
            const bool isOpen = !item.action.isAutomatic() && open.contains(item.id());
            rows.push_back({.item = std::move(item), .isSelected = isSelected, .showInstructions = isOpen});
        }
    }
    return rows;
}

void ItemListModel::startAgain() {
    beginResetModel();
    rows_ = currentRows();
    updateSections();
    endResetModel();
}

void ItemListModel::update() {
    auto rows = currentRows();
    if (!shrinkTo(rows))
        return startAgain();
    setRows(std::move(rows));
    updateSections();
}

bool ItemListModel::shrinkTo(const std::vector<Row>& rows) {
    struct Run {
        int first;
        int last;
    };
    constexpr std::size_t mostRuns = 100; // above, a new list costs less
    std::vector<Run> gone;
    auto kept = rows.begin();
    for (int row = 0; row < rowCount(); ++row) {
        if (kept != rows.end() && isSame(rows_[static_cast<std::size_t>(row)], *kept))
            ++kept;
        else if (!gone.empty() && gone.back().last == row - 1)
            gone.back().last = row;
        else
            gone.push_back({.first = row, .last = row});
    }
    if (kept != rows.end() || gone.size() > mostRuns)
        return false;
    for (; !gone.empty(); gone.pop_back()) {
        beginRemoveRows({}, gone.back().first, gone.back().last);
        rows_.erase(rows_.begin() + gone.back().first, rows_.begin() + gone.back().last + 1);
        endRemoveRows();
    }
    return true;
}

void ItemListModel::setRows(std::vector<Row> rows) {
    changeRows({}, [&](std::size_t row) {
        const bool isNew = rows_[row] != rows[row];
        if (isNew)
            rows_[row] = std::move(rows[row]);
        return isNew;
    });
}

void ItemListModel::updateSelection() {
    changeRows({ListRoles::number(itemRoles, "isSelected")}, [this](std::size_t row) {
        const bool isSelected = model_.selection().contains(rows_[row].item.id());
        return std::exchange(rows_[row].isSelected, isSelected) != isSelected;
    });
}

void ItemListModel::changeRows(const QList<int>& roles, const std::function<bool(std::size_t row)>& change) {
    std::optional<int> first; // of a run of changed rows
    for (int row = 0; row <= rowCount(); ++row) {
        const bool changed = row < rowCount() && change(static_cast<std::size_t>(row));
        if (changed && !first)
            first = row;
        if (!changed && first)
            emit dataChanged(index(*std::exchange(first, {})), index(row - 1), roles);
    }
}

void ItemListModel::tellDates() {
    if (!rows_.empty())
        emit dataChanged(index(0), index(rowCount() - 1), ListRoles::dated(itemRoles));
}

void ItemListModel::updateSections() {
    QVariantMap sections;
    for (auto row = rows_.begin(); row != rows_.end();) {
        const auto category = row->item.category;
        std::int64_t bytes = 0;
        for (; row != rows_.end() && row->item.category == category; ++row) {
            if (row->item.isSelectable())
                bytes = addChecked(bytes, row->item.bytes);
        }
        sections.insert(screenText(rawValue(category)), QVariantMap{{"title", screenText(title(category))},
                                                                    {"symbol", screenText(symbol(category))},
                                                                    {"sizeText", sizeText(bytes)}});
    }
    if (sections == sections_)
        return;
    sections_ = std::move(sections);
    emit sectionsChanged();
}

} // namespace korvanti
