#pragma once

#include "base/Json.h"

#include <array>
#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// The user's settings, kept in `AppPaths::settings()`.
struct KorvantiSettings {
    std::vector<std::string> devRoots;   ///< project roots: "~/…" or absolute
    std::int64_t inactiveDays = 21;      ///< days without activity after which a project counts as inactive
    std::int64_t lowSpaceWarningGB = 20; ///< free decimal gigabytes under which the application warns
    std::optional<std::string> workVolumeUUID;
    std::map<std::string, std::string> relocations; ///< dev caches moved to an external volume

    /// Where projects usually lie; `defaults` takes those that exist.
    static constexpr std::array<std::string_view, 12> candidateRoots = {"~/builder",
                                                                        "~/Developer",
                                                                        "~/AndroidStudioProjects",
                                                                        "~/StudioProjects",
                                                                        "~/Projects",
                                                                        "~/projects",
                                                                        "~/Code",
                                                                        "~/code",
                                                                        "~/dev",
                                                                        "~/src",
                                                                        "~/Documents/GitHub",
                                                                        "~/XcodeProjects"};

    [[nodiscard]] static KorvantiSettings defaults();
    /// The saved settings; `defaults` when there is no file or it is damaged. A damaged file stays as it is.
    [[nodiscard]] static KorvantiSettings load();
    /// Replaces the file; a failure is not told.
    void save() const;

    /// `devRoots` as absolute paths, in order: a leading "~" becomes `home`, by text alone.
    [[nodiscard]] std::vector<std::string> resolvedDevRoots(std::string_view home) const;

    bool operator==(const KorvantiSettings&) const = default;
};

[[nodiscard]] Json toJson(const KorvantiSettings& settings);
[[nodiscard]] std::expected<KorvantiSettings, JsonError> settingsFromJson(const Json& json);

} // namespace korvanti
