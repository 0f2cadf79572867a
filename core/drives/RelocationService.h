#pragma once

#include "drives/DevCache.h"
#include "drives/OffloadError.h"
#include "drives/VolumeInfo.h"

#include <expected>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace korvanti {

/// Points developers' caches at a volume: Xcode through its user default, Gradle and npm through a managed
/// block in the shell profile. Moves no data. Starts small tools and blocks for them; one operation at a time
/// is the caller's to see to.
class RelocationService {
public:
    /// Below a volume's root: the caches' folders.
    static constexpr std::string_view devFolder = "Korvanti Dev";

    /// `home` is the user's home folder, absolute. No file is touched.
    RelocationService(const std::string& home, std::string defaultsDomain);

    /// What is in force now, whoever set it.
    [[nodiscard]] std::map<DevCache, std::string> currentTargets() const;

    /// Adds to what is in force. On failure caches already handled stay so, and the profile is as it was.
    [[nodiscard]] std::expected<void, DriveFailure> apply(const std::set<DevCache>& caches,
                                                          const VolumeInfo& volume) const;

    /// Takes them back; the folders on the volume stay.
    [[nodiscard]] std::expected<void, DriveFailure> revert(const std::set<DevCache>& caches) const;

private:
    std::string home_;
    std::string zshenv_;
    std::string defaultsDomain_;
};

} // namespace korvanti
