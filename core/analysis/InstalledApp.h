#pragma once

#include "base/Instant.h"
#include "scan/CleanupItem.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// What an application is for.
enum class AppRole { work, communication, nonWork, system, other };
template <>
inline constexpr std::array allCases<AppRole> = {AppRole::work, AppRole::communication, AppRole::nonWork,
                                                 AppRole::system, AppRole::other};
[[nodiscard]] std::string_view rawValue(AppRole role); ///< the case name
[[nodiscard]] std::string_view label(AppRole role);

/// One folder or file that belongs to an application.
struct AppDataLocation {
    std::string path; ///< also the identity
    std::string kind; ///< the kind of data, in words
    std::int64_t bytes = 0;
    bool operator==(const AppDataLocation&) const = default;
};

/// One application.
struct InstalledApp {
    std::string name;
    std::string path; ///< of the bundle; also the identity
    std::optional<std::string> bundleID;
    std::optional<std::string> executable;
    std::optional<std::string> version;
    std::optional<std::string> categoryType;
    std::int64_t bytes = 0;            ///< of the bundle
    std::vector<AppDataLocation> data; ///< those with a size above zero, largest first
    std::optional<Instant> lastUsed;
    std::optional<std::int64_t> useCount;
    bool fromAppStore = false;
    AppRole role = AppRole::other;
    std::string reason;     ///< why this role, in words
    bool suggested = false; ///< removal is suggested
    std::string advice;     ///< one sentence that says why or why not
    bool isRunning = false;
    bool isBackgroundAgent = false;
    std::optional<Instant> dataActivity; ///< newest change found inside its data

    [[nodiscard]] std::int64_t dataBytes() const;
    [[nodiscard]] std::int64_t totalBytes() const;
    [[nodiscard]] std::optional<Instant> lastActivity() const; ///< the later of use and change of data
    [[nodiscard]] bool isRemovable() const { return role != AppRole::system; }

    bool operator==(const InstalledApp&) const = default;
};

} // namespace korvanti
