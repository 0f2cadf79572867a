#pragma once

#include "base/FileError.h"
#include "cleaning/SafetyGuard.h"

#include <cstdint>
#include <string>
#include <variant>

namespace korvanti {

/// Why a folder was not moved to a volume or back.
struct OffloadError {
    enum class Kind {
        notEnoughSpace,
        unsupportedFormat,
        originalOccupied,
        copyFailed,
        verifyFailed,
        sourceMissing,
        volumeMissing
    };
    Kind kind = Kind::volumeMissing;
    std::string payload = {};   ///< the format's name, the path or the reason, as the kind says
    std::int64_t needed = 0;    ///< bytes, of `notEnoughSpace`
    std::int64_t available = 0; ///< likewise

    /// The text for the user.
    [[nodiscard]] std::string description() const;

    bool operator==(const OffloadError&) const = default;
};

/// What a service over external drives can answer with: its own reason, the guard's, or the system's.
using DriveFailure = std::variant<OffloadError, GuardError, FileError>;

/// The text for the user.
[[nodiscard]] std::string description(const DriveFailure& failure);

} // namespace korvanti
