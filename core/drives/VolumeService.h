#pragma once

#include "base/FileError.h"
#include "base/PropertyList.h"
#include "drives/VolumeInfo.h"
#include "platform/Platform.h"
#include "process/Shell.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <vector>

/// The volumes outside the start-up disk. Everything here starts tools or does long I/O: not for the main
/// thread of a window. Safe from any thread.
namespace korvanti::VolumeService {

/// Local volumes below /Volumes but the root file system, in the platform's order. Starts `diskutil` for each
/// and waits up to 20 seconds for it.
[[nodiscard]] std::vector<VolumeInfo> externalVolumes();

/// What that list holds: local, not the root file system, below /Volumes. What is not told counts as no.
[[nodiscard]] bool isExternal(const Platform::MountedVolume& mounted);

/// What is known of one volume: `info` is what `diskutil` told about it, empty when it told nothing.
[[nodiscard]] VolumeInfo volumeInfo(const Platform::MountedVolume& mounted,
                                    const PropertyList::Dictionary& info);

/// The first external volume with this UUID, compared as text; absent without a UUID, and then nothing is
/// listed.
[[nodiscard]] std::optional<VolumeInfo> volume(const std::optional<std::string>& uuid);

/// Asks `diskutil` to eject it and waits up to 60 seconds; what the tool said is for the caller to read.
[[nodiscard]] ShellResult eject(const VolumeInfo& volume);

/// Decimal megabytes a second.
struct SpeedResult {
    double writeMBps = 0;
    double readMBps = 0;
    bool operator==(const SpeedResult&) const = default;
};

/// Writes random bytes to a new file in a folder and reads them again, past the system's cache and with a
/// full flush, in blocks of 8 MiB: `megabytes` / 8 of them and at least one. Holds one block in memory. No
/// file is left behind, however it ends, also when the program is killed in the middle.
[[nodiscard]] std::expected<SpeedResult, FileError> speedTest(const std::string& at, std::int64_t megabytes);

} // namespace korvanti::VolumeService
