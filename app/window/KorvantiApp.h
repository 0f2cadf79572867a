#pragma once

#include "shell/AppModel.h"
#include "ui/SettingsModel.h"
#include "ui/WindowModels.h"
#include "window/MenuBarItem.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QRect>
#include <QSize>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace korvanti {

/// Where the panel goes, shadow included: below its item, or above one at the lower edge, and always within
/// the screen. Without an item, the upper right corner.
[[nodiscard]] QPoint panelPosition(const std::optional<QRect>& item, QSize panel, const QRect& screen);

/// The running program: one model, the window and the panel over it, and the item in the menu bar. Needs a
/// QApplication that does not quit on its own.
class KorvantiApp : public QObject {
    Q_OBJECT

public:
    using MakeItem = std::function<std::unique_ptr<MenuBarItem>(MenuBarItem::Clicked)>;

    explicit KorvantiApp(std::unique_ptr<Desktop> desktop, const MakeItem& makeItem = systemMenuBarItem);
    ~KorvantiApp() override;

    /// The window is open, or what there is to read would not load.
    [[nodiscard]] bool open();
    /// To be called when the event loop has ended: waits for what must not be cut off.
    void awaitEnd() { model_.awaitEnd(); }

    void showWindow();

    [[nodiscard]] AppModel& model() { return model_; }
    [[nodiscard]] FrameModel& frame() { return panes_.frame; }
    [[nodiscard]] QQuickWindow* window() { return window_.get(); }
    [[nodiscard]] QQuickWindow* panel() { return panel_.get(); }
    [[nodiscard]] QQuickWindow* settingsWindow() { return settingsWindow_.get(); }

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void finished(); ///< the program may end

private:
    std::unique_ptr<QQuickWindow> load(const QString& file, const QVariantMap& properties);
    void showSettings();
    void togglePanel();
    void updateItem();
    [[nodiscard]] bool isHidden() const; ///< no window of the program can be seen
    /// On X11 a key that is held down is let go and pressed again all the time, within one moment. Qt marks
    /// these as repeats only if it reads both at once.
    [[nodiscard]] bool isUnmarkedRepeat(const QEvent& event);

    AppModel model_;
    WindowModels panes_{model_};
    SettingsModel settings_{model_};
    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> window_;
    std::unique_ptr<QQuickWindow> panel_;
    std::unique_ptr<QQuickWindow> settingsWindow_; ///< made when it is first asked for
    std::unique_ptr<MenuBarItem> item_;
    QElapsedTimer panelLeft_;            ///< since when the panel is hidden
    std::pair<int, quint64> released_{}; ///< the last key, and when
};

} // namespace korvanti
