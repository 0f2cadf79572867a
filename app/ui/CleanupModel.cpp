#include "ui/CleanupModel.h"

#include "ui/Clipboard.h"
#include "ui/ScreenText.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

namespace korvanti {
namespace {

constexpr const auto& filterCases = allCases<ItemFilter>;
constexpr const auto& categoryCases = allCases<ItemCategory>;

} // namespace

CleanupModel::CleanupModel(AppModel& model, Clock clock, QObject* parent)
    : QObject(parent), model_(model), items_(model, std::move(clock)) {
    updateSelected();
    connect(&model, &AppModel::filterChanged, this, &CleanupModel::filterIndexChanged);
    connect(&model, &AppModel::categoryFilterChanged, this, &CleanupModel::categoryIndexChanged);
    connect(&model, &AppModel::searchChanged, this, &CleanupModel::searchChanged);
    connect(&model, &AppModel::reportChanged, this, &CleanupModel::contentsChanged);
    connect(&model, &AppModel::reportChanged, this, &CleanupModel::updateSelected);
    connect(&model, &AppModel::selectionChanged, this, &CleanupModel::updateSelected);
    connect(&model, &AppModel::volumesChanged, this, &CleanupModel::menuChanged);
    connect(&model, &AppModel::settingsChanged, this, &CleanupModel::menuChanged);
    connect(&model, &AppModel::busyMessageChanged, this, &CleanupModel::menuChanged);
    connect(&items_, &ItemListModel::modelReset, this, &CleanupModel::onRows);
    connect(&items_, &ItemListModel::rowsRemoved, this, &CleanupModel::onRows);
}

void CleanupModel::onRows() {
    emit contentsChanged();
    emit menuChanged();
}

QStringList CleanupModel::filters() const {
    QStringList titles;
    std::ranges::transform(filterCases, std::back_inserter(titles),
                           [](ItemFilter filter) { return screenText(title(filter)); });
    return titles;
}

int CleanupModel::filterIndex() const {
    return static_cast<int>(std::ranges::find(filterCases, model_.filter()) - filterCases.begin());
}

void CleanupModel::setFilterIndex(int index) {
    if (index >= 0 && std::cmp_less(index, filterCases.size()))
        model_.setFilter(filterCases[static_cast<std::size_t>(index)]);
}

QStringList CleanupModel::categories() const {
    QStringList titles = {"Semua kategori"};
    std::ranges::transform(categoryCases, std::back_inserter(titles),
                           [](ItemCategory category) { return screenText(title(category)); });
    return titles;
}

QStringList CleanupModel::categorySymbols() const {
    QStringList symbols = {""};
    std::ranges::transform(categoryCases, std::back_inserter(symbols),
                           [](ItemCategory category) { return screenText(symbol(category)); });
    return symbols;
}

int CleanupModel::categoryIndex() const {
    const auto chosen = model_.categoryFilter();
    return chosen ? 1 + static_cast<int>(std::ranges::find(categoryCases, *chosen) - categoryCases.begin())
                  : 0;
}

void CleanupModel::setCategoryIndex(int index) {
    if (index == 0)
        model_.setCategoryFilter(std::nullopt);
    else if (index > 0 && std::cmp_less_equal(index, categoryCases.size()))
        model_.setCategoryFilter(categoryCases[static_cast<std::size_t>(index - 1)]);
}

QString CleanupModel::search() const {
    return QString::fromStdString(model_.search());
}

void CleanupModel::setSearch(const QString& text) {
    model_.setSearch(text.toStdString());
}

QString CleanupModel::emptySymbol() const {
    return model_.report() ? "checkmark.circle" : "magnifyingglass";
}

QString CleanupModel::emptyTitle() const {
    return model_.report() ? "Tidak ada item" : "Belum dipindai";
}

QString CleanupModel::emptyText() const {
    return model_.report() ? "Tidak ada yang cocok dengan filter ini." : "Jalankan pindai dari Ringkasan.";
}

void CleanupModel::updateSelected() {
    const auto count = model_.selected().size();
    canClean_ = count > 0;
    selectedText_ = QString("%1 item dipilih").arg(count);
    selectedSizeText_ = sizeText(model_.selectedBytes()) + " akan dibersihkan";
    emit selectedChanged();
}

void CleanupModel::toggle(int row) {
    if (const auto* item = items_.item(row))
        model_.toggle(*item);
}

void CleanupModel::toggleInstructions(int row) {
    items_.toggleInstructions(row);
}

void CleanupModel::selectRecommended() {
    model_.selectRecommended();
}

void CleanupModel::clearSelection() {
    model_.clearSelection();
}

void CleanupModel::requestCleanup() {
    model_.requestCleanup(model_.selectedItems());
}

void CleanupModel::openMenu(int row) {
    menuRow_ = items_.index(row);
    emit menuChanged();
}

bool CleanupModel::isOffloadable() const {
    const auto* item = menuItem();
    return item != nullptr && item->offloadable;
}

bool CleanupModel::canOffload() const {
    return isOffloadable() && model_.workVolume() && !model_.busyMessage();
}

QString CleanupModel::offloadText() const {
    const auto volume = model_.workVolume();
    return volume ? "Pindahkan ke " + screenText(volume->name) : "Pindahkan ke SSD (pilih SSD kerja dulu)";
}

QString CleanupModel::cleanText() const {
    const auto* item = menuItem();
    return item != nullptr && item->isSelectable() ? screenText(item->action.verb()) + " sekarang…"
                                                   : QString();
}

void CleanupModel::reveal() {
    if (const auto* item = menuItem())
        model_.reveal(item->path);
}

void CleanupModel::copyPath() {
    if (const auto* item = menuItem())
        copyToClipboard(item->path);
}

void CleanupModel::offload() {
    if (canOffload())
        model_.offload(CleanupItem(*menuItem()));
}

void CleanupModel::cleanOne() {
    if (const auto* item = menuItem())
        model_.requestCleanup({*item});
}

} // namespace korvanti
