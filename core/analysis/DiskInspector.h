#pragma once

#include "base/PropertyList.h"
#include "scan/DiskSnapshot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// How full and how worn the start-up disk is. Nothing here fails: what is not told is zero, empty or absent.
/// What starts `diskutil` blocks for as long as that takes (50 seconds at the most) and is not for the main
/// thread of a window. Safe from any thread.
namespace korvanti::DiskInspector {

struct SnapshotOptions {
    bool includeSmart = false; ///< ask for the drive's health, too
};

/// One full look at the disk that holds `home`.
[[nodiscard]] DiskSnapshot snapshot(const std::string& home, SnapshotOptions options);

/// What `diskutil info` tells about a device, a volume or a mount point.
[[nodiscard]] std::optional<PropertyList::Dictionary> diskutilInfo(const std::string& target);

/// The volumes of the start-up container, in the tool's order.
[[nodiscard]] std::vector<APFSVolumeUsage> apfsVolumes();

/// The same out of what `diskutil apfs list` told; `startUp` is the container's reference, without which the
/// first one counts.
[[nodiscard]] std::vector<APFSVolumeUsage> apfsVolumes(const PropertyList::Dictionary& layout,
                                                       const std::optional<std::string>& startUp);

/// The drive's health out of what `diskutilInfo` told.
[[nodiscard]] std::optional<SmartInfo> smart(const PropertyList::Dictionary& info);

/// Bytes of swap in use.
[[nodiscard]] std::int64_t swapUsed();

/// There is no interface to ask; only a process with Full Disk Access can open the system's privacy database.
[[nodiscard]] bool hasFullDiskAccess();

/// Bytes of the volume that holds a folder.
struct FreeSpace {
    std::int64_t available = 0; ///< counts purgeable space as free
    std::int64_t total = 0;
    bool operator==(const FreeSpace&) const = default;
};
/// The cheap look: starts no process.
[[nodiscard]] FreeSpace freeSpace(const std::string& home);

} // namespace korvanti::DiskInspector
