#include "ui/SsdModel.h"

#include "drives/VolumeAdvisor.h"
#include "fs/PathTools.h"
#include "ui/Clipboard.h"
#include "ui/ScreenText.h"

#include <QByteArray>
#include <QVariant>
#include <cstddef>
#include <string>
#include <utility>

namespace korvanti {
namespace {

constexpr auto keyRole = "key"; ///< names a row for its list alone

QVariant keyOf(const std::string& bytes) {
    return QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

QString symbol(Advice::Level level) {
    switch (level) {
    case Advice::Level::good:
        return "checkmark.circle.fill";
    case Advice::Level::info:
        return "info.circle.fill";
    case Advice::Level::warning:
        return "exclamationmark.triangle.fill";
    }
    std::unreachable();
}

QString symbol(OffloadStatus status) {
    switch (status) {
    case OffloadStatus::available:
        return "checkmark.circle.fill";
    case OffloadStatus::volumeMissing:
    case OffloadStatus::destinationMissing:
        return "exclamationmark.triangle.fill";
    }
    std::unreachable();
}

bool isAlmostFull(const VolumeInfo& volume) {
    return volume.total >= 1 && static_cast<double>(volume.free) / static_cast<double>(volume.total) < 0.1;
}

QList<RowList::Row> adviceRows(const VolumeInfo& volume) {
    QList<RowList::Row> rows;
    for (const auto& advice : VolumeAdvisor::advice(volume))
        rows.append({{"title", screenText(advice.title)},
                     {"detail", screenText(advice.detail)},
                     {"command", screenText(advice.command.value_or(""))},
                     {"level", static_cast<int>(advice.level)},
                     {"symbol", symbol(advice.level)}});
    return rows;
}

} // namespace

SsdModel::SsdModel(AppModel& model, Clock clock, QObject* parent)
    : QObject(parent), model_(model), clock_(std::move(clock)) {
    connect(&clock_, &DateClock::ticked, this, &SsdModel::readMoved);
    for (const auto changed : {&AppModel::volumesChanged, &AppModel::settingsChanged,
                               &AppModel::speedResultsChanged, &AppModel::speedTestingChanged})
        connect(&model_, changed, this, &SsdModel::readVolumes);
    for (const auto changed :
         {&AppModel::volumesChanged, &AppModel::settingsChanged, &AppModel::relocationTargetsChanged})
        connect(&model_, changed, this, &SsdModel::readCaches);
    for (const auto changed : {&AppModel::volumesChanged, &AppModel::offloadsChanged})
        connect(&model_, changed, this, &SsdModel::readMoved);
    connect(&model_, &AppModel::busyMessageChanged, this, &SsdModel::menuChanged);
    readVolumes();
    readCaches();
    readMoved();
}

void SsdModel::reload() {
    readMoved(); // which asks the disk itself
    model_.refreshVolumes();
}

// Volumes

void SsdModel::readVolumes() {
    QList<RowList::Row> rows;
    for (const auto& volume : model_.volumes()) {
        const auto row = static_cast<std::size_t>(rows.size());
        if (row == advice_.size())
            advice_.push_back(std::make_unique<RowList>(
                QList<QByteArray>{"title", "detail", "command", "level", "symbol"}, this));
        advice_[row]->setRows(adviceRows(volume));
        rows.append(volumeRow(volume, advice_[row].get()));
    }
    volumes_.setRows(rows, keyRole);
    emit volumesChanged();
}

RowList::Row SsdModel::volumeRow(const VolumeInfo& volume, RowList* advice) const {
    const auto key = AppModel::volumeKey(volume);
    const bool isWorkVolume = volume.uuid && volume.uuid == model_.settings().workVolumeUUID;
    const auto& testing = model_.speedTesting();
    const auto result = model_.speedResults().find(key);
    return {{keyRole, keyOf(volume.mountPath + '\n' + key)},
            {"name", screenText(volume.name)},
            {"isWorkVolume", isWorkVolume},
            {"freeText", sizeText(volume.free) + " kosong dari " + sizeText(volume.total)},
            {"formatText",
             screenText(volume.formatName + " · " + volume.busProtocol.value_or("koneksi tidak diketahui"))},
            {"used", static_cast<double>(volume.total) - static_cast<double>(volume.free)},
            {"total", static_cast<double>(volume.total)},
            {"isAlmostFull", isAlmostFull(volume)},
            {"advice", QVariant::fromValue(advice)},
            {"speedText", result == model_.speedResults().end() ? QString() : speedText(result->second)},
            {"workText", isWorkVolume ? "SSD kerja ✓" : "Jadikan SSD kerja"},
            {"canBecomeWorkVolume", volume.uuid && !isWorkVolume},
            {"testText", testing == key ? "Menguji…" : "Uji kecepatan (1 GB)"},
            {"canTest", !testing.has_value()}};
}

QString SsdModel::speedText(const VolumeService::SpeedResult& result) {
    return "Tulis " + roundedText(result.writeMBps) + " MB/s · Baca " + roundedText(result.readMBps) +
           " MB/s";
}

const VolumeInfo* SsdModel::volumeAt(int row) const {
    const auto& volumes = model_.volumes();
    return row >= 0 && std::cmp_less(row, volumes.size()) ? &volumes[static_cast<std::size_t>(row)] : nullptr;
}

void SsdModel::makeWorkVolume(int volume) {
    const auto* chosen = volumeAt(volume);
    if (chosen == nullptr || !chosen->uuid)
        return;
    auto settings = model_.settings();
    settings.workVolumeUUID = chosen->uuid;
    model_.setSettings(std::move(settings));
}

void SsdModel::testSpeed(int volume) {
    const auto* tested = volumeAt(volume);
    if (tested != nullptr && !model_.speedTesting())
        model_.speedTest(VolumeInfo(*tested));
}

void SsdModel::reveal(int volume) {
    if (const auto* shown = volumeAt(volume))
        model_.reveal(shown->mountPath);
}

void SsdModel::eject(int volume) {
    if (const auto* ejected = volumeAt(volume))
        model_.eject(VolumeInfo(*ejected));
}

void SsdModel::copyCommand(int volume, int advice) {
    const auto* about = volumeAt(volume);
    if (about == nullptr)
        return;
    const auto all = VolumeAdvisor::advice(*about);
    if (advice >= 0 && std::cmp_less(advice, all.size()))
        if (const auto& command = all[static_cast<std::size_t>(advice)].command)
            copyToClipboard(*command);
}

// Caches

void SsdModel::readCaches() {
    QList<RowList::Row> rows;
    for (const auto cache : allDevCaches) {
        const auto target = model_.relocationTargets().find(cache);
        rows.append({{"title", screenText(title(cache))},
                     {"detail", screenText(detail(cache))},
                     {"isChosen", chosen_.contains(cache)},
                     {"targetText", target == model_.relocationTargets().end()
                                        ? QString()
                                        : screenText("Aktif: " + target->second)}});
    }
    caches_.setRows(rows);
    emit cachesChanged();
}

QString SsdModel::relocateText() const {
    const auto volume = model_.workVolume();
    return volume ? "Arahkan ke " + screenText(volume->name) : QString();
}

bool SsdModel::canRelocate() const {
    const auto volume = model_.workVolume();
    return volume && volume->supportsDevWork() && !chosen_.empty();
}

bool SsdModel::canRevert() const {
    return hasWorkVolume() && !model_.relocationTargets().empty();
}

bool SsdModel::needsOtherFormat() const {
    const auto volume = model_.workVolume();
    return volume && !volume->supportsDevWork();
}

void SsdModel::toggleCache(int cache) {
    if (cache < 0 || std::cmp_greater_equal(cache, allDevCaches.size()))
        return;
    const auto toggled = allDevCaches[static_cast<std::size_t>(cache)];
    if (chosen_.erase(toggled) == 0)
        chosen_.insert(toggled);
    readCaches();
}

void SsdModel::relocate() {
    if (canRelocate())
        model_.relocate(chosen_);
}

void SsdModel::revertRelocation() {
    if (!canRevert())
        return;
    auto caches = chosen_;
    if (caches.empty()) // then all that are away
        for (const auto& [cache, target] : model_.relocationTargets())
            caches.insert(cache);
    model_.revertRelocation(caches);
}

// What was moved

void SsdModel::readMoved() {
    QList<RowList::Row> rows;
    for (const auto& record : model_.offloads())
        rows.append(movedRow(record));
    moved_.setRows(rows, keyRole);
    emit movedChanged();
    emit menuChanged();
}

RowList::Row SsdModel::movedRow(const OffloadRecord& record) const {
    const auto status = model_.offloadStatus(record);
    return {{keyRole, keyOf(record.id.text())},
            {"title", screenText(record.title)},
            {"path", screenText(PathTools::abbreviatingHome(record.originalPath))},
            {"sizeLine", sizeText(record.bytes) + " · " + clock_.relative(record.date)},
            {"statusText", screenText(label(status))},
            {"statusSymbol", symbol(status)},
            {"isAvailable", status == OffloadStatus::available}};
}

const OffloadRecord* SsdModel::menuRecord() const {
    const auto& records = model_.offloads();
    const auto row = menuRow_.row(); // -1 when it has gone
    return row >= 0 && std::cmp_less(row, records.size()) ? &records[static_cast<std::size_t>(row)] : nullptr;
}

void SsdModel::openMenu(int record) {
    readMoved(); // it may have been pulled out a moment ago
    menuRow_ = moved_.index(record);
    emit menuChanged();
}

QString SsdModel::restoreText() const {
    return menuRow_.data(moved_.roleNames().key("isAvailable")).toBool() ? "Kembalikan ke Mac"
                                                                         : "SSD tidak terpasang";
}

bool SsdModel::canRestore() const {
    return menuRow_.data(moved_.roleNames().key("isAvailable")).toBool() && !model_.busyMessage();
}

void SsdModel::revealMoved() {
    if (const auto* record = menuRecord())
        model_.reveal(record->destinationPath);
}

void SsdModel::restore() {
    if (const auto* record = menuRecord(); record != nullptr && canRestore())
        model_.restore(OffloadRecord(*record));
}

void SsdModel::forget() {
    if (const auto* record = menuRecord())
        model_.forget(OffloadRecord(*record));
}

} // namespace korvanti
