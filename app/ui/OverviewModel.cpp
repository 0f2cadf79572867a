#include "ui/OverviewModel.h"

#include "base/ByteText.h"
#include "ui/ScreenText.h"

#include <QKeySequence>
#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

/// The classes that have a tile, in their order, and what a tap on it shows.
struct Tile {
    Safety safety;
    std::string_view key;
    ItemFilter filter;
};
constexpr std::array tileTable = {
    Tile{Safety::regenerable, "regenerable", ItemFilter::deletable},
    Tile{Safety::costly, "costly", ItemFilter::deletable},
    Tile{Safety::review, "review", ItemFilter::review},
    Tile{Safety::managed, "managed", ItemFilter::all},
};

QList<RowList::Row> tileRows(const ScanReport& report) {
    QList<RowList::Row> rows;
    for (const auto& tile : tileTable)
        rows.append({{"key", screenText(tile.key)},
                     {"safety", static_cast<int>(tile.safety)},
                     {"title", screenText(label(tile.safety))},
                     {"value", sizeText(report.total(tile.safety))},
                     {"caption", screenText(summary(tile.safety))}});
    return rows;
}

/// Those that hold anything, the largest first.
QList<RowList::Row> categoryRows(const ScanReport& report) {
    struct Sum {
        ItemCategory category;
        std::int64_t bytes;
    };
    std::vector<Sum> sums;
    for (const auto category : allCases<ItemCategory>)
        if (const auto bytes = report.total(category); bytes >= 1)
            sums.push_back({category, bytes});
    std::ranges::stable_sort(sums, std::ranges::greater(), &Sum::bytes);

    QList<RowList::Row> rows;
    for (const auto& [category, bytes] : sums)
        rows.append({{"key", screenText(rawValue(category))},
                     {"symbol", screenText(symbol(category))},
                     {"title", screenText(title(category))},
                     {"sizeText", sizeText(bytes)},
                     {"share", static_cast<double>(bytes) / static_cast<double>(sums.front().bytes)}});
    return rows;
}

QList<RowList::Row> healthRows(const DiskSnapshot& disk) {
    QList<RowList::Row> rows;
    const auto add = [&](std::string_view label, std::string_view value) {
        rows.append({{"label", screenText(label)}, {"value", screenText(value)}});
    };
    if (disk.smart && disk.smart->percentageUsed)
        add("Keausan SSD internal", std::to_string(*disk.smart->percentageUsed) + "%");
    if (disk.smart && disk.smart->dataWrittenBytes)
        rows.append(
            {{"label", "Total data ditulis"},
             {"value", roundedText(static_cast<double>(*disk.smart->dataWrittenBytes) / 1e12) + " TB"}});
    add("Swap terpakai", bytesText(disk.swapUsed));
    add("RAM", memoryText(disk.physicalMemory));
    add("Purgeable (dibebaskan macOS)", bytesText(disk.purgeable()));
    return rows;
}

} // namespace

OverviewModel::OverviewModel(AppModel& model, Clock clock, QObject* parent)
    : QObject(parent), model_(model), clock_(std::move(clock)) {
    connect(&clock_, &DateClock::ticked, this, &OverviewModel::refreshScanLine);
    connect(&model_, &AppModel::reportChanged, this, &OverviewModel::readReport);
    connect(&model_, &AppModel::isScanningChanged, this, &OverviewModel::isScanningChanged);
    connect(&model_, &AppModel::scanStatusChanged, this, &OverviewModel::scanStatusChanged);
    readReport();
}

QString OverviewModel::scanStatus() const {
    return screenText(model_.scanStatus());
}

QString OverviewModel::rescanHint() {
    return "Pindai ulang (" + QKeySequence(Qt::CTRL | Qt::Key_R).toString(QKeySequence::NativeText) + ")";
}

bool OverviewModel::asksForAccess() const {
    return hasReport() && !model_.report()->disk.hasFullDiskAccess;
}

bool OverviewModel::swapIsLarge() const {
    return hasReport() && model_.report()->disk.swapUsed > model_.report()->disk.physicalMemory / 2;
}

void OverviewModel::readReport() {
    const auto report = model_.report().value_or(ScanReport());
    const auto recommended = report.recommendedItems().size();
    canClean_ = recommended > 0;
    recommendedText_ = sizeText(report.recommendedBytes());
    recommendedPromise_ =
        screenText(std::to_string(recommended) +
                   " item yang dibuat ulang otomatis (cache, file sementara, build lama, sisa "
                   "app). Tidak ada dokumen, foto, kode, atau rilis yang ikut.");
    tiles_.setRows(tileRows(report));
    categories_.setRows(categoryRows(report));
    health_.setRows(healthRows(report.disk));
    QList<RowList::Row> notes;
    for (const auto& note : report.notes)
        notes.append({{"text", screenText(note)}});
    notes_.setRows(notes);
    refreshScanLine();
    emit reportChanged();
}

void OverviewModel::refreshScanLine() {
    QString line;
    if (const auto& report = model_.report())
        line = "Dipindai " + clock_.relative(report->startedAt) + " · " + secondsText(report->duration);
    if (std::exchange(scanLine_, line) != line)
        emit scanLineChanged();
}

void OverviewModel::scan() {
    model_.scan();
}

void OverviewModel::cleanRecommended() {
    if (!hasReport())
        return;
    model_.selectRecommended();
    model_.requestCleanup(model_.report()->recommendedItems());
}

void OverviewModel::showDetails() {
    openCleanup(ItemFilter::recommended, std::nullopt);
}

void OverviewModel::tileTapped(const QString& key) {
    for (const auto& tile : tileTable)
        if (screenText(tile.key) == key)
            openCleanup(tile.filter, std::nullopt);
}

void OverviewModel::categoryTapped(const QString& key) {
    for (const auto category : allCases<ItemCategory>)
        if (screenText(rawValue(category)) == key)
            openCleanup(ItemFilter::deletable, category);
}

void OverviewModel::openCleanup(ItemFilter filter, std::optional<ItemCategory> category) {
    model_.setFilter(filter);
    model_.setCategoryFilter(category);
    model_.setPane(Pane::cleanup);
}

void OverviewModel::openFullDiskAccessSettings() {
    model_.openFullDiskAccessSettings();
}

} // namespace korvanti
