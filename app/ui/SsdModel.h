#pragma once

#include "shell/AppModel.h"
#include "ui/DateClock.h"
#include "ui/RowList.h"

#include <QObject>
#include <QPersistentModelIndex>
#include <QString>
#include <memory>
#include <qqmlregistration.h>
#include <set>
#include <vector>

namespace korvanti {

/// External volumes, the redirected caches, and what was moved to a volume. Volumes, caches and records are
/// named by their number in their list; the menu keeps hold of its record, and does nothing once that has
/// gone.
class SsdModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

    /// Roles: name, isWorkVolume, freeText, formatText, used, total, isAlmostFull, advice, speedText (empty
    /// before a test), workText, canBecomeWorkVolume, testText, canTest. The advice is a list of its own;
    /// roles: title, detail, command (empty where there is none), level (in the order of `Advice::Level`),
    /// symbol.
    Q_PROPERTY(korvanti::RowList* volumes READ volumes CONSTANT)
    Q_PROPERTY(bool hasVolumes READ hasVolumes NOTIFY volumesChanged)

    /// Roles: title, detail, isChosen, targetText (empty where nothing is in force).
    Q_PROPERTY(korvanti::RowList* caches READ caches CONSTANT)
    Q_PROPERTY(bool hasWorkVolume READ hasWorkVolume NOTIFY cachesChanged)
    Q_PROPERTY(QString relocateText READ relocateText NOTIFY cachesChanged)
    Q_PROPERTY(bool canRelocate READ canRelocate NOTIFY cachesChanged)
    Q_PROPERTY(bool canRevert READ canRevert NOTIFY cachesChanged)
    Q_PROPERTY(bool needsOtherFormat READ needsOtherFormat NOTIFY cachesChanged)

    /// Roles: title, path, sizeLine, statusText, statusSymbol, isAvailable.
    Q_PROPERTY(korvanti::RowList* moved READ moved CONSTANT)
    Q_PROPERTY(bool hasMoved READ hasMoved NOTIFY movedChanged)
    Q_PROPERTY(bool hasMenu READ hasMenu NOTIFY menuChanged)
    Q_PROPERTY(QString restoreText READ restoreText NOTIFY menuChanged)
    Q_PROPERTY(bool canRestore READ canRestore NOTIFY menuChanged)

    /// Statuses keep up with it as well.
    Q_PROPERTY(korvanti::DateClock* clock READ clock CONSTANT)

public:
    explicit SsdModel(AppModel& model, Clock clock = currentInstant, QObject* parent = nullptr);

    [[nodiscard]] RowList* volumes() { return &volumes_; }
    [[nodiscard]] bool hasVolumes() const { return !volumes_.rows().isEmpty(); }
    [[nodiscard]] static QString speedText(const VolumeService::SpeedResult& result);

    [[nodiscard]] RowList* caches() { return &caches_; }
    [[nodiscard]] bool hasWorkVolume() const { return model_.workVolume().has_value(); }
    [[nodiscard]] QString relocateText() const;
    [[nodiscard]] bool canRelocate() const;
    [[nodiscard]] bool canRevert() const;
    [[nodiscard]] bool needsOtherFormat() const;

    [[nodiscard]] RowList* moved() { return &moved_; }
    [[nodiscard]] bool hasMoved() const { return !moved_.rows().isEmpty(); }
    [[nodiscard]] bool hasMenu() const { return menuRow_.isValid(); }
    [[nodiscard]] QString restoreText() const;
    [[nodiscard]] bool canRestore() const;

    [[nodiscard]] DateClock* clock() { return &clock_; }

    Q_INVOKABLE void reload();

    Q_INVOKABLE void makeWorkVolume(int volume);
    Q_INVOKABLE void testSpeed(int volume);
    Q_INVOKABLE void reveal(int volume);
    Q_INVOKABLE void eject(int volume);
    /// As the very bytes, which the screen may not be able to show.
    Q_INVOKABLE void copyCommand(int volume, int advice);

    Q_INVOKABLE void toggleCache(int cache);
    Q_INVOKABLE void relocate();
    Q_INVOKABLE void revertRelocation();

    /// From now on the menu is about that record.
    Q_INVOKABLE void openMenu(int record);
    Q_INVOKABLE void revealMoved();
    Q_INVOKABLE void restore();
    Q_INVOKABLE void forget();

signals:
    void volumesChanged();
    void cachesChanged();
    void movedChanged();
    void menuChanged();

private:
    void readVolumes();
    void readCaches();
    void readMoved();
    [[nodiscard]] RowList::Row volumeRow(const VolumeInfo& volume, RowList* advice) const;
    [[nodiscard]] RowList::Row movedRow(const OffloadRecord& record) const;
    [[nodiscard]] const VolumeInfo* volumeAt(int row) const; ///< null when there is none
    [[nodiscard]] const OffloadRecord* menuRecord() const;

    AppModel& model_;
    DateClock clock_;
    std::set<DevCache> chosen_;
    std::vector<std::unique_ptr<RowList>> advice_; ///< by the volume's row; never fewer than there were
    RowList volumes_{{"name", "isWorkVolume", "freeText", "formatText", "used", "total", "isAlmostFull",
                      "advice", "speedText", "workText", "canBecomeWorkVolume", "testText", "canTest"},
                     this};
    RowList caches_{{"title", "detail", "isChosen", "targetText"}, this};
    RowList moved_{{"title", "path", "sizeLine", "statusText", "statusSymbol", "isAvailable"}, this};
    QPersistentModelIndex menuRow_;
};

} // namespace korvanti
