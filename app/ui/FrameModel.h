#pragma once

#include "shell/AppModel.h"
#include "ui/DateClock.h"
#include "ui/RowList.h"

#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace korvanti {

/// What stands around the panes: the sidebar with its footer, the messages above the pane, the item in the
/// menu bar and its panel.
class FrameModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

    /// Roles: title, symbol, chosenSymbol, badge.
    Q_PROPERTY(korvanti::RowList* panes READ panes CONSTANT)
    Q_PROPERTY(int pane READ pane NOTIFY paneChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)

    Q_PROPERTY(double usedBytes READ usedBytes NOTIFY capacityChanged)
    Q_PROPERTY(double totalBytes READ totalBytes NOTIFY capacityChanged)
    Q_PROPERTY(bool isLow READ isLow NOTIFY capacityChanged)
    Q_PROPERTY(QString capacityText READ capacityText NOTIFY capacityChanged)

    Q_PROPERTY(QString busyMessage READ busyMessage NOTIFY messagesChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY messagesChanged)
    Q_PROPERTY(QString noticeMessage READ noticeMessage NOTIFY messagesChanged)

    Q_PROPERTY(bool asksToQuit READ asksToQuit NOTIFY quittingChanged)
    Q_PROPERTY(QString quitText READ quitText NOTIFY quittingChanged)
    Q_PROPERTY(bool isQuitting READ isQuitting NOTIFY quittingChanged) ///< and waits for what must end

    Q_PROPERTY(QString labelText READ labelText NOTIFY capacityChanged)
    Q_PROPERTY(QString labelSymbol READ labelSymbol NOTIFY capacityChanged)

    Q_PROPERTY(QString freeText READ freeText NOTIFY capacityChanged)
    Q_PROPERTY(QString totalText READ totalText NOTIFY capacityChanged)
    Q_PROPERTY(QString lowSpaceText READ lowSpaceText NOTIFY capacityChanged) ///< empty when there is enough
    Q_PROPERTY(bool hasReport READ hasReport NOTIFY reportChanged)
    Q_PROPERTY(QString recommendedText READ recommendedText NOTIFY reportChanged)
    Q_PROPERTY(QString scanText READ scanText NOTIFY scanTextChanged)
    /// Roles: name, free.
    Q_PROPERTY(korvanti::RowList* volumes READ volumes CONSTANT)
    Q_PROPERTY(QString scanAction READ scanAction NOTIFY isScanningChanged)
    Q_PROPERTY(bool canClean READ canClean NOTIFY reportChanged)
    /// Its dates are those of the panel.
    Q_PROPERTY(korvanti::DateClock* clock READ clock CONSTANT)

public:
    explicit FrameModel(AppModel& model, Clock clock = currentInstant, QObject* parent = nullptr);

    [[nodiscard]] RowList* panes() { return &panes_; }
    [[nodiscard]] int pane() const; ///< row of the sidebar
    [[nodiscard]] bool isScanning() const { return model_.isScanning(); }

    [[nodiscard]] double usedBytes() const;
    [[nodiscard]] double totalBytes() const { return static_cast<double>(model_.totalBytes()); }
    [[nodiscard]] bool isLow() const { return model_.isLowSpace(); }
    [[nodiscard]] QString capacityText() const;

    [[nodiscard]] QString busyMessage() const;
    [[nodiscard]] QString errorMessage() const;
    [[nodiscard]] QString noticeMessage() const;

    [[nodiscard]] bool asksToQuit() const { return !quitText_.isEmpty(); }
    /// What quitting means for the work under way; empty when it is not asked.
    [[nodiscard]] QString quitText() const { return quitText_; }
    [[nodiscard]] bool isQuitting() const { return model_.isEnding(); }

    /// Of the item in the menu bar.
    [[nodiscard]] QString labelText() const;
    [[nodiscard]] QString labelSymbol() const;

    [[nodiscard]] QString freeText() const;
    [[nodiscard]] QString totalText() const;
    [[nodiscard]] QString lowSpaceText() const;
    [[nodiscard]] bool hasReport() const { return model_.report().has_value(); }
    [[nodiscard]] QString recommendedText() const;
    [[nodiscard]] QString scanText() const;
    [[nodiscard]] RowList* volumes() { return &volumes_; }
    [[nodiscard]] QString scanAction() const;
    [[nodiscard]] bool canClean() const;
    [[nodiscard]] DateClock* clock() { return &clock_; }

    Q_INVOKABLE void openSettings() { emit settingsRequested(); }
    Q_INVOKABLE void choosePane(int row); ///< a number that is no row changes nothing
    Q_INVOKABLE void scan();
    Q_INVOKABLE void dismissError();
    Q_INVOKABLE void dismissNotice();
    /// The window is there: without a report, that is the time for the first scan.
    Q_INVOKABLE void windowOpened();
    /// The panel is about to be seen.
    Q_INVOKABLE void panelOpened();

    /// The panel's actions.
    Q_INVOKABLE void openOverview();
    /// Opens the confirmation for just what the panel promised, whatever the user had chosen.
    Q_INVOKABLE void cleanRecommended();
    /// Asks first, while work is under way; the answer is one of the two below.
    Q_INVOKABLE void quit();
    Q_INVOKABLE void confirmQuit();
    Q_INVOKABLE void stay();

signals:
    void paneChanged();
    void isScanningChanged();
    void capacityChanged();
    void messagesChanged();
    void reportChanged();
    void scanTextChanged();
    void settingsRequested(); ///< open their window, or bring it to the front
    void windowRequested();   ///< open it, or bring it to the front
    void quittingChanged();
    void quitRequested(); ///< now: nothing is under way that must end

private:
    void updatePanes();
    void updateVolumes();
    void updateQuitText();
    [[nodiscard]] std::int64_t recommendedBytes() const;

    AppModel& model_;
    DateClock clock_;
    QString quitText_;
    RowList panes_;
    RowList volumes_;
};

} // namespace korvanti
