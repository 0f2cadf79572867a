#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korvanti {

/// The drive's health; a field is absent when the drive or the tool does not tell it.
struct SmartInfo {
    std::optional<std::int64_t> percentageUsed;   ///< vendor's wear estimate, percent
    std::optional<std::int64_t> dataWrittenBytes; ///< over the drive's life
    std::optional<std::int64_t> powerOnHours;
    std::optional<std::int64_t> availableSpare; ///< remaining spare blocks, percent
    std::optional<std::string> status;          ///< the tool's overall verdict
    std::optional<std::int64_t> unsafeShutdowns;
    bool operator==(const SmartInfo&) const = default;
};

/// One volume in the start-up container.
struct APFSVolumeUsage {
    std::string name; ///< "?" when not told
    std::string role; ///< first APFS role, empty when it has none
    std::int64_t bytes = 0;
    bool operator==(const APFSVolumeUsage&) const = default;
};

/// The state of the start-up disk. Sizes are bytes.
struct DiskSnapshot {
    std::int64_t total = 0;
    std::int64_t available = 0;          ///< free, by the plain measure
    std::int64_t availableImportant = 0; ///< free, counting purgeable space as free
    std::vector<APFSVolumeUsage> apfsVolumes;
    std::optional<SmartInfo> smart;
    std::int64_t swapUsed = 0;
    std::int64_t physicalMemory = 0;
    bool hasFullDiskAccess = false;

    [[nodiscard]] std::int64_t used() const { return excess(total, available); }
    [[nodiscard]] std::int64_t purgeable() const { return excess(availableImportant, available); }

    bool operator==(const DiskSnapshot&) const = default;

private:
    /// How much more the first is; never negative. A damaged file may hold any numbers.
    static std::int64_t excess(std::int64_t more, std::int64_t less) {
        std::int64_t difference = 0;
        if (__builtin_sub_overflow(more, less, &difference))
            return more > less ? INT64_MAX : 0;
        return difference > 0 ? difference : 0;
    }
};

} // namespace korvanti
