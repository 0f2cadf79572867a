#include "shell/AppModel.h"

#include "analysis/DiskInspector.h"
#include "analysis/InstalledApps.h"
#include "analysis/StorageMapper.h"
#include "base/ByteText.h"
#include "base/CheckedMath.h"
#include "base/Json.h"
#include "base/Text.h"
#include "cleaning/SafetyGuard.h"
#include "cleaning/Trash.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "fs/SizeLedger.h"
#include "platform/Platform.h"
#include "scan/ReportJson.h"
#include "scanner/Scanner.h"
#include "settings/AppPaths.h"

#include <QCoreApplication>
#include <QPointer>
#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

namespace korvanti {
namespace {

constexpr std::size_t shownEntries = 500;

/// Whichever items are chosen, their sizes add up. In a damaged file they need not.
bool canBeAdded(const std::vector<CleanupItem>& items) {
    std::int64_t sum = 0;
    return std::ranges::all_of(items, [&](const CleanupItem& item) {
        return item.bytes >= 0 && !__builtin_add_overflow(sum, item.bytes, &sum);
    });
}

std::optional<ScanReport> savedReport() {
    const auto text = FileContents::read(AppPaths::lastReport());
    const auto json = text ? parseJson(*text) : std::unexpected(JsonError{"unreadable"});
    if (!json)
        return std::nullopt;
    auto report = scanReportFromJson(*json);
    return report && canBeAdded(report->items) ? std::optional(std::move(*report)) : std::nullopt;
}

std::set<std::string> recommendedIds(const std::optional<ScanReport>& report) {
    std::set<std::string> ids;
    if (report) {
        for (const auto& item : report->items) {
            if (item.recommended)
                ids.insert(item.id());
        }
    }
    return ids;
}

/// The same for what a reader takes for the same: a Mac's names may be decomposed.
std::string searchForm(std::string_view text) {
    return Text::composed(Text::lowercased(text));
}

std::vector<CleanupItem> copiesOf(const std::vector<const CleanupItem*>& items) {
    std::vector<CleanupItem> copies;
    copies.reserve(items.size());
    for (const auto* item : items)
        copies.push_back(*item);
    return copies;
}

/// These find their folder by a fixed path, so a link is left there.
bool keepsALink(ItemCategory category) {
    constexpr std::array categories = {ItemCategory::projects, ItemCategory::xcode, ItemCategory::aiTools,
                                       ItemCategory::android, ItemCategory::toolchains};
    return std::ranges::find(categories, category) != categories.end();
}

} // namespace

AppModel::AppModel(std::unique_ptr<Desktop> desktop, QObject* parent, std::chrono::milliseconds diskInterval)
    : QObject(parent), home_(Platform::homeFolder()), desktop_(std::move(desktop)),
      settings_(KorvantiSettings::load()), report_(savedReport()), selection_(recommendedIds(report_)),
      storageMap_(StorageMapper::load()) {
    refreshDisk();
    offloads_ = offloadService().records();
    activity_ = log().load(shownEntries);
    connect(&timer_, &QTimer::timeout, this, &AppModel::refreshDisk);
    timer_.start(diskInterval);
    desktop_->watchMounts([this] { refreshVolumes(); });
    refreshVolumes(); // the last, so that no mount is missed in between
}

AppModel::~AppModel() {
    *shouldStop_ = true;
}

template <class Field> void AppModel::change(Field& field, Field value, void (AppModel::*changed)()) {
    if (field == value)
        return;
    field = std::move(value);
    emit(this->*changed)();
}

ActivityLog AppModel::log() const {
    return ActivityLog(AppPaths::activity());
}

OffloadService AppModel::offloadService() const {
    return {home_, AppPaths::offloads(), log()};
}

RelocationService AppModel::relocationService() const {
    return {home_, "com.apple.dt.Xcode"};
}

void AppModel::setPane(Pane pane) {
    change(pane_, pane, &AppModel::paneChanged);
}

void AppModel::setSettings(KorvantiSettings settings) {
    settings.save();
    change(settings_, std::move(settings), &AppModel::settingsChanged);
}

void AppModel::setFilter(ItemFilter filter) {
    change(filter_, filter, &AppModel::filterChanged);
}

void AppModel::setCategoryFilter(std::optional<ItemCategory> category) {
    change(categoryFilter_, category, &AppModel::categoryFilterChanged);
}

void AppModel::setSearch(std::string text) {
    change(search_, std::move(text), &AppModel::searchChanged);
}

void AppModel::clearSelection() {
    change(selection_, {}, &AppModel::selectionChanged);
}

void AppModel::dismissCleanup() {
    if (!isCleaning_)
        change(pendingCleanup_, {}, &AppModel::pendingCleanupChanged);
}

void AppModel::dismissError() {
    change(errorMessage_, {}, &AppModel::errorMessageChanged);
}

void AppModel::dismissNotice() {
    change(noticeMessage_, {}, &AppModel::noticeMessageChanged);
}

std::optional<VolumeInfo> AppModel::workVolume() const {
    if (!settings_.workVolumeUUID)
        return std::nullopt;
    const auto found = std::ranges::find(volumes_, settings_.workVolumeUUID, &VolumeInfo::uuid);
    return found == volumes_.end() ? std::nullopt : std::optional(*found);
}

std::vector<CleanupItem> AppModel::filteredItems() const {
    return copiesOf(filtered());
}

std::vector<CleanupItem> AppModel::selectedItems() const {
    return copiesOf(selected());
}

std::vector<const CleanupItem*> AppModel::filtered() const {
    std::vector<const CleanupItem*> items;
    if (!report_)
        return items;
    const auto query = searchForm(Text::trimmed(search_, " \t"));
    const auto isFound = [&](const std::string& text) { return searchForm(text).contains(query); };
    for (const auto& item : report_->items) {
        if (matches(filter_, item) && (!categoryFilter_ || *categoryFilter_ == item.category) &&
            (query.empty() || isFound(item.title) || isFound(item.path)))
            items.push_back(&item);
    }
    return items;
}

std::vector<const CleanupItem*> AppModel::selected() const {
    std::vector<const CleanupItem*> items;
    if (!report_)
        return items;
    for (const auto& item : report_->items) {
        if (item.isSelectable() && selection_.contains(item.id()))
            items.push_back(&item);
    }
    return items;
}

std::int64_t AppModel::selectedBytes() const {
    std::int64_t bytes = 0;
    for (const auto* item : selected())
        bytes = addChecked(bytes, item->bytes);
    return bytes;
}

double AppModel::fraction(std::size_t done, std::size_t total) {
    return total == 0 ? 1.0 : static_cast<double>(done) / static_cast<double>(total);
}

bool AppModel::isLowSpace() const {
    std::int64_t limit = 0;
    if (__builtin_mul_overflow(settings_.lowSpaceWarningGB, GB, &limit))
        return settings_.lowSpaceWarningGB > 0;
    return freeBytes_ < limit;
}

void AppModel::scan() {
    if (isScanning_)
        return;
    change(isScanning_, true, &AppModel::isScanningChanged);
    change(scanStatus_, std::string("Memulai…"), &AppModel::scanStatusChanged);
    const auto relay = std::make_shared<ProgressRelay<std::string>>(
        *this, [this](const std::string& text) { change(scanStatus_, text, &AppModel::scanStatusChanged); });
    background_.start(
        [scanner = Scanner{.settings = settings_, .home = home_}, relay] {
            return scanner.run(Scanner::defaultProviders(),
                               [relay](const std::string& text) { relay->tell(text); });
        },
        [this, relay](ScanReport report) {
            relay->end();
            const auto gone = std::exchange(goneWhileScanning_, {});
            std::erase_if(report.items, [&](const auto& item) { return gone.contains(item.id()); });
            change(report_, std::optional(std::move(report)), &AppModel::reportChanged);
            selectRecommended();
            change(isScanning_, false, &AppModel::isScanningChanged);
            change(scanStatus_, {}, &AppModel::scanStatusChanged);
            refreshDisk();
            saveReport();
        });
}

void AppModel::saveReport() const {
    if (report_)
        static_cast<void>(
            FileContents::writeAtomically(AppPaths::lastReport(), compactJson(toJson(*report_))));
}

void AppModel::selectRecommended() {
    change(selection_, recommendedIds(report_), &AppModel::selectionChanged);
}

void AppModel::toggle(const CleanupItem& item) {
    if (!item.isSelectable())
        return;
    if (selection_.erase(item.id()) == 0)
        selection_.insert(item.id());
    emit selectionChanged();
}

void AppModel::requestCleanup(const std::vector<CleanupItem>& items) {
    if (isCleaning_ || isEnding_)
        return;
    std::vector<CleanupItem> kept;
    for (const auto& item : items) {
        if (isMoving(item))
            fail(item.title + " sedang dipindah ke SSD.");
        else if (hasMoved(item))
            fail(item.title + " sudah dipindah ke SSD.");
        else if (item.isSelectable())
            kept.push_back(item);
    }
    if (kept.empty())
        return;
    change(outcomes_, {}, &AppModel::outcomesChanged);
    change(pendingCleanup_, std::optional(std::move(kept)), &AppModel::pendingCleanupChanged);
}

bool AppModel::isMoving(const CleanupItem& item) const {
    return std::ranges::any_of(leaving_, [&](const std::string& path) {
        return PathTools::isSameOrAncestor(path, item.path) || PathTools::isSameOrAncestor(item.path, path);
    });
}

bool AppModel::hasMoved(const CleanupItem& item) const {
    return std::ranges::any_of(offloads_, [&](const OffloadRecord& record) {
        return record.symlinked && record.originalPath == item.path && PathTools::isSymlink(item.path);
    });
}

void AppModel::confirmCleanup() {
    struct Step {
        double progress = 0;
        std::string title;
    };
    if (!pendingCleanup_ || isCleaning_ || isEnding_)
        return;
    // Emptied last, the Trash would take with it what the same cleanup has just put there.
    auto ordered = *pendingCleanup_;
    std::ranges::stable_partition(
        ordered, [](const auto& item) { return item.action.kind == CleanupAction::Kind::emptyTrash; });
    change(isCleaning_, true, &AppModel::isCleaningChanged);
    change(cleanProgress_, 0.0, &AppModel::cleanProgressChanged);
    const auto relay = std::make_shared<ProgressRelay<Step>>(*this, [this](const Step& step) {
        change(cleanProgress_, step.progress, &AppModel::cleanProgressChanged);
        change(cleanCurrent_, step.title, &AppModel::cleanCurrentChanged);
    });
    background_.start(
        [cleaner = Cleaner(home_, log()), items = std::move(ordered), relay, shouldStop = shouldStop_] {
            return cleaner.run(
                items,
                [&](std::size_t done, std::size_t total, const std::string& title) {
                    relay->tell({.progress = fraction(done, total), .title = title});
                },
                [&] { return shouldStop->load(); });
        },
        [this, relay](Outcomes outcomes) {
            relay->end();
            retryApplications(std::move(outcomes), 0);
        });
}

void AppModel::retryApplications(Outcomes outcomes, std::size_t next) {
    const SafetyGuard guardrail(home_);
    for (; next < outcomes.size() && !isEnding_; ++next) {
        auto& outcome = outcomes[next];
        const auto path = outcome.item.path;
        if (outcome.success || !path.ends_with(".app"))
            continue;
        if (const auto verdict = guardrail.validate(path, {.allowApplicationBundle = true}); !verdict) {
            const auto reason = verdict.error().description();
            // What the cleaner has moved is not there either, but then it told which data stayed.
            if (PathTools::exists(path) || outcome.message == reason)
                outcome.message = "Tidak bisa dihapus: " + reason;
            continue;
        }
        desktop_->recycle(
            path, [model = QPointer(this), next,
                   all = std::make_shared<Outcomes>(std::move(outcomes))](const Desktop::Result& recycled) {
                if (!model)
                    return;
                model->finishRecycling((*all)[next], recycled);
                model->retryApplications(std::move(*all), next + 1);
            });
        return;
    }
    finishCleanup(std::move(outcomes));
}

void AppModel::finishRecycling(CleanupOutcome& outcome, const Desktop::Result& recycled) const {
    if (!recycled) {
        outcome.message = "Tidak bisa dihapus: " + recycled.error();
        return;
    }
    const auto trash = [&](const std::string& path) {
        const auto admitted = SafetyGuard(home_).admit(path, {});
        return admitted && Trash::move(*admitted, home_);
    };
    outcome.success = Cleaner(home_, log()).processRelated(outcome.item, trash).empty();
    outcome.message =
        outcome.success ? "Dipindah ke Tong Sampah lewat Finder" : "App terhapus; sebagian data dilewati";
    // Behind the entry of the cleaner, by which it has failed.
    log().append({.date = currentInstant(),
                  .kind = std::string(outcome.item.action.verb()),
                  .title = outcome.item.title,
                  .path = outcome.item.path,
                  .bytes = outcome.freedBytes,
                  .success = outcome.success,
                  .message = outcome.message});
}

void AppModel::finishCleanup(Outcomes outcomes) {
    std::set<std::string> cleaned;
    bool hasApplications = false;
    for (const auto& outcome : outcomes) {
        hasApplications = hasApplications || outcome.item.category == ItemCategory::apps;
        if (outcome.success)
            cleaned.insert(outcome.id());
    }
    change(outcomes_, std::move(outcomes), &AppModel::outcomesChanged);
    change(isCleaning_, false, &AppModel::isCleaningChanged);
    if (hasApplications) {
        appsStale_ = appsLoading_; // the list being made may hold what has just gone
        loadApps();
    }
    removeFromReport(cleaned);
    saveReport();
    refreshDisk();
    reloadActivity();
    tellIfEnded();
}

void AppModel::removeFromReport(const std::set<std::string>& ids) {
    if (isScanning_)
        goneWhileScanning_.insert(ids.begin(), ids.end());
    const auto isGone = [&](const auto& id) { return ids.contains(id); };
    const auto items =
        report_ ? std::erase_if(report_->items, [&](const auto& item) { return isGone(item.id()); }) : 0;
    const auto selected = std::erase_if(selection_, isGone);
    if (items > 0)
        emit reportChanged();
    if (selected > 0)
        emit selectionChanged();
}

void AppModel::reloadActivity() {
    change(activity_, log().load(shownEntries), &AppModel::activityChanged);
}

void AppModel::refreshDisk() {
    const auto space = DiskInspector::freeSpace(home_);
    change(freeBytes_, space.available, &AppModel::freeBytesChanged);
    change(totalBytes_, space.total, &AppModel::totalBytesChanged);
}

void AppModel::refreshVolumes() {
    struct Found {
        std::vector<VolumeInfo> volumes;
        Targets targets;
    };
    // One at a time, so that no older answer comes behind a newer one.
    if (std::exchange(volumesLoading_, true)) {
        volumesStale_ = true;
        return;
    }
    background_.start(
        [relocation = relocationService()] {
            auto volumes = VolumeService::externalVolumes();
            return Found{.volumes = std::move(volumes), .targets = relocation.currentTargets()};
        },
        [this](Found found) {
            change(volumes_, std::move(found.volumes), &AppModel::volumesChanged);
            change(relocationTargets_, std::move(found.targets), &AppModel::relocationTargetsChanged);
            change(offloads_, offloadService().records(), &AppModel::offloadsChanged);
            if (!settings_.workVolumeUUID && volumes_.size() == 1 && volumes_.front().isAPFS() &&
                volumes_.front().uuid) {
                auto settings = settings_;
                settings.workVolumeUUID = volumes_.front().uuid;
                setSettings(std::move(settings));
            }
            volumesLoading_ = false;
            if (std::exchange(volumesStale_, false))
                refreshVolumes();
        });
}

void AppModel::loadApps() {
    if (appsLoading_)
        return;
    change(appsLoading_, true, &AppModel::appsLoadingChanged);
    background_.start(
        [home = home_] {
            SizeLedger sizes;
            return InstalledApps::list(home, currentInstant(), sizes, {.measure = true});
        },
        [this](std::vector<InstalledApp> apps) {
            change(apps_, std::move(apps), &AppModel::appsChanged);
            change(appsLoading_, false, &AppModel::appsLoadingChanged);
            if (std::exchange(appsStale_, false))
                loadApps();
        });
}

void AppModel::offload(const CleanupItem& item) {
    const auto volume = workVolume();
    if (!volume)
        return fail("Pilih SSD kerja dulu di bagian SSD Eksternal.");
    if (isEnding_)
        return;
    leaving_.insert(item.path);
    beginMove("Memindahkan " + item.title + " ke " + volume->name + "…");
    const auto relay =
        std::make_shared<ProgressRelay<std::int64_t>>(*this, [this, item](std::int64_t copied) {
            change(busyMessage_,
                   std::optional("Memindahkan " + item.title + ": " + bytesText(copied) + " dari " +
                                 bytesText(item.bytes) + "…"),
                   &AppModel::busyMessageChanged);
        });
    background_.start(
        [service = offloadService(), item, volume = *volume, relay] {
            return service.offload(item, volume, {.symlinkBack = keepsALink(item.category)},
                                   [relay](std::int64_t bytes) { relay->tell(bytes); });
        },
        [this, relay, id = item.id(), path = item.path,
         name = volume->name](const std::expected<OffloadRecord, DriveFailure>& moved) {
            relay->end();
            leaving_.erase(leaving_.find(path));
            if (moved) {
                removeFromReport({id});
                notice(moved->title + " dipindah ke " + name +
                       (moved->symlinked ? " (lokasi lama jadi tautan ke SSD)" : "") + ".");
            } else {
                fail(description(moved.error()));
            }
            finishMove();
        });
}

void AppModel::restore(const OffloadRecord& record) {
    if (isEnding_)
        return;
    beginMove("Mengembalikan " + record.title + " ke Mac…");
    background_.start([service = offloadService(), record] { return service.restore(record); },
                      [this, title = record.title](const std::expected<void, DriveFailure>& restored) {
                          if (restored)
                              notice(title + " sudah kembali ke lokasi asalnya.");
                          else
                              fail(description(restored.error()));
                          finishMove();
                      });
}

void AppModel::beginMove(std::string message) {
    ++moves_;
    change(busyMessage_, std::optional(std::move(message)), &AppModel::busyMessageChanged);
}

void AppModel::finishMove() {
    --moves_;
    change(busyMessage_, {}, &AppModel::busyMessageChanged);
    refreshDisk();
    refreshVolumes();
    reloadActivity();
    tellIfEnded();
}

void AppModel::fail(std::string message) {
    change(errorMessage_, std::optional(std::move(message)), &AppModel::errorMessageChanged);
}

void AppModel::notice(std::string message) {
    change(noticeMessage_, std::optional(std::move(message)), &AppModel::noticeMessageChanged);
}

void AppModel::forget(const OffloadRecord& record) {
    const auto service = offloadService();
    service.forget(record);
    change(offloads_, service.records(), &AppModel::offloadsChanged);
}

OffloadStatus AppModel::offloadStatus(const OffloadRecord& record) const {
    return OffloadService::status(record);
}

void AppModel::speedTest(const VolumeInfo& volume) {
    constexpr std::int64_t megabytes = 1024;
    const auto key = volumeKey(volume);
    change(speedTesting_, std::optional(key), &AppModel::speedTestingChanged);
    background_.start([path = volume.mountPath] { return VolumeService::speedTest(path, megabytes); },
                      [this, key](const std::expected<VolumeService::SpeedResult, FileError>& result) {
                          if (result) {
                              speedResults_[key] = *result;
                              emit speedResultsChanged();
                          } else {
                              fail("Uji kecepatan gagal: " + result.error().description());
                          }
                          change(speedTesting_, {}, &AppModel::speedTestingChanged);
                      });
}

void AppModel::eject(const VolumeInfo& volume) {
    if (const auto result = VolumeService::eject(volume); !result.ok())
        fail("Gagal mengeluarkan: " + result.err);
    refreshVolumes();
}

void AppModel::relocate(const std::set<DevCache>& caches) {
    const auto volume = workVolume();
    if (!volume)
        return;
    if (const auto applied = relocationService().apply(caches, *volume))
        notice("Cache dev diarahkan ke " + volume->name + ". Buka terminal baru agar Gradle/npm memakainya.");
    else
        fail(description(applied.error()));
    refreshVolumes();
}

void AppModel::revertRelocation(const std::set<DevCache>& caches) {
    if (const auto reverted = relocationService().revert(caches))
        notice("Cache dev kembali ke lokasi bawaan di Mac.");
    else
        fail(description(reverted.error()));
    refreshVolumes();
}

void AppModel::generateMap() {
    if (isMapping_)
        return;
    change(isMapping_, true, &AppModel::isMappingChanged);
    const auto relay = std::make_shared<ProgressRelay<std::string>>(
        *this, [this](const std::string& text) { change(mapStatus_, text, &AppModel::mapStatusChanged); });
    background_.start(
        [home = home_, relay] {
            return StorageMapper::map(StorageMapper::defaultRoots(home),
                                      [relay](const std::string& text) { relay->tell(text); });
        },
        [this, relay](StorageMap map) {
            relay->end();
            StorageMapper::save(map);
            change(storageMap_, std::optional(std::move(map)), &AppModel::storageMapChanged);
            change(isMapping_, false, &AppModel::isMappingChanged);
            change(mapStatus_, {}, &AppModel::mapStatusChanged);
        });
}

bool AppModel::isLoginItem() const {
    return desktop_->isLoginItem();
}

bool AppModel::setLoginItem(bool enabled) {
    const auto result = desktop_->setLoginItem(enabled);
    if (!result)
        fail("Gagal mengubah 'buka saat login': " + result.error());
    return result.has_value();
}

void AppModel::openFullDiskAccessSettings() {
    desktop_->openFullDiskAccessSettings(openedOrTold("pengaturan Full Disk Access"));
}

void AppModel::reveal(const std::string& path) {
    if (PathTools::exists(path))
        desktop_->reveal(path, openedOrTold(PathTools::abbreviatingHome(path)));
    else if (const std::string folder(PathTools::parent(path)); !folder.empty())
        desktop_->openFolder(folder, openedOrTold(PathTools::abbreviatingHome(folder)));
}

Desktop::Answer AppModel::openedOrTold(const std::string& what) {
    return [this, what](const Desktop::Result& result) {
        if (!result)
            fail("Tidak bisa membuka " + what + ": " + result.error());
    };
}

bool AppModel::isRunning(const InstalledApp& app) const {
    return app.bundleID && desktop_->isRunning(app);
}

void AppModel::askToEnd(const InstalledApp& app) {
    desktop_->askToEnd(app);
}

std::string AppModel::icon(const std::string& bundle, int pixels) const {
    return desktop_->icon(bundle, pixels);
}

void AppModel::endSoon() {
    *shouldStop_ = true;
    change(isEnding_, true, &AppModel::isEndingChanged);
    QMetaObject::invokeMethod(this, &AppModel::tellIfEnded, Qt::QueuedConnection);
}

void AppModel::awaitEnd() {
    endSoon();
    while (hasWorkThatMustEnd())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void AppModel::tellIfEnded() {
    if (isEnding_ && !hasWorkThatMustEnd() && !std::exchange(endIsTold_, true))
        emit workEnded();
}

} // namespace korvanti
