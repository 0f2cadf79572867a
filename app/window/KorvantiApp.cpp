#include "window/KorvantiApp.h"

#include "ui/AppIconProvider.h"
#include "ui/SymbolProvider.h"
#include "ui/Ui.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QPalette>
#include <QQmlComponent>
#include <QScreen>
#include <QVariant>
#include <algorithm>
#include <chrono>
#include <utility>

namespace korvanti {
namespace {

/// The menu bar gives the icon its own colour on a Mac; elsewhere it has to be seen on the desktop's.
QColor iconColor() {
    return QGuiApplication::palette().color(QPalette::WindowText);
}

std::string iconFile(const QString& symbol) {
    constexpr int pixels = 36;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    SymbolProvider::draw(symbol, pixels, iconColor()).save(&buffer, "PNG");
    return bytes.toStdString();
}

void bringUp(QQuickWindow* window) {
    if (!window)
        return;
    if (window->visibility() == QWindow::Minimized)
        window->showNormal();
    else
        window->show();
    window->raise();
    window->requestActivate();
}

} // namespace

QPoint panelPosition(const std::optional<QRect>& item, QSize panel, const QRect& screen) {
    constexpr int margin = 22; // of the panel's window around the panel, for its shadow
    constexpr int gap = 6;
    const QRect around = screen.adjusted(-margin, -margin, margin, margin);
    QPoint corner(around.right() + 1 - panel.width() - gap, screen.top() + gap - margin);
    if (item) {
        const bool isAtTheLowerEdge = item->center().y() > screen.center().y();
        corner.setX(item->x() + (item->width() - panel.width()) / 2);
        corner.setY(isAtTheLowerEdge ? item->top() - gap - panel.height() + margin
                                     : item->bottom() + 1 + gap - margin);
    }
    const auto within = [](int value, int lowest, int highest) {
        return std::max(lowest, std::min(value, highest));
    };
    return {within(corner.x(), around.left(), around.right() + 1 - panel.width()),
            within(corner.y(), around.top(), around.bottom() + 1 - panel.height())};
}

KorvantiApp::KorvantiApp(std::unique_ptr<Desktop> desktop, const MakeItem& makeItem)
    : model_(std::move(desktop)), item_(makeItem([this] { togglePanel(); })) {
    prepareForUi(engine_);
    engine_.addImageProvider("app", new AppIconProvider(model_)); // the engine's from now on
    connect(&panes_.frame, &FrameModel::windowRequested, this, &KorvantiApp::showWindow);
    connect(&panes_.frame, &FrameModel::settingsRequested, this, &KorvantiApp::showSettings);
    connect(&panes_.frame, &FrameModel::quitRequested, this, &KorvantiApp::finished);
    connect(&panes_.frame, &FrameModel::capacityChanged, this, &KorvantiApp::updateItem);
    QCoreApplication::instance()->installEventFilter(this);
    updateItem();
}

KorvantiApp::~KorvantiApp() {
    settingsWindow_.reset();
    panel_.reset();
    window_.reset();
}

std::unique_ptr<QQuickWindow> KorvantiApp::load(const QString& file, const QVariantMap& properties) {
    QQmlComponent component(&engine_, QUrl("qrc:/qt/qml/Korvanti/Ui/" + file));
    std::unique_ptr<QObject> made(component.createWithInitialProperties(properties));
    auto* const window = qobject_cast<QQuickWindow*>(made.get());
    if (!window) {
        qCritical("%s", qPrintable(component.errorString()));
        return nullptr;
    }
    static_cast<void>(made.release());
    return std::unique_ptr<QQuickWindow>(window);
}

bool KorvantiApp::open() {
    window_ = load("AppWindow.qml", panes_.properties());
    panel_ = load("MenuBarPanel.qml", {{"frame", QVariant::fromValue(&panes_.frame)}});
    if (!window_ || !panel_)
        return false;
    connect(panel_.get(), &QWindow::visibleChanged, this, [this](bool visible) {
        if (!visible)
            panelLeft_.start();
    });
    showWindow();
    return true;
}

void KorvantiApp::showWindow() {
    bringUp(window_.get());
}

void KorvantiApp::showSettings() {
    if (!settingsWindow_)
        settingsWindow_ = load("SettingsWindow.qml", {{"model", QVariant::fromValue(&settings_)}});
    if (settingsWindow_ && !settingsWindow_->isVisible() && window_ && window_->isVisible())
        settingsWindow_->setPosition(window_->geometry().center() - settingsWindow_->geometry().center() +
                                     settingsWindow_->position());
    bringUp(settingsWindow_.get());
}

void KorvantiApp::togglePanel() {
    using namespace std::chrono_literals;
    // The click on the item takes the focus away, by which the panel has just gone.
    if (!panel_ || (panelLeft_.isValid() && !panelLeft_.hasExpired((200ms).count())))
        return;
    if (panel_->isVisible()) {
        panel_->hide();
        return;
    }
    std::optional<QRect> item;
    if (const auto place = item_->place())
        item = QRect(place->x, place->y, place->width, place->height);
    const auto* const under = item ? QGuiApplication::screenAt(item->center()) : nullptr;
    const auto* const screen = under ? under : QGuiApplication::primaryScreen();
    if (screen == nullptr) // all are switched off
        return;
    panel_->setPosition(panelPosition(item, panel_->size(), screen->availableGeometry()));
    panel_->show();
    panel_->raise();
    panel_->requestActivate();
}

bool KorvantiApp::isHidden() const {
    const auto isSeen = [](const auto& window) { return window && window->isVisible(); };
    return !isSeen(window_) && !isSeen(panel_) && !isSeen(settingsWindow_);
}

void KorvantiApp::updateItem() {
    item_->show(iconFile(panes_.frame.labelSymbol()), panes_.frame.labelText().toStdString());
}

bool KorvantiApp::isUnmarkedRepeat(const QEvent& event) {
    if (event.type() != QEvent::KeyPress && event.type() != QEvent::KeyRelease)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    const std::pair now(key.key(), key.timestamp());
    if (event.type() == QEvent::KeyRelease)
        released_ = now;
    return event.type() == QEvent::KeyPress && !key.isAutoRepeat() && key.timestamp() > 0 && now == released_;
}

bool KorvantiApp::eventFilter(QObject* watched, QEvent* event) {
    if (watched->isWindowType() && isUnmarkedRepeat(*event)) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        QKeyEvent repeat(key.type(), key.key(), key.modifiers(), key.text(), true);
        repeat.setTimestamp(key.timestamp());
        QCoreApplication::sendEvent(watched, &repeat);
        return true;
    }
    // The window is the program's only way back where there is no item in the menu bar.
    const bool isLastClosing =
        event->type() == QEvent::Close && window_ && watched == window_.get() && !item_->isThere();
    const bool isQuitting = event->type() == QEvent::Quit && watched == QCoreApplication::instance();
    if (isLastClosing || isQuitting) {
        event->ignore();
        panes_.frame.quit();
        return true;
    }
    // On a Mac, also a click on the icon in the Dock, which is how people open a window again there.
    const bool isActivated =
        event->type() == QEvent::ApplicationStateChange && watched == QCoreApplication::instance() &&
        static_cast<QApplicationStateChangeEvent*>(event)->applicationState() == Qt::ApplicationActive;
    if (isActivated && window_ && isHidden())
        showWindow();
    if (event->type() == QEvent::ApplicationPaletteChange && watched == QCoreApplication::instance())
        updateItem();
    return QObject::eventFilter(watched, event);
}

} // namespace korvanti
