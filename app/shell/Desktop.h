#pragma once

#include "analysis/InstalledApp.h"

#include <expected>
#include <functional>
#include <memory>
#include <string>

namespace korvanti {

/// What the desktop does for the window. One implementation a system; all calls and answers on the main
/// thread.
class Desktop {
public:
    using Result = std::expected<void, std::string>; ///< the error's words, for people
    using Answer = std::function<void(const Result&)>;

    Desktop() = default;
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;
    virtual ~Desktop() = default;

    /// Hands one thing to the file manager to be put into the Trash, which may ask for a password. Answers
    /// later, never before this returns.
    virtual void recycle(const std::string& path, const Answer& answer) = 0;
    /// From now on calls `changed` after each mount and unmount, for as long as this object lives.
    virtual void watchMounts(std::function<void()> changed) = 0;
    /// The program starts when its user logs in.
    [[nodiscard]] virtual bool isLoginItem() const = 0;
    virtual Result setLoginItem(bool enabled) = 0;
    /// Opens the system's page on Full Disk Access, where it has one, and shows this program, so that it can
    /// be dragged there. Answers once it is known whether something was opened, perhaps before this returns;
    /// so do the next two.
    virtual void openFullDiskAccessSettings(const Answer& answer) = 0;
    /// Shows something that exists in the file manager.
    virtual void reveal(const std::string& path, const Answer& answer) = 0;
    virtual void openFolder(const std::string& path, const Answer& answer) = 0;
    /// The user has that application open.
    [[nodiscard]] virtual bool isRunning(const InstalledApp& app) const = 0;
    /// Asks an open application to end, and does not wait for it: it may have something to save, and may
    /// stay.
    virtual void askToEnd(const InstalledApp& app) = 0;
    /// The icon of a bundle as a PNG file of that many pixels a side; empty where the system has none.
    [[nodiscard]] virtual std::string icon(const std::string& bundle, int pixels) const = 0;
};

/// That of this system, for the user whose home folder is given.
[[nodiscard]] std::unique_ptr<Desktop> systemDesktop(const std::string& home);

} // namespace korvanti
