#pragma once

#include "fs/PinnedEntry.h"

#include <utility>

namespace korvanti {

/// An entry that the guard let through, held since before the verdict. Only `SafetyGuard` makes one, and only
/// with one can something be removed or moved to the Trash: what no verdict stands behind does not compile.
class AdmittedEntry {
public:
    [[nodiscard]] const PinnedEntry& entry() const { return entry_; }

private:
    friend class SafetyGuard;
    explicit AdmittedEntry(PinnedEntry entry) : entry_(std::move(entry)) {}

    PinnedEntry entry_;
};

} // namespace korvanti
