#include "ui/AppsModel.h"

#include "base/CheckedMath.h"
#include "ui/ScreenText.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace korvanti {
namespace {

constexpr const auto& filterCases = allCases<AppFilter>;

} // namespace

AppsModel::AppsModel(AppModel& model, Clock clock, QObject* parent)
    : QObject(parent), model_(model), rows_(model, std::move(clock)), uninstall_(model) {
    connect(&model, &AppModel::paneChanged, this, &AppsModel::loadWhenOpen);
    connect(&model, &AppModel::appsLoadingChanged, this, &AppsModel::contentsChanged);
    connect(&model, &AppModel::appsChanged, this, &AppsModel::contentsChanged);
    loadWhenOpen();
}

void AppsModel::loadWhenOpen() {
    if (model_.pane() == Pane::apps && model_.apps().empty())
        model_.loadApps();
}

QStringList AppsModel::filters() const {
    QStringList titles;
    std::ranges::transform(filterCases, std::back_inserter(titles),
                           [](AppFilter filter) { return screenText(rawValue(filter)); });
    return titles;
}

int AppsModel::filterIndex() const {
    return static_cast<int>(std::ranges::find(filterCases, rows_.filter()) - filterCases.begin());
}

void AppsModel::setFilterIndex(int index) {
    if (index < 0 || std::cmp_greater_equal(index, filterCases.size()) || index == filterIndex())
        return;
    rows_.setFilter(filterCases[static_cast<std::size_t>(index)]);
    emit filterIndexChanged();
    emit contentsChanged();
}

QString AppsModel::summary() const {
    std::int64_t bytes = 0;
    int count = 0;
    for (const auto& app : model_.apps()) {
        if (!app.suggested)
            continue;
        ++count;
        bytes = addChecked(bytes, app.totalBytes());
    }
    return count == 0 ? QString() : QString("%1 app disarankan · ").arg(count) + sizeText(bytes);
}

QString AppsModel::emptyTitle() const {
    return rows_.filter() == AppFilter::suggested ? "Tidak ada saran" : "Tidak ada app";
}

QString AppsModel::emptyText() const {
    return rows_.filter() == AppFilter::suggested
               ? "Semua app masih dipakai. Lihat 'Terbesar' untuk app yang paling makan tempat."
               : "";
}

void AppsModel::reload() {
    model_.loadApps();
}

void AppsModel::openUninstall(int row) {
    if (const auto* app = rows_.app(row); app != nullptr && app->isRemovable())
        uninstall_.open(*app);
}

} // namespace korvanti
