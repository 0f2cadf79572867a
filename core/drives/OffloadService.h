#pragma once

#include "cleaning/ActivityLog.h"
#include "cleaning/SafetyGuard.h"
#include "drives/OffloadError.h"
#include "drives/OffloadRecord.h"
#include "drives/VolumeFolder.h"
#include "drives/VolumeInfo.h"
#include "scan/CleanupItem.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti {

/// Moves a folder to an external volume and back: copies, verifies the copy, flushes it to its device, and
/// only then removes the original. Every move is kept in a store on this computer and in a manifest on the
/// volume. Keeps nothing between calls. One move at a time on one volume; a second one is refused.
class OffloadService {
public:
    static constexpr std::string_view folderName = VolumeFolder::offloadFolder;

    /// `home` is the user's home folder, absolute; `storeURL` the path of the store. No file is touched.
    OffloadService(const std::string& home, std::string storeURL, ActivityLog log);

    /// All moves that are known; none when the store is missing or damaged.
    [[nodiscard]] std::vector<OffloadRecord> records() const;

    /// Looks at the disk.
    [[nodiscard]] static OffloadStatus status(const OffloadRecord& record);

    struct OffloadOptions {
        bool symlinkBack = false; ///< leave a link at the old place
    };
    /// Bytes that have arrived so far, by length. Called every 3 seconds on a thread of its own, and a last
    /// time when the copy has ended. May be none; must not throw.
    using Progress = std::function<void(std::int64_t bytes)>;

    /// Blocks for as long as the copy takes. Nothing is touched before all checks have passed. However it
    /// ends, the data is complete at the old place or on the volume; a copy that could not be verified stays
    /// beside the untouched source.
    [[nodiscard]] std::expected<OffloadRecord, DriveFailure> offload(const CleanupItem& item,
                                                                     const VolumeInfo& volume,
                                                                     OffloadOptions options,
                                                                     const Progress& progress) const;

    /// Brings it back to where it was, if nothing but a link stands there. Blocks likewise.
    [[nodiscard]] std::expected<void, DriveFailure> restore(const OffloadRecord& record) const;

    /// Takes the record out of the store and touches nothing else.
    void forget(const OffloadRecord& record) const;

private:
    SafetyGuard guardrail_;
    std::string storeURL_;
    ActivityLog log_;
};

} // namespace korvanti
