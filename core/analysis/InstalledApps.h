#pragma once

#include "analysis/InstalledApp.h"
#include "base/Instant.h"
#include "fs/SizeLedger.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti::InstalledApps {

/// The folders that applications are installed in. The one in the home folder is that of the process's own
/// user.
[[nodiscard]] const std::vector<std::string>& applicationRoots();

/// The bundle identifiers of everything installed: of each application, and of the plug-ins, login items,
/// helpers and frameworks inside it. Reads each property list anew.
[[nodiscard]] std::set<std::string> bundleIdentifiers();
/// The same for other roots.
[[nodiscard]] std::set<std::string> bundleIdentifiers(const std::vector<std::string>& roots);

struct ListOptions {
    bool measure = true; ///< false: no sizes and no data, and nothing is walked
};

/// The applications that the user may remove, with their data, measured and judged; largest first. Those that
/// macOS ships are not among them. Blocks for the whole measurement; not for the main thread of a window.
[[nodiscard]] std::vector<InstalledApp> list(const std::string& home, Instant now, SizeLedger& sizes,
                                             ListOptions options = {});
/// The same for other folders of applications.
[[nodiscard]] std::vector<InstalledApp> list(const std::vector<std::string>& roots, const std::string& home,
                                             Instant now, SizeLedger& sizes, ListOptions options = {});

struct Usage {
    std::optional<Instant> lastUsed;
    std::optional<std::int64_t> useCount;
    bool operator==(const Usage&) const = default;
};
/// What the system remembers of the use of a bundle; empty where it remembers nothing.
[[nodiscard]] Usage usage(const std::string& bundle);

/// A program inside of the bundle is among those that `ps -axo comm=` printed.
[[nodiscard]] bool isRunning(const std::string& bundle, std::string_view programs);

/// The folders and files in the user's library that look like an application's; each exists.
[[nodiscard]] std::vector<std::string> dataLocations(const std::optional<std::string>& bundleID,
                                                     const std::string& name, const std::string& home);

/// What such a location holds, in words: by the folder that it lies in.
[[nodiscard]] std::string kindOfLocation(const std::string& location);

struct Advice {
    bool suggested = false;
    std::string advice;
    bool operator==(const Advice&) const = default;
};
/// Whether removing an application is worth suggesting, and the sentence that says why. Reads neither
/// `suggested` nor `advice`.
[[nodiscard]] Advice advise(const InstalledApp& app, Instant now);

struct Classification {
    AppRole role = AppRole::other;
    std::string reason;
    bool operator==(const Classification&) const = default;
};
[[nodiscard]] Classification classify(const std::string& name, const std::optional<std::string>& bundleID,
                                      const std::optional<std::string>& categoryType);

} // namespace korvanti::InstalledApps
