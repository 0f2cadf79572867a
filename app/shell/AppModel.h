#pragma once

#include "analysis/InstalledApp.h"
#include "analysis/StorageMap.h"
#include "cleaning/ActivityLog.h"
#include "cleaning/Cleaner.h"
#include "drives/DevCache.h"
#include "drives/OffloadRecord.h"
#include "drives/OffloadService.h"
#include "drives/RelocationService.h"
#include "drives/VolumeInfo.h"
#include "drives/VolumeService.h"
#include "scan/ScanReport.h"
#include "settings/KorvantiSettings.h"
#include "shell/Background.h"
#include "shell/Desktop.h"
#include "shell/ItemFilter.h"
#include "shell/Pane.h"

#include <QObject>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace korvanti {

/// All state of the window and the menu-bar panel, and the one place that drives the core. Lives on the main
/// thread; long work gets value copies on threads of its own and comes back by queued calls. A setter that
/// changes nothing tells nobody.
class AppModel : public QObject {
    Q_OBJECT

public:
    /// Reads what was saved, asks for the disk, and begins to look after volumes and, once an interval, free
    /// space.
    explicit AppModel(std::unique_ptr<Desktop> desktop, QObject* parent = nullptr,
                      std::chrono::milliseconds diskInterval = std::chrono::minutes(1));
    /// Waits for all work under way, which can be minutes, and drops what it gave. The program does not come
    /// here: see `awaitEnd`.
    ~AppModel() override;

    using Targets = std::map<DevCache, std::string>;
    using SpeedResults = std::map<std::string, VolumeService::SpeedResult>;

    [[nodiscard]] Pane pane() const { return pane_; }
    [[nodiscard]] const KorvantiSettings& settings() const { return settings_; }
    [[nodiscard]] const std::optional<ScanReport>& report() const { return report_; }
    [[nodiscard]] bool isScanning() const { return isScanning_; }
    [[nodiscard]] const std::string& scanStatus() const { return scanStatus_; }
    [[nodiscard]] const std::set<std::string>& selection() const { return selection_; } ///< ids of items
    [[nodiscard]] ItemFilter filter() const { return filter_; }
    [[nodiscard]] std::optional<ItemCategory> categoryFilter() const { return categoryFilter_; }
    [[nodiscard]] const std::string& search() const { return search_; }
    [[nodiscard]] const std::optional<std::vector<CleanupItem>>& pendingCleanup() const {
        return pendingCleanup_;
    }
    [[nodiscard]] bool isCleaning() const { return isCleaning_; }
    [[nodiscard]] double cleanProgress() const { return cleanProgress_; } ///< 0 to 1
    [[nodiscard]] const std::string& cleanCurrent() const { return cleanCurrent_; }
    [[nodiscard]] const std::vector<CleanupOutcome>& outcomes() const { return outcomes_; }
    [[nodiscard]] std::int64_t freeBytes() const { return freeBytes_; }
    [[nodiscard]] std::int64_t totalBytes() const { return totalBytes_; }
    [[nodiscard]] const std::vector<VolumeInfo>& volumes() const { return volumes_; }
    [[nodiscard]] const std::vector<OffloadRecord>& offloads() const { return offloads_; }
    [[nodiscard]] const Targets& relocationTargets() const { return relocationTargets_; }
    [[nodiscard]] const SpeedResults& speedResults() const { return speedResults_; } ///< by volume key
    [[nodiscard]] const std::optional<std::string>& speedTesting() const { return speedTesting_; }
    [[nodiscard]] const std::optional<std::string>& busyMessage() const { return busyMessage_; }
    [[nodiscard]] const std::optional<std::string>& errorMessage() const { return errorMessage_; }
    [[nodiscard]] const std::optional<std::string>& noticeMessage() const { return noticeMessage_; }
    [[nodiscard]] const std::vector<ActivityEntry>& activity() const { return activity_; } ///< newest first
    [[nodiscard]] const std::vector<InstalledApp>& apps() const { return apps_; }
    [[nodiscard]] bool appsLoading() const { return appsLoading_; }
    [[nodiscard]] const std::optional<StorageMap>& storageMap() const { return storageMap_; }
    [[nodiscard]] bool isMapping() const { return isMapping_; }
    [[nodiscard]] const std::string& mapStatus() const { return mapStatus_; }

    void setPane(Pane pane);
    void setSettings(KorvantiSettings settings); ///< saved as well
    void setFilter(ItemFilter filter);
    void setCategoryFilter(std::optional<ItemCategory> category);
    void setSearch(std::string text);
    void clearSelection();
    /// The sheet was closed; nothing while a cleanup runs.
    void dismissCleanup();
    void dismissError();
    void dismissNotice();

    [[nodiscard]] std::optional<VolumeInfo> workVolume() const;
    [[nodiscard]] std::vector<CleanupItem> filteredItems() const;
    [[nodiscard]] std::vector<CleanupItem> selectedItems() const;
    /// The same without copies: into the report, so only until it changes.
    [[nodiscard]] std::vector<const CleanupItem*> filtered() const;
    [[nodiscard]] std::vector<const CleanupItem*> selected() const;
    [[nodiscard]] std::int64_t selectedBytes() const;
    [[nodiscard]] bool isLowSpace() const;
    /// The UUID, or the mount path of a volume without one.
    [[nodiscard]] static std::string volumeKey(const VolumeInfo& volume) { return volume.id(); }
    /// 0 to 1; 1 where there is nothing to do.
    [[nodiscard]] static double fraction(std::size_t done, std::size_t total);

    void scan();
    void selectRecommended();
    void toggle(const CleanupItem& item);
    /// Leaves out what is on its way to a volume, and what lies there already: by a link to it, which is all
    /// that could go here, the data would be lost from sight.
    void requestCleanup(const std::vector<CleanupItem>& items);
    void confirmCleanup();
    void refreshDisk();
    void refreshVolumes();
    void loadApps();
    void offload(const CleanupItem& item);
    void restore(const OffloadRecord& record);
    void forget(const OffloadRecord& record);
    [[nodiscard]] OffloadStatus offloadStatus(const OffloadRecord& record) const;
    void speedTest(const VolumeInfo& volume);
    void eject(const VolumeInfo& volume);
    void relocate(const std::set<DevCache>& caches);
    void revertRelocation(const std::set<DevCache>& caches);
    void generateMap();
    [[nodiscard]] bool isLoginItem() const; ///< asks the system
    bool setLoginItem(bool enabled); ///< false when the system refused, which is told in `errorMessage`
    void openFullDiskAccessSettings();
    void reveal(const std::string& path); ///< its folder, where it is gone
    /// What can be asked about by its identifier, so never one without; asks the system.
    [[nodiscard]] bool isRunning(const InstalledApp& app) const;
    void askToEnd(const InstalledApp& app);
    /// A PNG file; empty where the system has none.
    [[nodiscard]] std::string icon(const std::string& bundle, int pixels) const;

    /// A cleanup or a move is under way: cut off, the log and the report would not tell what was done. All
    /// else only reads and may be left in the middle.
    [[nodiscard]] bool hasWorkThatMustEnd() const { return isCleaning_ || moves_ > 0; }
    /// The program is to quit, and there is no way back. A cleanup ends behind the item that it is at (the
    /// rest stays in the report), a move is waited for, and none of them begins any more. `workEnded` follows
    /// from the event loop, soon when nothing is under way.
    void endSoon();
    [[nodiscard]] bool isEnding() const { return isEnding_; } ///< `endSoon` was called
    /// `endSoon`, and handles events until the work has ended. To be the last in `main`, before `_Exit`:
    /// what only reads may still run then.
    void awaitEnd();

signals:
    void paneChanged();
    void settingsChanged();
    void reportChanged();
    void isScanningChanged();
    void scanStatusChanged();
    void selectionChanged();
    void filterChanged();
    void categoryFilterChanged();
    void searchChanged();
    void pendingCleanupChanged();
    void isCleaningChanged();
    void cleanProgressChanged();
    void cleanCurrentChanged();
    void outcomesChanged();
    void freeBytesChanged();
    void totalBytesChanged();
    void volumesChanged();
    void offloadsChanged();
    void relocationTargetsChanged();
    void speedResultsChanged();
    void speedTestingChanged();
    void busyMessageChanged();
    void errorMessageChanged();
    void noticeMessageChanged();
    void activityChanged();
    void appsChanged();
    void appsLoadingChanged();
    void storageMapChanged();
    void isMappingChanged();
    void mapStatusChanged();
    void isEndingChanged();
    void workEnded(); ///< after `endSoon`, once

private:
    using Outcomes = std::vector<CleanupOutcome>;

    template <class Field> void change(Field& field, Field value, void (AppModel::*changed)());

    [[nodiscard]] ActivityLog log() const;
    [[nodiscard]] OffloadService offloadService() const;
    [[nodiscard]] RelocationService relocationService() const;
    void reloadActivity();
    void saveReport() const;
    void removeFromReport(const std::set<std::string>& ids);
    /// Goes on from the outcome with that number, one application at a time, and finishes then.
    void retryApplications(Outcomes outcomes, std::size_t next);
    void finishRecycling(CleanupOutcome& outcome, const Desktop::Result& recycled) const;
    void finishCleanup(Outcomes outcomes);
    [[nodiscard]] bool isMoving(const CleanupItem& item) const;
    [[nodiscard]] bool hasMoved(const CleanupItem& item) const;
    void beginMove(std::string message);
    void finishMove();
    void tellIfEnded();
    void fail(std::string message);
    /// What to do with the desktop's answer: tells of its failure to open `what`, in words.
    [[nodiscard]] Desktop::Answer openedOrTold(const std::string& what);
    void notice(std::string message);

    std::string home_;
    std::unique_ptr<Desktop> desktop_;
    QTimer timer_;

    Pane pane_ = Pane::overview;
    KorvantiSettings settings_;
    std::optional<ScanReport> report_;
    bool isScanning_ = false;
    std::string scanStatus_;
    std::set<std::string> selection_;
    ItemFilter filter_ = ItemFilter::recommended;
    std::optional<ItemCategory> categoryFilter_;
    std::string search_;
    std::optional<std::vector<CleanupItem>> pendingCleanup_;
    bool isCleaning_ = false;
    double cleanProgress_ = 0;
    std::string cleanCurrent_;
    Outcomes outcomes_;
    std::int64_t freeBytes_ = 0;
    std::int64_t totalBytes_ = 0;
    std::vector<VolumeInfo> volumes_;
    std::vector<OffloadRecord> offloads_;
    Targets relocationTargets_;
    SpeedResults speedResults_;
    std::optional<std::string> speedTesting_;
    std::optional<std::string> busyMessage_;
    std::optional<std::string> errorMessage_;
    std::optional<std::string> noticeMessage_;
    std::vector<ActivityEntry> activity_;
    std::vector<InstalledApp> apps_;
    bool appsLoading_ = false;
    std::optional<StorageMap> storageMap_;
    bool isMapping_ = false;
    std::string mapStatus_;

    int moves_ = 0;                           ///< to a volume and back, under way
    std::multiset<std::string> leaving_;      ///< paths of items on their way to a volume
    std::set<std::string> goneWhileScanning_; ///< ids of items that the scan may have seen before
    bool appsStale_ = false;                  ///< an application went while the list was made
    bool isEnding_ = false;
    bool endIsTold_ = false;
    std::shared_ptr<std::atomic<bool>> shouldStop_ = std::make_shared<std::atomic<bool>>(); ///< the cleanup
    bool volumesLoading_ = false;
    bool volumesStale_ = false; ///< something was mounted meanwhile

    Background background_{*this}; ///< the last, so that it ends first
};

} // namespace korvanti
