#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace korvanti {

/// The item in the menu bar: an icon with a text beside it. One implementation a system; all on the main
/// thread.
class MenuBarItem {
public:
    using Clicked = std::function<void()>;

    /// On the screen, in points from the upper left corner of the first one.
    struct Place {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        bool operator==(const Place&) const = default;
    };

    MenuBarItem() = default;
    MenuBarItem(const MenuBarItem&) = delete;
    MenuBarItem& operator=(const MenuBarItem&) = delete;
    virtual ~MenuBarItem() = default;

    /// `icon` is a square PNG of 36 pixels, of which the system may take only the shape. The text is UTF-8.
    virtual void show(const std::string& icon, const std::string& text) = 0;
    /// People can see it at this time.
    [[nodiscard]] virtual bool isThere() const = 0;
    /// Absent where the system does not tell.
    [[nodiscard]] virtual std::optional<Place> place() const = 0;
};

/// That of this system. A click calls `clicked`.
[[nodiscard]] std::unique_ptr<MenuBarItem> systemMenuBarItem(MenuBarItem::Clicked clicked);

} // namespace korvanti
