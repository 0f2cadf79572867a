#pragma once

#include "fs/PinnedEntry.h"

#include <utility>

namespace korvanti {

/// An entry that may be removed, held since before the verdict. Only `SafetyGuard` makes one, and
/// `VolumeFolder` for copies that the program itself made on a volume. Only with one can something be removed
/// or moved to the Trash: what no verdict stands behind does not compile.
class AdmittedEntry {
public:
    [[nodiscard]] const PinnedEntry& entry() const { return entry_; }

private:
    friend class SafetyGuard;
    friend class VolumeFolder;
    explicit AdmittedEntry(PinnedEntry entry) : entry_(std::move(entry)) {}

    PinnedEntry entry_;
};

} // namespace korvanti
