#include "window/MenuBarItem.h"

#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QSystemTrayIcon>
#include <utility>

namespace korvanti {
namespace {

/// Here there is an icon only; its text is told where the pointer rests on it.
class TrayItem : public MenuBarItem {
public:
    explicit TrayItem(Clicked clicked) {
        QObject::connect(&icon_, &QSystemTrayIcon::activated,
                         [clicked = std::move(clicked)](QSystemTrayIcon::ActivationReason reason) {
                             if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context)
                                 clicked();
                         });
    }

    void show(const std::string& icon, const std::string& text) override {
        QPixmap picture;
        picture.loadFromData(reinterpret_cast<const uchar*>(icon.data()), static_cast<uint>(icon.size()),
                             "PNG");
        icon_.setIcon(QIcon(picture));
        icon_.setToolTip("Korvanti · " + QString::fromStdString(text) + " kosong");
        icon_.show();
    }

    [[nodiscard]] bool isThere() const override { return QSystemTrayIcon::isSystemTrayAvailable(); }

    [[nodiscard]] std::optional<Place> place() const override {
        const auto there = icon_.geometry();
        if (there.isEmpty())
            return std::nullopt;
        return Place{.x = there.x(), .y = there.y(), .width = there.width(), .height = there.height()};
    }

private:
    QSystemTrayIcon icon_;
};

} // namespace

std::unique_ptr<MenuBarItem> systemMenuBarItem(MenuBarItem::Clicked clicked) {
    return std::make_unique<TrayItem>(std::move(clicked));
}

} // namespace korvanti
