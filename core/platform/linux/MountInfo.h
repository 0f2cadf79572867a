#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti::Platform {

/// One line of /proc/self/mountinfo. What a damaged line lacks is zero or empty.
struct MountRecord {
    std::uint64_t id = 0;
    std::uint64_t parent = 0; ///< the mount on which this one lies
    std::uint32_t major = 0;  ///< of the device; 0 where no block device is behind it
    std::uint32_t minor = 0;
    std::string mountPoint;
    std::string fsType;
    std::string source; ///< a device's path, a server's address or any word
    bool operator==(const MountRecord&) const = default;
};

/// The lines of the text in its order, octal escapes decoded. A line that has no mount point is passed over.
[[nodiscard]] std::vector<MountRecord> mountRecordsFromMountInfo(std::string_view text);

/// Those of a whole table that a path leads to; what others cover is left out. Asks nobody, since whatever
/// covers may not answer.
[[nodiscard]] std::vector<MountRecord> visibleMounts(const std::vector<MountRecord>& mounts);

/// The mount points of the lines alone.
[[nodiscard]] std::vector<std::string> mountPointsFromMountInfo(std::string_view text);

} // namespace korvanti::Platform
