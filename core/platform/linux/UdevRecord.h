#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvanti::Platform {

/// What the device database knows of the file system on a block device.
struct UdevRecord {
    std::optional<std::string> label;
    std::optional<std::string> uuid;
    bool operator==(const UdevRecord&) const = default;
};

/// Out of the text of one file in /run/udev/data. Other lines are passed over, an empty value is none, and of
/// two lines for one value the last one counts.
[[nodiscard]] UdevRecord udevRecordFromText(std::string_view text);

/// A name as the database and the links in /dev/disk write it, decoded: "Kerja\x20Lama". A backslash that
/// starts no such escape stands for itself.
[[nodiscard]] std::string decodedUdevName(std::string_view encoded);

} // namespace korvanti::Platform
