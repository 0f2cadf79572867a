#pragma once

#include "base/Json.h"
#include "scan/DiskSnapshot.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>

namespace korvanti {

/// One mounted volume outside the start-up disk. Sizes are bytes.
struct VolumeInfo {
    std::string name;
    std::string mountPath;
    std::optional<std::string> uuid;
    std::string formatName; ///< for people
    std::string fsType;     ///< in lower case: "apfs", "hfs", "exfat", "msdos"
    bool isInternal = false;
    bool isEjectable = false;
    std::int64_t total = 0;
    std::int64_t free = 0;
    std::optional<std::string> busProtocol; ///< the connection, in the tool's word
    std::optional<bool> solidState;
    std::optional<bool> ownersEnabled; ///< the volume honours file ownership
    std::optional<bool> encrypted;
    std::optional<SmartInfo> smart;
    std::optional<std::string> deviceIdentifier;

    [[nodiscard]] const std::string& id() const { return uuid ? *uuid : mountPath; }
    [[nodiscard]] bool isAPFS() const { return fsType == "apfs"; }
    /// Keeps links, modes and extended attributes.
    [[nodiscard]] bool supportsDevWork() const { return fsType == "apfs" || fsType == "hfs"; }

    bool operator==(const VolumeInfo&) const = default;
};

[[nodiscard]] Json toJson(const VolumeInfo& volume);
[[nodiscard]] std::expected<VolumeInfo, JsonError> volumeInfoFromJson(const Json& json);

} // namespace korvanti
