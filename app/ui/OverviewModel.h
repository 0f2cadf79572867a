#pragma once

#include "shell/AppModel.h"
#include "ui/DateClock.h"
#include "ui/RowList.h"

#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace korvanti {

/// The overview pane: how full the disk is, what can go at one click, and how the Mac's storage is doing.
class OverviewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

    Q_PROPERTY(bool hasReport READ hasReport NOTIFY reportChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(QString scanStatus READ scanStatus NOTIFY scanStatusChanged)
    Q_PROPERTY(QString scanLine READ scanLine NOTIFY scanLineChanged)
    Q_PROPERTY(QString rescanHint READ rescanHint CONSTANT)

    Q_PROPERTY(bool asksForAccess READ asksForAccess NOTIFY reportChanged)
    Q_PROPERTY(QString recommendedText READ recommendedText NOTIFY reportChanged)
    Q_PROPERTY(QString recommendedPromise READ recommendedPromise NOTIFY reportChanged)
    Q_PROPERTY(bool canClean READ canClean NOTIFY reportChanged)
    Q_PROPERTY(bool swapIsLarge READ swapIsLarge NOTIFY reportChanged)

    /// Roles: key, safety, title, value, caption. The keys name the classes that have a tile: "regenerable",
    /// …
    Q_PROPERTY(korvanti::RowList* tiles READ tiles CONSTANT)
    /// Roles: key, symbol, title, sizeText, share (of the largest, above 0 and up to 1).
    Q_PROPERTY(korvanti::RowList* categories READ categories CONSTANT)
    /// Roles: label, value.
    Q_PROPERTY(korvanti::RowList* health READ health CONSTANT)
    /// Roles: text.
    Q_PROPERTY(korvanti::RowList* notes READ notes CONSTANT)

    Q_PROPERTY(korvanti::DateClock* clock READ clock CONSTANT)

public:
    explicit OverviewModel(AppModel& model, Clock clock = currentInstant, QObject* parent = nullptr);

    [[nodiscard]] bool hasReport() const { return model_.report().has_value(); }
    [[nodiscard]] bool isScanning() const { return model_.isScanning(); }
    [[nodiscard]] QString scanStatus() const;
    [[nodiscard]] const QString& scanLine() const { return scanLine_; }
    [[nodiscard]] static QString rescanHint();

    [[nodiscard]] bool asksForAccess() const;
    [[nodiscard]] const QString& recommendedText() const { return recommendedText_; }
    [[nodiscard]] const QString& recommendedPromise() const { return recommendedPromise_; }
    [[nodiscard]] bool canClean() const { return canClean_; }
    [[nodiscard]] bool swapIsLarge() const;

    [[nodiscard]] RowList* tiles() { return &tiles_; }
    [[nodiscard]] RowList* categories() { return &categories_; }
    [[nodiscard]] RowList* health() { return &health_; }
    [[nodiscard]] RowList* notes() { return &notes_; }

    [[nodiscard]] DateClock* clock() { return &clock_; }

    Q_INVOKABLE void scan();
    Q_INVOKABLE void cleanRecommended();
    Q_INVOKABLE void showDetails();
    /// By key; an unknown one leads nowhere.
    Q_INVOKABLE void tileTapped(const QString& key);
    Q_INVOKABLE void categoryTapped(const QString& key);
    Q_INVOKABLE void openFullDiskAccessSettings();

signals:
    void reportChanged();
    void isScanningChanged();
    void scanStatusChanged();
    void scanLineChanged();

private:
    void readReport();
    void refreshScanLine();
    void openCleanup(ItemFilter filter, std::optional<ItemCategory> category);

    AppModel& model_;
    DateClock clock_;
    QString scanLine_;
    QString recommendedText_;
    QString recommendedPromise_;
    bool canClean_ = false;
    RowList tiles_{{"key", "safety", "title", "value", "caption"}, this};
    RowList categories_{{"key", "symbol", "title", "sizeText", "share"}, this};
    RowList health_{{"label", "value"}, this};
    RowList notes_{{"text"}, this};
};

} // namespace korvanti
